#include <algorithm>
#include <array>
#include <bit>
#include <string>
#include <vector>

#include "field/formats/dat_fields.h"
#include "field/formats/dat_line.h"
#include "field/formats/field_readers.h"
#include "messages/failure.h"
#include "platform/numeric/multi_target.h"
#include "platform/text/numbers.h"
#include "platform/text/text.h"

namespace quiverion {
namespace {

class HeaderReader {
 public:
  HeaderReader(DatFields& fields, LoadTarget target) : fields_(fields), target_(target) {}

  // The text behind the first ":" of the next field, without blanks around it.
  std::string_view Value() { return ValueOf(fields_.Next()); }

  std::string_view FirstValue() {
    const std::string_view field = fields_.Next();
    if (!field.starts_with("Date and time: ")) Refuse();
    return ValueOf(field);
  }

  std::int32_t Integer() { return Number(Value()); }

  // "<first>x<second>"
  void Pair(std::int32_t& first, std::int32_t& second) {
    const std::string_view text = Value();
    const std::size_t cross = text.find('x');
    if (cross == std::string_view::npos) Refuse();
    first = Number(text.substr(0, cross));
    second = Number(text.substr(cross + 1));
  }

 private:
  [[noreturn]] void Refuse() const {
    throw FormatError(target_ == LoadTarget::field ? "    Ungültiges Dateiformat: Nicht von Korvo!"
                                                   : "    Ungültiges Dateiformat!");
  }

  std::string_view ValueOf(std::string_view field) const {
    const std::size_t colon = field.find(':');
    if (colon == std::string_view::npos) Refuse();
    return TrimBlanks(field.substr(colon + 1));
  }

  static std::int32_t Number(std::string_view text) { return RoundToInt32(ReadNumberPrefix(TrimBlanks(text)).value); }

  DatFields& fields_;
  LoadTarget target_;
};

void ReadHeader(VectorField& field, DatFields& fields, LoadTarget target) {
  HeaderReader header(fields, target);
  field.headerLines[0] = Utf8FromWindows1252(header.FirstValue());
  for (std::size_t k = 1; k < field.headerLines.size(); ++k) {
    field.headerLines[k] = Utf8FromWindows1252(header.Value());
  }
  header.Pair(field.imageWidth, field.imageHeight);
  header.Pair(field.windowWidth, field.windowHeight);
  header.Pair(field.gridStepX, field.gridStepY);
  field.pixelScale = header.Integer();
  field.pulseDelay = header.Integer();
  field.validVectorCount = header.Integer();
  for (int k = 14; k <= 16; ++k) fields.Next();
}

// Distance of the first column (row) from the image's edge: the smallest multiple of `step`, at least one,
// that leaves room for half a window on this side. `limit` is the greatest distance that leaves room on the
// other side; it only counts where the distance had to grow. Steps are taken one by one in the definition; a
// step below zero never gets there and runs out of the integer range.
std::int64_t FirstDistance(std::int64_t step, std::int64_t half, std::int64_t limit, const char* tooLarge) {
  if (step >= half) return step;
  const std::int64_t grown = step > 0 ? (half + step - 1) / step * step : 2 * step;
  if (grown > limit) throw FormatError(tooLarge);
  if (step < 0) throw SystemError(ErrorNumber::overflow);
  return grown;
}

void PlaceGrid(VectorField& field, std::uint64_t fileSize) {
  if (field.gridStepX == 0 || field.gridStepY == 0) throw SystemError(ErrorNumber::divisionByZero);
  const std::int64_t halfW = field.windowWidth / 2;
  const std::int64_t halfH = field.windowHeight / 2;
  const std::int64_t width = field.imageWidth;
  const std::int64_t height = field.imageHeight;
  field.firstPixelX =
      CheckedInt32(FirstDistance(field.gridStepX, halfW, width - halfW, "    Interrogation Window zu breit!"));
  field.firstPixelY =
      CheckedInt32(height - FirstDistance(field.gridStepY, halfH, height - halfH, "    Interrogation Window zu hoch!"));
  const std::int64_t columns = (width - field.firstPixelX - halfW) / field.gridStepX + 1;
  const std::int64_t rows = (field.firstPixelY - halfH) / field.gridStepY + 1;
  CheckSparseGrid(columns, rows, fileSize);
  CreateArrays(field, CheckedInt32(columns), CheckedInt32(rows));
}

// Where on the grid a position lies, along one axis.
std::int32_t ColumnOf(const VectorField& field, double x) {
  return CheckedInt32(std::int64_t{RoundToInt32(x - field.firstPixelX)} / field.gridStepX + 1);
}

std::int32_t RowOf(const VectorField& field, double y) {
  return CheckedInt32((std::int64_t{field.firstPixelY} - RoundToInt32(y)) / field.gridStepY + 1);
}

QUIVERION_ALWAYS_INLINE void Store(VectorField& field, std::int32_t i, std::int32_t j, double u, double v) {
  if (i < 1 || i > field.columnCount || j < 1 || j > field.rowCount) {
    throw SystemError(ErrorNumber::indexOutOfRange);
  }
  field.velX(i, j) = u;
  field.velY(i, j) = v;
  field.status(i, j) = 1;
}

// The same few positions come again in every row (and every column): remembers the grid index of their text. A hash
// table with linear probing.
class IndexMemo {
 public:
  // `find(value)` tells the index of a position that is not known yet. `text`: as DatLines gives it.
  template <class Find>
  std::int32_t Index(std::uint64_t text, Find find) {
    if (text == last_.text) return last_.index;
    std::size_t slot = text * 0x9E3779B97F4A7C15 >> (64 - kBits);
    while (entries_[slot].text != text && entries_[slot].text != 0) slot = (slot + 1) % kSlots;
    if (entries_[slot].text == 0) Learn(slot, {text, find(ValueOf(text))});
    last_ = entries_[slot];
    return last_.index;
  }

