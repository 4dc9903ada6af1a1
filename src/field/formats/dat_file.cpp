#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include "field/formats/dat_fields.h"
#include "field/formats/dat_line.h"
#include "field/formats/field_readers.h"
#include "messages/failure.h"
#include "platform/numeric/multi_target.h"
#include "platform/text/byte_words.h"
#include "platform/text/numbers.h"
#include "platform/text/text.h"

namespace quiverion {
namespace {

class HeaderReader {
 public:
  HeaderReader(DatFields& fields, LoadTarget target) : fields_(fields), target_(target) {}

  // The text after the first ":" of the next field, without blanks around it.
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

// Distance of the first column (row) from the image's edge: the smallest multiple of `step`, at least one, that leaves
// room for half a window on this side. `limit` is the greatest distance that leaves room on the other side; it counts
// only if the distance had to grow. The format defines this as a loop over steps, in which a negative step never
// arrives and leaves the integer range.
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

// The grid index of a position along one axis.
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
  const auto point =
      static_cast<std::size_t>(j - 1) * static_cast<std::size_t>(field.columnCount) + static_cast<std::size_t>(i - 1);
  field.velX.Values()[point] = u;
  field.velY.Values()[point] = v;
  field.status.Values()[point] = 1;
}

// The same few positions come again in every row (and every column), mostly in the same order: remembers the grid index
// of their text, with the separator in front of it.
class IndexMemo {
 public:
  // `step`: 1 where the next position is mostly the one that followed last time, 0 where it is the same again.
  explicit IndexMemo(std::ptrdiff_t step) : usual_(step) {}

  // The index of the position that ends at `end`. `text()` is its text, which must stay where it is; `find(value)`
  // tells the index of a position that is not known yet.
  template <class Text, class Find>
  QUIVERION_ALWAYS_INLINE std::int32_t Index(const char* end, Text text, Find find) {
    const Entry* entry = last_ + usual_;
    if (!entry->EndsAt(end)) {
      entry = last_ + (1 - usual_);
      if (!entry->EndsAt(end)) entry = Search(text(), find);
    }
    last_ = entry;
    return entry->index;
  }

 private:
  struct Entry {
    Entry() = default;  // no text is like it
    Entry(std::string_view text, std::int32_t found)
        : tail(words::Load(text.data() + text.size() - 8)),
          end(text.data() + text.size()),
          length(text.size() + 1),
          unused(length < 8 ? 64 - 8 * length : 0),
          index(found) {}

    bool EndsAt(const char* other) const {
      if ((words::Load(other - 8) ^ tail) >> unused != 0) return false;
      return unused != 0 || BeginsLike(other);
    }
    // The same in front of the last eight characters. They overlap at the front.
    bool BeginsLike(const char* other) const {
      for (std::size_t k = length; k > 8; k -= std::min<std::size_t>(k - 8, 8)) {
        if (words::Load(other - k) != words::Load(end - k)) return false;
      }
      return true;
    }

    words::Word tail = 0;
    const char* end = nullptr;
    std::size_t length = 0;  // with the separator
    std::size_t unused = 0;  // bits of the tail
    std::int32_t index = 0;
  };

  // A hash table with linear probing: places in `entries_`. A full one begins anew.
  template <class Find>
  QUIVERION_NO_INLINE const Entry* Search(std::string_view text, Find find) {
    const Entry* const first = &entries_[1];
    for (const Entry* guess : {last_ + 2, first}) {  // behind a gap, in the next row
      if (guess->EndsAt(text.data() + text.size())) return guess;
    }
    if (count_ == kMost) *this = IndexMemo(usual_);
    std::size_t slot = std::hash<std::string_view>()(text) % kSlots;
    while (slots_[slot] != 0 && !entries_[slots_[slot]].EndsAt(text.data() + text.size())) slot = (slot + 1) % kSlots;
    if (slots_[slot] == 0) {
      slots_[slot] = ++count_;
      entries_[count_] = Entry(text, find(ReadNumberPrefix(text).value));
    }
    return &entries_[slots_[slot]];
  }

  static constexpr std::size_t kMost = 1024;
  static constexpr std::size_t kSlots = 2 * kMost;
  std::vector<Entry> entries_ = std::vector<Entry>(kMost + 3);  // the first one and the last two stay empty
  std::vector<std::uint16_t> slots_ = std::vector<std::uint16_t>(kSlots);
  std::uint16_t count_ = 0;
  const Entry* last_ = entries_.data();
  std::ptrdiff_t usual_;
};

class VectorReader {
 public:
  explicit VectorReader(VectorField& field) : field_(field) {}

  void Read(DatFields& fields) {
    while (!fields.AtEnd()) {
      const std::size_t taken = lines_.Take(fields.Rest());
      for (int k = 0; k < lines_.Count(); ++k) StoreTakenLine(k);
      fields.Take(taken);
      if (taken == 0) StoreLine(fields.Next());
    }
  }

 private:
  QUIVERION_ALWAYS_INLINE void StoreTakenLine(int k) {
    const std::int32_t i = columns_.Index(
        lines_.XEnd(k), [&] { return lines_.X(k); }, [this](double x) { return ColumnOf(field_, x); });
    const std::int32_t j = rows_.Index(
        lines_.YEnd(k), [&] { return lines_.Y(k); }, [this](double y) { return RowOf(field_, y); });
    Store(field_, i, j, lines_.U(k), lines_.V(k));
  }

  void StoreLine(std::string_view line) {
    const DatVector vector = ParseDatLine(line);
    Store(field_, ColumnOf(field_, vector.x), RowOf(field_, vector.y), vector.u, vector.v);
  }

  VectorField& field_;
  IndexMemo columns_{1};
  IndexMemo rows_{0};
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
