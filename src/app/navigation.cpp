#include "app/navigation.h"

#include <algorithm>

#include "macro/series_files.h"
#include "messages/failure.h"
#include "platform/files/paths.h"
#include "platform/text/text.h"

namespace quiverion {
namespace {

// The length of the root of a path: "/", "C:\", "\\server\share".
std::size_t EndOfRoot(const std::string& path) {
  if (path.starts_with("\\\\")) {
    const std::size_t server = std::min(path.find('\\', 2), path.size());
    return std::min(path.find('\\', server + 1), path.size());
  }
  const std::size_t first = path.find_first_of("\\/");
  return first == std::string::npos ? path.size() : first + 1;
}

// The ends of "/", "/a", "/a/b" or of "C:\", "C:\a": the directories along the path.
std::vector<std::size_t> EndsOfParts(const std::string& path) {
  std::vector<std::size_t> ends = {EndOfRoot(path)};
  for (std::size_t k = ends.front() + 1; k < path.size(); ++k) {
    if (IsPathSeparator(path[k]) && !IsPathSeparator(path[k - 1])) ends.push_back(k);
  }
  if (ends.back() < path.size() && !IsPathSeparator(path.back())) ends.push_back(path.size());
  return ends;
}

bool Begins(const std::string& directory, const std::string& drive) {
  const bool ofLetter = drive.size() > 1 && drive[1] == ':';  // in upper or lower case
  const std::string beginning = directory.substr(0, drive.size());
  if (beginning != drive && !(ofLetter && AsciiUpper(beginning) == AsciiUpper(drive))) return false;
  return directory.size() == drive.size() || IsPathSeparator(drive.back()) || IsPathSeparator(directory[drive.size()]);
}

}  // namespace

std::vector<DirectoryLine> DirectoryLines(const std::string& path, std::vector<std::string> subdirectories) {
  std::vector<DirectoryLine> lines;
  for (const std::size_t end : EndsOfParts(path)) {
    const std::string part = path.substr(0, end);
    lines.push_back({lines.empty() ? part : std::string(FileNameOf(part)), part, static_cast<int>(lines.size()), true});
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

std::string NearestDirectory(FileSystem& files, const std::string& directory, const std::vector<std::string>& drives) {
  const auto canBeListed = [&files](const std::string& path) { return !Attempt([&] { files.ListDirectories(path); }); };
  std::string nearest = directory;
  for (std::string above = directory; !above.empty(); above = ParentDirectory(above)) {
    nearest = above;
    if (canBeListed(nearest)) return nearest;
  }
  const auto other = std::ranges::find_if(drives, canBeListed);
  return other == drives.end() ? nearest : *other;
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
