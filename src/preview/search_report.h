#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "field/vector_field.h"
#include "macro/macro_event.h"

/// What the search for faulty vectors compares, as distributions with the limits of the search.
namespace quiverion {

/// One limit of a criterion: the parameter that holds it, as the command's text.
struct SearchLimit {
  std::string_view key;
  double value = 0.0;
};

/// A criterion that is selected.
struct CriterionReport {
  std::string_view name;            ///< for a person
  std::string_view unit;            ///< "%", "°" or "m/s"
  std::vector<SearchLimit> limits;  ///< one for a deviation, lower and upper for an interval
  bool rejectsBetween = false;      ///< an interval that rejects what is inside
  bool wholeNumbers = false;        ///< the window takes only these
  std::int64_t rejectedAlone = 0;   ///< vectors that the search would reject with this criterion only
  std::int64_t incomparable = 0;  ///< of the tested vectors: with nothing to compare with, they always count as faulty
  std::vector<double> values;     ///< finite, of the tested vectors; evenly thinned out if there are many
  std::int64_t valueCount = 0;    ///< before they were thinned out
};

struct SearchReport {
  std::int64_t tested = 0;    ///< valid vectors
  std::int64_t rejected = 0;  ///< by all criteria together, as the macro combines them
  bool anyOf = false;         ///< one criterion is enough
  std::vector<CriterionReport> criteria;
  std::string error;  ///< why the search would fail, a line; then the numbers are 0
};

/// True for the command of the search.
bool IsSearch(const MacroEvent& event);

/// For a field as it is before the search. At most `mostValues` values per criterion are kept.
SearchReport ReportSearch(const VectorField& field, const MacroEvent& event, std::size_t mostValues = 1 << 20);

/// Adds the numbers and values of another field, reported for the same command.
void AddReport(SearchReport& sum, const SearchReport& more);

/// Counts in equal bins between `from` and `to`.
struct Histogram {
  double from = 0.0, to = 1.0;
  std::vector<std::int64_t> bins;
  std::int64_t beyond = 0;  ///< values outside
};

/// The range is that of most values and of all limits, widened to round numbers; it begins at 0 if no value is below.
Histogram HistogramOf(const CriterionReport& criterion, int bins);

/// A limit that a person has dragged to `value`, with as many digits as the range of the histogram justifies, within
/// what the window takes.
std::string LimitText(const CriterionReport& criterion, const Histogram& histogram, double value);

}  // namespace quiverion
