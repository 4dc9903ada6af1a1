#pragma once

#include <string>
#include <vector>

#include "platform/files/file_system.h"

namespace quiverion {

/// The fields that somebody pages through: the files of a directory in the order of the file list, or those that were
/// given.
class FieldSeries {
 public:
  /// All fields of the directory of `path`, `path` being the current one; of a directory the first one. Only `path` if
  /// the directory cannot be listed, or does not list it.
  void OpenWithDirectory(FileSystem& files, const std::string& path);

  /// These files, the first one being the current one.
  void Open(std::vector<std::string> paths);

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
  std::vector<std::string> paths_;
  int current_ = 0;
};

}  // namespace quiverion
