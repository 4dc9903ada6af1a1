#include "preview/buffer_use.h"

#include <algorithm>

#include "macro/command_catalogue.h"
#include "messages/failure.h"

namespace quiverion {
namespace {

enum class Use { none, copies, loads, reads };

Use UseOf(const MacroEvent& event) {
  const CommandRow* row = nullptr;
  if (Attempt([&] { row = FindCommand(event.EventId()); }) || row == nullptr || row->IsMenu()) return Use::none;
  constexpr std::int32_t bufferMenu = 20000;
  if (row->parent != bufferMenu) return Use::none;
  if (row->editor.kind == EditorKind::bufferFile) return Use::loads;
  return row->constantName == "evtCopyToBuffer" ? Use::copies : Use::reads;
}

std::string PathOf(const MacroEvent& event) {
  std::string path;
  Attempt([&] { path = event.Path("FileName"); });  // without one, the command fails when it runs
  return path;
}

// The first command whose outcome depends on the buffer as it was; `mayHaveName` says whether it may be a copy of the
// file at a path, which is then not loaded again.
template <class MayHaveName>
std::optional<std::size_t> FirstDependent(const MacroEventList& macro, MayHaveName mayHaveName) {
  for (std::size_t k = 0; k < macro.size(); ++k) {
    switch (UseOf(macro[k])) {
      case Use::none:
        break;
      case Use::copies:
        return std::nullopt;
      case Use::loads:
        if (mayHaveName(PathOf(macro[k]))) return k;
        return std::nullopt;
      case Use::reads:
        return k;
    }
  }
  return std::nullopt;
}

}  // namespace

bool UsesBuffer(const MacroEventList& macro) {
  return std::ranges::any_of(macro, [](const MacroEvent& event) { return UseOf(event) != Use::none; });
}

bool UsesBufferBeforeRun(const MacroEventList& macro, const std::string& copiedFrom) {
  return FirstDependent(macro, [&](const std::string& path) { return path == copiedFrom; }).has_value();
}

std::optional<std::size_t> CommandThatNeedsEarlierFiles(const MacroEventList& macro, const BufferBefore& before) {
  if (before.earlierPaths.empty()) return std::nullopt;
  const auto has = [&](Use use) {
    return std::ranges::any_of(macro, [use](const MacroEvent& event) { return UseOf(event) == use; });
  };
  const bool copies = has(Use::copies), loads = has(Use::loads);
  if (!copies && !loads) return std::nullopt;  // nobody changes the buffer
  return FirstDependent(macro, [&](const std::string& path) {
    return path == before.copiedFrom || (copies && std::ranges::count(before.earlierPaths, path) > 0);
  });
}

}  // namespace quiverion
