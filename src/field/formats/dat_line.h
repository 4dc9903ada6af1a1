#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace quiverion {

/// The four numbers of a DAT data line.
struct DatVector {
  double x = 0.0;  // pixels
  double y = 0.0;
  double u = 0.0;  // m/s
  double v = 0.0;
};

/// Columns 1, 2, 7 and 8 of a data line by the numeric-prefix rule; only blanks separate columns. This is the
/// definition.
DatVector ParseDatLine(std::string_view line);

/// Many data lines of the usual shape at once: at least 8 columns between blanks, positions of at most 8 characters,
/// nothing but visible characters and blanks up to the line end, no comma, no quotation mark in front.
///
/// Cutting finds blanks and line ends of a whole chunk of text as bit masks, and keeps the characters of the numbers;
/// reading turns all of them into numbers by loops that the compiler makes vector instructions of.
class DatLines {
 public:
  /// The text that is looked at in one go.
  static constexpr std::size_t kChunk = 8192;
  /// What must be readable around the text that is passed to Take.
  static constexpr std::size_t kBefore = 16;
  static constexpr std::size_t kBehind = kChunk;

  /// Takes the lines of the usual shape that `text` begins with, as many as fit, and reads their numbers. Returns the
  /// bytes taken, line ends included. The next call goes on behind them, or farther behind, in the same memory: what
  /// has been looked at is not looked at again.
  std::size_t Take(std::string_view text);

  int Count() const { return count_; }

  /// The characters of a position, 1 to 8 of them; the last one is the highest byte, zeros fill the others.
  std::uint64_t XText(int line) const { return x_[static_cast<std::size_t>(line)]; }
  std::uint64_t YText(int line) const { return y_[static_cast<std::size_t>(line)]; }

  /// False where a velocity is not of the usual shape (an optional minus, digits with a point among or around them,
  /// at most 7 on each side): then the definition has to read the line.
  bool IsPlain(int line) const { return (refused_[U(line)] | refused_[V(line)]) == 0; }

  /// The bits of the definition, where IsPlain.
  double Vx(int line) const { return values_[U(line)]; }
  double Vy(int line) const { return values_[V(line)]; }

  /// Where the line begins.
  const char* Begin(int line) const { return begins_[static_cast<std::size_t>(line)]; }

 private:
  static constexpr std::size_t kLines = kChunk / 16;  // eight columns and their ends are sixteen bytes
  static constexpr std::size_t U(int line) { return 2 * static_cast<std::size_t>(line); }
  static constexpr std::size_t V(int line) { return U(line) + 1; }

  static constexpr std::size_t kLongestLine = 128;

  std::size_t LengthOfLine(std::size_t at) const;
  std::size_t CutSimilarLines(std::size_t at, std::size_t end);

  const char* chunk_ = nullptr;  // where the masks begin
  int count_ = 0;
  std::array<std::uint64_t, kChunk / 64> separators_;  // one bit for each character of the chunk
  std::array<std::uint64_t, kChunk / 64> stops_;
  std::array<const char*, kLines> begins_;
  std::array<std::uint64_t, kLines> x_;
  std::array<std::uint64_t, kLines> y_;
  std::array<std::uint64_t, 2 * kLines> tails_;  // the last eight characters of a velocity
  std::array<std::uint64_t, 2 * kLines> heads_;  // the eight before them
  std::array<std::uint64_t, 2 * kLines> refused_;
  std::array<double, 2 * kLines> values_;
};

}  // namespace quiverion
