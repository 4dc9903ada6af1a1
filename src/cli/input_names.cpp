#include "cli/input_names.h"

#include <algorithm>
#include <unordered_map>

#include "platform/files/paths.h"
#include "platform/process/environment.h"
#include "platform/text/text.h"

namespace quiverion::cli {

std::vector<std::string> FilesOf(FileSystem& files, const std::vector<std::string>& inputs,
                                 bool (*isMeant)(const std::string& name)) {
  std::vector<std::string> paths;
  for (const std::string& input : inputs) {
    if (!files.IsDirectory(AbsolutePath(input))) {
      paths.push_back(input);
      continue;
    }
    std::vector<std::string> names = files.ListFiles(AbsolutePath(input));
    // A name that contains a separator (some systems allow one of the two) would lead to another file.
    std::erase_if(names, [&](const std::string& name) { return !isMeant(name) || FileNameOf(name) != name; });
    std::ranges::sort(names, FileNameLess);
    for (const std::string& name : names) paths.push_back(WithSeparator(input) + name);
  }
  return paths;
}

std::vector<std::string> FilesOfSameName(const std::vector<std::string>& paths) {
  std::unordered_map<std::string, std::string> known;
  for (const std::string& path : paths) {
    const auto [other, isNew] = known.emplace(FileNameKey(BaseNameOf(FileNameOf(path))), path);
    if (!isNew) return {other->second, path};
  }
  return {};
}

}  // namespace quiverion::cli
