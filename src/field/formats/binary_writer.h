#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "platform/files/result_file.h"
#include "platform/text/text.h"

namespace quiverion {

/// The bytes of an array, which are the same in memory and in files.
template <class Array>
std::string_view BytesOf(const Array& array) {
  const auto bytes = std::as_bytes(std::span(array));
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

/// Writes little-endian values; the verbs are those of BinaryReader. Throws SystemError as ResultFile does.
class BinaryWriter {
 public:
  explicit BinaryWriter(ResultFile& file) : file_(file) {}

  void Int16(std::int16_t value) { Bytes(&value, sizeof value); }
  void Int32(std::int32_t value) { Bytes(&value, sizeof value); }
  void Double(double value) { Bytes(&value, sizeof value); }
  void Doubles(std::span<const double> values) { Bytes(values.data(), values.size_bytes()); }
  void Int32s(std::span<const std::int32_t> values) { Bytes(values.data(), values.size_bytes()); }

  /// Arrays one after the other; they must stay unchanged until the file is committed.
  template <class... Arrays>
  void Blocks(const Arrays&... arrays) {
    (file_.WriteKept(BytesOf(arrays)), ...);
  }

  /// int32 count and the characters in Windows-1252; "?" for one that is not in it, see LostText.
  void Text(const std::string& value) {
    const Windows1252Text text = Windows1252FromUtf8(value);
    Int32(static_cast<std::int32_t>(text.bytes.size()));
    file_.Write(text.bytes);
    if (!text.complete && !lostText_) lostText_ = value;
  }

  bool Magic(std::string_view characters) {
    file_.Write(characters);
    return true;
  }

  void Reserved16(std::int16_t value) { Int16(value); }
  void Reserved32(std::int32_t value) { Int32(value); }

  /// The first text with a character that is not in Windows-1252.
  const std::optional<std::string>& LostText() const { return lostText_; }

 private:
  void Bytes(const void* source, std::size_t size) { file_.Write({static_cast<const char*>(source), size}); }

  ResultFile& file_;
  std::optional<std::string> lostText_;
};

}  // namespace quiverion
