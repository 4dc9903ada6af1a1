#include "field/formats/binary_reader.h"

#include <algorithm>

#include "messages/system_error.h"
#include "platform/text/text.h"

namespace quiverion {
namespace {
constexpr std::size_t kBufferSize = 4096;
}

void BinaryReader::Require(std::uint64_t bytes) const {
  if (Remaining() < bytes) throw SystemError(ErrorNumber::endOfFile);
}

void BinaryReader::Refill() {
  buffer_.resize(kBufferSize);
  const auto wanted = static_cast<std::size_t>(std::min<std::uint64_t>(unread_, kBufferSize));
  at_ = 0;
  end_ = file_.Read(buffer_.data(), wanted);
  if (end_ < wanted || wanted == 0) throw SystemError(ErrorNumber::endOfFile);
  unread_ -= end_;
}

void BinaryReader::Bytes(void* target, std::size_t size) {
  Require(size);
  auto* place = static_cast<char*>(target);
  const std::size_t buffered = std::min(size, end_ - at_);
  if (buffered > 0) std::memcpy(place, buffer_.data() + at_, buffered);
  at_ += buffered;
  place += buffered;
  size -= buffered;
  if (size >= kBufferSize) {
    if (file_.Read(place, size) < size) throw SystemError(ErrorNumber::endOfFile);
    unread_ -= size;
  } else if (size > 0) {
    Refill();
    if (end_ < size) throw SystemError(ErrorNumber::endOfFile);
    std::memcpy(place, buffer_.data(), size);
    at_ = size;
  }
}

void BinaryReader::ReadBlocks(std::vector<std::span<char>> blocks) {
  std::size_t missing = 0;
  for (std::span<char>& block : blocks) {
    const std::size_t buffered = std::min(block.size(), end_ - at_);
    if (buffered > 0) std::memcpy(block.data(), buffer_.data() + at_, buffered);
    at_ += buffered;
    block = block.subspan(buffered);
    missing += block.size();
  }
  if (missing == 0) return;
  if (unread_ < missing) throw SystemError(ErrorNumber::endOfFile);
  // The buffer is empty, so the same call fills it with what follows the blocks.
  buffer_.resize(kBufferSize);
  const auto ahead = static_cast<std::size_t>(std::min<std::uint64_t>(unread_ - missing, kBufferSize));
  blocks.push_back(std::span(buffer_).first(ahead));
  if (file_.ReadPieces(blocks) < missing + ahead) throw SystemError(ErrorNumber::endOfFile);
  unread_ -= missing + ahead;
  at_ = 0;
  end_ = ahead;
}

void BinaryReader::Skip(std::uint64_t bytes) {
  Require(bytes);
  if (bytes <= end_ - at_) {
    at_ += static_cast<std::size_t>(bytes);
  } else {
    MoveTo(Position() + bytes);
  }
}

void BinaryReader::MoveTo(std::uint64_t position) {
  if (position > file_.Size()) throw SystemError(ErrorNumber::endOfFile);
  file_.Seek(position);
  at_ = end_ = 0;
  unread_ = file_.Size() - position;
}

void BinaryReader::Text(std::string& value) {
  std::int32_t count = 0;
  Int32(count);
  if (count < 0) throw SystemError(ErrorNumber::invalidCall);
  Require(static_cast<std::uint64_t>(count));
  std::string bytes(static_cast<std::size_t>(count), '\0');
  Bytes(bytes.data(), bytes.size());
  value = Utf8FromWindows1252(bytes);
}

bool BinaryReader::Magic(std::string_view expected) {
  std::string found(expected.size(), '\0');
  Bytes(found.data(), found.size());
  return found == expected;
}

}  // namespace quiverion
