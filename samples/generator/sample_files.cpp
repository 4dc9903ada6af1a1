#include "sample_files.h"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <limits>
#include <stdexcept>
#include <utility>

namespace quiverion::samples {
namespace {

/// Little-endian bytes, independent of the byte order of the machine.
class ByteWriter {
 public:
  void Int16(std::int16_t value) { Append(static_cast<std::uint16_t>(value), 2); }
  void Int32(std::int32_t value) { Append(static_cast<std::uint32_t>(value), 4); }
  void Float(float value) { Append(std::bit_cast<std::uint32_t>(value), 4); }
  void Double(double value) { Append(std::bit_cast<std::uint64_t>(value), 8); }
  void Flag(bool value) { Int16(value ? std::int16_t{-1} : std::int16_t{0}); }
  void Raw(std::string_view bytes) { bytes_ += bytes; }
  void Zeros(std::size_t count) { bytes_.append(count, '\0'); }

  /// Length and characters.
  void CountedText(std::string_view utf8) {
    const std::string text = Windows1252Bytes(utf8);
    Int32(static_cast<std::int32_t>(text.size()));
    bytes_ += text;
  }

  /// Exactly `size` bytes, truncated or padded with zeros.
  void FixedText(std::string_view utf8, std::size_t size) {
    std::string text = Windows1252Bytes(utf8);
    text.resize(size, '\0');
    bytes_ += text;
  }

  std::string Take() { return std::move(bytes_); }

 private:
  void Append(std::uint64_t bits, int count) {
    for (int k = 0; k < count; ++k) bytes_ += static_cast<char>(bits >> (8 * k) & 0xFF);
  }