 private:
  struct Entry {
    std::uint64_t text = 0;  // no position has this one
    std::int32_t index = 0;
  };

  // A full table begins anew.
  void Learn(std::size_t slot, Entry entry) {
    if (++used_ > kSlots / 2) {
      std::fill(entries_.begin(), entries_.end(), Entry{});
      used_ = 1;
    }
    entries_[slot] = entry;
  }

  static double ValueOf(std::uint64_t text) {
    const auto characters = std::bit_cast<std::array<char, sizeof text>>(text);
    const std::string_view all(characters.data(), characters.size());
    return ReadNumberPrefix(all.substr(all.find_first_not_of('\0'))).value;
  }

  static constexpr int kBits = 11;
  static constexpr std::size_t kSlots = std::size_t{1} << kBits;
  std::vector<Entry> entries_ = std::vector<Entry>(kSlots);
  std::size_t used_ = 0;
  Entry last_;
};

class VectorReader {
 public:
  explicit VectorReader(VectorField& field) : field_(field) {}

  void Read(DatFields& fields) {
    while (!fields.AtEnd()) {
      if (!TakeUsualLines(fields)) StoreLine(fields.Next());
    }
  }

 private:
  // False where the next line has another shape.
  bool TakeUsualLines(DatFields& fields) {
    const std::string_view text = fields.Rest();
    const std::size_t taken = lines_.Take(text);
    for (int k = 0; k < lines_.Count(); ++k) {
      if (lines_.IsPlain(k)) {
        const std::int32_t i = columns_.Index(lines_.XText(k), [this](double x) { return ColumnOf(field_, x); });
        const std::int32_t j = rows_.Index(lines_.YText(k), [this](double y) { return RowOf(field_, y); });
        Store(field_, i, j, lines_.Vx(k), lines_.Vy(k));
      } else {
        const std::string_view line(lines_.Begin(k), text.data() + taken);
        StoreLine(line.substr(0, line.find_first_of("\r\n")));
      }
    }
    fields.Take(taken);
    return taken > 0;
  }

  void StoreLine(std::string_view line) {
    const DatVector vector = ParseDatLine(line);
    Store(field_, ColumnOf(field_, vector.x), RowOf(field_, vector.y), vector.u, vector.v);
  }

  VectorField& field_;
  IndexMemo columns_;
  IndexMemo rows_;
  DatLines lines_;
};

void SetPositions(VectorField& field) {
  if (field.pixelScale == 0) throw SystemError(ErrorNumber::divisionByZero);
  const double scale = field.pixelScale;
  for (std::int32_t i = 1; i <= field.columnCount; ++i) {
    const std::int64_t pixel = field.firstPixelX + static_cast<std::int64_t>(i - 1) * field.gridStepX;
    field.posX[static_cast<std::size_t>(i - 1)] = static_cast<double>(pixel) / scale * 10;
  }
  for (std::int32_t j = 1; j <= field.rowCount; ++j) {
    const std::int64_t pixel = field.firstPixelY - static_cast<std::int64_t>(j - 1) * field.gridStepY;
    field.posY[static_cast<std::size_t>(j - 1)] = static_cast<double>(pixel) / scale * 10;
  }
}

}  // namespace

void ReadDat(Context& /*context*/, VectorField& field, InputFile& file, LoadTarget target) {
  DatFields fields(file);
  ReadHeader(field, fields, target);
  PlaceGrid(field, file.Size());
  VectorReader(field).Read(fields);
  SetPositions(field);
}

}  // namespace quiverion
