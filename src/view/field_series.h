#pragma once

#include <string>
#include <vector>

#include "platform/files/file_system.h"

namespace quiverion {

/// The fields that somebody pages through: the files of a directory in the order of the file list, or those that were
/// given. A file may contain several fields, which is known only after it has been read.
class FieldSeries {
 public:
  /// Several files: these, the first one being the current one. One file: all fields of its directory, the file being
  /// the current one; if the file list does not show it, those of the directory whose names differ only in their
  /// digits. A directory: its fields, none if it has none.
  void Open(FileSystem& files, const std::vector<std::string>& paths);

  /// Looks again which files there are. The current one stays.
  void Reread(FileSystem& files);

  /// The current file has so many fields. They take its place in the series.
  void Expand(std::size_t fieldCount);

  /// A field of the series.
  struct Item {
    std::string path;
    std::size_t field = 0;  // in the file, counted from 0
    bool isPart = false;    // of a file that has been expanded
  };

  bool IsEmpty() const { return items_.empty(); }
  int Count() const { return static_cast<int>(items_.size()); }
  int Current() const { return current_; }
  const Item& At(int index) const { return items_[static_cast<std::size_t>(index)]; }
  const Item& CurrentItem() const { return At(current_); }
  const std::string& CurrentPath() const { return CurrentItem().path; }

  /// False if this is the current one, or there is none.
  bool MoveTo(int index);

  /// Indices of at most `count` fields, spread over the series, the current one first.
  std::vector<int> Sample(int count) const;

 private:
  void OpenWithDirectory(FileSystem& files, const std::string& path);

  std::vector<Item> items_;
  bool isDirectory_ = false;  // all fields of one
  int current_ = 0;
};

}  // namespace quiverion
