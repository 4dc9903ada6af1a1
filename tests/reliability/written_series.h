#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "macro/session.h"
#include "support/system_calls.h"
#include "support/test_session.h"

/// Series on the real file system whose macro writes one kind of file, for tests that disturb the writing.
namespace quiverion::test {

/// Every file below a directory, by its relative path. Directories without files are left out.
using Tree = std::map<std::string, std::string>;
Tree ReadTree(const std::string& directory);

/// True for the name of a temporary file.
bool IsTemporary(const std::string& path);

/// The faults of disks, quotas, permissions and drives, and the errors that they are to the program.
struct Fault {
  int code;
  ErrorNumber number;
  bool once = false;                        // otherwise every later call of the command as well
  std::vector<MessageAnswer> answers = {};  // to its questions; then Cancel
};
extern const std::vector<Fault> kFaults;

/// A kind of file that a macro writes.
struct WrittenKind {
  std::string name;
  MacroEvent command;
  std::string target;  // output of the first file of the series, relative to the directory
  Tree before = {};    // files that exist before, besides the series
  bool isCollection = false;
  bool appended = false;  // a text that grows
};

/// All kinds, for a series in `directory`, which ends in "/".
std::vector<WrittenKind> WrittenKinds(const std::string& directory);

/// The series a.vas, b.vas in a directory, and a macro of `kind`, which then saves every field as <name>_next.vas.
class WrittenSeries {
 public:
  WrittenSeries(const WrittenKind& kind, const std::string& directory);

  /// Writes all files again.
  void Restore() const;

  struct Step {
    int file = 0;  // counted from 1
    bool isNext = false;
  };

  struct Result {
    std::string log;
    Tree tree;
    std::vector<Message> boxes;
    bool hadError = false;
    bool aborted = false;
  };

  /// Runs the macro over these files with the given answers to boxes, then Cancel. `before` is called before each
  /// system call with the step that makes it, as SystemCalls::before.
  Result Run(const std::vector<std::string>& names, std::vector<MessageAnswer> answers = {},
             const std::function<int(const Step&, const SystemCall&)>& before = {}) const;

 private:
  WrittenKind kind_;
  std::string directory_;
  Tree initial_;
};

}  // namespace quiverion::test
