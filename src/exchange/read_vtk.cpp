// VTK image data (.vti) with appended raw arrays, as this program and VTK itself write them.
#include <algorithm>
#include <array>
#include <map>

#include "exchange/file_bytes.h"
#include "exchange/raw_field.h"
#include "exchange/readers.h"
#include "exchange/text_file.h"
#include "exchange/units.h"
#include "messages/failure.h"
#include "platform/text/numbers.h"
#include "platform/text/text.h"

namespace quiverion::exchange {
namespace {

struct Element {
  std::map<std::string, std::string> attributes;
  std::size_t end = 0;  // after its ">"

  std::string Get(const std::string& name) const {
    const auto found = attributes.find(name);
    return found == attributes.end() ? std::string() : found->second;
  }
};

constexpr std::string_view kBlanks = " \t\r\n";

// name="value" or name='value', separated by blanks.
std::map<std::string, std::string> AttributesOf(std::string_view text) {
  std::map<std::string, std::string> attributes;
  for (;;) {
    const std::size_t equals = text.find('=');
    if (equals == std::string_view::npos) return attributes;
    std::string_view name = text.substr(0, equals);
    name = name.substr(0, name.find_last_not_of(kBlanks) + 1);
    name = name.substr(name.find_last_of(kBlanks) + 1);
    const std::size_t quote = text.find_first_of("\"'", equals);
    if (quote == std::string_view::npos) return attributes;
    const std::size_t close = text.find(text[quote], quote + 1);
    if (close == std::string_view::npos) return attributes;
    attributes[std::string(name)] = text.substr(quote + 1, close - quote - 1);
    text.remove_prefix(close + 1);
  }
}

// The next element with this name, from byte `from` on.
std::optional<Element> FindElement(std::string_view head, const std::string& name, std::size_t from) {
  const std::size_t begin = head.find("<" + name, from);
  if (begin == std::string_view::npos) return std::nullopt;
  const std::size_t end = head.find('>', begin);
  if (end == std::string_view::npos) return std::nullopt;
  return Element{AttributesOf(head.substr(begin + 1 + name.size(), end - begin - 1 - name.size())), end + 1};
}

Values NumbersOf(std::string_view text) {
  Values numbers;
  while (numbers.size() < 6) {
    const std::size_t begin = text.find_first_not_of(kBlanks);
    if (begin == std::string_view::npos) break;
    const NumberPrefix number = ReadNumberPrefix(text.substr(begin));
    if (number.length == 0) break;
    numbers.push_back(number.value);
    text.remove_prefix(begin + number.length);
  }
  return numbers;
}

class VtkImage {
 public:
  explicit VtkImage(InputFile& file) : bytes_(file) {
    const std::string_view all = bytes_.At(0, bytes_.Size());
    const std::size_t appended = all.find("<AppendedData");
    head_ = all.substr(0, appended);
    if (all.substr(all.size() - std::min<std::size_t>(all.size(), 64)).find("</VTKFile>") == std::string_view::npos) {
      FileBytes::Refuse(all.size(), "die VTK-Datei hat kein Ende");
    }
    const Element root = Require("VTKFile");
    const Element image = Require("ImageData");
    if (root.Get("byte_order") == "BigEndian" || !root.Get("compressor").empty()) {
      FileBytes::Refuse(0, "nur unkomprimierte VTK-Dateien in der Reihenfolge LittleEndian können gelesen werden");
    }
    countSize_ = root.Get("header_type") == "UInt64" ? 8 : 4;
    if (appended != std::string_view::npos) {
      dataBegin_ = all.find('_', std::min(all.size(), all.find('>', appended))) + 1;  // 0: none
    }
    TakeExtent(image);
  }

