#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "exchange/writers.h"
#include "field/context.h"

namespace quiverion::exchange {

/// VAS, DAT and VEC files as files of another program.
struct ExportJob {
  const ExportKind* kind = nullptr;
  std::string directory;           // of a file for each field
  std::string series;              // one file for all fields, or the index of their files; empty: none
  double timeStep = 0.0;           // seconds between fields; 0: unknown
  std::vector<std::string> paths;  // of the fields

  /// The file for field `k` (from 0).
  std::string TargetOf(std::size_t k) const;

  /// True if all fields go into one file.
  bool IsOneFile() const { return !series.empty() && !IsIndex(); }

  /// True if the series is an index of the fields' files.
  bool IsIndex() const { return !series.empty() && kind->name == "vtk"; }

  /// The path of the series: one without a directory of its own is among the other results. Empty if there is none.
  std::string SeriesPath() const;
};

/// Who watches an export.
struct ExportWatcher {
  std::function<bool(std::size_t k)> begins;            // field `k` is next; false ends the export
  std::function<void(std::size_t k)> written;           // the file of field `k` is complete
  std::function<void(const std::string& lines)> fails;  // German, with line ends
};

enum class ExportEnd { done, failed, aborted };

/// Exports all fields. A file that fails does not stop the others; a series is written completely or not at all, so
/// that there is no gap in time.
ExportEnd ExportFiles(Context& context, const ExportJob& job, const ExportWatcher& watcher);

}  // namespace quiverion::exchange
