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

/// Many data lines at once: two columns or more between blanks, up to a line end. It takes no line with a comma, a
/// quotation mark, '$', '*' or a control character (tabs are such); those are for the definition.
///
/// Cutting finds blanks and line ends of a whole chunk of text as bit masks. The velocities, columns 7 and 8, become
/// numbers in a loop that the compiler makes vector instructions of: decimals of up to 7 digits on either side of the
/// point, also with an exponent. Numbers of another shape are read one by one when they are asked for.
class DatLines {
 public:
  /// The size of the text that is processed at once.
  static constexpr std::size_t kChunk = 8192;
  /// Bytes before and after the text passed to Take that must be readable.
  static constexpr std::size_t kBefore = 16;
  static constexpr std::size_t kAfter = kChunk;

  /// Takes the lines that `text`, the beginning of a field, begins with, as many as fit. Returns the bytes taken, line
  /// ends included. The next call must continue after them, or further on, in the same memory, because masks are
  /// computed only once.
  std::size_t Take(std::string_view text);

  int Count() const { return static_cast<int>(count_); }

  /// Columns 1 and 2. A separator precedes every column, except at the beginning of the text.
  std::string_view X(int line) const { return TextOf(EndsOf(line).x); }
  std::string_view Y(int line) const { return TextOf(EndsOf(line).y); }
  const char* XEnd(int line) const { return chunk_ + EndsOf(line).x; }
  const char* YEnd(int line) const { return chunk_ + EndsOf(line).y; }

  /// Columns 7 and 8, 0 if they are missing: the same bits as ParseDatLine. Throws SystemError 6 as it does.
  double U(int line) const { return Velocity(line, 0); }
  double V(int line) const { return Velocity(line, 1); }

 private:
  static constexpr std::size_t kLines = 512;  // taken by one call
  static constexpr std::uint16_t kNoColumn = 0;
  // Where columns end in the chunk. Velocities may be missing.
  struct Ends {
    std::uint16_t x, y, u, v;
  };

  const Ends& EndsOf(int line) const { return ends_[static_cast<std::size_t>(line)]; }
  std::string_view TextOf(std::size_t end) const {
    const std::size_t begin = BeginOfColumn(end);
    return {chunk_ + begin, end - begin};
  }
  double Velocity(int line, std::size_t component) const {
    const std::size_t number = 2 * static_cast<std::size_t>(line) + component;
    return refused_[number] == 0 ? values_[number] : ReadAlone(line, component);
  }

  double ReadAlone(int line, std::size_t component) const;
  std::size_t BeginOfColumn(std::size_t end) const;
  std::size_t EndOfColumn(std::size_t at, int column) const;
  bool HasLine(const char* text);
  void ReadVelocities();
  std::size_t CutLines(std::size_t at, std::size_t limit);
  bool CutLine(std::size_t at, std::size_t end);

  const char* chunk_ = nullptr;  // where the masks begin
  std::size_t count_ = 0;
  std::size_t nextStop_ = 0;
  std::array<std::uint16_t, kChunk + 2> stops_;              // positions in the chunk; after the last one kChunk twice
  std::array<std::uint64_t, 1 + kChunk / 64> separators_;    // one word before the chunk
  std::array<std::uint64_t, kChunk / 64 + 1> columnEnds_{};  // one word after the chunk
  std::array<Ends, kLines> ends_;
  std::array<std::uint64_t, 2 * kLines> tails_;  // the last eight characters of a velocity
  std::array<std::uint64_t, 2 * kLines> heads_;  // the eight before them
  std::array<std::uint64_t, 2 * kLines> refused_;
  std::array<double, 2 * kLines> values_;
};

}  // namespace quiverion
