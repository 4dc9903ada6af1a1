#pragma once

#include <string>
#include <vector>

#include "platform/files/file_system.h"

namespace quiverion {

/// The fields that somebody pages through: the files of a directory in the order of the file list, or those that were
/// given.
class FieldSeries {
 public:
  /// Several files: these, the first one being the current one. One file: all fields of its directory, the file being
  /// the current one; only the file if the directory does not list it. A directory: its fields, none if it has none.
  void Open(FileSystem& files, const std::vector<std::string>& paths);

  /// Looks again which files there are. The current one stays.
  void Reread(FileSystem& files);

  bool IsEmpty() const { return paths_.empty(); }
  int Count() const { return static_cast<int>(paths_.size()); }
  int Current() const { return current_; }
  const std::string& Path(int index) const { return paths_[static_cast<std::size_t>(index)]; }
  const std::string& CurrentPath() const { return Path(current_); }

  /// False if this is the current one, or there is none.
  bool MoveTo(int index);

  /// Indices of at most `count` fields, spread over the series, the current one first.
  std::vector<int> Sample(int count) const;

 private:
  void OpenWithDirectory(FileSystem& files, const std::string& path);

  std::vector<std::string> paths_;
  bool isDirectory_ = false;  // all fields of one
  int current_ = 0;
};

}  // namespace quiverion