  RawField Read(FileFacts& facts) const {
    RawField raw;
    raw.columnPositions = Positions("x", 0, columns_);
    raw.rowPositions = Positions("y", 1, rows_);
    raw.layout = GridOfAxes(raw.columnPositions, raw.rowPositions);
    const std::size_t count = columns_ * rows_;
    const Element velocity = RequireArray("velocity");
    raw.u = Component(velocity, 0, count);
    raw.v = Component(velocity, 1, count);
    std::vector<StatusColumn> statuses;
    if (const auto status = FindArray("status"))
      statuses.push_back({Role::status, "status", Component(*status, 0, count)});
    const PlaceOf placeOf = [](std::size_t point) { return "Punkt " + std::to_string(point + 1); };
    raw.status = StatusesOf(statuses, count, {}, placeOf, facts);
    if (const auto time = FindArray("TimeValue"); time && time->Get("format") == "ascii") {
      const Values numbers = NumbersOf(head_.substr(time->end, head_.find('<', time->end) - time->end));
      if (!numbers.empty()) raw.time = numbers.front();
    }
    facts.dialect = "VTK (ImageData)";
    facts.lengthUnit = UnitOf("x");
    facts.velocityUnit = CleanUnit(velocity.Get("Units"));
    return raw;
  }

 private:
  Element Require(const std::string& name) const {
    const auto element = FindElement(head_, name, 0);
    if (!element) FileBytes::Refuse(0, "in der VTK-Datei fehlt das Element " + name);
    return *element;
  }

  std::optional<Element> FindArray(const std::string& name) const {
    for (auto array = FindElement(head_, "DataArray", 0); array; array = FindElement(head_, "DataArray", array->end)) {
      if (EqualsIgnoringCase(array->Get("Name"), name)) return array;
    }
    return std::nullopt;
  }

  Element RequireArray(const std::string& name) const {
    const auto array = FindArray(name);
    if (!array) FileBytes::Refuse(0, "in der VTK-Datei fehlt das Feld '" + name + "'");
    return *array;
  }

  std::string UnitOf(const std::string& name) const {
    const auto array = FindArray(name);
    return array ? CleanUnit(array->Get("Units")) : std::string();
  }

  void TakeExtent(const Element& image) {
    const Values extent = NumbersOf(image.Get("WholeExtent"));
    if (extent.size() != 6) FileBytes::Refuse(0, "in der VTK-Datei fehlt WholeExtent");
    const auto length = [&](std::size_t axis) {
      const double points = extent[2 * axis + 1] - extent[2 * axis] + 1;
      if (!(points >= 1 && points <= 2147483647.0)) FileBytes::Refuse(0, "unmögliche Größe in WholeExtent");
      return static_cast<std::size_t>(points);
    };
    columns_ = length(0);
    rows_ = length(1);
    if (length(2) != 1) FileBytes::Refuse(0, "ein Volumen kann nicht gelesen werden");
    if (columns_ > bytes_.Size() || rows_ > bytes_.Size())
      FileBytes::Refuse(0, "die Datei ist kleiner als WholeExtent");
    origin_ = NumbersOf(image.Get("Origin"));
    spacing_ = NumbersOf(image.Get("Spacing"));
    origin_.resize(3, 0.0);
    spacing_.resize(3, 1.0);
  }

  // The exact positions if they are stored, else those of origin and spacing.
  Values Positions(const std::string& name, std::size_t axis, std::size_t count) const {
    if (const auto array = FindArray(name); array && array->Get("NumberOfTuples") == std::to_string(count)) {
      return Component(*array, 0, count);
    }
    Values positions(count);
    for (std::size_t k = 0; k < count; ++k) positions[k] = origin_[axis] + static_cast<double>(k) * spacing_[axis];
    return positions;
  }

