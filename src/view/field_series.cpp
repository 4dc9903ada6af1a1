#include "view/field_series.h"

#include <algorithm>

#include "macro/series_files.h"
#include "messages/failure.h"
#include "platform/files/paths.h"
#include "platform/process/environment.h"

namespace quiverion {

void FieldSeries::OpenWithDirectory(FileSystem& files, const std::string& path) {
  const bool isDirectory = files.IsDirectory(path);
  const std::string directory = isDirectory ? path : std::string(DirectoryOf(path));
  std::vector<std::string> names;
  Attempt([&] { names = ListSeriesFiles(files, directory.empty() ? "." : directory); });
  const std::string prefix = isDirectory ? WithSeparator(path) : DirectoryPrefixOf(path);
  paths_.clear();
  current_ = 0;
  const std::string key = FileNameKey(FileNameOf(path));
  bool found = isDirectory;
  for (const std::string& name : names) {
    if (!found && FileNameKey(name) == key) {
      current_ = Count();
      found = true;
    }
    paths_.push_back(prefix + name);
  }
  if (!found) paths_ = {path};
}

void FieldSeries::Open(FileSystem& files, const std::vector<std::string>& paths) {
  isDirectory_ = paths.size() == 1;
  if (isDirectory_) return OpenWithDirectory(files, paths.front());
  paths_ = paths;
  current_ = 0;
}

void FieldSeries::Reread(FileSystem& files) {
  if (isDirectory_ && !IsEmpty()) OpenWithDirectory(files, std::string(CurrentPath()));
}

bool FieldSeries::MoveTo(int index) {
  if (IsEmpty()) return false;
  const int next = std::clamp(index, 0, Count() - 1);
  return std::exchange(current_, next) != next;
}

std::vector<int> FieldSeries::Sample(int count) const {
  std::vector<int> sample;
  if (IsEmpty()) return sample;
  sample.push_back(current_);
  const int others = std::min(count, Count());
  for (int k = 0; k < others && static_cast<int>(sample.size()) < count; ++k) {
    const int index = others == 1 ? 0 : static_cast<int>(static_cast<std::int64_t>(k) * (Count() - 1) / (others - 1));
    if (index != current_) sample.push_back(index);
  }
  return sample;
}

}  // namespace quiverion
