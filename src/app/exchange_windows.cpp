#include "app/exchange_windows.h"

#include <algorithm>
#include <map>
#include <set>

#include "dialogs/exchange/frmExport.h"
#include "dialogs/exchange/frmImport.h"
#include "dialogs/widgets/run_modal.h"
#include "exchange/formats.h"
#include "messages/failure.h"
#include "platform/files/paths.h"

namespace quiverion {
namespace {

bool IsForeign(FileSystem& files, const std::string& path) {
  const exchange::ForeignFormat* format = nullptr;
  Attempt([&] { format = exchange::RecogniseFormat(*files.OpenForReading(path)); });
  return format != nullptr && format->isForeign;
}

}  // namespace

std::vector<std::string> TakeForeignFiles(FileSystem& files, std::vector<std::string>& paths) {
  constexpr std::size_t kLookedAt = 5;
  std::map<std::string, std::vector<std::string>> byExtension;
  for (const std::string& path : paths) {
    const std::string extension = ExtensionOf(FileNameOf(path));
    const bool isOwn = extension == "VAS" || extension == "MAK" || extension == "COL";
    if (!isOwn && !files.IsDirectory(path)) byExtension[extension].push_back(path);
  }
  std::vector<std::string> foreign;
  for (const auto& [extension, group] : byExtension) {
    const auto end = group.begin() + static_cast<std::ptrdiff_t>(std::min(group.size(), kLookedAt));
    const bool isForeign = std::any_of(group.begin(), end, [&](const auto& path) { return IsForeign(files, path); });
    if (isForeign) foreign.insert(foreign.end(), group.begin(), group.end());
  }
  std::erase_if(paths, [known = std::set<std::string>(foreign.begin(), foreign.end())](const std::string& path) {
    return known.contains(path);
  });
  return foreign;
}

void ExchangeWindows::ShowImport(QWidget& parent, const std::string& directory, const std::vector<std::string>& paths) {
  std::vector<std::string> names;
  std::string imported;
  {
    frmImport window({machine_.files, machine_.clock, messages_}, &parent);
    window.BeginIn(directory);
    window.AddPaths(paths);
    RunModal(window);
    names = window.ImportedNames();
    imported = window.ImportedDirectory();
  }
  if (!names.empty()) emit FilesChosen(imported, names);
}

void ExchangeWindows::ShowExport(QWidget& parent, const std::string& directory, const std::vector<std::string>& names) {
  frmExport window({machine_.files, machine_.clock, messages_}, &parent);
  std::vector<std::string> paths;
  for (const std::string& name : names) paths.push_back(WithSeparator(directory) + name);
  window.AddPaths(paths);
  if (paths.empty()) window.SetDirectory(directory);
  RunModal(window);
}

}  // namespace quiverion
