#pragma once

#include <deque>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "macro/session.h"
#include "support/memory_file_system.h"

namespace quiverion::test {

/// Answers message boxes from a script and records what was shown.
class ScriptedUi : public UserInterface {
 public:
  std::deque<MessageAnswer> answers;  // without one, a box gets `defaultAnswer`
  MessageAnswer defaultAnswer = MessageAnswer::cancel;
  std::function<void(const Message&)> onAsk;  // called before the answer, for example to remove the fault
  int abortAtYield = 0;                       // counted from 1; 0: never

  std::vector<Message> messages;
  std::vector<RunProgress> progress;
  std::vector<std::pair<std::int64_t, std::int64_t>> computation;  // done, total
  int yields = 0;
  bool running = false;

  MessageAnswer Ask(const Message& message) override {
    messages.push_back(message);
    if (onAsk) onAsk(message);
    if (answers.empty()) return defaultAnswer;
    const MessageAnswer answer = answers.front();
    answers.pop_front();
    return answer;
  }
  /// Takes what the boxes since the last call have shown: buttons and icon as numbers, title, text.
  std::string TakeBoxes() {
    std::string text;
    for (const Message& box : std::exchange(messages, {})) {
      const int preselected = box.preselected ? static_cast<int>(*box.preselected) : -1;
      text += "! " + std::to_string(static_cast<int>(box.buttons)) + " " + std::to_string(static_cast<int>(box.icon)) +
              " " + std::to_string(preselected) + " " + box.title + "|" + box.text + "\n";
    }
    return text;
  }
  void RunStarted(const RunProgress& /*progress*/) override { running = true; }
  void ShowProgress(const RunProgress& shown) override { progress.push_back(shown); }
  void RunEnded() override { running = false; }
  void ComputationStarted() override { running = true; }
  void ShowComputation(std::int64_t done, std::int64_t total) override { computation.emplace_back(done, total); }
  void ComputationEnded() override { running = false; }
  bool Yield() override { return ++yields == abortAtYield; }
};

/// Records the pieces of a log.
class LogRecorder : public LogSink {
 public:
  struct Piece {
    std::string text;
    LogFormat format;
  };
  std::vector<Piece> pieces;

  void Write(std::string_view text, const LogFormat& format) override { pieces.push_back({std::string(text), format}); }

  std::string Text() const {
    std::string text;
    for (const Piece& piece : pieces) text += piece.text;
    return text;
  }
};

/// Returns the given times one after the other; the last one repeats.
class ScriptedClock : public Clock {
 public:
  mutable std::deque<float> times = {0.0f};
  float SecondsSinceMidnight() const override {
    const float time = times.front();
    if (times.size() > 1) times.pop_front();
    return time;
  }
  std::string DateAndTime() const override { return "01.02.2003 04:05:06"; }
};

/// A session on the given files, with fakes for all other services.
struct ScriptedProgram {
  explicit ScriptedProgram(FileSystem& fileSystem) : session(fileSystem, ui, log, clock) { log.Attach(recorder); }

  ScriptedUi ui;
  RunLog log;
  LogRecorder recorder;
  ScriptedClock clock;
  Session session;
  Context& context = session.context;

  /// Returns what has been logged since the last call.
  std::string TakeLog() {
    std::string text = recorder.Text();
    recorder.pieces.clear();
    return text;
  }
};

struct FilesInMemory {
  MemoryFileSystem files;
};

/// A session on files in memory.
struct TestSession : FilesInMemory, ScriptedProgram {
  TestSession() : ScriptedProgram(files) {}
};

}  // namespace quiverion::test
