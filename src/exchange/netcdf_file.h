#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "exchange/file_bytes.h"
#include "exchange/grid_points.h"

namespace quiverion::exchange {

/// netCDF classic, 64-bit offset and 64-bit data: the header, and planes of variables as doubles.
class NetCdfFile {
 public:
  struct Dimension {
    std::string name;
    std::uint64_t length = 0;
  };
  struct Attribute {
    std::string text;             // of characters
    std::vector<double> numbers;  // of any other type
  };
  using Attributes = std::map<std::string, Attribute>;
  struct Variable {
    std::string name;
    std::vector<std::size_t> dimensions;  // the slowest first
    Attributes attributes;
    int type = 0;
    std::uint64_t begin = 0;
    std::vector<std::uint64_t> strides;  // bytes, per dimension
  };

  /// Reads the header. Throws FormatError with the byte of what is wrong.
  explicit NetCdfFile(InputFile& file);

  const std::vector<Dimension>& Dimensions() const { return dimensions_; }
  const std::vector<Variable>& Variables() const { return variables_; }
  const Attributes& Globals() const { return globals_; }

  /// The variable with this name; null if there is none.
  const Variable* Find(const std::string& name) const;

  std::uint64_t Length(const Variable& variable, std::size_t dimension) const {
    return dimensions_[variable.dimensions[dimension]].length;
  }

  /// Values along two dimensions of a variable, `fast` inside `slow`, from the byte `offset` of its first value on. The
  /// file is large enough for them; values equal to the fill value are NaN.
  Values Plane(const Variable& variable, std::uint64_t offset, std::size_t slow, std::size_t fast) const;

  /// All values of a variable with one dimension.
  Values Line(const Variable& variable) const;

  static std::string TextOf(const Attributes& attributes, const std::string& name);
  static std::optional<double> NumberOf(const Attributes& attributes, const std::string& name);

 private:
  struct Run {
    std::uint64_t count, stride;
  };
  void ReadHeader();
  void FindStrides();
  void RequireWhole() const;
  Values PlaneOf(const Variable& variable, std::uint64_t offset, Run slow, Run fast) const;
  static void Unpack(const Variable& variable, Values& values);

  FileBytes bytes_;
  std::vector<Dimension> dimensions_;
  std::vector<Variable> variables_;
  Attributes globals_;
  std::uint64_t recordCount_ = 0;
  bool countIsUnknown_ = false;
  std::optional<std::size_t> recordDimension_;
};

}  // namespace quiverion::exchange