  // One component of `count` tuples.
  Values Component(const Element& array, std::size_t component, std::size_t count) const {
    const std::string name = array.Get("Name"), text = array.Get("NumberOfComponents");
    const auto components = text.empty() ? std::size_t{1} : static_cast<std::size_t>(Whole(text, name));
    if (array.Get("format") != "appended" || dataBegin_ == 0) {
      FileBytes::Refuse(0, "das Feld '" + name + "' ist nicht in der Form appended, raw");
    }
    if (components <= component || components > 1000)
      FileBytes::Refuse(0, "das Feld '" + name + "' hat zu wenige Komponenten");
    const std::size_t begin = dataBegin_ + static_cast<std::size_t>(Whole(array.Get("offset"), name));
    const std::uint64_t size = countSize_ == 8 ? bytes_.Read<std::uint64_t>(begin) : bytes_.Read<std::uint32_t>(begin);
    const std::string type = array.Get("type");
    if (type == "Float64") return Take<double>(begin + countSize_, size, components, component, count);
    if (type == "Float32") return Take<float>(begin + countSize_, size, components, component, count);
    if (type == "Int32") return Take<std::int32_t>(begin + countSize_, size, components, component, count);
    if (type == "Int8") return Take<std::int8_t>(begin + countSize_, size, components, component, count);
    if (type == "UInt8") return Take<std::uint8_t>(begin + countSize_, size, components, component, count);
    FileBytes::Refuse(0, "das Feld '" + name + "' hat eine Art von Zahlen, die nicht gelesen werden kann");
  }

  std::uint64_t Whole(const std::string& text, const std::string& name) const {
    const NumberPrefix number = ReadNumberPrefix(text);
    if (number.length != text.size() || !(number.value >= 0 && number.value <= static_cast<double>(bytes_.Size()))) {
      FileBytes::Refuse(0, "das Feld '" + name + "' hat eine unmögliche Angabe");
    }
    return static_cast<std::uint64_t>(number.value);
  }

  template <class Value>
  Values Take(std::size_t begin, std::uint64_t size, std::size_t components, std::size_t component,
              std::size_t count) const {
    const std::size_t tuple = components * sizeof(Value);
    if (size > bytes_.Size() || count > size / tuple) FileBytes::Refuse(begin, "ein Feld ist kleiner als WholeExtent");
    const char* at = bytes_.At(begin, static_cast<std::size_t>(size)).data() + component * sizeof(Value);
    Values values(count);
    for (double& value : values) {
      value = static_cast<double>(LoadValue<Value, std::endian::little>(at));
      at += tuple;
    }
    return values;
  }

  FileBytes bytes_;
  std::string_view head_;
  std::size_t countSize_ = 4, dataBegin_ = 0;
  std::size_t columns_ = 0, rows_ = 0;
  Values origin_, spacing_;
};

}  // namespace

std::vector<VtkListItem> ReadVtkList(InputFile& file) {
  const FileBytes bytes(file);
  const std::string_view all = bytes.At(0, bytes.Size());
  std::vector<VtkListItem> items;
  for (auto item = FindElement(all, "DataSet", 0); item; item = FindElement(all, "DataSet", item->end)) {
    const NumberPrefix time = ReadNumberPrefix(item->Get("timestep"));
    items.push_back({item->Get("file"), time.length > 0 ? std::optional(time.value) : std::nullopt});
  }
  if (items.empty()) FileBytes::Refuse(0, "die Liste nennt keine VTK-Datei");
  return items;
}

bool IsVtkList(std::string_view head) {
  const auto root = FindElement(head, "VTKFile", 0);
  return IsVtk(head) && root && root->Get("type") == "Collection";
}

bool IsVtk(std::string_view head) {
  const std::size_t root = head.substr(0, 1024).find("<VTKFile");
  return (head.starts_with("<?xml") || root == 0) && root != std::string_view::npos;
}

ForeignFile ReadVtk(const ForeignSource& source) {
  const VtkImage image(source.file);
  FileFacts facts;
  std::vector<RawField> raw;
  raw.push_back(image.Read(facts));
  return BuildFields(std::move(raw), facts, source.options);
}

}  // namespace quiverion::exchange
