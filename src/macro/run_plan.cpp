#include "macro/run_plan.h"

#include <algorithm>
#include <map>
#include <span>
#include <utility>

#include "macro/command_catalogue.h"
#include "macro/directory_names.h"
#include "macro/result_names.h"
#include "messages/failure.h"
#include "platform/files/paths.h"
#include "platform/process/environment.h"
#include "platform/text/text.h"
#include "statistics/collection_contents.h"
#include "statistics/collection_file.h"

namespace quiverion {
namespace {

using Kind = PlannedCommand::Kind;

constexpr std::int32_t kBetweenQuestions = 256;  // files or records between two questions whether to go on

std::string ResultOf(const PlannedCommand& command, std::string_view input) {
  return ResultName(command.path, input, command.postfix);
}

// The commands that the catalogue gives a role in reading and writing files.
class CommandReader {
 public:
  CommandReader(FileSystem& files, RunPlan& plan) : files_(files), plan_(plan) {}

  void Read(const MacroEventList& macro) {
    plan_.macroLength = static_cast<std::int32_t>(macro.size());
    for (const MacroEvent& event : macro) {
      // A damaged macro may lack a value. The command then fails, and with it the file.
      if (Attempt([&] { ReadCommand(event); })) Add(Kind::fail, {});
      ++position_;
    }
  }

 private:
  void ReadCommand(const MacroEvent& event) {
    const CommandRow* const row = FindCommand(event.EventId());
    if (row == nullptr) return plan_.unknown.push_back(position_);
    if (!row->resultExtension.empty()) {
      Add(Kind::result, event.Text("Prefix")).postfix = event.Text("Postfix").append(row->resultExtension);
    } else if (row->constantName == "evtCopyToBuffer") {
      Add(Kind::forgetBuffer, {});
    } else {
      for (const Parameter& parameter : row->parameters) ReadFile(*row, parameter, event);
    }
  }

  void ReadFile(const CommandRow& row, const Parameter& parameter, const MacroEvent& event) {
    if (parameter.role == FileRole::none) return;
    if (parameter.kind == ParameterKind::flag) {
      if (event.Flag(parameter.key)) Add(Kind::copies, {});
      return;
    }
    std::string path = event.Path(parameter.key);
    if (path.empty()) return;  // nothing is appended
    const Kind append = row.editor.kind == EditorKind::collectionFile ? Kind::collect : Kind::append;
    PlannedCommand& command = Add(parameter.role == FileRole::reads ? Kind::read : append, std::move(path));
    command.exists = command.kind == Kind::read ? FileExists(files_, command.path) : IsThere(command.path);
  }

  // Also if it cannot be opened now: it may be locked.
  bool IsThere(const std::string& path) {
    const auto failure = Attempt([&] { files_.OpenForReading(path); });
    return !failure || (failure->error.Number() != ErrorNumber::fileNotFound &&
                        failure->error.Number() != ErrorNumber::pathNotFound);
  }

  PlannedCommand& Add(Kind kind, std::string path) {
    return plan_.commands.emplace_back(PlannedCommand{position_, kind, std::move(path)});
  }

  FileSystem& files_;
  RunPlan& plan_;
  std::int32_t position_ = 0;
};

class Planning {
 public:
  Planning(FileSystem& files, RunPlan& plan, const std::function<bool()>& isCancelled)
      : files_(files), plan_(plan), isCancelled_(isCancelled), names_(files) {}

  // False if it was cancelled.
  bool Run(const MacroEventList& macro) {
    CommandReader(files_, plan_).Read(macro);
    for (const PlannedCommand& command : plan_.commands) appended_[command.path] = command.exists;
    for (std::int32_t k = 0; k < Count(plan_.files); ++k) {
      if (k % kBetweenQuestions == 0 && isCancelled_()) return false;
      PlanFile(k);
    }
    if (isCancelled_()) return false;
    CompareResults();
    for (std::size_t k = 0; k < plan_.commands.size(); ++k) {
      if (plan_.commands[k].kind == Kind::collect && !LookInto(plan_.commands[k])) return false;
    }
    return true;
  }

 private:
  template <class List>
  static std::int32_t Count(const List& list) {
    return static_cast<std::int32_t>(list.size());
  }