  std::string bytes_;
};

// Characters of the bytes 80 to 9F. The five bytes without a character represent U+0081 and so on.
constexpr std::array<char32_t, 32> kUpperControlZone = {0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                                        0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
                                                        0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                                        0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

// Removes the first character of a well-formed UTF-8 text.
char32_t TakeCodePoint(std::string_view& text) {
  const auto lead = static_cast<unsigned char>(text.front());
  const std::size_t size = lead < 0x80 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
  if ((lead >= 0x80 && lead < 0xC0) || text.size() < size) throw std::invalid_argument("no UTF-8 text");
  char32_t code = size == 1 ? lead : lead & (0xFFu >> (size + 1));
  for (std::size_t k = 1; k < size; ++k) {
    const auto next = static_cast<unsigned char>(text[k]);
    if ((next & 0xC0u) != 0x80u) throw std::invalid_argument("no UTF-8 text");
    code = code << 6 | (next & 0x3Fu);
  }
  text.remove_prefix(size);
  return code;
}

unsigned ByteOfCodePoint(char32_t code) {
  if (code < 0x80 || (code >= 0xA0 && code <= 0xFF)) return static_cast<unsigned>(code);
  const auto found = std::find(kUpperControlZone.begin(), kUpperControlZone.end(), code);
  if (found == kUpperControlZone.end()) throw std::invalid_argument("character not in Windows-1252");
  return 0x80u + static_cast<unsigned>(found - kUpperControlZone.begin());
}

void WriteVasHead(const SampleField& field, ByteWriter& out) {
  out.Raw("Quiverion");
  out.Int16(1);
  for (const std::string& line : field.headerLines) out.CountedText(line);
  for (const int value :
       {field.imageWidth, field.imageHeight, field.windowWidth, field.windowHeight, field.gridStep, field.gridStep,
        field.firstPixelX, field.firstPixelY, field.pixelScale, field.pulseDelay, field.columns, field.rows}) {
    out.Int32(value);
  }
  out.Int32(ValidVectorCount(field));
}

void WriteVasGrid(const SampleField& field, ByteWriter& out) {
  for (int column = 1; column <= field.columns; ++column) out.Double(PositionX(field, column));
  for (int row = 1; row <= field.rows; ++row) out.Double(PositionY(field, row));
  for (const double value : field.u) out.Double(value);
  for (const double value : field.v) out.Double(value);
  for (const std::int32_t value : field.status) out.Int32(value);
}

void WriteVasTransformations(const SampleField& field, ByteWriter& out) {
  out.Int32(0);  // reserved
  out.Double(field.offsetX);
  out.Double(field.offsetY);
  out.Flag(field.galileiPointSet);
  out.Double(field.galileiPointX);
  out.Double(field.galileiPointY);
  out.Double(field.galileiVelX);
  out.Double(field.galileiVelY);
  out.Int32(static_cast<std::int32_t>(field.streamlines.size()));
  for (const std::array<double, 4>& streamline : field.streamlines) {
    for (const double value : streamline) out.Double(value);
  }
  out.Int32(field.streamlineSetting);
}

constexpr std::int32_t Rgb(std::int32_t red, std::int32_t green, std::int32_t blue) {
  return red + 256 * green + 65536 * blue;
}

void WriteVasView(const SampleField& field, ByteWriter& out) {
  // The default colours of the viewer.
  constexpr std::array<std::int32_t, 9> kColours = {Rgb(0, 0, 255), Rgb(255, 0, 0),     Rgb(0, 200, 0),
                                                    Rgb(0, 0, 0),   Rgb(0, 150, 0),     Rgb(255, 255, 255),
                                                    Rgb(255, 0, 0), Rgb(255, 255, 255), Rgb(0, 255, 0)};
  out.Double(field.scaleFactor);
  for (const std::int32_t colour : kColours) out.Int32(colour);
  out.Zeros(7 * 4);  // reserved
  out.Double(field.paletteMin);
  out.Double(field.paletteSetting);
  out.Double(field.paletteMax);
  out.Int32((field.showHeader ? 1 : 0) + (field.showTable ? 2 : 0) + (field.showVectorField ? 4 : 0));
  for (const double value : field.viewerSettings) out.Double(value);
  out.Flag(field.showCoordSystem);
  out.Flag(field.aspectRatio1to1);
  out.Int32(field.background);
  out.CountedText(field.commentLines[0] + "\r\n" + field.commentLines[1] + "\r\n");
  out.Int32(-1);
}

// m/s per pixel of displacement: 1 cm / pixelScale in pulseDelay µs.
double VelocityPerPixel(const SampleField& field) {
  return 10000.0 / field.pixelScale / field.pulseDelay;
}

std::string Decimal(double value, int decimals, std::chars_format format) {
  std::array<char, 400> buffer{};  // a double has at most 309 digits before the point
  const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, format, decimals);
  return {buffer.data(), result.ptr};
}

std::string DatField(std::string_view label, std::string_view value) {
  std::string text = std::string(label) + ": " + std::string(value);
  if (text.find_first_of("\"\r\n") != std::string::npos) {
    throw std::invalid_argument("a DAT header text must not hold a double quote or a line end");
  }
  if (text.find(',') != std::string::npos) text = '"' + text + '"';
  return Windows1252Bytes(text) + "\r\n";
}

std::string DatHeader(const SampleField& field) {
  constexpr std::array<std::string_view, 7> kLabels = {"Date and time", "Bilddatei",   "Projekt",  "Bearbeiter",
                                                       "Strömung",      "Lichtquelle", "Kommentar"};
  const auto size = [](int x, int y) { return std::to_string(x) + "x" + std::to_string(y); };
  std::string text;
  for (std::size_t k = 0; k < kLabels.size(); ++k) text += DatField(kLabels[k], field.headerLines[k]);
  text += DatField("Bildgröße [px]", size(field.imageWidth, field.imageHeight));
  text += DatField("Messfenster [px]", size(field.windowWidth, field.windowHeight));
  text += DatField("Gitterabstand [px]", size(field.gridStep, field.gridStep));
  text += DatField("Abbildungsmaßstab [px/cm]", std::to_string(field.pixelScale));
  text += DatField("Pulsabstand [µs]", std::to_string(field.pulseDelay));
  text += DatField("Gültige Vektoren", std::to_string(ValidVectorCount(field)));
  text += DatField("Auswertung", "Kreuzkorrelation mit Gauß-Fit");
  text += DatField("Spalten", "9");
  text += "x[px] y[px] dx[px] dy[px] |d|[px] SNR u[m/s] v[m/s] |v|[m/s]\r\n";
  return text;
}

// One data line, or a part of it.
class DatLine {
 public:
  explicit DatLine(const DatShape& shape) : shape_(shape) {}

  void Position(int pixel) { Number(pixel, shape_.positionDecimals); }
  void Value(double value, int decimals) { Number(value, shape_.decimals < 0 ? decimals : shape_.decimals); }

