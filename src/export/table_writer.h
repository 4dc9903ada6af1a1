#pragma once

#include <cassert>
#include <cstring>
#include <memory>
#include <span>
#include <string_view>
#include <vector>

#include "platform/files/result_file.h"
#include "platform/text/numbers.h"

namespace quiverion {

/// Numbers in print style that are written many times, such as the positions of a grid.
class PrintedNumbers {
 public:
  PrintedNumbers(std::span<const double> values, char decimalSeparator);

  struct Printed {
    char text[kMaxNumberLength - 1];
    unsigned char length;
  };
  /// Column or row `index`, counted from 1.
  const Printed& operator()(std::int32_t index) const { return printed_[static_cast<std::size_t>(index - 1)]; }

 private:
  std::vector<Printed> printed_;
};

/// Writes lines of texts and numbers into a result file: numbers in print style with the user's decimal separator,
/// texts as they are, lines ended by CR LF. Items are gathered in one block; nothing is allocated per item. Throws
/// SystemError as ResultFile does.
class TableWriter {
 public:
  TableWriter(ResultFile& file, char decimalSeparator);

  char DecimalSeparator() const { return decimalSeparator_; }

  TableWriter& operator<<(double value) {
    MakeRoom();
    end_ = PrintNumberTo(end_, value, decimalSeparator_);
    return *this;
  }
  TableWriter& operator<<(const PrintedNumbers::Printed& number) {
    MakeRoom();
    std::memcpy(end_, number.text, sizeof number.text);  // a fixed size is faster than the number's own
    end_ += number.length;
    return *this;
  }
  TableWriter& operator<<(char character) {
    MakeRoom();
    *end_++ = character;
    return *this;
  }
  /// At most kMaxText bytes.
  TableWriter& operator<<(std::string_view text) {
    assert(text.size() <= kMaxText);
    MakeRoom();
    std::memcpy(end_, text.data(), text.size());
    end_ += text.size();
    return *this;
  }
  void EndLine() { *this << std::string_view("\r\n"); }

  /// Passes the rest to the file.
  void Finish();

  static constexpr std::size_t kMaxText = 64;

 private:
  // Enough for one item of any kind.
  void MakeRoom() {
    if (static_cast<std::size_t>(block_.get() + kBlockSize - end_) < kMaxText) Finish();
  }

  static constexpr std::size_t kBlockSize = 64 * 1024;
  static_assert(kMaxNumberLength <= kMaxText);

  ResultFile& file_;
  char decimalSeparator_;
  std::unique_ptr<char[]> block_;
  char* end_;
};

}  // namespace quiverion
