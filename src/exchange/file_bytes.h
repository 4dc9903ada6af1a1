#pragma once

#include <bit>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>

#include "messages/failure.h"
#include "platform/files/file_system.h"

namespace quiverion::exchange {

/// A value in the byte order of the file.
template <class Value, std::endian order>
Value LoadValue(const char* at) {
  if constexpr (order == std::endian::native || sizeof(Value) == 1) {
    Value value;
    std::memcpy(&value, at, sizeof value);
    return value;
  } else {
    char reversed[sizeof(Value)];
    for (std::size_t k = 0; k < sizeof(Value); ++k) reversed[k] = at[sizeof(Value) - 1 - k];
    Value value;
    std::memcpy(&value, reversed, sizeof value);
    return value;
  }
}

/// The whole content of a binary file. Every access is checked; one beyond the end throws FormatError with its byte.
class FileBytes {
 public:
  explicit FileBytes(InputFile& file)
      : bytes_(new char[static_cast<std::size_t>(file.Size())]),  // not zeroed: the file overwrites it
        size_(file.Read(bytes_.get(), static_cast<std::size_t>(file.Size()))) {}

  std::size_t Size() const { return size_; }

  std::string_view At(std::size_t position, std::size_t size) const {
    if (position > size_ || size > size_ - position) Refuse(position, "die Datei endet zu früh");
    return {bytes_.get() + position, size};
  }

  template <class Value, std::endian order = std::endian::little>
  Value Read(std::size_t position) const {
    return LoadValue<Value, order>(At(position, sizeof(Value)).data());
  }

  [[noreturn]] static void Refuse(std::size_t position, const std::string& reason) {
    throw FormatError("Byte " + std::to_string(position) + ": " + reason);
  }

 private:
  std::unique_ptr<char[]> bytes_;
  std::size_t size_;
};

}  // namespace quiverion::exchange