  std::string Take() { return std::move(text_) + std::string(shape_.lineEnd); }

 private:
  void Number(double value, int decimals) {
    const std::string digits = shape_.exponents ? Decimal(value, shape_.decimals, std::chars_format::scientific)
                                                : Decimal(value, decimals, std::chars_format::fixed);
    const auto width = static_cast<std::size_t>(shape_.width);
    if (!text_.empty()) text_ += ' ';
    if (digits.size() < width) text_.append(width - digits.size(), ' ');
    text_ += digits;
  }

  const DatShape& shape_;
  std::string text_;
};

std::string DatLineOf(const SampleField& field, const DatShape& shape, int column, int row) {
  const std::size_t point = PointIndex(field, column, row);
  const double u = field.u[point];
  const double v = field.v[point];
  const double speed = std::sqrt(u * u + v * v);
  const double scale = VelocityPerPixel(field);
  const double signalToNoise = 2.0 + static_cast<double>(point % 61) / 10.0;  // some
  const std::array<std::pair<double, int>, 7> values = {
      {{u / scale, 3}, {v / scale, 3}, {speed / scale, 3}, {signalToNoise, 2}, {u, 6}, {v, 6}, {speed, 6}}};
  DatLine line(shape);
  line.Position(field.firstPixelX + (column - 1) * field.gridStep);
  line.Position(field.firstPixelY - (row - 1) * field.gridStep);
  for (int k = 3; k <= shape.columns; ++k) {
    const auto& [value, decimals] = values[static_cast<std::size_t>(k - 3) % values.size()];
    line.Value(value, decimals);
  }
  return line.Take();
}

// The scales of a VEC header. They are stored in single precision, and a reader computes with the stored
// values.
struct VecScales {
  float x = 0;  // mm per pixel
  float xOffset = 0;
  float y = 0;  // negative: row 1 has the largest y
  float yOffset = 0;
  float velocity = 0;  // m/s per pixel
};

VecScales MakeVecScales(const SampleField& field) {
  const double perPixel = 10.0 / field.pixelScale;
  const double halfStep = 0.5 * perPixel * field.gridStep;
  VecScales scales;
  scales.x = static_cast<float>(perPixel);
  scales.y = static_cast<float>(-perPixel);
  // The offset is the edge of the first cell; the vector is in its middle.
  scales.xOffset = static_cast<float>(PositionX(field, 1) - halfStep);
  scales.yOffset = static_cast<float>(PositionY(field, 1) + halfStep);
  scales.velocity = static_cast<float>(VelocityPerPixel(field));
  return scales;
}

void WriteVecScale(ByteWriter& out, float factor, float offset, std::string_view unit, std::string_view name) {
  out.Float(factor);
  out.Float(offset);
  out.FixedText(unit, 11);
  out.FixedText(name, 11);
}

void WriteVecHeader(const SampleField& field, int subType, int frames, ByteWriter& out) {
  const VecScales scales = MakeVecScales(field);
  out.Int16(20);  // floating-point data
  out.Zeros(4);
  out.Int32(field.rows * field.columns);  // not used by readers, like the two after the sub type
  out.Int16(static_cast<std::int16_t>(frames * field.rows));
  out.Int16(static_cast<std::int16_t>(field.columns));
  out.Int16(static_cast<std::int16_t>(subType));
  out.Int16(static_cast<std::int16_t>(field.columns));
  out.Int16(1);
  out.Int16(static_cast<std::int16_t>(field.gridStep));
  out.Zeros(12);
  out.FixedText(field.date, 9);
  out.FixedText(field.time, 9);
  out.Int16(1);
  WriteVecScale(out, scales.x, scales.xOffset, "mm", "x");
  out.Int16(1);
  WriteVecScale(out, scales.y, scales.yOffset, "mm", "y");
  out.Int16(1);
  WriteVecScale(out, scales.velocity, 0.0F, "m/s", "Velocity");
  out.FixedText(field.commentLines[0], 40);
  out.FixedText(field.commentLines[1], 40);
  out.Zeros(28);
}

// Displacement in pixels, divided as the reader multiplies.
float Displacement(const SampleField& field, const VecScales& scales, int component, std::size_t point) {
  if (field.status[point] <= 0) return 0.0F;
  if (component == 0) return static_cast<float>(field.u[point] / scales.velocity);
  const double stepX = static_cast<double>(scales.x) * field.gridStep;
  const double stepY = static_cast<double>(scales.y) * field.gridStep;
  return static_cast<float>(field.v[point] / (stepY * scales.velocity / stepX));
}

// Frame numbers count from 1.
float VecValue(const SampleField& field, const VecScales& scales, int subType, int frame, int column, int row) {
  const std::size_t point = PointIndex(field, column, row);
  if (subType == 2) return Displacement(field, scales, frame - 1, point);
  const std::int32_t status = VecStatus(field, column, row);
  if (frame == 1) return static_cast<float>(status);
  if (frame == 10) return 1.25F + 0.25F * static_cast<float>(point % 16);  // peak ratio
  const int peak = frame / 2;
  const int component = frame % 2;
  if (peak == status) return Displacement(field, scales, component, point);
  const float other = static_cast<float>(peak) + 1.5F;  // a peak that was found but not selected
  return component == 0 ? other : -other;
}

}  // namespace

std::string Windows1252Bytes(std::string_view utf8) {
  std::string bytes;
  while (!utf8.empty()) bytes += static_cast<char>(ByteOfCodePoint(TakeCodePoint(utf8)));
  return bytes;
}

std::string VasBytes(const SampleField& field) {
  ByteWriter out;
  WriteVasHead(field, out);
  WriteVasGrid(field, out);
  WriteVasTransformations(field, out);
  WriteVasView(field, out);
  return out.Take();
}

std::string DatBytes(const SampleField& field, const DatShape& shape) {
  std::string text = DatHeader(field);
  for (int row = 1; row <= field.rows; ++row) {
    for (int column = 1; column <= field.columns; ++column) {
      if (field.status[PointIndex(field, column, row)] > 0) text += DatLineOf(field, shape, column, row);
    }
  }
  return text;
}

std::int32_t VecStatus(const SampleField& field, int column, int row) {
  constexpr std::array<std::int32_t, 8> kPeaks = {1, 1, 2, 1, 1, 3, 1, 4};
  if (field.status[PointIndex(field, column, row)] <= 0) return 0;
  return kPeaks[static_cast<std::size_t>(column + 3 * row) % kPeaks.size()];
}

std::string VecBytes(const SampleField& field, int subType) {
  if (subType < 1 || subType > 3) throw std::invalid_argument("the sub type must be 1, 2 or 3");
  const int frames = subType == 1 ? 9 : subType == 2 ? 2 : 10;
  constexpr int kLimit = std::numeric_limits<std::int16_t>::max();
  if (field.columns > kLimit || field.rows > kLimit / frames) {
    throw std::invalid_argument("the grid is too large for a VEC file");
  }
  ByteWriter out;
  WriteVecHeader(field, subType, frames, out);
  const VecScales scales = MakeVecScales(field);
  for (int frame = 1; frame <= frames; ++frame) {
    for (int row = 1; row <= field.rows; ++row) {
      for (int column = 1; column <= field.columns; ++column) {
        out.Float(VecValue(field, scales, subType, frame, column, row));
      }
    }
  }
  return out.Take();
}

std::string CollectionBytes(const std::vector<SampleField>& fields, const std::vector<std::string>& paths) {
  const SampleField& first = fields.front();
  ByteWriter out;
  out.Raw("QuiverionStatisticsCollection");
  out.Int16(1);
  out.Int32(static_cast<std::int32_t>(fields.size()));
  out.Int32(first.columns);
  out.Int32(first.rows);
  for (const double position : {PositionX(first, 1), PositionX(first, first.columns)}) out.Double(position);
  for (const double position : {PositionY(first, 1), PositionY(first, first.rows)}) out.Double(position);
  for (std::size_t k = 0; k < fields.size(); ++k) {
    std::string path = Windows1252Bytes(paths[k]);
    path.append(128 - path.size(), ' ');
    out.Raw(path);
    for (const double value : fields[k].u) out.Double(value);
    for (const double value : fields[k].v) out.Double(value);
    std::string bits(fields[k].status.size() / 8 + 1, '\0');
    for (std::size_t p = 0; p < fields[k].status.size(); ++p) {
      if (fields[k].status[p] > 0) bits[p / 8] = static_cast<char>(bits[p / 8] + (1 << p % 8));
    }
    out.Raw(bits);
  }
  return out.Take();
}

}  // namespace quiverion::samples
