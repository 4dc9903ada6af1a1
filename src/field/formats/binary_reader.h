#pragma once

#include <bit>
#include <cstdint>
#include <cstring>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/files/file_system.h"

namespace quiverion {

static_assert(std::endian::native == std::endian::little, "binary files are read and written as they lie in memory");

/// Reads little-endian values from a file through one buffer; large arrays go straight into their place. Every verb has
/// its counterpart in BinaryWriter, so that one template describes a layout for both. Throws SystemError 62 if the file
/// ends early and 5 for a negative length.
class BinaryReader {
 public:
  explicit BinaryReader(InputFile& file) : file_(file), unread_(file.Size()) {}

  /// Bytes between the current position and the end of the file. Sizes are checked against it before memory is
  /// allocated.
  std::uint64_t Remaining() const { return unread_ + (end_ - at_); }

  /// Throws SystemError 62 if fewer than `bytes` bytes are left.
  void Require(std::uint64_t bytes) const;

  void Int16(std::int16_t& value) { Bytes(&value, sizeof value); }
  void Int32(std::int32_t& value) { Bytes(&value, sizeof value); }
  void Double(double& value) { Bytes(&value, sizeof value); }
  void Doubles(std::span<double> values) { Bytes(values.data(), values.size_bytes()); }
  void Int32s(std::span<std::int32_t> values) { Bytes(values.data(), values.size_bytes()); }

  /// Arrays one after the other, straight from the file into their place in one call.
  template <class... Arrays>
  void Blocks(Arrays&&... arrays) {
    ReadBlocks({BytesOf(arrays)...});
  }

  /// int32 count and that many Windows-1252 characters, as UTF-8.
  void Text(std::string& value);

  /// Characters without a count, compared exactly.
  bool Magic(std::string_view expected);

  void Reserved16(std::int16_t /*writtenValue*/) { Skip(2); }
  void Reserved32(std::int32_t /*writtenValue*/) { Skip(4); }

  void Skip(std::uint64_t bytes);

  /// Bytes from the beginning of the file to the current position.
  std::uint64_t Position() const { return file_.Size() - Remaining(); }

  /// Continues at this byte of the file. Throws SystemError 62 if it is beyond the end.
  void MoveTo(std::uint64_t position);

  void Bytes(void* target, std::size_t size);

 private:
  template <class Array>
  static std::span<char> BytesOf(Array& array) {
    const auto bytes = std::as_writable_bytes(std::span(array));
    return {reinterpret_cast<char*>(bytes.data()), bytes.size()};
  }
  void ReadBlocks(std::vector<std::span<char>> blocks);
  void Refill();

  InputFile& file_;
  std::uint64_t unread_;  // bytes not yet read into the buffer
  std::vector<char> buffer_;
  std::size_t at_ = 0;
  std::size_t end_ = 0;
};

}  // namespace quiverion