  void PlanFile(std::int32_t file) {
    const std::string& name = plan_.files[static_cast<std::size_t>(file)];
    if (!names_.Contains(plan_.directory, name)) return plan_.missingFiles.push_back(file);
    for (std::int32_t k = 0; k < Count(plan_.commands); ++k) {
      if (!PlanCommand(file, k, name)) return;
    }
  }

  // False if the command fails, which ends the file.
  bool PlanCommand(std::int32_t file, std::int32_t index, const std::string& name) {
    PlannedCommand& command = plan_.commands[static_cast<std::size_t>(index)];
    switch (command.kind) {
      case Kind::fail:
        return false;
      case Kind::forgetBuffer:
        buffer_ = nullptr;
        return true;
      case Kind::read:  // what is in the buffer already is not read again
        if (buffer_ == nullptr || *buffer_ != command.path) plan_.steps.push_back({file, index, FileUse::reads});
        buffer_ = &command.path;
        return command.exists;
      case Kind::append:
      case Kind::collect:
        plan_.steps.push_back(
            {file, index, std::exchange(appended_[command.path], true) ? FileUse::appends : FileUse::creates});
        return true;
      case Kind::copies:
        plan_.steps.push_back({file, index, FileUse::copies});
        return true;
      case Kind::result:
        break;
    }
    const std::string result = ResultOf(command, name);
    if (LeadsUpwards(result)) {
      command.leavesSeries = true;
      return false;
    }
    const std::string_view fileName = FileNameOf(result);
    const std::string directory = plan_.directory + result.substr(0, result.size() - fileName.size());
    plan_.steps.push_back({file, index, FileUse::creates, names_.Contains(directory, fileName)});
    return true;
  }

  // A name that the run reads or writes: an input, or the result of a step.
  struct Name {
    std::size_t hash;
    std::int32_t item;  // input, or the number of inputs + step
  };

  std::string KeyOfItem(std::int32_t item) const {
    if (item < Count(plan_.files)) return RelativeNameKey(plan_.files[static_cast<std::size_t>(item)]);
    const PlannedStep& step = plan_.steps[static_cast<std::size_t>(item - Count(plan_.files))];
    return RelativeNameKey(ResultOf(plan_.commands[static_cast<std::size_t>(step.command)],
                                    plan_.files[static_cast<std::size_t>(step.file)]));
  }

  bool IsResult(const PlannedStep& step) const {
    return plan_.commands[static_cast<std::size_t>(step.command)].kind == Kind::result;
  }

  // Finds out which results have the same name, or that of an input. Sorts hashes, because the names themselves would
  // take far more memory.
  void CompareResults() {
    std::vector<Name> all;
    all.reserve(plan_.files.size() + plan_.steps.size());
    const std::int32_t inputs = Count(plan_.files);
    for (std::int32_t item = 0; item < inputs + Count(plan_.steps); ++item) {
      if (item >= inputs && !IsResult(plan_.steps[static_cast<std::size_t>(item - inputs)])) continue;
      all.push_back({std::hash<std::string>()(KeyOfItem(item)), item});
    }
    std::ranges::sort(all, {}, [](const Name& name) { return std::pair(name.hash, name.item); });
    for (std::size_t begin = 0, end = 0; begin < all.size(); begin = end) {
      while (end < all.size() && all[end].hash == all[begin].hash) ++end;
      if (end - begin == 1) {
        Compare(std::span(&all[begin].item, 1));
        continue;
      }
      std::map<std::string, std::vector<std::int32_t>> groups;  // nearly always one
      for (std::size_t k = begin; k < end; ++k) groups[KeyOfItem(all[k].item)].push_back(all[k].item);
      for (const auto& [key, items] : groups) Compare(items);
    }
  }

