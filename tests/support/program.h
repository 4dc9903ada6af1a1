#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

/// The built program as a script sees it: arguments in, exit code, standard output and standard error out.
namespace quiverion::cli {

/// A directory of its own for a test, removed with everything in it. The program runs in it.
class Workplace {
 public:
  Workplace();
  ~Workplace();
  Workplace(const Workplace&) = delete;
  Workplace& operator=(const Workplace&) = delete;

  const std::string& Path() const { return path_; }  // ends in "/"

  /// Creates or replaces a file; directories on the way are created.
  void Write(const std::string& name, const std::string& content) const;
  /// The content; an empty text and a test failure where the file is missing.
  std::string Read(const std::string& name) const;
  bool Has(const std::string& name) const;
  /// Names of all files below, sorted, with the directories before them.
  std::vector<std::string> Files() const;

 private:
  std::string path_;
};

struct Outcome {
  int code = -1;   // exit code; -1 where a signal ended the program
  int signal = 0;  // that signal
  std::string out;
  std::string err;
  double seconds = 0;      // from start to end
  long peakKilobytes = 0;  // of its memory
};

/// What a program finds itself in, beside its files.
struct Surroundings {
  std::vector<int> closed = {};  // standard streams
  long largestFile = -1;         // bytes, as the limits below; -1: no limit
  long memory = -1;
  long openFiles = -1;
};

/// Runs the program to its end. Its standard output goes to the file `output` where one is given.
Outcome RunProgram(const Workplace& place, const std::vector<std::string>& arguments, const std::string& input = {},
                   const std::string& output = {}, const Surroundings& surroundings = {});

/// Runs the program and kills it after so many seconds. False where it has come to its end by then.
bool KillProgram(const Workplace& place, const std::vector<std::string>& arguments, double seconds);

/// Compares with the text in tests/approved/<name>, where the path of `place` is written <hier>/. With
/// QUIVERION_APPROVE set in the environment the text is written there instead: look at the difference before committing
/// it.
void ExpectApproved(const Workplace& place, const std::string& name, std::string text);

/// A running program whose standard output nobody takes: once the pipe is full, it stands still.
class StalledProgram {
 public:
  StalledProgram(const Workplace& place, const std::vector<std::string>& arguments);
  ~StalledProgram();
  StalledProgram(const StalledProgram&) = delete;
  StalledProgram& operator=(const StalledProgram&) = delete;

  /// Waits until it stands still in its output. False where it did not within a minute.
  bool WaitUntilStalled() const;

  /// Sends a signal and waits until it has been delivered.
  void Signal(int number) const;

  /// Takes all output and waits for the end.
  Outcome Finish();

 private:
  pid_t process_ = -1;
  int output_ = -1;
};

}  // namespace quiverion::cli
