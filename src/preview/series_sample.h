#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "preview/macro_preview.h"
#include "preview/search_report.h"

/// The macro over some files of a series: what it would do to each.
namespace quiverion {

/// What the macro does to one file.
struct SampledFile {
  std::size_t index = 0;      ///< in the series
  std::int64_t points = 0;    ///< of the grid that are not masked
  std::int64_t rejected = 0;  ///< by all steps together
  std::int64_t filled = 0;
  bool failed = false;    ///< it could not be loaded, or a step ended it
  bool isKnown = true;    ///< false: a step depends on the files before
  bool isOdd = false;     ///< set by MarkOdd
  SearchReport search{};  ///< of the step that was asked for

  double RejectedShare() const { return points > 0 ? static_cast<double>(rejected) / static_cast<double>(points) : 0; }
  double FilledShare() const { return points > 0 ? static_cast<double>(filled) / static_cast<double>(points) : 0; }
};

/// Indices of at most `count` of `total` files, evenly spread, ascending, the first and the last among them.
std::vector<std::size_t> SpreadEvenly(std::size_t total, std::size_t count);

/// Runs all steps of `preview`, which has begun with this file. `searchStep` is a step whose search is to be reported.
/// Throws as MacroPreview does.
SampledFile SampleFile(MacroPreview& preview, const MacroEventList& macro, std::optional<std::size_t> searchStep);

/// Marks the files that failed, and those whose rejected or filled share lies more than 5 robust standard deviations
/// (at least 0.1 % of the points each) from that of the others.
void MarkOdd(std::vector<SampledFile>& files);

}  // namespace quiverion
