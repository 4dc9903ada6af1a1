#include <algorithm>

#include "exchange/write_support.h"
#include "exchange/writers.h"
#include "messages/failure.h"
#include "platform/text/text.h"

namespace quiverion::exchange {
namespace {

enum ElementType : std::uint32_t { kInt8 = 1, kUInt16 = 4, kInt32 = 5, kUInt32 = 6, kDouble = 9, kMatrix = 14 };
enum ArrayClass : std::uint32_t { kTextClass = 4, kDoubleClass = 6 };

constexpr std::uint64_t Padded(std::uint64_t size) {
  return (size + 7) / 8 * 8;
}

class MatWriter {
 public:
  explicit MatWriter(ResultFile& file) : writer_(file) {
    std::string head = "MATLAB 5.0 MAT-file, QuiverionSeries";
    head.resize(116, ' ');
    head.append(8, '\0');
    writer_.Text(head);
    writer_.Text(std::string_view("\x00\x01IM", 4));
  }

  // A matrix of doubles, column by column.
  template <class At>
  void Matrix(std::string_view name, std::size_t rows, std::size_t columns, At at) {
    Begin(name, kDoubleClass, rows, columns, kDouble, 8);
    for (std::size_t i = 0; i < columns; ++i) {
      for (std::size_t j = 0; j < rows; ++j) Value(static_cast<double>(at(i, j)));
    }
  }

  void Text(std::string_view name, std::string_view utf8) {
    std::u16string units;
    while (!utf8.empty()) units += static_cast<char16_t>(std::min<char32_t>(TakeCodePoint(utf8), 0xFFFD));
    Begin(name, kTextClass, units.empty() ? 0 : 1, units.size(), kUInt16, 2);
    for (const char16_t unit : units) Value(unit);
    Pad(2 * units.size());
  }

  void Finish() { writer_.Finish(); }

 private:
  template <class Number>
  void Value(Number value) {
    std::memcpy(writer_.Room(), &value, sizeof value);
    writer_.Advance(sizeof value);
  }
  void Word(std::uint64_t value) { Value(static_cast<std::uint32_t>(value)); }
  void Pad(std::uint64_t size) { writer_.Text(std::string_view("\0\0\0\0\0\0\0", Padded(size) - size)); }

  // Flags, dimensions and name of an array, and the tag of its numbers.
  void Begin(std::string_view name, ArrayClass arrayClass, std::uint64_t rows, std::uint64_t columns, ElementType type,
             std::uint64_t size) {
    constexpr std::uint64_t kMost = 0x7FFFFFFF;
    const std::uint64_t bytes = size * rows * columns;
    if (bytes > kMost - 1024) throw FormatError("Das Feld ist zu groß für eine MAT-Datei (2 GB je Variable).");
    Word(kMatrix);
    Word(16 + 16 + 8 + Padded(name.size()) + 8 + Padded(bytes));
    Word(kUInt32);
    Word(8);
    Word(arrayClass);
    Word(0);
    Word(kInt32);
    Word(8);
    Word(rows);
    Word(columns);
    Word(kInt8);
    Word(name.size());
    writer_.Text(name);
    Pad(name.size());
    Word(type);
    Word(bytes);
  }

  BlockWriter writer_;
};

// The numbers that PIVlab uses: 0 masked or rejected, 1 valid, 2 interpolated, 3 another peak.
double TypeVectorOf(std::int32_t status) {
  return status <= 0 ? 0 : status == 3 ? 2 : status == 2 ? 3 : 1;
}

}  // namespace

void WriteMatlab(ResultFile& file, const VectorField& field, const SeriesPlace& /*place*/) {
  const std::size_t rows = field.posY.size(), columns = field.posX.size();
  const auto index = [](std::size_t k) { return static_cast<std::int32_t>(k + 1); };
  MatWriter writer(file);
  writer.Matrix("x", rows, columns, [&](std::size_t i, std::size_t) { return field.posX[i]; });
  writer.Matrix("y", rows, columns, [&](std::size_t, std::size_t j) { return field.posY[j]; });
  writer.Matrix("u_filtered", rows, columns,
                [&](std::size_t i, std::size_t j) { return field.velX(index(i), index(j)); });
  writer.Matrix("v_filtered", rows, columns,
                [&](std::size_t i, std::size_t j) { return field.velY(index(i), index(j)); });
  writer.Matrix("typevector_filtered", rows, columns,
                [&](std::size_t i, std::size_t j) { return TypeVectorOf(field.status(index(i), index(j))); });
  writer.Matrix("status", rows, columns,
                [&](std::size_t i, std::size_t j) { return field.status(index(i), index(j)); });
  writer.Text("units", "[mm] respectively [m/s]");
  writer.Text("information", field.infoText);
  writer.Finish();
}

}  // namespace quiverion::exchange
