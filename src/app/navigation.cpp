#include "app/navigation.h"

#include <algorithm>

#include "macro/series_files.h"
#include "platform/paths.h"
#include "platform/text.h"

namespace quiverion {
namespace {

// The ends of "/", "/a", "/a/b" or of "C:\", "C:\a": each names a directory on the way.
std::vector<std::size_t> EndsOfParts(const std::string& path) {
  std::vector<std::size_t> ends;
  for (std::size_t k = 0; k < path.size(); ++k) {
    if (!IsPathSeparator(path[k])) continue;
    ends.push_back(ends.empty() ? k + 1 : k);
  }
  if (ends.empty() || ends.back() < path.size()) ends.push_back(path.size());
  return ends;
}

bool Begins(const std::string& directory, const std::string& drive) {
  if (!directory.starts_with(drive)) return false;
  return directory.size() == drive.size() || IsPathSeparator(drive.back()) || IsPathSeparator(directory[drive.size()]);
}

}  // namespace

std::vector<DirectoryLine> DirectoryLines(const std::string& path, std::vector<std::string> subdirectories) {
  std::vector<DirectoryLine> lines;
  for (const std::size_t end : EndsOfParts(path)) {
    const std::string part = path.substr(0, end);
    if (!lines.empty() && part == lines.back().path) continue;
    const std::string_view name = FileNameOf(part);
    lines.push_back({name.empty() ? part : std::string(name), part, static_cast<int>(lines.size()), true});
  }
  std::ranges::sort(subdirectories, FileNameLess);
  const int depth = static_cast<int>(lines.size());
  for (const std::string& name : subdirectories) lines.push_back({name, WithSeparator(path) + name, depth, false});
  return lines;
}

std::string ParentDirectory(const std::string& path) {
  const std::vector<DirectoryLine> lines = DirectoryLines(path, {});
  return lines.size() < 2 ? std::string() : lines[lines.size() - 2].path;
}

std::string DriveOf(const std::vector<std::string>& drives, const std::string& directory) {
  std::string longest;
  for (const std::string& drive : drives) {
    if (drive.size() > longest.size() && Begins(directory, drive)) longest = drive;
  }
  return longest;
}

std::string NearestDirectory(FileSystem& files, const std::string& directory) {
  std::string nearest = directory;
  for (std::string above = directory; !above.empty(); above = ParentDirectory(above)) {
    nearest = above;
    try {
      files.ListDirectories(above);
      break;
    } catch (const SystemError&) {  // the one above it
    }
  }
  return nearest;
}

DroppedSelection SelectionOf(FileSystem& files, const std::vector<std::string>& paths) {
  DroppedSelection selection;
  for (const std::string& path : paths) {
    if (files.IsDirectory(path)) {
      if (selection.directory.empty()) return {path, {}, true};
      continue;
    }
    const std::string parent = ParentDirectory(path);
    const std::string name(FileNameOf(path));
    if (parent.empty() || !IsSeriesFile(name)) continue;
    if (selection.directory.empty()) selection.directory = parent;
    if (parent == selection.directory) selection.names.push_back(name);
  }
  return selection;
}

std::string HelpFileOf(std::string_view commandLine, const std::string& programDirectory) {
  return commandLine == "::IDESTART" ? std::string() : WithSeparator(programDirectory) + "Quiverion.hlp";
}

}  // namespace quiverion
