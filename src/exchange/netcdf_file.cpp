#include "exchange/netcdf_file.h"

#include <algorithm>
#include <limits>

#include "platform/text/text.h"

namespace quiverion::exchange {
namespace {

constexpr auto kOrder = std::endian::big;
constexpr std::uint64_t kMostDimensions = 1024;

constexpr std::uint64_t Padded(std::uint64_t size) {
  return (size + 3) / 4 * 4;
}

// Bytes of a value; 0 for an unknown type.
std::uint64_t SizeOf(int type) {
  constexpr std::uint64_t sizes[] = {0, 1, 1, 2, 4, 4, 8, 1, 2, 4, 8, 8};
  return type >= 1 && type <= 11 ? sizes[type] : 0;
}

constexpr int kCharacters = 2;

// Calls `take` with a value that has the C++ type of a netCDF type.
template <class Take>
void WithType(int type, Take take) {
  switch (type) {
    case 1:
      return take(std::int8_t{});
    case 3:
      return take(std::int16_t{});
    case 4:
      return take(std::int32_t{});
    case 5:
      return take(float{});
    case 6:
      return take(double{});
    case 7:
    case kCharacters:
      return take(std::uint8_t{});
    case 8:
      return take(std::uint16_t{});
    case 9:
      return take(std::uint32_t{});
    case 10:
      return take(std::int64_t{});
    default:
      return take(std::uint64_t{});
  }
}

// The items of the header one after the other. Counts and sizes have 8 bytes in version 5, offsets from version 2 on.
class HeaderReader {
 public:
  HeaderReader(const FileBytes& bytes, char version) : bytes_(bytes), version_(version) {}

  std::size_t Position() const { return at_; }
  std::uint32_t Word() { return Take<std::uint32_t>(); }
  std::uint64_t Count() { return version_ == 5 ? Take<std::uint64_t>() : Take<std::uint32_t>(); }
  std::uint64_t Offset() { return version_ == 1 ? Take<std::uint32_t>() : Take<std::uint64_t>(); }

  std::string_view Bytes(std::uint64_t count) {
    const std::string_view bytes = bytes_.At(at_, Fitting(count));
    at_ += static_cast<std::size_t>(Padded(count));
    return bytes;
  }
  std::string Name() { return std::string(Bytes(Count())); }

  // A list begins with its tag and the number of its items, both 0 if it is absent.
  std::uint64_t List(std::uint32_t expected) {
    const std::size_t at = at_;
    const std::uint32_t tag = Word();
    const std::uint64_t count = Count();
    if (tag != expected && (tag != 0 || count != 0)) FileBytes::Refuse(at, "der Kopf der netCDF-Datei ist beschädigt");
    return count;
  }

  NetCdfFile::Attributes ReadAttributes() {
    NetCdfFile::Attributes attributes;
    for (std::uint64_t left = List(12); left > 0; --left) {
      std::string name = Name();
      attributes[std::move(name)] = ReadAttribute();
    }
    return attributes;
  }

  std::size_t Fitting(std::uint64_t count) const {
    if (count > bytes_.Size()) FileBytes::Refuse(at_, "die Datei endet zu früh");
    return static_cast<std::size_t>(count);
  }

  int Type() {
    const std::size_t at = at_;
    const std::uint32_t type = Word();
    if (type > 11 || SizeOf(static_cast<int>(type)) == 0) FileBytes::Refuse(at, "unbekannte Art von Zahlen");
    return static_cast<int>(type);
  }

 private:
  template <class Value>
  Value Take() {
    const auto value = bytes_.Read<Value, kOrder>(at_);
    at_ += sizeof(Value);
    return value;
  }

  NetCdfFile::Attribute ReadAttribute() {
    NetCdfFile::Attribute attribute;
    const int type = Type();
    const std::uint64_t count = Count();
    const std::string_view data = Bytes(Fitting(count) * SizeOf(type));
    if (type == kCharacters) {
      attribute.text = std::string(data.substr(0, data.find('\0')));
      return attribute;
    }
    WithType(type, [&](auto example) {
      using Value = decltype(example);
      for (std::size_t k = 0; k < count; ++k) {
        attribute.numbers.push_back(static_cast<double>(LoadValue<Value, kOrder>(data.data() + k * sizeof(Value))));
      }
    });
    return attribute;
  }

