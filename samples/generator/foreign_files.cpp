#include "foreign_files.h"

#include <zlib.h>

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstdio>
#include <stdexcept>
#include <vector>

namespace quiverion::samples {
namespace {

// What a line of a text format gets.
struct Point {
  double x, y;  // mm
  double u, v;  // m/s
  int status;
};

enum class Order { rowsFromTop, rowsFromBelow, columns };

template <class Take>
void ForEachPoint(const SampleField& field, Order order, Take take) {
  const auto point = [&](int i, int j) {
    const std::size_t p = PointIndex(field, i, j);
    take(Point{PositionX(field, i), PositionY(field, j), field.u[p], field.v[p], field.status[p]});
  };
  if (order == Order::columns) {
    for (int i = 1; i <= field.columns; ++i) {
      for (int j = field.rows; j >= 1; --j) point(i, j);
    }
    return;
  }
  for (int r = 1; r <= field.rows; ++r) {
    for (int i = 1; i <= field.columns; ++i) point(i, order == Order::rowsFromTop ? r : field.rows + 1 - r);
  }
}

// The formats are all in this file.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
template <class... Values>
void Append(std::string& text, const char* format, Values... values) {
  char line[400];
  text.append(line, static_cast<std::size_t>(std::snprintf(line, sizeof line, format, values...)));
}

#pragma GCC diagnostic pop

int Valid(const Point& point) {
  return point.status > 0 ? 1 : 0;
}

std::string OpenPiv5(const SampleField& field) {
  std::string text;
  ForEachPoint(field, Order::rowsFromTop, [&](const Point& p) {
    Append(text, "%8.4f\t%8.4f\t%8.4f\t%8.4f\t%8.4f\n", p.x, p.y, p.u, p.v, 1.0 - Valid(p));
  });
  return text;
}

std::string OpenPiv6(const SampleField& field) {
  std::string text = "# x\ty\tu\tv\tflags\tmask\n";
  ForEachPoint(field, Order::rowsFromBelow, [&](const Point& p) {
    Append(text, "%.4e\t%.4e\t%.4e\t%.4e\t%.4e\t%.4e\n", p.x, p.y, p.u, p.v, p.status > 0 ? 0.0 : 1.0,
           p.status < 0 ? 1.0 : 0.0);
  });
  return text;
}

std::string Jpiv(const SampleField& field) {
  std::string text;
  ForEachPoint(field, Order::rowsFromTop, [&](const Point& p) {
    Append(text, "%.6f %.6f %.6f %.6f %.3f\n", p.x, p.y, p.u, p.v, Valid(p) != 0 ? 1.5 : -1.0);
  });
  return text;
}

int TypeVector(const Point& p) {
  return p.status > 0 ? 1 : p.status == 0 ? 9 : 0;
}

std::string PivLab(const SampleField& field) {
  std::string text =
      "PIVlab, ASCII chart output - 14-Mar-2017\r\n"
      "FRAME: 1, filenames: A.tif & B.tif, conversion factor xy (px -> m): 4.2E-05, conversion factor uv (px/frame -> "
      "m/s): 0.0042\r\n"
      "x [m],y [m],u [m/s],v [m/s],Vector type [-]\r\n";
  ForEachPoint(field, Order::columns, [&](const Point& p) {
    if (p.status < 0) {
      Append(text, "%.10g,%.10g,NaN,NaN,0\r\n", p.x / 1000, p.y / 1000);
    } else {
      Append(text, "%.10g,%.10g,%.10g,%.10g,%d\r\n", p.x / 1000, p.y / 1000, p.u, p.v, TypeVector(p));
    }
  });
  return text;
}

std::string PivLabWide(const SampleField& field) {
  std::string text =
      "x [mm]\ty [mm]\tu [m/s]\tv [m/s]\tVector type [-]\tvorticity [1/s]\tmagnitude [m/s]\tdivergence [1/s]\n";
  ForEachPoint(field, Order::columns, [&](const Point& p) {
    Append(text, "%.10g\t%.10g\t%.10g\t%.10g\t%d\t%.10g\t%.10g\t%.10g\n", p.x, p.y, p.u, p.v, TypeVector(p), p.u / 3,
           p.v / 7, p.u * p.v);
  });
  return text;
}

std::string PivLabTecplot(const SampleField& field) {
  std::string text =
      "# PIVlab by W.Th. & E.J.S., TECPLOT output - 14-Mar-2017\r\nTITLE = \"PIVlab\"\r\n"
      "VARIABLES = \"x [mm]\", \"y [mm]\", \"u [m/s]\", \"v [m/s]\", \"isNaN\"\r\n";
  Append(text, "ZONE I=%d, J=%d, K=1, F=POINT, T=\"frame 1\"\r\n", field.columns, field.rows);
  ForEachPoint(field, Order::rowsFromBelow, [&](const Point& p) {
    Append(text, "%.10g %.10g %.10g %.10g %d\r\n", p.x, p.y, p.u, p.v, 1 - Valid(p));
  });
  return text;
}

std::string Insight(const SampleField& field) {
  std::string text =
      "TITLE=\"C:\\Data\\Run1.vec\" VARIABLES=\"X mm\", \"Y mm\", \"U m/s\", \"V m/s\", \"CHC\", "
      "DATASETAUXDATA Application=\"PIV\" DATASETAUXDATA MicrosecondsPerDeltaT=\"100\" ";
  Append(text, "ZONE SOLUTIONTIME=0.000000, I=%d, J=%d, F=POINT\n", field.columns, field.rows);
  ForEachPoint(field, Order::rowsFromTop, [&](const Point& p) {
    Append(text, "%.6f, %.6f, %.6f, %.6f, %d\n", p.x, p.y, p.u, p.v, Valid(p) != 0 ? 1 : -1);
  });
  return text;
}

std::string DavisPoints(const SampleField& field, char separator, bool comma, const char* lineEnd) {
  std::string text;
  ForEachPoint(field, Order::rowsFromTop, [&](const Point& p) {
    Append(text, "%.6g%c%.6g%c", p.x, separator, p.y, separator);
    if (p.status > 0) {
      Append(text, "%.6g%c%.6g", p.u, separator, p.v);
    } else {
      Append(text, "0%c-0", separator);
    }
    text += lineEnd;
  });
  if (comma) std::ranges::replace(text, '.', ',');
  return text;
}

std::string Davis8(const SampleField& field) {
  std::string text;
  Append(text, "#DaVis 8.1.6 2D-vector 32 %d %d \"position\" \"mm\" \"position\" \"mm\" \"velocity\" \"m/s\"\n",
         field.rows, field.columns);
  return text + DavisPoints(field, '\t', true, "\n");
}

std::string Davis10(const SampleField& field) {
  std::string text;
  Append(text, "#DaVis 10.2 2C vector field 4 %d %d \"x [mm]\";\"y [mm]\";\"Vx [m/s]\";\"Vy [m/s]\"\r\n", field.rows,
         field.columns);
  return text + DavisPoints(field, ';', false, "\r\n");
}

std::string DavisTecplot(const SampleField& field) {
  std::string text = "TITLE = \"B00001\"\r\nVARIABLES = \"x\", \"y\", \"Vx\", \"Vy\", \"isValid\"\r\n";
  Append(text, "ZONE T=\"Frame 0\", I=%d, J=%d, K=1\r\n", field.columns, field.rows);
  ForEachPoint(field, Order::rowsFromTop,
               [&](const Point& p) { Append(text, "%.6f %.6f %.12f %.12f %d\r\n", p.x, p.y, p.u, p.v, Valid(p)); });
  return text;
}

std::string PivViewText(const SampleField& field) {
  std::string text =
      "# Software: PIVTEC PIVview Module\n# var 1: 'x' - physical coordinate X in [mm]\n"
      "# var 2: 'y' - physical coordinate Y in [mm]\n# var 4: 'u' - velocity conponent X in [m/s]\n"
      "TITLE = \"PIV Velocity Data\"\nVARIABLES = \"x\", \"y\", \"z\", \"u\", \"v\", \"w\", \"velmag\", "
      "\"flag\", \"count\", \"valid\", \"dudx\", \"dudy\", \"dvdx\", \"dvdy\"\n";
  Append(text, "ZONE I=%d, J=%d, K=1, F=POINT, T=\"avg\"\n", field.columns, field.rows);
  ForEachPoint(field, Order::rowsFromBelow, [&](const Point& p) {
    Append(text, "%g %g 0 %g %g 0 %g %d 8 1 0 0 0 0 \n", p.x, p.y, p.u, p.v, p.u,
           p.status > 0    ? 3
           : p.status == 0 ? 1
                           : 0);
  });
  return text;
}

// Variable after variable, five numbers per line.
std::string TecplotBlock(const SampleField& field) {
  std::string text = "variables = x, y\n  u, v status\n";
  Append(text, "Zone t = \"1\" i = %d j = %d datapacking = block SOLUTIONTIME = 0.5\n", field.columns, field.rows);
  int count = 0;
  const auto column = [&](auto of) {
    ForEachPoint(field, Order::rowsFromTop,
                 [&](const Point& p) { Append(text, ++count % 5 == 0 ? " %.9E\n" : " %.9E", of(p)); });
  };
  column([](const Point& p) { return p.x; });
  column([](const Point& p) { return p.y; });
  column([](const Point& p) { return p.u; });
  column([](const Point& p) { return p.v; });
  column([](const Point& p) { return static_cast<double>(p.status); });
  return text + "\n";
}

std::string Csv(const SampleField& field) {
  std::string text = "pos_x (mm);pos_y (mm);velocity_x (m/s);velocity_y (m/s);note;valid\n";
  ForEachPoint(field, Order::rowsFromTop,
               [&](const Point& p) { Append(text, "%.17g;%.17g;%.17g;%.17g;a b;%d\n", p.x, p.y, p.u, p.v, Valid(p)); });
  std::ranges::replace(text, '.', ',');
  return text;
}

// Bytes in either order.
class Bytes {
 public:
  explicit Bytes(std::endian order) : order_(order) {}
  template <class Value>
  Bytes& Put(Value value) {
    char raw[sizeof value];
    std::copy_n(reinterpret_cast<const char*>(&value), sizeof value, raw);
    if (order_ != std::endian::native) std::reverse(raw, raw + sizeof value);
    text.append(raw, sizeof value);
    return *this;
  }
  Bytes& Raw(std::string_view bytes) { return text += bytes, *this; }
  Bytes& Pad(std::size_t to) { return text.resize((text.size() + to - 1) / to * to, '\0'), *this; }

