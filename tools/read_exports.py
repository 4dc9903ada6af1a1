#!/usr/bin/python3
"""Other programs' readers and writers against the command line.

    read_exports.py BIN DIRECTORY [VC7...]    BIN has quiverionseries-cli and make_sample_series

Exports a series in every kind, opens the files with scipy, xarray and VTK, and compares every number with the VAS
files. Then files that scipy writes are imported, and must give the numbers they were written from. At last a VC7
series (one that is made here, or the given files) goes the whole way: import, macro, export, other programs.
"""
import json
import os
import shutil
import struct
import subprocess
import sys
import zlib

import numpy as np
import vtk
import xarray
from scipy.io import loadmat, netcdf_file, savemat
from vtk.util.numpy_support import vtk_to_numpy

BIN, DIRECTORY = sys.argv[1:3]
FIELDS = ("x", "y", "u", "v", "status")


def cli(*arguments):
    subprocess.run([os.path.join(BIN, "quiverionseries-cli"), *arguments], check=True, stderr=subprocess.DEVNULL)


def read_vas(path):
    """The grid of a VAS file: positions, then velocities and statuses with row 1 on top."""
    data = open(path, "rb").read()
    at = 11
    for _ in range(7):
        at += 4 + struct.unpack_from("<i", data, at)[0]
    columns, rows = struct.unpack_from("<2i", data, at + 40)
    at += 52
    field = {}
    for name, count, kind in (("x", columns, "<f8"), ("y", rows, "<f8"), ("u", columns * rows, "<f8"),
                              ("v", columns * rows, "<f8"), ("status", columns * rows, "<i4")):
        field[name] = np.frombuffer(data, kind, count, at)
        at += field[name].nbytes
        if count == columns * rows:
            field[name] = field[name].reshape(rows, columns)
    return field


def require_same(what, found, expected):
    found = np.asarray(found)
    if found.shape != expected.shape or not (found == expected).all():
        sys.exit(f"{what}: other numbers than in the VAS file")


def check_netcdf(path, fields):
    with xarray.open_dataset(path) as data:
        require_same("netCDF t", data.t.values, 0.25 * np.arange(len(fields)))
        assert data.x.units == "mm" and data.u.units == "m/s"
        for k, field in enumerate(fields):
            record = data.isel(t=k)
            require_same("netCDF x", record.x.values, field["x"])
            require_same("netCDF y", record.y.values, field["y"][::-1])
            for name in ("u", "v", "status"):
                require_same("netCDF " + name, record[name].values, field[name][::-1])
            require_same("netCDF chc", record.chc.values, (field["status"][::-1] > 0).astype("i1"))
    reader = vtk.vtkNetCDFCFReader()
    reader.SetFileName(path)
    reader.UpdateInformation()
    times = reader.GetOutputInformation(0).Get(vtk.vtkStreamingDemandDrivenPipeline.TIME_STEPS())
    require_same("times of netCDF in VTK", times, 0.25 * np.arange(len(fields)))
    reader.Update()
    require_same("u of netCDF in VTK", vtk_to_numpy(reader.GetOutput().GetPointData().GetArray("u")),
                 fields[0]["u"][::-1].ravel())


def check_vtk(path, field, time):
    reader = vtk.vtkXMLImageDataReader()
    reader.SetFileName(path)
    reader.Update()
    times = reader.GetOutputInformation(0).Get(vtk.vtkStreamingDemandDrivenPipeline.TIME_STEPS())
    require_same("time of VTK", times, np.array([time]))
    image = reader.GetOutput()
    points = image.GetPointData()
    vectors = vtk_to_numpy(points.GetArray("velocity"))
    require_same("u of VTK", vectors[:, 0], field["u"][::-1].ravel())
    require_same("v of VTK", vectors[:, 1], field["v"][::-1].ravel())
    require_same("status of VTK", vtk_to_numpy(points.GetArray("status")), field["status"][::-1].ravel())
    found = image.FindPoint(field["x"][3], field["y"][2], 0.0)
    assert found == (len(field["y"]) - 3) * len(field["x"]) + 3, "a point of VTK is somewhere else"


