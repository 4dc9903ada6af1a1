#pragma once

#include <cstddef>
#include <cstring>
#include <vector>

#include "platform/text/byte_words.h"

namespace quiverion::exchange {

/// The numbers of a column that come again with the same text: the positions of a grid repeat in every row, or are the
/// same along a row. Comparing texts is quicker than reading numbers.
class RepeatedTexts {
 public:
  /// Bytes after a text that are read, too.
  static constexpr std::size_t kAfter = 16;

  /// The end of the number at `at`, and its value, if its text is one that was expected here; else null. The character
  /// after the number is part of what is compared.
  const char* Find(const char* at, double& value) {
    if (const char* const end = last_.EndAt(at); end != nullptr) {
      value = last_.value;
      return end;
    }
    if (next_ == row_.size()) return nullptr;
    const char* const end = row_[next_].EndAt(at);
    if (end == nullptr) return nullptr;
    last_ = row_[next_];
    value = last_.value;
    isComplete_ = true;  // the first row has come to its end
    next_ = next_ + 1 == row_.size() ? 0 : next_ + 1;
    return end;
  }

  /// Remembers a number that was read; it is at most 15 characters long if it shall be found again.
  void Add(const char* at, const char* end, double value) {
    const auto length = static_cast<std::size_t>(end - at);
    if (length >= kAfter) return;
    last_ = Item(at, length, value);
    constexpr std::size_t kMost = 64 * 1024;
    if (!isComplete_ && row_.size() < kMost) row_.push_back(last_);
  }

 private:
  struct Item {
    Item() = default;  // no text is like it
    Item(const char* at, std::size_t textLength, double number)
        : head(words::Load(at)), tail(words::Load(at + 8)), length(textLength), value(number) {
      const std::size_t compared = length + 1;
      headUnused = compared < 8 ? 64 - 8 * compared : 0;
      tailUnused = compared > 8 ? 64 - 8 * (compared - 8) : 64;
    }
    const char* EndAt(const char* at) const {
      if (((words::Load(at) ^ head) << headUnused) != 0) return nullptr;
      if (tailUnused < 64 && ((words::Load(at + 8) ^ tail) << tailUnused) != 0) return nullptr;
      return length == 0 ? nullptr : at + length;
    }
    words::Word head = 0, tail = 0;
    std::size_t headUnused = 0, tailUnused = 64;  // bits
    std::size_t length = 0;
    double value = 0.0;
  };

  Item last_;
  std::vector<Item> row_;  // the first row, in its order
  std::size_t next_ = 0;   // the one that comes next in `row_`
  bool isComplete_ = false;
};

}  // namespace quiverion::exchange
