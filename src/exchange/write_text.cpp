// Tecplot and CSV.
#include <algorithm>
#include <vector>

#include "exchange/write_support.h"
#include "exchange/writers.h"

namespace quiverion::exchange {
namespace {

std::vector<std::string> Texts(std::span<const double> positions) {
  std::vector<std::string> texts;
  for (const double position : positions) texts.push_back(ShortestText(position));
  return texts;
}

// A line per vector, row by row.
void WriteLines(BlockWriter& writer, const VectorField& field, std::string_view separator) {
  const std::vector<std::string> x = Texts(field.posX), y = Texts(field.posY);
  for (std::int32_t j = 1; j <= field.rowCount; ++j) {
    const double *u = field.velX.Row(j), *v = field.velY.Row(j);
    const std::int32_t* const status = field.status.Row(j);
    for (std::size_t i = 0; i < x.size(); ++i) {
      writer.Text(x[i]);
      writer.Text(separator);
      writer.Text(y[static_cast<std::size_t>(j - 1)]);
      writer.Text(separator);
      writer.Number(u[i]);
      writer.Text(separator);
      writer.Number(v[i]);
      writer.Text(separator);
      writer.Whole(status[i]);
      writer.Text("\n");
    }
  }
  writer.Finish();
}

// At least four digits.
std::string NumberText(std::size_t number) {
  const std::string digits = std::to_string(number);
  return std::string(4 - std::min<std::size_t>(4, digits.size()), '0') + digits;
}

}  // namespace

void WriteTecplotHeader(ResultFile& file) {
  file.Write(
      "TITLE = \"QuiverionSeries\"\n"
      "VARIABLES = \"x [mm]\", \"y [mm]\", \"u [m/s]\", \"v [m/s]\", \"status\"\n");
}

void WriteTecplotZone(ResultFile& file, const VectorField& field, const SeriesPlace& place) {
  BlockWriter writer(file);
  writer.Text("ZONE T=\"" + NumberText(place.number) + "\", I=" + std::to_string(field.columnCount) +
              ", J=" + std::to_string(field.rowCount) +
              ", DATAPACKING=POINT, STRANDID=1, SOLUTIONTIME=" + ShortestText(place.time) + "\n");
  WriteLines(writer, field, " ");
}

void WriteTecplot(ResultFile& file, const VectorField& field, const SeriesPlace& place) {
  WriteTecplotHeader(file);
  WriteTecplotZone(file, field, place);
}

void WriteCsv(ResultFile& file, const VectorField& field, const SeriesPlace& /*place*/) {
  BlockWriter writer(file);
  writer.Text("x [mm],y [mm],u [m/s],v [m/s],status\n");
  WriteLines(writer, field, ",");
}

namespace {

constexpr ExportKind kKinds[] = {
    {"netcdf", "netCDF", ".nc", WriteNetCdf, ".nc"},
    {"vtk", "VTK (ParaView)", ".vti", WriteVtk, ".pvd"},
    {"tecplot", "Tecplot", ".tec", WriteTecplot, ".tec"},
    {"matlab", "MATLAB (PIVlab)", ".mat", WriteMatlab, ""},
    {"csv", "CSV", ".csv", WriteCsv, ""},
};

}  // namespace

std::span<const ExportKind> ExportKinds() {
  return kKinds;
}

const ExportKind* FindExportKind(std::string_view name) {
  const auto found = std::ranges::find(kKinds, name, &ExportKind::name);
  return found == std::end(kKinds) ? nullptr : &*found;
}

SeriesPlace PlaceInSeries(std::size_t number, double step) {
  const auto before = static_cast<double>(number - 1);
  return {number, step == 0 ? before : before * step, step != 0, true};
}

}  // namespace quiverion::exchange
