#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "macro/macro_event.h"
#include "platform/files/file_system.h"

/// What a run would do with files, without running: from the macro, the names of the inputs and one listing of each
/// directory. Fields are not read, so a file that fails during the run is planned as if it succeeded.
namespace quiverion {

enum class FileUse : std::uint8_t {
  reads,
  creates,
  replaces,
  appends,
  copies,  // a directory for copies of the field; how many there are depends on the field
};

/// "liest", "neu", "ersetzt", "ergänzt"; "je nach Feld" for copies.
std::string_view WordOf(FileUse use);

/// A command that reads or writes files. One of the macro can be several of these.
struct PlannedCommand {
  enum class Kind : std::uint8_t { read, forgetBuffer, result, append, collect, copies, fail };

  std::int32_t position;  // in the macro, from 0
  Kind kind;
  std::string path = {};      // of the one file for all inputs, or the prefix of a result
  std::string postfix = {};   // of a result, with its extension
  bool exists = false;        // the one file
  bool leavesSeries = false;  // for some input the name leads out of the directory, which ends that file
};

/// One file that is read besides the input, or written.
struct PlannedStep {
  std::int32_t file;     // index of the input
  std::int32_t command;  // index in RunPlan::commands
  FileUse use;
  bool existed = false;       // a result: before the run
  bool isOriginal = false;    // a result with the name of an input
  bool isLaterInput = false;  // of an input that the run reads afterwards
  bool isShared = false;      // another input has the same result
};

/// What is known of a collection that the run appends to.
struct PlannedCollection {
  std::string path;
  std::int64_t contained = 0;  // inputs that it contains already
  std::string problem = {};    // why its list could not be read
};

struct RunPlan {
  std::string directory;  // of the inputs, ends in a separator
  std::vector<std::string> files;
  std::int32_t macroLength = 0;
  std::vector<PlannedCommand> commands;
  std::vector<PlannedStep> steps;          // in the order of the run
  std::vector<std::int32_t> missingFiles;  // inputs that are not in the directory; they have no steps
  std::vector<std::int32_t> unknown;       // positions of commands that the catalogue does not have
  std::vector<PlannedCollection> collections;

  // Counted by name: a result that is written twice counts once.
  std::int64_t replacedOriginals = 0;
  std::int64_t replacedResults = 0;
  std::int64_t createdResults = 0;
  std::int64_t laterInputs = 0;
  std::int64_t sharedResults = 0;  // results that several inputs have, ...
  std::int64_t sharingFiles = 0;   // ... and these inputs

  /// The path of a step; paths are not stored, because a long series has very many.
  std::string PathOf(const PlannedStep& step) const;
};

struct PlanRequest {
  std::string directory;           // ends in a separator
  std::vector<std::string> files;  // names without directory, each once
  MacroEventList macro;
};

/// Computes the plan. Reads no state that another thread changes, so it may run in one of its own. `isCancelled` is
/// asked now and then; after true there is no plan. Files and directories that cannot be read are not errors.
std::optional<RunPlan> PlanRun(
    FileSystem& files, PlanRequest request, const std::function<bool()>& isCancelled = [] { return false; });

enum class Severity {
  note,
  warning,  // results are replaced or not as expected
  danger,   // measurements are replaced
};

struct PlanFinding {
  Severity severity;
  std::string text;  // German, a phrase without a full stop; may contain names with any character
};

/// What a person should know before the run, the most severe first.
std::vector<PlanFinding> FindingsOf(const RunPlan& plan);

/// "3 von 3000 Dateien gewählt"
std::string SelectionText(std::size_t selected, std::size_t all);

}  // namespace quiverion
