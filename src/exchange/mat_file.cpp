#include "exchange/mat_file.h"

#include <algorithm>

#include "platform/text/text.h"

namespace quiverion::exchange {
namespace {

constexpr std::size_t kHeaderSize = 128;
enum ElementType { kMatrix = 14, kCompressed = 15 };
enum ArrayClass { kCellClass = 1, kTextClass = 4, kDoubleClass = 6, kLastNumberClass = 15 };

// Bytes of a number; 0 if the type is no number.
std::size_t SizeOf(int type) {
  constexpr std::size_t sizes[] = {0, 1, 1, 2, 2, 4, 4, 4, 0, 8, 0, 0, 8, 8, 0, 0, 1, 2, 4};
  return type >= 0 && type <= 18 ? sizes[type] : 0;
}

template <class Take>
void WithType(int type, Take take) {
  switch (type) {
    case 1:
      return take(std::int8_t{});
    case 2:
    case 16:
      return take(std::uint8_t{});
    case 3:
      return take(std::int16_t{});
    case 4:
    case 17:
      return take(std::uint16_t{});
    case 5:
      return take(std::int32_t{});
    case 6:
    case 18:
      return take(std::uint32_t{});
    case 7:
      return take(float{});
    case 9:
      return take(double{});
    case 12:
      return take(std::int64_t{});
    default:
      return take(std::uint64_t{});
  }
}

std::uint32_t Word(std::string_view bytes, std::size_t at) {
  return LoadValue<std::uint32_t, std::endian::little>(bytes.data() + at);
}

}  // namespace

Values MatArray::ToValues() const {
  Values values(Count());
  WithType(type, [&](auto example) {
    using Value = decltype(example);
    for (std::size_t k = 0; k < values.size(); ++k) {
      values[k] = static_cast<double>(LoadValue<Value, std::endian::little>(numbers.data() + k * sizeof(Value)));
    }
  });
  return values;
}

std::string MatArray::Text() const {
  std::string text;
  if (!isText) return text;
  for (const double character : ToValues()) AppendUtf8(text, static_cast<char32_t>(character) & 0x1FFFFF);
  return text;
}

MatFile::MatFile(InputFile& file, bool (*wants)(std::string_view)) : bytes_(file) {
  const std::string_view mark = bytes_.At(kHeaderSize - 2, 2);
  if (mark != "IM") FileBytes::Refuse(kHeaderSize - 2, "diese Reihenfolge der Bytes kann nicht gelesen werden");
  for (std::size_t at = kHeaderSize; at + 8 <= bytes_.Size();) {
    position_ = at;
    const std::string_view tag = bytes_.At(at, 8);
    const std::uint32_t type = Word(tag, 0), size = Word(tag, 4);
    const std::string_view data = bytes_.At(at + 8, size);
    if (type == kCompressed) {
      // The name is in the first bytes; the rest is inflated only if somebody wants it.
      ByteBlock begin = Inflate(data, 512, at + 8, true);
      const std::string_view head(begin.data(), begin.size());
      if (head.size() < 8 || Word(head, 0) != kMatrix) Refuse("eine Variable ist beschädigt");
      const std::size_t whole = std::size_t{8} + Word(head, 4);
      std::string_view shown = head.substr(8);
      Take(shown);
      Take(shown);
      if (wants(Take(shown).data)) {
        inflated_.push_back(Inflate(data, whole, at + 8));
        TakeVariable({inflated_.back().data(), inflated_.back().size()}, wants);
      }
      at += 8 + std::size_t{size};
    } else {
      if (type == kMatrix) TakeVariable(bytes_.At(at, 8 + std::size_t{size}), wants);
      at += 8 + (std::size_t{size} + 7) / 8 * 8;
    }
    if (at < bytes_.Size() && bytes_.Size() - at < 8) FileBytes::Refuse(at, "die Datei endet zu früh");
  }
}

void MatFile::TakeVariable(std::string_view element, bool (*wants)(std::string_view)) {
  std::string_view head = element.substr(8);
  if (head.empty()) return;
  Take(head);
  Take(head);
  if (wants(Take(head).data)) arrays_.push_back(ReadMatrix(element.substr(8), 0));
}

// The next element: type and size in 8 bytes, or in 4 with the data in the other 4.
MatFile::Element MatFile::Take(std::string_view& bytes) const {
  if (bytes.size() < 8) Refuse("eine Variable endet zu früh");
  const std::uint32_t word = Word(bytes, 0);
  if (word >> 16 != 0) {
    const Element element{static_cast<int>(word & 0xFFFF), bytes.substr(4, std::min<std::size_t>(word >> 16, 4))};
    bytes.remove_prefix(8);
    return element;
  }
  const std::size_t size = Word(bytes, 4);
  if (size > bytes.size() - 8) Refuse("eine Variable endet zu früh");
  const Element element{static_cast<int>(word), bytes.substr(8, size)};
  bytes.remove_prefix(std::min(bytes.size(), 8 + (size + 7) / 8 * 8));
  return element;
}

void MatFile::TakeNumbers(const Element& element, MatArray& array) const {
  const std::size_t size = SizeOf(element.type);
  if (array.Count() > 0 && (size == 0 || element.data.size() / size < array.Count())) {
    Refuse("die Variable '" + array.name + "' hat weniger Werte als Plätze");
  }
  array.type = element.type;
  array.numbers = element.data;
}

MatArray MatFile::ReadMatrix(std::string_view bytes, int depth) const {
  constexpr int kMostDepth = 4;
  constexpr std::size_t kMostValues = std::size_t{1} << 40;
  MatArray array;
  if (bytes.empty()) return array;
  const Element flags = Take(bytes), dimensions = Take(bytes), name = Take(bytes);
  if (flags.data.size() < 4 || dimensions.data.size() < 8) Refuse("eine Variable ist beschädigt");
  array.name = std::string(name.data);
  ReplaceControls(array.name, "");
  const int arrayClass = static_cast<int>(Word(flags.data, 0) & 0xFF);
  array.rows = Word(dimensions.data, 0);
  array.columns = Word(dimensions.data, 4);
  const std::size_t values = array.Count();  // both are below 2^32
  if (dimensions.data.size() > 8 || values > kMostValues) Refuse("die Variable '" + array.name + "' ist keine Matrix");
  if (arrayClass == kCellClass) {
    array.isCell = true;
    if (depth == kMostDepth) Refuse("zu tief geschachtelte Zellen");
    if (values > bytes.size() / 8) Refuse("die Variable '" + array.name + "' hat weniger Zellen als Plätze");
    for (std::size_t k = 0; k < values; ++k) {
      const Element cell = Take(bytes);
      if (cell.type != kMatrix) Refuse("eine Zelle von '" + array.name + "' ist beschädigt");
      array.cells.push_back(ReadMatrix(cell.data, depth + 1));
    }
    return array;
  }
  array.isText = arrayClass == kTextClass;
  if (!array.isText && (arrayClass < kDoubleClass || arrayClass > kLastNumberClass)) {
    Refuse("die Variable '" + array.name + "' besteht nicht aus Zahlen");
  }
  if (values > 0) TakeNumbers(Take(bytes), array);
  return array;
}

const MatArray* MatFile::Find(std::string_view name) const {
  const auto found = std::ranges::find(arrays_, name, &MatArray::name);
  return found == arrays_.end() ? nullptr : &*found;
}

}  // namespace quiverion::exchange
