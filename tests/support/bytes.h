#pragma once

#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

namespace quiverion::test {

/// Composes a file by hand, independent of the writers of the program.
class Bytes {
 public:
  Bytes& I16(int value) { return Value(static_cast<std::int16_t>(value)); }
  Bytes& I32(std::int32_t value) { return Value(value); }
  Bytes& F32(float value) { return Value(value); }
  Bytes& F64(double value) { return Value(value); }
  Bytes& Raw(std::string_view bytes) { return bytes_.append(bytes), *this; }
  /// Count and bytes.
  Bytes& Text(std::string_view bytes) { return I32(static_cast<std::int32_t>(bytes.size())).Raw(bytes); }
  const std::string& Get() const { return bytes_; }
  operator std::string() const { return bytes_; }  // NOLINT(google-explicit-constructor)

 private:
  template <class T>
  Bytes& Value(T value) {
    char raw[sizeof value];
    std::memcpy(raw, &value, sizeof value);
    return Raw({raw, sizeof value});
  }
  std::string bytes_;
};

}  // namespace quiverion::test
