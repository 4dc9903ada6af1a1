#pragma once

#include <deque>
#include <string>
#include <string_view>
#include <unordered_set>

#include "platform/files/file_system.h"

namespace quiverion {

/// Answers which files exist from one listing of each directory: asking the system for every file of a series takes
/// many times as long. Keeps the listings of a few directories.
class DirectoryNames {
 public:
  explicit DirectoryNames(FileSystem& files) : files_(files) {}

  /// `directory` ends in a separator. A directory that cannot be listed is asked for the file itself.
  bool Contains(const std::string& directory, std::string_view name);

 private:
  struct Listing {
    std::string directory;
    bool isComplete = false;
    std::unordered_set<std::string> keys;  // of the names
  };

  const Listing& ListingOf(const std::string& directory);

  FileSystem& files_;
  std::deque<Listing> listings_;  // the directory asked last in front
};

}  // namespace quiverion