  const FileBytes& bytes_;
  char version_;
  std::size_t at_ = 4;
};

}  // namespace

NetCdfFile::NetCdfFile(InputFile& file) : bytes_(file) {
  ReadHeader();
  FindStrides();
  RequireWhole();
}

void NetCdfFile::ReadHeader() {
  const std::string_view magic = bytes_.At(0, 4);
  const char version = magic[3];
  if (!magic.starts_with("CDF") || (version != 1 && version != 2 && version != 5)) {
    FileBytes::Refuse(0, "das ist keine netCDF-Datei der klassischen Formate");
  }
  HeaderReader header(bytes_, version);
  recordCount_ = header.Count();
  countIsUnknown_ = recordCount_ == (version == 5 ? std::numeric_limits<std::uint64_t>::max() : 0xFFFFFFFFu);
  for (std::uint64_t left = header.List(10); left > 0; --left) {
    std::string name = header.Name();
    const std::uint64_t length = header.Count();
    if (length == 0 && !recordDimension_) recordDimension_ = dimensions_.size();
    dimensions_.push_back({std::move(name), length});
  }
  globals_ = header.ReadAttributes();
  for (std::uint64_t left = header.List(11); left > 0; --left) {
    Variable variable;
    variable.name = header.Name();
    const std::size_t at = header.Position();
    const std::uint64_t count = header.Count();
    if (count > kMostDimensions) FileBytes::Refuse(at, "eine Variable hat zu viele Dimensionen");
    for (std::uint64_t k = 0; k < count; ++k) {
      const std::uint64_t dimension = header.Count();
      if (dimension >= dimensions_.size()) FileBytes::Refuse(at, "eine Dimension gibt es nicht");
      variable.dimensions.push_back(static_cast<std::size_t>(dimension));
    }
    variable.attributes = header.ReadAttributes();
    variable.type = header.Type();
    header.Count();  // its size, which follows from the dimensions
    variable.begin = header.Offset();
    variables_.push_back(std::move(variable));
  }
}

// Records follow each other after everything else; each has a piece of every variable with the record dimension.
void NetCdfFile::FindStrides() {
  const auto isRecord = [&](const Variable& variable) {
    return recordDimension_ && !variable.dimensions.empty() && variable.dimensions.front() == *recordDimension_;
  };
  constexpr std::uint64_t kLimit = std::uint64_t{1} << 60;
  std::uint64_t recordSize = 0, recordVariables = 0, lastPiece = 0, recordsBegin = bytes_.Size();
  for (Variable& variable : variables_) {
    variable.strides.resize(variable.dimensions.size());
    std::uint64_t size = SizeOf(variable.type);
    for (std::size_t d = variable.dimensions.size(); d-- > (isRecord(variable) ? 1u : 0u);) {
      variable.strides[d] = size;
      const std::uint64_t length = dimensions_[variable.dimensions[d]].length;
      // A size beyond that of the file is noticed when values are read.
      size = length != 0 && size > kLimit / length ? kLimit : size * length;
    }
    if (!isRecord(variable)) continue;
    ++recordVariables;
    lastPiece = size;
    recordSize = std::min(kLimit, recordSize + Padded(size));
    recordsBegin = std::min(recordsBegin, variable.begin);
  }
  if (recordVariables == 1) recordSize = lastPiece;  // a single variable is not padded
  for (Variable& variable : variables_) {
    if (isRecord(variable)) variable.strides.front() = recordSize;
  }
  if (!recordDimension_) return;
  const std::uint64_t fitting = recordSize == 0 ? 0 : (bytes_.Size() - recordsBegin + 3) / recordSize;
  if (countIsUnknown_) recordCount_ = fitting;
  if (recordCount_ > fitting && recordVariables > 0) {
    FileBytes::Refuse(4, "der Kopf nennt " + std::to_string(recordCount_) + " Zeiten, die Datei enthält nur " +
                             std::to_string(fitting));
  }
  dimensions_[*recordDimension_].length = recordCount_;
}

// A file that was cut off is refused, even if what it lacks is not needed. Doubles are exact enough for sizes of files,
// and do not overflow.
void NetCdfFile::RequireWhole() const {
  for (const Variable& variable : variables_) {
    double end = static_cast<double>(variable.begin) + static_cast<double>(SizeOf(variable.type));
    bool isEmpty = false;
    for (std::size_t d = 0; d < variable.dimensions.size(); ++d) {
      isEmpty = isEmpty || Length(variable, d) == 0;
      end += (static_cast<double>(Length(variable, d)) - 1) * static_cast<double>(variable.strides[d]);
    }
    if (isEmpty || end <= static_cast<double>(bytes_.Size())) continue;
    FileBytes::Refuse(bytes_.Size(), "die Datei endet vor dem Ende der Variable '" + variable.name + "'");
  }
}

const NetCdfFile::Variable* NetCdfFile::Find(const std::string& name) const {
  const auto found = std::ranges::find(variables_, name, &Variable::name);
  return found == variables_.end() ? nullptr : &*found;
}

Values NetCdfFile::Plane(const Variable& variable, std::uint64_t offset, std::size_t slow, std::size_t fast) const {
  return PlaneOf(variable, offset, {Length(variable, slow), variable.strides[slow]},
                 {Length(variable, fast), variable.strides[fast]});
}

Values NetCdfFile::Line(const Variable& variable) const {
  return PlaneOf(variable, 0, {1, 0}, {Length(variable, 0), variable.strides.front()});
}

Values NetCdfFile::PlaneOf(const Variable& variable, std::uint64_t offset, Run slow, Run fast) const {
  const std::uint64_t rows = slow.count, columns = fast.count;
  const std::uint64_t slowStride = slow.stride, fastStride = fast.stride;
  const std::uint64_t size = bytes_.Size();
  const auto reaches = [&](std::uint64_t count, std::uint64_t stride) {
    return count > 1 && stride != 0 && count - 1 > size / stride;
  };
  if (rows == 0 || columns == 0 || variable.begin > size || offset > size || reaches(rows, slowStride) ||
      reaches(columns, fastStride) || rows > size || columns > size / rows) {
    FileBytes::Refuse(static_cast<std::size_t>(std::min(variable.begin, size)),
                      "die Variable '" + variable.name + "' ist nicht vollständig");
  }
  const std::uint64_t first = variable.begin + offset;
  const std::uint64_t last = first + (rows - 1) * slowStride + (columns - 1) * fastStride;
  bytes_.At(static_cast<std::size_t>(last), static_cast<std::size_t>(SizeOf(variable.type)));
  const char* const data = bytes_.At(static_cast<std::size_t>(first), 0).data();

  Values values(static_cast<std::size_t>(rows * columns));
  WithType(variable.type, [&](auto example) {
    using Value = decltype(example);
    double* target = values.data();
    for (std::uint64_t r = 0; r < rows; ++r) {
      const char* at = data + r * slowStride;
      for (std::uint64_t c = 0; c < columns; ++c, at += fastStride) {
        *target++ = static_cast<double>(LoadValue<Value, kOrder>(at));
      }
    }
  });
  Unpack(variable, values);
  return values;
}

void NetCdfFile::Unpack(const Variable& variable, Values& values) {
  const auto fill = NumberOf(variable.attributes, "_FillValue"),
             missing = NumberOf(variable.attributes, "missing_value");
  const auto factor = NumberOf(variable.attributes, "scale_factor"), plus = NumberOf(variable.attributes, "add_offset");
  for (const auto& absent : {fill, missing}) {
    if (absent) std::ranges::replace(values, *absent, std::numeric_limits<double>::quiet_NaN());
  }
  if (factor || plus) {
    for (double& value : values) value = value * factor.value_or(1.0) + plus.value_or(0.0);
  }
}

std::string NetCdfFile::TextOf(const Attributes& attributes, const std::string& name) {
  const auto found = attributes.find(name);
  if (found == attributes.end()) return {};
  std::string text = found->second.text;
  ReplaceControls(text, "");
  return text;
}

std::optional<double> NetCdfFile::NumberOf(const Attributes& attributes, const std::string& name) {
  const auto found = attributes.find(name);
  if (found == attributes.end() || found->second.numbers.empty()) return std::nullopt;
  return found->second.numbers.front();
}

}  // namespace quiverion::exchange