  // All items of one name, in the order of the run.
  void Compare(std::span<const std::int32_t> items) {
    const std::int32_t inputs = Count(plan_.files);
    const std::int32_t input = items.front() < inputs ? items.front() : -1;
    if (input >= 0) items = items.subspan(1);
    if (items.empty()) return;
    const auto step = [&](std::int32_t item) -> PlannedStep& {
      return plan_.steps[static_cast<std::size_t>(item - inputs)];
    };
    const PlannedStep first = step(items.front());
    std::int64_t sharing = 1;
    for (std::size_t k = 1; k < items.size(); ++k) sharing += step(items[k]).file != step(items[k - 1]).file ? 1 : 0;
    for (const std::int32_t item : items) {
      PlannedStep& result = step(item);
      if (result.existed || item != items.front()) result.use = FileUse::replaces;
      result.isOriginal = input >= 0;
      result.isLaterInput = result.file < input;
      result.isShared = sharing > 1;
    }
    (input >= 0 ? plan_.replacedOriginals : first.existed ? plan_.replacedResults : plan_.createdResults) += 1;
    plan_.laterInputs += first.file < input ? 1 : 0;
    if (sharing == 1) return;
    ++plan_.sharedResults;
    plan_.sharingFiles += sharing;
  }

  // False if it was cancelled.
  bool LookInto(const PlannedCommand& command) {
    const auto isSame = [&](const PlannedCollection& known) { return known.path == command.path; };
    if (!command.exists || std::ranges::any_of(plan_.collections, isSame)) return true;
    PlannedCollection& collection = plan_.collections.emplace_back(PlannedCollection{command.path});
    std::vector<std::pair<std::size_t, std::int32_t>> stored;  // hash of the path in a collection, input
    stored.reserve(plan_.files.size());
    for (std::int32_t k = 0; k < Count(plan_.files); ++k) {
      stored.emplace_back(std::hash<std::string>()(StoredSourcePath(k)), k);
    }
    std::ranges::sort(stored);
    std::vector<bool> counted(plan_.files.size());
    bool goOn = true;
    std::int32_t record = 0;
    const auto failure = Attempt([&] {
      VisitSourcePaths(files_, command.path, [&](const std::string& path) {
        if (record++ % kBetweenQuestions == 0) goOn = !isCancelled_();
        auto found = std::ranges::lower_bound(stored, std::pair(std::hash<std::string>()(path), std::int32_t{0}));
        for (; found != stored.end() && found->first == std::hash<std::string>()(path); ++found) {
          const auto file = static_cast<std::size_t>(found->second);
          if (counted[file] || StoredSourcePath(found->second) != path) continue;
          counted[file] = true;
          ++collection.contained;
        }
        return goOn;
      });
    });
    if (failure) {
      collection.problem = failure->formatMessage ? TrimBlanks(*failure->formatMessage) : ErrorText(failure->error);
    }
    return goOn;
  }

  std::string StoredSourcePath(std::int32_t file) const {
    return SourcePathInCollection(plan_.directory + plan_.files[static_cast<std::size_t>(file)]);
  }

  FileSystem& files_;
  RunPlan& plan_;
  const std::function<bool()>& isCancelled_;
  DirectoryNames names_;
  std::map<std::string, bool> appended_;  // whether the one file of all inputs exists by now
  const std::string* buffer_ = nullptr;   // the file in the buffer, null if unknown
};

}  // namespace

std::string_view WordOf(FileUse use) {
  switch (use) {
    case FileUse::reads:
      return "liest";
    case FileUse::creates:
      return "neu";
    case FileUse::replaces:
      return "ersetzt";
    case FileUse::appends:
      return "ergänzt";
    case FileUse::copies:
      break;
  }
  return "je nach Feld";
}

std::string RunPlan::PathOf(const PlannedStep& step) const {
  const PlannedCommand& command = commands[static_cast<std::size_t>(step.command)];
  const std::string& name = files[static_cast<std::size_t>(step.file)];
  if (command.kind == Kind::result) return directory + ResultOf(command, name);
  if (command.kind == Kind::copies) return directory + std::string(BaseNameOf(name)) + kPathSeparator;
  return command.path;
}

std::optional<RunPlan> PlanRun(FileSystem& files, PlanRequest request, const std::function<bool()>& isCancelled) {
  RunPlan plan;
  plan.directory = std::move(request.directory);
  plan.files = std::move(request.files);
  if (!Planning(files, plan, isCancelled).Run(request.macro)) return std::nullopt;
  return plan;
}

}  // namespace quiverion
