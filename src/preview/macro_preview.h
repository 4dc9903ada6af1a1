#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "field/context.h"
#include "log/first_lines.h"
#include "macro/macro_event.h"
#include "messages/silent_user_interface.h"
#include "operations/kernels/field_changes.h"
#include "platform/files/overlay_files.h"

namespace quiverion {

/// Thrown out of a computation that is not wanted any more. Not an exception that the steps of a run could handle.
struct PreviewCancelled {};

/// The file of a preview, and what a run would have done before it comes to it.
struct PreviewFile {
  std::string directory;                        ///< ends in a separator
  std::string name;                             ///< in the directory
  std::string version;                          ///< any text that changes when the file does
  std::vector<std::string> earlierPaths;        ///< the files that the run would take before this one
  std::shared_ptr<const BufferField> buffer{};  ///< before the run; none stands for an empty one

  bool operator==(const PreviewFile&) const = default;
  std::string Path() const { return directory + name; }
};

/// What a step did to the field and would do to files. Step 0 is the load, step k the command k of the macro (from 1).
struct StepReport {
  std::string title;                       ///< as the progress of a run shows it
  FieldChanges changes;                    ///< from the state before to the state after
  std::optional<std::int64_t> vortices{};  ///< found by a search for vortex centres
  std::vector<FileChange> files;           ///< in the order of the first change
  std::string log;                         ///< the first lines
  bool failed = false;                     ///< it ended the file
  bool warned = false;                     ///< it counts as an error of the run, but the file went on
  bool isKnown = true;                     ///< false: its outcome depends on the files before, so it was not run
  bool wasReached = true;                  ///< false: a step before it ended the file, or is not known
};

/// A run of a macro over one file that writes nothing: the real steps in a context of its own, over files that keep
/// what is written in memory. The state of the field after each step is kept, so that a change of the macro is computed
/// from there on. Steps are counted as in StepReport.
class MacroPreview {
 public:
  /// The references must outlive the object. `memoryLimit` in bytes is for the states of the fields: beyond it only
  /// some are kept, and the others computed again. With 0, none are kept.
  MacroPreview(FileSystem& files, const Clock& clock, char decimalSeparator,
               std::uint64_t memoryLimit = std::uint64_t{1} << 30);
  ~MacroPreview();

  /// While it returns true, computations end with PreviewCancelled. It is asked before every step and whenever a step
  /// opens a file.
  void CancelIf(std::function<bool()> isCancelled) { isCancelled_ = std::move(isCancelled); }

  /// What is to be computed. Keeps the steps that a preview of the same file has computed already, up to the first
  /// command that is different.
  void Begin(const PreviewFile& file, const MacroEventList& macro);

  std::size_t StepCount() const { return macro_.size() + 1; }
  std::size_t StepsDone() const { return reports_.size(); }

  /// Computes the next step. False if all are done. Throws as FieldAfter does.
  bool ComputeNext();

  /// Of a step that is done.
  const StepReport& Report(std::size_t step) const { return reports_[step]; }

  /// The field after a step that is done; that of the last step that was run. If the file could not be loaded, it has no
  /// vectors. Throws PreviewCancelled, and SystemError 75 if the file is needed again and cannot be read any more.
  std::unique_ptr<VectorField> FieldAfter(std::size_t step);

  /// Bytes of the states that are kept.
  std::uint64_t KeptBytes() const;

 private:
  class Machine;
  struct State;

  void Forget(std::size_t fromStep);
  void RequireWanted() const;
  void RunStep(std::size_t step);
  StepReport ReportOf(std::size_t step);
  std::string TitleOf(std::size_t step) const;
  void MoveTo(std::size_t step);
  void Keep();

  std::uint64_t memoryLimit_;
  std::function<bool()> isCancelled_ = [] { return false; };
  PreviewFile file_;
  MacroEventList macro_;
  std::vector<std::string> readNames_;         // of files whose contents the macro reads
  std::optional<std::size_t> unknown_;         // the first step that depends on the files before
  std::size_t ended_ = kNever;                 // the step that ended the file; those after it were not reached
  std::unique_ptr<Machine> machine_;           // what runs the steps
  std::optional<std::size_t> current_;         // the step whose state the machine is in
  std::shared_ptr<const State> currentState_;  // that state
  std::vector<StepReport> reports_;
  std::vector<std::shared_ptr<const State>> states_;  // after each step that was run; null if it is not kept
  std::size_t stride_ = 1;                            // every how many-th state is kept

  static constexpr std::size_t kNever = static_cast<std::size_t>(-1);
};

}  // namespace quiverion
