#include "macro/directory_names.h"

#include <algorithm>
#include <utility>

#include "messages/failure.h"
#include "platform/process/environment.h"

namespace quiverion {
namespace {

constexpr std::size_t kKeptListings = 8;

}  // namespace

bool DirectoryNames::Contains(const std::string& directory, std::string_view name) {
  const Listing& listing = ListingOf(directory);
  if (listing.isComplete) return listing.keys.contains(FileNameKey(name));
  return FileExists(files_, directory + std::string(name));
}

const DirectoryNames::Listing& DirectoryNames::ListingOf(const std::string& directory) {
  const auto known = std::ranges::find(listings_, directory, &Listing::directory);
  if (known != listings_.end()) {
    std::rotate(listings_.begin(), known, known + 1);
    return listings_.front();
  }
  if (listings_.size() == kKeptListings) listings_.pop_back();
  Listing& listing = listings_.emplace_front();
  listing.directory = directory;
  std::vector<std::string> names;
  listing.isComplete = !Attempt([&] { names = files_.ListFiles(directory); });
  listing.keys.reserve(names.size());
  for (std::string& name : names) listing.keys.insert(FileNameKey(std::exchange(name, {})));
  return listing;
}

}  // namespace quiverion
