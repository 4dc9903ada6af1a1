#include "macro/result_names.h"

#include <algorithm>
#include <unordered_map>

#include "macro/command_catalogue.h"
#include "messages/failure.h"
#include "platform/files/paths.h"
#include "platform/process/environment.h"

namespace quiverion {

std::string ResultName(std::string_view prefix, std::string_view input, std::string_view postfix) {
  return WithOwnSeparators(std::string(prefix).append(BaseNameOf(input)).append(postfix));
}

std::string RelativeNameKey(std::string_view name) {
  if (std::ranges::none_of(name, IsPathSeparator)) return FileNameKey(name);
  std::string key;
  while (!name.empty()) {
    const std::string_view part = name.substr(0, name.find_first_of("\\/"));
    name.remove_prefix(std::min(part.size() + 1, name.size()));
    if (part.empty() || part == ".") continue;
    if (!key.empty()) key.push_back(kPathSeparator);
    key.append(FileNameKey(part));
  }
  return key;
}

std::vector<bool> ResultsAmong(const std::vector<std::string>& names, const MacroEventList& macro) {
  std::vector<bool> isResult(names.size());
  std::unordered_map<std::string, std::size_t> places;
  for (const MacroEvent& event : macro) {
    const CommandRow* const row = FindCommand(event.EventId());
    if (row == nullptr || row->resultExtension.empty()) continue;
    std::string prefix, postfix;
    const auto isDamaged = Attempt([&] {
      prefix = event.Text("Prefix");
      postfix = event.Text("Postfix").append(row->resultExtension);
    });
    if (isDamaged) continue;
    if (places.empty()) {
      for (std::size_t k = 0; k < names.size(); ++k) places.emplace(FileNameKey(names[k]), k);
    }
    for (std::size_t k = 0; k < names.size(); ++k) {
      const auto found = places.find(RelativeNameKey(ResultName(prefix, names[k], postfix)));
      if (found != places.end() && found->second != k) isResult[found->second] = true;
    }
  }
  return isResult;
}

}  // namespace quiverion
