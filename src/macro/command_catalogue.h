#pragma once

#include <cstdint>
#include <limits>
#include <span>
#include <string>
#include <string_view>

#include "field/context.h"
#include "macro/macro_event.h"

/// Everything the program knows about its commands, one row each: tree, texts, macro file, JSON form, size estimate,
/// checks before a run, dispatch and dialogs derive from it. CONTRIBUTING.md says what else a new command needs.
namespace quiverion {

/// What a value is for the user (and in JSON).
enum class ParameterKind {
  text,
  flag,
  checkState,  // 0 unchecked, 1 checked, 2 greyed
  integer,
  number,
};

/// Its type in a macro file.
enum class FileEncoding { text, bool16, int32, float64 };

/// What a command does with the file that a value names.
enum class FileRole {
  none,
  reads,
  writes,   // results, named after the input; one with this name is replaced
  appends,  // one file for all inputs
};

struct Parameter {
  std::string_view key;
  std::string_view label;  // what it is, with its unit, for a person and as the name of its control
  ParameterKind kind;
  FileEncoding encoding;
  std::string_view preset = {};  // what a new command begins with, as a person types it; flags and states as 0 or 1
  double low = -std::numeric_limits<double>::infinity();  // the least number and the greatest that the program offers;
  double high = std::numeric_limits<double>::infinity();  // a macro file may contain others
  FileRole role = FileRole::none;
};

/// The value that the preset stands for.
MacroValue PresetOf(const Parameter& parameter);

/// How the window asks for the parameters of a command.
enum class EditorKind {
  none,  // the command has no parameters
  names,
  comment,
  bufferFile,
  faultVectors,
  mirror,
  coordinates,
  constVector,
  vortexCentres,
  question,  // yes or no
  number,    // an input box
  collectionFile,
};

struct ParameterEditor {
  EditorKind kind = EditorKind::none;
  std::string_view title = {};  // of the window, if it depends on the command
  std::string_view text = {};   // question or prompt
};

/// The arguments of a running command.
struct CommandCall {
  Context& context;
  const MacroEvent& event;
  const std::string& inputDirectory;  // ends in a separator
  const std::string& fileName;        // of the current file, without directory
};

/// What a command does with the statuses of the vectors.
enum class StatusEffect : std::uint8_t {
  none,
  changes,  // vectors become valid or invalid
  moves,    // they go with the vectors to other places
};

struct CommandRow {
  std::int32_t eventId;
  std::string_view constantName;
  std::int32_t parent;  // 0: a root of the tree
  std::string_view shortText;
  std::string_view longText;
  std::span<const Parameter> parameters;  // in the order of the macro file
  std::int32_t outputKilobytes;           // estimated size of its output per input file
  void (*run)(const CommandCall& call);   // null: a menu
  ParameterEditor editor = {};
  std::string_view resultExtension = {};  // of a file named by Prefix and Postfix
  StatusEffect statuses = StatusEffect::none;
  bool findsVortices = false;  // leaves their number in Context::vortexCentres

  bool IsMenu() const { return run == nullptr; }
};

/// Of the half widths of the search for faulty vectors: windows of 1 x 1 to 399 x 399 vectors.
inline constexpr std::int32_t kLargestHalfWidth = 199;

/// All rows in the order of the command tree.
std::span<const CommandRow> CommandCatalogue();

/// The row of an id; null if there is none.
const CommandRow* FindCommand(std::int32_t eventId);

/// The row of a constant name, without regard to case; null if there is none.
const CommandRow* FindCommand(std::string_view constantName);

/// The parameters of an id, empty for unknown ones.
std::span<const Parameter> ParametersOf(std::int32_t eventId);

/// The long or the short text of an id; "Unbekannt!!!" for an unknown one.
std::string_view MacroEventDescription(std::int32_t eventId, bool longForm);

}  // namespace quiverion
