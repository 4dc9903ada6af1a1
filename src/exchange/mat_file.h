#pragma once

#include <cstdint>
#include <deque>
#include <string>
#include <string_view>
#include <vector>

#include "exchange/file_bytes.h"
#include "exchange/grid_points.h"
#include "exchange/inflate.h"

namespace quiverion::exchange {

/// A variable of a MAT file (version 5): a matrix of numbers, a text, or cells with such.
struct MatArray {
  std::string name;
  std::size_t rows = 0, columns = 0;
  bool isText = false;
  int type = 0;              // of the stored numbers
  std::string_view numbers;  // column by column
  std::vector<MatArray> cells;
  bool isCell = false;

  std::size_t Count() const { return rows * columns; }
  Values ToValues() const;
  std::string Text() const;
};

/// The variables of a MAT file that somebody wants.
class MatFile {
 public:
  /// Reads the file and inflates the variables with the names that `wants` accepts. Throws FormatError with the byte.
  MatFile(InputFile& file, bool (*wants)(std::string_view name));

  /// Null if there is none.
  const MatArray* Find(std::string_view name) const;

 private:
  struct Element {
    int type;
    std::string_view data;
  };
  Element Take(std::string_view& bytes) const;
  MatArray ReadMatrix(std::string_view bytes, int depth) const;
  void TakeNumbers(const Element& element, MatArray& array) const;
  void TakeVariable(std::string_view element, bool (*wants)(std::string_view name));
  [[noreturn]] void Refuse(const std::string& reason) const { FileBytes::Refuse(position_, reason); }

  FileBytes bytes_;
  std::deque<ByteBlock> inflated_;
  std::vector<MatArray> arrays_;
  std::size_t position_ = 0;  // of the variable that is being read
};

}  // namespace quiverion::exchange
