#include <algorithm>
#include <array>
#include <bit>

#include "exchange/write_support.h"
#include "exchange/writers.h"
#include "messages/failure.h"
#include "platform/numeric/multi_target.h"

namespace quiverion::exchange {
namespace {

enum Type : std::uint32_t { kByte = 1, kText = 2, kInteger = 4, kDouble = 6 };
enum List : std::uint32_t { kDimensions = 10, kVariables = 11, kAttributes = 12 };
enum Dimension : std::uint32_t { kT = 0, kY = 1, kX = 2 };

constexpr std::uint64_t Padded(std::uint64_t size) {
  return (size + 3) / 4 * 4;
}

// The items of the header, big-endian.
class Header {
 public:
  Header& Word(std::uint64_t value) { return Bytes(value, 4); }
  Header& Long(std::uint64_t value) { return Bytes(value, 8); }
  Header& Name(std::string_view text) {
    Word(text.size());
    return Raw(text);
  }
  Header& Attribute(std::string_view name, std::string_view text) {
    Name(name).Word(kText);
    return Name(text);
  }
  Header& Attribute(std::string_view name, double value) {
    return Name(name).Word(kDouble).Word(1).Long(std::bit_cast<std::uint64_t>(value));
  }
  Header& Flags(std::string_view name, std::span<const std::int32_t> values, Type type) {
    Name(name).Word(type).Word(values.size());
    for (const std::int32_t value : values) Bytes(static_cast<std::uint32_t>(value), type == kByte ? 1 : 4);
    return Pad();
  }
  Header& Raw(std::string_view text) {
    bytes_ += text;
    return Pad();
  }
  const std::string& Get() const { return bytes_; }

 private:
  Header& Bytes(std::uint64_t value, int count) {
    for (int k = count - 1; k >= 0; --k) bytes_ += static_cast<char>(value >> (8 * k) & 0xFF);
    return *this;
  }
  Header& Pad() {
    bytes_.resize(Padded(bytes_.size()), '\0');
    return *this;
  }

  std::string bytes_;
};

struct Sizes {
  std::uint64_t columns, rows;
  std::uint64_t Points() const { return columns * rows; }
};

// The variables of the header one after the other. Their data follow each other from `begin` on.
class Variables {
 public:
  Variables(Header& header, std::uint64_t begin) : header_(header), begin_(begin) {}

  // `attributes` of them follow, then End.
  Header& Begin(std::string_view name, std::initializer_list<Dimension> dimensions, std::uint64_t attributes) {
    header_.Name(name).Word(dimensions.size());
    for (const Dimension dimension : dimensions) header_.Word(dimension);
    return header_.Word(kAttributes).Word(attributes);
  }
  void End(Type type, std::uint64_t size) {
    header_.Word(type).Word(Padded(size)).Long(begin_);
    begin_ += Padded(size);
  }

  void Axis(std::string_view name, Dimension dimension, std::uint64_t count) {
    // With an attribute "axis", VTK takes it for a longitude or a latitude.
    Begin(name, {dimension}, 2).Attribute("units", "mm").Attribute("long_name", name);
    End(kDouble, 8 * count);
  }
  void Velocity(const std::string& name, std::string_view longName, std::uint64_t points) {
    Begin(name, {kT, kY, kX}, 3).Attribute("units", "m/s").Attribute("standard_name", name + "_velocity");
    header_.Attribute("long_name", longName);
    End(kDouble, 8 * points);
  }