def check_matlab(path, field):
    data = loadmat(path)
    require_same("x of MATLAB", data["x"][0], field["x"])
    require_same("y of MATLAB", data["y"][:, 0], field["y"])
    require_same("u of MATLAB", data["u_filtered"], field["u"])
    require_same("v of MATLAB", data["v_filtered"], field["v"])
    require_same("status of MATLAB", data["status"], field["status"])
    assert data["units"][0] == "[mm] respectively [m/s]"


def check_csv(path, field):
    rows = np.loadtxt(path, delimiter=",", skiprows=1)
    for column, name in enumerate(FIELDS[2:], 2):
        require_same("CSV " + name, rows[:, column].reshape(field["u"].shape), field[name])


def check_exports(series, names):
    fields = [read_vas(os.path.join(series, name)) for name in names]
    target = os.path.join(DIRECTORY, "exports")
    cli("export", "--as", "netcdf", "--to", target, "--series", "s.nc", "--dt", "0.25", series)
    check_netcdf(os.path.join(target, "s.nc"), fields)
    cli("export", "--as", "vtk", "--to", target, "--series", "s.pvd", "--dt", "0.25", series)
    cli("export", "--as", "matlab", "--to", target, series)
    cli("export", "--as", "csv", "--to", target, series)
    for k, (name, field) in enumerate(zip(names, fields)):
        base = os.path.join(target, os.path.splitext(name)[0])
        check_vtk(base + ".vti", field, 0.25 * k)
        check_matlab(base + ".mat", field)
        check_csv(base + ".csv", field)


def write_vc7(path, u, v, choice):
    """Planes of format 3 with zlib; y falls with the row, so v is stored as it is with the sign turned."""
    rows, columns = u.shape
    planes = np.zeros((10, rows, columns), "<f4")
    planes[0], planes[1], planes[2] = choice, u / 0.5, v / -0.5
    packed = zlib.compress(planes.tobytes())
    header = struct.pack("<4h4i3h", 0, 2, 3, 0, columns, rows, 1, 1, 0, 16, 0)
    tags = b""
    for text in ("FrameScaleX0=0.02\n-5.0\nmm\n", "FrameScaleY0=-0.02\n4.0\nmm\n", "FrameScaleI0=0.5\n0\nm/s\n",
                 "FrameDt0=300 us", "_DaVisVersion=8.3.1"):
        tags += struct.pack("<2i", 6, len(text)) + text.encode("latin-1")
    with open(path, "wb") as file:
        file.write(header.ljust(256, b"\0") + struct.pack("<i", len(packed)) + packed + tags + bytes(8))


def make_vc7_series():
    random = np.random.default_rng(7)
    paths = []
    for k in range(3):
        u, v = random.integers(-64, 64, (2, 12, 15)) / 8.0
        choice = (random.random(u.shape) > 0.1).astype("f4")
        paths.append(os.path.join(DIRECTORY, f"B{k + 1:05}.vc7"))
        write_vc7(paths[-1], u, v, choice)
        cli("import", "--to", DIRECTORY, paths[-1])
        field = read_vas(os.path.join(DIRECTORY, f"B{k + 1:05}.vas"))
        require_same("status of VC7", field["status"], choice.astype("i4"))
        require_same("u of VC7", field["u"], np.where(choice, u, 0.0))
        require_same("v of VC7", field["v"], np.where(choice, v, 0.0))
    return paths


