#include "macro/series_files.h"

#include <algorithm>

#include "platform/files/paths.h"
#include "platform/text/text.h"

namespace quiverion {

bool IsSeriesFile(const std::string& name) {
  if (name.find('.') == std::string::npos) return false;
  const std::string extension = ExtensionOf(name);
  return extension == "VAS" || extension == "VEC" || extension == "DAT";
}

std::vector<std::string> ListSeriesFiles(FileSystem& files, const std::string& directory) {
  std::vector<std::string> names = files.ListFiles(directory);
  // A name that contains a separator (some systems allow one of the two) would lead to another file.
  std::erase_if(names, [](const std::string& name) { return !IsSeriesFile(name) || FileNameOf(name) != name; });
  std::sort(names.begin(), names.end(), FileNameLess);
  return names;
}

}  // namespace quiverion
