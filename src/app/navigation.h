#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/files/file_system.h"

/// What the drive, directory and file lists decide. Paths are the bytes the system uses.
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

/// The directory that holds `path`; an empty text for a root and for a name alone.
std::string ParentDirectory(const std::string& path);

/// The drive that holds `directory`: the longest of `drives` that it begins with; an empty text where there is none.
std::string DriveOf(const std::vector<std::string>& drives, const std::string& directory);

/// `directory` or the nearest one above it that can be listed, else the first such drive; the root where none can.
std::string NearestDirectory(FileSystem& files, const std::string& directory, const std::vector<std::string>& drives);

/// What files or a directory dropped on the window select.
struct DroppedSelection {
  std::string directory;           // empty: nothing of it can be selected
  std::vector<std::string> names;  // all files of the directory where `everything`
  bool everything = false;
};

/// A directory selects all its files; else the files that lie in the directory of the first one are selected.
DroppedSelection SelectionOf(FileSystem& files, const std::vector<std::string>& paths);

/// The help file beside the program; none (an empty text) where the program was started as a development environment
/// starts it, with exactly "::IDESTART". Nothing else on the command line means anything.
std::string HelpFileOf(std::string_view commandLine, const std::string& programDirectory);

}  // namespace quiverion