def check_vc7(paths):
    """Import, evaluation by a macro, export, xarray and VTK with times."""
    work = os.path.join(DIRECTORY, "vc7")
    cli("import", "--to", work, *paths)
    sample = os.path.join(os.path.dirname(os.path.abspath(__file__)), "../samples/macros/sample.json")
    with open(sample, encoding="utf-8") as file:
        search = [command for command in json.load(file) if command["EventId"] == "evtFaultVectors"]
    macro = [*search, {"EventId": "evtInterpolation"}, {"EventId": "evtGauss3x3"},
             {"EventId": "evtSaveVas", "Prefix": "fertig/", "Postfix": ""},
             {"EventId": "evtExportNetCdf", "Prefix": "einzeln/", "Postfix": ""},
             {"EventId": "evtExportVtk", "Prefix": "einzeln/", "Postfix": ""}]
    source = os.path.join(DIRECTORY, "vc7.json")
    with open(source, "w", encoding="utf-8") as file:
        json.dump(macro, file)
    cli("macro", "import", source, os.path.join(DIRECTORY, "vc7.mak"))
    subprocess.run([os.path.join(BIN, "quiverionseries-cli"), "run", "--macro", os.path.join(DIRECTORY, "vc7.mak"), work],
                   check=True, stdout=subprocess.DEVNULL)
    done = os.path.join(work, "fertig")
    names = sorted(os.listdir(done))
    assert len(names) == len(paths)
    fields = [read_vas(os.path.join(done, name)) for name in names]
    cli("export", "--as", "netcdf", "--to", work, "--series", "serie.nc", "--dt", "0.25", done)
    check_netcdf(os.path.join(work, "serie.nc"), fields)
    cli("export", "--as", "vtk", "--to", work, "--series", "serie.pvd", "--dt", "0.25", done)
    for k, (name, field) in enumerate(zip(names, fields)):
        base = os.path.splitext(name)[0]
        check_vtk(os.path.join(work, base + ".vti"), field, 0.25 * k)
        with xarray.open_dataset(os.path.join(work, "einzeln", base + ".nc")) as data:
            require_same("u of the macro's netCDF", data.u.values[0], field["u"][::-1])
    return len(paths)


def check_imports():
    """PIVlab's MAT file with cells, and netCDF in the order of PIVPy, both written by scipy."""
    random = np.random.default_rng(1)
    x, y = np.meshgrid(np.arange(1.0, 7.0), np.arange(5.0, 0.0, -1.0))
    u, v = random.normal(size=(2, 3, *x.shape))
    cells = {name: np.empty((3, 1), object) for name in ("x", "y", "u_filtered", "v_filtered", "typevector_filtered")}
    for k in range(3):
        frame = (x, y, u[k], v[k].astype("f4"), np.ones(x.shape))
        for name, values in zip(cells, frame):
            cells[name][k, 0] = values
    path = os.path.join(DIRECTORY, "pivlab.mat")
    savemat(path, {**cells, "units": "[mm] respectively [m/s]"}, do_compression=True)
    cli("import", "--to", DIRECTORY, path)
    for k in range(3):
        field = read_vas(os.path.join(DIRECTORY, f"pivlab_{k + 1:04}.vas"))
        require_same("u of PIVlab", field["u"], u[k])
        require_same("v of PIVlab", field["v"], v[k].astype("f4").astype("f8"))

    path = os.path.join(DIRECTORY, "pivpy.nc")
    with netcdf_file(path, "w", version=2) as file:
        for name, values in (("y", y[:, 0]), ("x", x[0]), ("t", np.arange(3.0))):
            file.createDimension(name, len(values))
            file.createVariable(name, "d", (name,))[:] = values
        for name, values in (("u", u), ("v", v), ("chc", np.ones(u.shape))):
            file.createVariable(name, "d", ("y", "x", "t"))[:] = np.moveaxis(values, 0, 2)
    cli("import", "--to", DIRECTORY, path)
    for k in range(3):
        field = read_vas(os.path.join(DIRECTORY, f"pivpy_{k + 1:04}.vas"))
        require_same("u of PIVPy", field["u"], u[k])
        require_same("v of PIVPy", field["v"], v[k])


def main():
    shutil.rmtree(DIRECTORY, ignore_errors=True)
    series = os.path.join(DIRECTORY, "series")
    subprocess.run([os.path.join(BIN, "make_sample_series"), series, "--count", "7"], check=True,
                   stdout=subprocess.DEVNULL)
    for name in os.listdir(series):
        if not name.endswith(".vas"):
            os.remove(os.path.join(series, name))
    names = sorted(os.listdir(series))
    assert names
    check_exports(series, names)
    check_imports()
    count = check_vc7(sys.argv[3:] or make_vc7_series())
    print(f"{count} VC7 files went all the way to xarray and VTK")
    print(f"scipy, xarray and VTK read {len(names)} fields of every kind")


main()
