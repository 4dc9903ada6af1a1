#pragma once

#include <charconv>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "field/vector_field.h"
#include "platform/files/result_file.h"

namespace quiverion::exchange {

/// A field with its columns and rows in another order: x and y ascend, as far as the field is sorted at all.
class AscendingField {
 public:
  explicit AscendingField(const VectorField& field)
      : field_(field),
        columnsTurn_(field.posX.size() > 1 && field.posX.front() > field.posX.back()),
        rowsTurn_(field.posY.size() > 1 && field.posY.front() > field.posY.back()) {}

  std::size_t Columns() const { return field_.posX.size(); }
  std::size_t Rows() const { return field_.posY.size(); }
  bool ColumnsTurn() const { return columnsTurn_; }

  double X(std::size_t i) const { return field_.posX[columnsTurn_ ? Columns() - 1 - i : i]; }
  double Y(std::size_t j) const { return field_.posY[rowsTurn_ ? Rows() - 1 - j : j]; }
  /// The first column of a row, counted from 0, in the order of the field.
  const double* U(std::size_t j) const { return field_.velX.Row(Row(j)); }
  const double* V(std::size_t j) const { return field_.velY.Row(Row(j)); }
  const std::int32_t* Status(std::size_t j) const { return field_.status.Row(Row(j)); }

 private:
  std::int32_t Row(std::size_t j) const { return static_cast<std::int32_t>(rowsTurn_ ? Rows() - j : j + 1); }

  const VectorField& field_;
  bool columnsTurn_, rowsTurn_;
};

/// Memory that will be read soon.
inline void FetchAhead(const void* begin, std::size_t size) {
  constexpr std::size_t kLine = 64, kMost = 64 * 1024;
  for (std::size_t at = 0; at < size && at < kMost; at += kLine)
    __builtin_prefetch(static_cast<const char*>(begin) + at, 0, 2);
}

/// Gathers what a writer makes, item by item, in one block that goes to the file when it is full.
class BlockWriter {
 public:
  explicit BlockWriter(ResultFile& file) : file_(file), memory_(std::exchange(Kept(), nullptr)) {
    if (!memory_) memory_ = std::make_unique_for_overwrite<char[]>(kBlock + kMostRoom + kAlignment);
    void* begin = memory_.get();
    std::size_t space = kBlock + kMostRoom + kAlignment;
    begin_ = end_ = static_cast<char*>(std::align(kAlignment, kBlock + kMostRoom, begin, space));
    limit_ = LimitOfBlock();
  }

  ~BlockWriter() { Kept() = std::move(memory_); }
  BlockWriter(const BlockWriter&) = delete;
  BlockWriter& operator=(const BlockWriter&) = delete;

  /// Room for at most kMostRoom bytes; Advance says how many were used.
  char* Room() { return end_; }
  void Advance(std::size_t size) {
    end_ += size;
    if (end_ >= limit_) WriteBlock();
  }

  void Text(std::string_view text) {
    while (text.size() > kMostRoom) {
      Text(text.substr(0, kMostRoom));
      text.remove_prefix(kMostRoom);
    }
    std::memcpy(end_, text.data(), text.size());
    Advance(text.size());
  }

  /// The shortest text that reads back as the same double.
  void Number(double value) {
    Advance(static_cast<std::size_t>(std::to_chars(end_, end_ + kLongestNumber, value).ptr - end_));
  }
  void Whole(std::int64_t value) {
    Advance(static_cast<std::size_t>(std::to_chars(end_, end_ + kLongestNumber, value).ptr - end_));
  }

  /// Passes everything to the file.
  void Finish() {
    file_.Write({begin_, static_cast<std::size_t>(end_ - begin_)});
    end_ = begin_;
    limit_ = LimitOfBlock();
  }

  static constexpr std::size_t kMostRoom = 64 * 1024;

 private:
  // Few system calls, because they cost more than the copying. They begin at multiples of the block in the file: the
  // system then keeps the file in large pieces.
  static constexpr std::size_t kBlock = 512 * 1024;
  static constexpr std::size_t kAlignment = 64;  // of whole vectors, for the first item of a block
  static constexpr std::size_t kLongestNumber = 32;

  // Of the writer before: the system takes its time to hand out new memory, as long as a small field takes to write.
  static std::unique_ptr<char[]>& Kept() {
    thread_local std::unique_ptr<char[]> kept;
    return kept;
  }

  char* LimitOfBlock() const { return begin_ + kBlock - file_.Position() % kBlock; }

  void WriteBlock() {
    const char* const rest = limit_;
    file_.Write({begin_, static_cast<std::size_t>(limit_ - begin_)});
    const auto left = static_cast<std::size_t>(end_ - rest);
    std::memmove(begin_, rest, left);
    end_ = begin_ + left;
    limit_ = LimitOfBlock();
  }

  ResultFile& file_;
  std::unique_ptr<char[]> memory_;
  char* begin_;
  char* end_;
  char* limit_;
};

/// The shortest text that reads back as the same double.
inline std::string ShortestText(double value) {
  char buffer[32];
  return {buffer, std::to_chars(buffer, buffer + sizeof buffer, value).ptr};
}

}  // namespace quiverion::exchange
