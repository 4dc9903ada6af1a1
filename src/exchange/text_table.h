#pragma once

#include <span>
#include <string>
#include <vector>

#include "exchange/columns.h"
#include "exchange/raw_field.h"
#include "exchange/repeated_texts.h"
#include "exchange/text_file.h"

namespace quiverion::exchange {

/// The numbers of the columns that have a role, one per point.
struct TablePoints {
  std::vector<Values> columns;  // in the order of the table's columns; empty for those without a role
  std::size_t count = 0;
  const char* begin = nullptr;  // where the numbers begin
  bool isByLine = true;         // every line of numbers is a point
};

/// Tables of numbers: a point per line, every column a number. Lines that begin with "#" or are empty do not count.
/// Every method throws FormatError with the line of what is wrong.
class TableReader {
 public:
  TableReader(const TextFile& file, std::vector<Column> columns, Separator separator);

  /// Reads points from `at` on, until a line begins with a letter or the file ends, and returns where that is.
  /// `expected` is the number of points, 0 if unknown; a file with fewer is no error here.
  const char* Read(const char* at, std::size_t expected, TablePoints& points);

  /// Numbers that go on over line ends, possibly with repeats ("3*0.5"): `count` points, one after the other or, with
  /// `byBlocks`, column after column.
  const char* ReadStream(const char* at, std::size_t count, bool byBlocks, TablePoints& points);

  const std::vector<Column>& Columns() const { return columns_; }

 private:
  const char* ReadPoint(const char* at, std::size_t row);
  const char* ReadColumn(const char* at, std::size_t column, double& value);
  const char* ReadOdd(const char* at, double& value) const;
  const char* SkipWord(const char* at) const;
  const char* TakeSeparator(const char* at, std::size_t column) const;
  const char* NextLine(const char* at) const;
  void Grow(TablePoints& points, std::size_t capacity);
  [[noreturn]] void RefuseCount(const char* at, const char* what) const;

  const TextFile& file_;
  std::vector<Column> columns_;
  Separator separator_;
  std::vector<double*> targets_;         // one per column, null without a role
  std::vector<RepeatedTexts*> repeats_;  // likewise, null where numbers do not repeat
  RepeatedTexts x_, y_, status_;
};

/// "Zeile 12" for a point of a table.
std::string PlaceOfPoint(const TextFile& file, const TablePoints& points, std::size_t point);

/// A field of the points of a table; counts that contradict `fastCount` and `slowCount` (0: unknown) are refused.
struct HeaderCounts {
  std::int64_t fast = 0, slow = 0;
  const char* place = nullptr;  // of the header
};
RawField FieldOfTable(const TextFile& file, const std::vector<Column>& columns, TablePoints& points,
                      const HeaderCounts& counts, const StatusDialect& dialect, FileFacts& facts);

/// Units of x and u (of y and v if these have none), from the columns.
void TakeUnits(const std::vector<Column>& columns, FileFacts& facts);

}  // namespace quiverion::exchange
