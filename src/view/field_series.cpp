#include "view/field_series.h"

#include <algorithm>

#include "macro/series_files.h"
#include "messages/failure.h"
#include "platform/files/paths.h"
#include "platform/process/environment.h"
#include "platform/text/text.h"

namespace quiverion {
namespace {

std::string WithoutDigits(std::string name) {
  std::erase_if(name, [](char c) { return c >= '0' && c <= '9'; });
  return name;
}

// The files of a directory whose names differ from `name` only in their digits.
std::vector<std::string> FilesLike(FileSystem& files, const std::string& directory, const std::string& name) {
  std::vector<std::string> names = files.ListFiles(directory);
  std::erase_if(names, [kind = WithoutDigits(name)](const std::string& each) {
    return WithoutDigits(each) != kind || FileNameOf(each) != each;
  });
  std::ranges::sort(names, FileNameLess);
  return names;
}

}  // namespace

void FieldSeries::OpenWithDirectory(FileSystem& files, const std::string& path) {
  const bool isDirectory = files.IsDirectory(path);
  const std::string directory = isDirectory ? path : std::string(DirectoryOf(path));
  const std::string name(FileNameOf(path)), listed = directory.empty() ? "." : directory;
  std::vector<std::string> names;
  Attempt([&] {
    names = isDirectory || IsSeriesFile(name) ? ListSeriesFiles(files, listed) : FilesLike(files, listed, name);
  });
  const std::string prefix = isDirectory ? WithSeparator(path) : DirectoryPrefixOf(path);
  items_.clear();
  current_ = 0;
  const std::string key = FileNameKey(name);
  bool found = isDirectory;
  for (const std::string& each : names) {
    if (!found && FileNameKey(each) == key) {
      current_ = Count();
      found = true;
    }
    items_.push_back({.path = prefix + each});
  }
  if (!found) items_ = {{.path = path}};
}

void FieldSeries::Open(FileSystem& files, const std::vector<std::string>& paths) {
  isDirectory_ = paths.size() == 1;
  if (isDirectory_) return OpenWithDirectory(files, paths.front());
  items_.clear();
  for (const std::string& path : paths) items_.push_back({.path = path});
  current_ = 0;
}

void FieldSeries::Reread(FileSystem& files) {
  if (!isDirectory_ || IsEmpty()) return;
  const Item before = CurrentItem();
  OpenWithDirectory(files, before.path);
  items_[static_cast<std::size_t>(current_)].field = before.field;
}

void FieldSeries::Expand(std::size_t fieldCount) {
  const Item file = CurrentItem();
  if (file.isPart || fieldCount < 2) return;
  const auto place = items_.erase(items_.begin() + current_);
  std::vector<Item> parts;
  for (std::size_t k = 0; k < fieldCount; ++k) parts.push_back({.path = file.path, .field = k, .isPart = true});
  items_.insert(place, parts.begin(), parts.end());
  current_ += static_cast<int>(std::min(file.field, fieldCount - 1));
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
