#include <cmath>

#include "exchange/grid_points.h"
#include "exchange/write_support.h"
#include "exchange/writers.h"
#include "messages/failure.h"
#include "platform/numeric/multi_target.h"

namespace quiverion::exchange {
namespace {

// Where a regular axis begins, and its step.
struct Axis {
  double origin = 0.0, spacing = 1.0;
};

template <class At>
Axis AxisOf(std::size_t count, At at, const char* name) {
  if (count < 2) return {at(0), 1.0};
  const Axis axis{at(0), (at(count - 1) - at(0)) / static_cast<double>(count - 1)};
  const double most = kLargestDeviation * std::fabs(axis.spacing);
  for (std::size_t k = 0; k < count; ++k) {
    const double expected = axis.origin + static_cast<double>(k) * axis.spacing;
    if (axis.spacing > 0 && std::fabs(at(k) - expected) <= most) continue;
    throw FormatError(std::string("Das Gitter ist in ") + name + " nicht gleichmäßig, VTK-Bilddaten sind es immer.");
  }
  return axis;
}

// An array of the appended data, and the place of the next one.
std::string DataArray(std::string_view type, std::string_view name, std::string_view more, std::uint64_t size,
                      std::uint64_t& offset) {
  std::string element = "<DataArray type=\"" + std::string(type) + "\" Name=\"" + std::string(name) + "\" " +
                        std::string(more) + " format=\"appended\" offset=\"" + std::to_string(offset) + "\"/>\n";
  offset += 8 + size;
  return element;
}

std::string HeadText(const AscendingField& field, const SeriesPlace& place) {
  const std::size_t columns = field.Columns(), rows = field.Rows();
  const Axis x = AxisOf(
      columns, [&](std::size_t i) { return field.X(i); }, "x");
  const Axis y = AxisOf(
      rows, [&](std::size_t j) { return field.Y(j); }, "y");
  const std::string extent = "0 " + std::to_string(columns - 1) + " 0 " + std::to_string(rows - 1) + " 0 0";
  std::uint64_t offset = 0;
  std::string text =
      "<?xml version=\"1.0\"?>\n"
      "<VTKFile type=\"ImageData\" version=\"1.0\" byte_order=\"LittleEndian\" header_type=\"UInt64\">\n"
      "<ImageData WholeExtent=\"" +
      extent + "\" Origin=\"" + ShortestText(x.origin) + " " + ShortestText(y.origin) + " 0\" Spacing=\"" +
      ShortestText(x.spacing) + " " + ShortestText(y.spacing) + " 1\">\n<FieldData>\n";
  if (place.hasTime) {
    text += "<DataArray type=\"Float64\" Name=\"TimeValue\" NumberOfTuples=\"1\" format=\"ascii\">" +
            ShortestText(place.time) + "</DataArray>\n";
  }
  const auto tuples = [](std::size_t count) { return "NumberOfTuples=\"" + std::to_string(count) + "\" Units=\"mm\""; };
  text += DataArray("Float64", "x", tuples(columns), 8 * columns, offset);
  text += DataArray("Float64", "y", tuples(rows), 8 * rows, offset);
  text += "</FieldData>\n<Piece Extent=\"" + extent + "\">\n<PointData Vectors=\"velocity\" Scalars=\"status\">\n";
  text += DataArray("Float64", "velocity", "NumberOfComponents=\"3\" Units=\"m/s\"", 24 * columns * rows, offset);
  text += DataArray("Int32", "status", "NumberOfComponents=\"1\"", 4 * columns * rows, offset);
  return text + "</PointData>\n</Piece>\n</ImageData>\n<AppendedData encoding=\"raw\">\n_";
}

template <class Value>
void WriteValue(BlockWriter& writer, Value value) {
  std::memcpy(writer.Room(), &value, sizeof value);
  writer.Advance(sizeof value);
}

// Three components of each vector.
QUIVERION_MULTI_TARGET void Interleave(const double* u, const double* v, std::size_t count, char* target) {
  for (std::size_t k = 0; k < count; ++k) {
    const double w = 0.0;
    std::memcpy(target + 24 * k, u + k, 8);
    std::memcpy(target + 24 * k + 8, v + k, 8);
    std::memcpy(target + 24 * k + 16, &w, 8);
  }
}

void WriteVectors(BlockWriter& writer, const AscendingField& field) {
  constexpr std::size_t kPart = 2048;
  const std::size_t columns = field.Columns();
  WriteValue(writer, std::uint64_t{24} * columns * field.Rows());
  for (std::size_t j = 0; j < field.Rows(); ++j) {
    const double *u = field.U(j), *v = field.V(j);
    if (j + 1 < field.Rows()) {
      FetchAhead(field.U(j + 1), columns * sizeof(double));
      FetchAhead(field.V(j + 1), columns * sizeof(double));
    }
    if (field.ColumnsTurn()) {
      for (std::size_t i = columns; i-- > 0;) Interleave(u + i, v + i, 1, writer.Room()), writer.Advance(24);
      continue;
    }
    for (std::size_t done = 0; done < columns; done += kPart) {
      const std::size_t part = std::min(columns - done, kPart);
      Interleave(u + done, v + done, part, writer.Room());
      writer.Advance(24 * part);
    }
  }
}

void WriteStatuses(BlockWriter& writer, const AscendingField& field) {
  const std::size_t columns = field.Columns();
  WriteValue(writer, std::uint64_t{4} * columns * field.Rows());
  for (std::size_t j = 0; j < field.Rows(); ++j) {
    const std::int32_t* const status = field.Status(j);
    if (j + 1 < field.Rows()) FetchAhead(field.Status(j + 1), columns * sizeof(std::int32_t));
    if (field.ColumnsTurn()) {
      for (std::size_t i = columns; i-- > 0;) WriteValue(writer, status[i]);
    } else {
      writer.Text({reinterpret_cast<const char*>(status), 4 * columns});
    }
  }
}

}  // namespace

void WriteVtk(ResultFile& file, const VectorField& vectors, const SeriesPlace& place) {
  const AscendingField field(vectors);
  const std::string head = HeadText(field, place);
  BlockWriter writer(file);
  writer.Text(head);
  WriteValue(writer, std::uint64_t{8} * field.Columns());
  for (std::size_t i = 0; i < field.Columns(); ++i) WriteValue(writer, field.X(i));
  WriteValue(writer, std::uint64_t{8} * field.Rows());
  for (std::size_t j = 0; j < field.Rows(); ++j) WriteValue(writer, field.Y(j));
  WriteVectors(writer, field);
  WriteStatuses(writer, field);
  writer.Text("\n</AppendedData>\n</VTKFile>\n");
  writer.Finish();
}

namespace {

// A file name as the value of an attribute.
std::string Escaped(const std::string& name) {
  std::string text;
  for (const char c : name) {
    text += c == '&' ? "&amp;" : c == '<' ? "&lt;" : c == '"' ? "&quot;" : c == '\\' ? "/" : std::string(1, c);
  }
  return text;
}

}  // namespace

void WriteParaViewIndex(ResultFile& file, std::span<const std::string> names, double step) {
  BlockWriter writer(file);
  writer.Text(
      "<?xml version=\"1.0\"?>\n<VTKFile type=\"Collection\" version=\"0.1\" byte_order=\"LittleEndian\">\n"
      "<Collection>\n");
  for (std::size_t k = 0; k < names.size(); ++k) {
    writer.Text("<DataSet timestep=\"" + ShortestText(PlaceInSeries(k + 1, step).time) + "\" part=\"0\" file=\"" +
                Escaped(names[k]) + "\"/>\n");
  }
  writer.Text("</Collection>\n</VTKFile>\n");
  writer.Finish();
}

}  // namespace quiverion::exchange
