#include "platform/files/paths.h"

#include <algorithm>
#include <utility>

#include "platform/text/text.h"

namespace quiverion {

std::string_view FileNameOf(std::string_view path) {
  const std::size_t last = path.find_last_of("\\/");
  return last == std::string_view::npos ? path : path.substr(last + 1);
}

std::string_view DirectoryOf(std::string_view path) {
  const std::size_t last = path.find_last_of("\\/");
  return last == std::string_view::npos ? std::string_view() : path.substr(0, last);
}

std::string DirectoryPrefixOf(std::string_view path) {
  return std::string(path.substr(0, path.size() - FileNameOf(path).size()));
}

std::string_view BaseNameOf(std::string_view fileName) {
  return fileName.substr(0, fileName.rfind('.'));
}

std::string ExtensionOf(std::string_view fileName) {
  return AsciiUpper(fileName.substr(fileName.rfind('.') + 1));
}

bool LeadsUpwards(std::string_view path) {
  while (!path.empty()) {
    const std::string_view part = path.substr(0, path.find_first_of("\\/"));
    if (part.find_first_not_of(". ") == std::string_view::npos && std::count(part.begin(), part.end(), '.') > 1) {
      return true;
    }
    path.remove_prefix(std::min(part.size() + 1, path.size()));
  }
  return false;
}

std::string WithSeparator(std::string directory) {
  if (directory.empty() || !IsPathSeparator(directory.back())) directory.push_back(kPathSeparator);
  return directory;
}

std::string WithOwnSeparators(std::string path) {
  std::replace_if(path.begin(), path.end(), IsPathSeparator, kPathSeparator);
  return path;
}

std::string TypedPath(std::string path) {
  return kPathSeparator == '\\' ? WithOwnSeparators(std::move(path)) : path;
}

}  // namespace quiverion