  std::string text;

 private:
  std::endian order_;
};

std::string Deflated(const std::string& bytes) {
  uLongf size = compressBound(static_cast<uLong>(bytes.size()));
  std::string packed(size, '\0');
  compress2(reinterpret_cast<Bytef*>(packed.data()), &size, reinterpret_cast<const Bytef*>(bytes.data()),
            static_cast<uLong>(bytes.size()), 1);
  packed.resize(size);
  return packed;
}

// The vector is that of the second peak, in the later step's place for every third point.
int Choice(std::size_t p, int status) {
  return status <= 0 ? 0 : p % 3 == 0 ? 5 : 2;
}

// Factors that are exact in a float: m/s = raw / 8, so positions and velocities keep their digits.
template <int format, bool packed>
std::string Vc7(const SampleField& field) {
  constexpr int planes[] = {9, 2, 10, 3, 14};
  const std::size_t count = field.u.size();
  std::vector<std::vector<float>> values(planes[format - 1], std::vector<float>(count, 0.0f));
  const bool hasChoice = format == 1 || format == 3 || format == 5;
  const std::size_t components = format == 4 || format == 5 ? 3 : 2;
  for (std::size_t p = 0; p < count; ++p) {
    const int choice = hasChoice ? Choice(p, field.status[p]) : 1;
    if (hasChoice) values[0][p] = static_cast<float>(choice);
    if (choice == 0 || field.status[p] <= 0) continue;
    const std::size_t plane = (hasChoice ? 1 : 0) + components * static_cast<std::size_t>(std::min(choice, 4) - 1);
    values[plane][p] = static_cast<float>(field.u[p] * 8);
    values[plane + 1][p] = static_cast<float>(-field.v[p] * 8);  // y points up, and is stored downwards
  }
  Bytes data(std::endian::little);
  for (const auto& plane : values) {
    for (const float value : plane) data.Put(value);
  }
  Bytes file(std::endian::little);
  file.Put(std::int16_t{0}).Put(std::int16_t{packed ? 2 : 0}).Put(std::int16_t{format}).Put(std::int16_t{0});
  file.Put(field.columns).Put(field.rows).Put(1).Put(1).Put(std::int16_t{0});
  file.Put(static_cast<std::int16_t>(field.gridStep)).Put(std::int16_t{1}).Pad(256);
  if (packed) {
    const std::string stream = Deflated(data.text);
    file.Put(static_cast<std::int32_t>(stream.size())).Raw(stream);
  } else {
    file.Raw(data.text);
  }
  const std::size_t tags = file.text.size();
  const double step = field.gridStep, mm = 10.0 / field.pixelScale;
  const auto tag = [&](int type, const std::string& text) {
    file.Put(std::int32_t{type}).Put(static_cast<std::int32_t>(text.size())).Raw(text);
  };
  const auto scale = [&](const char* name, double factor, double offset, const char* unit) {
    std::string text;
    Append(text, "%s=%.17g\n%.17g\n%s\n", name, factor, offset, unit);
    tag(6, text);
  };
  tag(1, std::string("1.000000 0.000000\0pixel\0\0", 25));
  scale("FrameScaleX0", mm, PositionX(field, 1) - 0.5 * step * mm, "[mm]");
  scale("FrameScaleY0", -mm, PositionY(field, 1) + 0.5 * step * mm, "mm");
  scale("FrameScaleI0", 0.125, 0, "m/s");
  tag(6, "FrameDt0=300 us");
  tag(6, "_DaVisVersion=8.3.1");
  file.Put(0).Put(0);
  const std::size_t mask = file.text.size();
  for (const std::int32_t status : field.status) file.Put(static_cast<char>(status < 0 ? 0 : 1));
  const std::size_t scalars = file.text.size();
  file.Put(0);
  for (int slot = 0; slot < 32; ++slot) {
    file.Put(std::uint64_t{slot == 0 ? tags : slot == 2 ? mask : slot == 3 ? scalars : 0});
  }
  return file.text;
}

// netCDF classic with the dimensions in one of two orders: (y, x, t) is that of PIVPy.
template <bool pivPy>
std::string NetCdf(const SampleField& field) {
  Bytes file(std::endian::big);
  const auto name = [&](std::string_view text) { file.Put(static_cast<std::uint32_t>(text.size())).Raw(text).Pad(4); };
  const auto unit = [&](std::string_view text) {
    file.Put(12).Put(1);
    name("units");
    file.Put(2);
    name(text);
  };
  const auto points = static_cast<std::uint32_t>(field.u.size());
  const auto columns = static_cast<std::uint32_t>(field.columns), rows = static_cast<std::uint32_t>(field.rows);
  // The offsets are filled in when the sizes are known.
  std::vector<std::size_t> places;
  const auto variable = [&](std::string_view title, const std::vector<int>& dimensions, std::string_view text, int type,
                            std::uint32_t size) {
    name(title);
    file.Put(static_cast<std::uint32_t>(dimensions.size()));
    for (const int dimension : dimensions) file.Put(dimension);
    unit(text);
    file.Put(type).Put((size + 3) / 4 * 4);
    places.push_back(file.text.size());
    file.Put(0);
  };
  file.Raw(std::string_view("CDF\x01", 4)).Put(0).Put(10).Put(3);
  name("x");
  file.Put(columns);
  name("y");
  file.Put(rows);
  name("t");
  file.Put(1).Put(0).Put(0).Put(11).Put(6);
  const std::vector<int> all = pivPy ? std::vector{1, 0, 2} : std::vector{2, 1, 0};
  variable("x", {0}, "mm", 6, 8 * columns);
  variable("y", {1}, "mm", 6, 8 * rows);
  variable("t", {2}, "s", 6, 8);
  variable("u", all, "m/s", 6, 8 * points);
  variable("v", all, "m/s", 6, 8 * points);
  variable("chc", all, "", 1, points);
  std::size_t next = 0;
  const auto begin = [&] {
    Bytes offset(std::endian::big);
    offset.Put(static_cast<std::uint32_t>(file.text.size()));
    file.text.replace(places[next++], 4, offset.text);
  };
  begin();
  for (int i = 1; i <= field.columns; ++i) file.Put(PositionX(field, i));
  begin();
  for (int j = 1; j <= field.rows; ++j) file.Put(PositionY(field, j));
  begin();
  file.Put(0.25);
  begin();
  for (const double u : field.u) file.Put(u);
  begin();
  for (const double v : field.v) file.Put(v);
  begin();
  for (const std::int32_t status : field.status) file.Put(static_cast<char>(status > 0 ? 1 : 0));
  return file.Pad(4).text;
}

// PIVlab's export: matrices column by column, each a compressed element; one small element for the short names.
std::string Mat(const SampleField& field) {
  Bytes file(std::endian::little);
  file.Raw("MATLAB 5.0 MAT-file, Platform: PCWIN64");
  file.text.resize(124, ' ');
  file.Put(std::int16_t{0x0100}).Raw("IM");
  const auto matrix = [&](std::string_view name, int type, int arrayClass, int rows, int columns,
                          const Bytes& numbers) {
    Bytes body(std::endian::little);
    body.Put(6).Put(8).Put(arrayClass).Put(0).Put(5).Put(8).Put(rows).Put(columns);
    if (name.size() <= 4) {
      body.Put(std::int16_t{1}).Put(static_cast<std::int16_t>(name.size())).Raw(name).Pad(8);
    } else {
      body.Put(1).Put(static_cast<std::int32_t>(name.size())).Raw(name).Pad(8);
    }
    body.Put(type).Put(static_cast<std::int32_t>(numbers.text.size())).Raw(numbers.text).Pad(8);
    Bytes element(std::endian::little);
    element.Put(14).Put(static_cast<std::int32_t>(body.text.size())).Raw(body.text);
    const std::string stream = Deflated(element.text);
    file.Put(15).Put(static_cast<std::int32_t>(stream.size())).Raw(stream);
  };
  const auto numbers = [&](std::string_view name, auto of) {
    Bytes values(std::endian::little);
    ForEachPoint(field, Order::columns, [&](const Point& p) { values.Put(static_cast<double>(of(p))); });
    matrix(name, 9, 6, field.rows, field.columns, values);
  };
  numbers("x", [](const Point& p) { return p.x / 1000; });
  numbers("y", [](const Point& p) { return p.y / 1000; });
  numbers("u_original", [](const Point& p) { return p.u + 1000; });
  numbers("u_filtered", [](const Point& p) { return p.u; });
  numbers("v_filtered", [](const Point& p) { return p.v; });
  numbers("typevector_filtered", [](const Point& p) { return TypeVector(p); });
  matrix("u_smoothed", 9, 6, 0, 0, Bytes(std::endian::little));
  Bytes text(std::endian::little);
  for (const char c : std::string_view("[m] respectively [m/s]")) text.Put(static_cast<std::uint16_t>(c));
  matrix("units", 4, 4, 1, static_cast<int>(text.text.size() / 2), text);
  return file.text;
}

constexpr ForeignSample kSamples[] = {
    {"openpiv5.txt", "openpiv", 5.1e-5, false, OpenPiv5},
    {"openpiv6.txt", "openpiv", 1e-2, true, OpenPiv6},
    {"jpiv.jvc", "openpiv", 5.1e-7, false, Jpiv},
    {"pivlab.txt", "pivlab", 1e-6, true, PivLab},
    {"pivlab_wide.txt", "csv", 1e-6, true, PivLabWide},
    {"pivlab.dat", "tecplot", 1e-6, false, PivLabTecplot},
    {"insight.vec", "tecplot", 5.1e-7, false, Insight},
    {"davis8.txt", "davis", 1e-4, false, Davis8},
    {"davis10.txt", "davis", 1e-4, false, Davis10},
    {"davis.dat", "tecplot", 1e-9, false, DavisTecplot},
    {"pivview.dat", "tecplot", 1e-4, true, PivViewText},
    {"block.dat", "tecplot", 1e-6, true, TecplotBlock},
    {"table.csv", "csv", 0, false, Csv},
    {"vc7_1.vc7", "vc7", 1e-5, true, Vc7<1, false>},
    {"vc7_2.vc7", "vc7", 1e-5, true, Vc7<2, true>},
    {"vc7_3.vc7", "vc7", 1e-5, true, Vc7<3, true>},
    {"vc7_4.vc7", "vc7", 1e-5, true, Vc7<4, false>},
    {"vc7_5.vc7", "vc7", 1e-5, true, Vc7<5, true>},
    {"cf.nc", "netcdf", 0, false, NetCdf<false>},
    {"pivpy.nc", "netcdf", 0, false, NetCdf<true>},
    {"pivlab.mat", "matlab", 0, true, Mat},
};

}  // namespace

std::span<const ForeignSample> ForeignSamples() {
  return kSamples;
}

const ForeignSample& ForeignSampleOf(std::string_view name) {
  const auto found = std::ranges::find(kSamples, name, &ForeignSample::name);
  if (found == std::end(kSamples)) throw std::invalid_argument("no such sample");
  return *found;
}

}  // namespace quiverion::samples