 private:
  Header& header_;
  std::uint64_t begin_;
};

// Everything up to the data. The offsets of the variables are part of it, so it is made twice.
std::string HeaderText(const Sizes& sizes, std::size_t count, const SeriesPlace& place, const VectorField& first,
                       const std::string& sources, std::uint64_t dataBegin) {
  Header header;
  header.Raw(std::string_view("CDF\x02", 4)).Word(count);
  header.Word(kDimensions).Word(3);
  header.Name("t").Word(0).Name("y").Word(sizes.rows).Name("x").Word(sizes.columns);
  header.Word(kAttributes).Word(8);
  header.Attribute("Conventions", "CF-1.10")
      .Attribute("source", "QuiverionSeries " QUIVERION_VERSION)
      .Attribute("history", "QuiverionSeries " QUIVERION_VERSION ": export")
      .Attribute("comment", first.infoText)
      .Attribute("files", sources)
      .Attribute("delta_t", first.pulseDelay)
      .Attribute("delta_t_units", "us")
      .Attribute("pivpy_schema_version", "1");
  header.Word(kVariables).Word(7);
  Variables variables(header, dataBegin);
  variables.Axis("x", kX, sizes.columns);
  variables.Axis("y", kY, sizes.rows);
  variables.Begin("t", {kT}, 4).Attribute("units", place.isSeconds ? "s" : "frame").Attribute("long_name", "time");
  header.Attribute("standard_name", "time").Attribute("axis", "T");
  variables.End(kDouble, 8);
  variables.Velocity("u", "velocity in x", sizes.Points());
  variables.Velocity("v", "velocity in y", sizes.Points());
  variables.Begin("chc", {kT, kY, kX}, 4).Attribute("standard_name", "validity_flag");
  header.Attribute("long_name", "1 where the vector is valid");
  header.Flags("flag_values", std::array{0, 1}, kByte).Attribute("flag_meanings", "invalid valid");
  variables.End(kByte, sizes.Points());
  variables.Begin("status", {kT, kY, kX}, 3).Attribute("long_name", "status of the vector, valid above 0");
  header.Flags("flag_values", std::array{-1, 0, 1, 2, 3, 4}, kInteger);
  header.Attribute("flag_meanings", "masked rejected valid valid_second filled valid_fourth");
  variables.End(kInteger, 4 * sizes.Points());
  return header.Get();
}

template <class Integer>
Integer Reversed(Integer value) {
  if constexpr (sizeof(Integer) == 8) {
    return __builtin_bswap64(value);
  } else {
    return __builtin_bswap32(value);
  }
}

QUIVERION_MULTI_TARGET void SwapDoubles(const double* values, std::size_t count, char* target) {
  for (std::size_t k = 0; k < count; ++k) {
    const std::uint64_t bits = Reversed(std::bit_cast<std::uint64_t>(values[k]));
    std::memcpy(target + 8 * k, &bits, 8);
  }
}

QUIVERION_MULTI_TARGET void SwapIntegers(const std::int32_t* values, std::size_t count, char* target) {
  for (std::size_t k = 0; k < count; ++k) {
    const std::uint32_t bits = Reversed(std::bit_cast<std::uint32_t>(values[k]));
    std::memcpy(target + 4 * k, &bits, 4);
  }
}

QUIVERION_MULTI_TARGET void Validity(const std::int32_t* values, std::size_t count, char* target) {
  for (std::size_t k = 0; k < count; ++k) target[k] = values[k] > 0 ? 1 : 0;
}

// Rows of values, one after the other; `convert` makes `size` bytes of each.
template <class Value, class Convert>
void WriteRow(BlockWriter& writer, const Value* values, std::size_t count, bool turn, std::size_t size,
              Convert convert) {
  constexpr std::size_t kPart = 8 * 1024;
  Value turned[256];
  for (std::size_t done = 0; done < count;) {
    std::size_t part = std::min(count - done, kPart);
    const Value* from = values + done;
    if (turn) {
      part = std::min(part, std::size(turned));
      std::reverse_copy(values + count - done - part, values + count - done, turned);
      from = turned;
    }
    convert(from, part, writer.Room());
    writer.Advance(part * size);
    done += part;
  }
}

// The rows follow each other against the order of the memory, which the processor does not expect: each is fetched
// while the one before is converted.
template <class Value, class Convert>
void WriteRows(BlockWriter& writer, const AscendingField& field, std::size_t columns,
               const Value* (AscendingField::*row)(std::size_t) const, bool turn, std::size_t size, Convert convert) {
  for (std::size_t j = 0; j < field.Rows(); ++j) {
    if (j + 1 < field.Rows()) FetchAhead((field.*row)(j + 1), columns * sizeof(Value));
    WriteRow(writer, (field.*row)(j), columns, turn, size, convert);
  }
}

void PadTo4(BlockWriter& writer, std::uint64_t size) {
  writer.Text(std::string_view("\0\0\0", Padded(size) - size));
}

void AppendHeader(BlockWriter& writer, const VectorField& first, std::size_t count, const SeriesPlace& place,
                  const std::string& sources) {
  const AscendingField field(first);
  const Sizes sizes{field.Columns(), field.Rows()};
  constexpr std::uint64_t kLargestPiece = 0xFFFFFFFC;
  if (8 * sizes.Points() > kLargestPiece) throw FormatError("Das Feld ist zu groß für eine netCDF-Datei (4 GB).");
  const std::size_t dataBegin = HeaderText(sizes, count, place, first, sources, 0).size();
  writer.Text(HeaderText(sizes, count, place, first, sources, dataBegin));
  std::vector<double> x(sizes.columns), y(sizes.rows);
  for (std::size_t i = 0; i < x.size(); ++i) x[i] = field.X(i);
  for (std::size_t j = 0; j < y.size(); ++j) y[j] = field.Y(j);
  WriteRow(writer, x.data(), x.size(), false, 8, SwapDoubles);
  WriteRow(writer, y.data(), y.size(), false, 8, SwapDoubles);
}

void AppendRecord(BlockWriter& writer, const VectorField& vectors, const SeriesPlace& place) {
  const AscendingField field(vectors);
  const std::size_t columns = field.Columns(), rows = field.Rows();
  const bool turn = field.ColumnsTurn();
  char time[8];
  SwapDoubles(&place.time, 1, time);
  writer.Text({time, sizeof time});
  WriteRows(writer, field, columns, &AscendingField::U, turn, 8, SwapDoubles);
  WriteRows(writer, field, columns, &AscendingField::V, turn, 8, SwapDoubles);
  WriteRows(writer, field, columns, &AscendingField::Status, turn, 1, Validity);
  PadTo4(writer, columns * rows);
  WriteRows(writer, field, columns, &AscendingField::Status, turn, 4, SwapIntegers);
}

}  // namespace

void WriteNetCdfHeader(ResultFile& file, const VectorField& first, std::size_t count, const SeriesPlace& place,
                       const std::string& sources) {
  BlockWriter writer(file);
  AppendHeader(writer, first, count, place, sources);
  writer.Finish();
}

void WriteNetCdfRecord(ResultFile& file, const VectorField& vectors, const SeriesPlace& place) {
  BlockWriter writer(file);
  AppendRecord(writer, vectors, place);
  writer.Finish();
}

void WriteNetCdf(ResultFile& file, const VectorField& field, const SeriesPlace& place) {
  BlockWriter writer(file);
  AppendHeader(writer, field, 1, place, field.fileName);
  AppendRecord(writer, field, place);
  writer.Finish();
}

}  // namespace quiverion::exchange
