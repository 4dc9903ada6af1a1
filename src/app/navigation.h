#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/files/file_system.h"

/// The decisions of the drive, directory and file lists. Paths are the bytes that the system uses.
namespace quiverion {

/// A line of the directory list.
struct DirectoryLine {
  std::string name;
  std::string path;
  int depth = 0;
  bool open = false;  // the directory itself and those above it
};

/// The directories from the root ("/", "C:\", "\\server\share") down to `path`, then those in it, sorted by name.
std::vector<DirectoryLine> DirectoryLines(const std::string& path, std::vector<std::string> subdirectories);

/// The directory that contains `path`; empty for a root and for a name without a directory.
std::string ParentDirectory(const std::string& path);

/// The drive that contains `directory`: the longest of `drives` that it begins with; empty if there is none.
std::string DriveOf(const std::vector<std::string>& drives, const std::string& directory);

/// `directory` or the nearest directory above it that can be listed, else the first drive that can; the root if none
/// can.
std::string NearestDirectory(FileSystem& files, const std::string& directory, const std::vector<std::string>& drives);

/// The selection that results from files or a directory dropped on the window.
struct DroppedSelection {
  std::string directory;           // empty: nothing can be selected
  std::vector<std::string> names;  // ignored if `everything`
  bool everything = false;
};

/// A directory selects all its files; otherwise the files in the directory of the first one are selected.
DroppedSelection SelectionOf(FileSystem& files, const std::vector<std::string>& paths);

/// The help file in the program's directory; empty if the command line is exactly "::IDESTART", as when started from a
/// development environment. Everything else on the command line is ignored.
std::string HelpFileOf(std::string_view commandLine, const std::string& programDirectory);

}  // namespace quiverion
