#pragma once

#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "dialogs/parameters/parameter_dialogs.h"

namespace quiverion::test {

/// Answers the dialogs of macro editing from a script and records their presets. Without an answer the user cancels.
class ScriptedDialogs : public ParameterDialogs {
 public:
  std::deque<std::int32_t> commands;
  std::deque<std::string> texts;
  std::deque<std::string> files;
  std::function<void(MacroEvent&)> edit;  // null: the parameter window is cancelled

  std::vector<TextQuestion> textQuestions;
  std::vector<FileQuestion> fileQuestions;
  std::vector<MacroEvent> edited;  // as passed to the windows

  std::string topic;

  /// Takes what the dialogs since the last call were preset with.
  std::string TakeQuestions() {
    std::string text;
    for (const TextQuestion& q : std::exchange(textQuestions, {})) {
      text += "? " + q.title + "|" + q.prompt + "|" + q.preset + "\n";
    }
    for (const FileQuestion& q : std::exchange(fileQuestions, {})) {
      text += (q.kind == FileQuestion::Kind::open ? "? open " : "? save ") + q.title + "|" + q.directory + "|" +
              q.fileName + "|" + q.extension + "|" + std::to_string(q.selectedFilter);
      for (const std::string& filter : q.filters) text += "|" + filter;
      text += "\n";
    }
    return text;
  }

  void SetTopic(std::string_view about) override { topic = about; }
  std::optional<std::int32_t> ChooseCommand() override { return Next(commands); }
  std::optional<std::string> AskText(const TextQuestion& question) override {
    textQuestions.push_back(question);
    return Next(texts);
  }
  std::optional<std::string> ChooseFile(const FileQuestion& question) override {
    fileQuestions.push_back(question);
    return Next(files);
  }
  bool EditInWindow(const CommandRow& /*command*/, MacroEvent& event,
                    const std::function<void(const MacroEvent&)>& /*draft*/) override {
    edited.push_back(event);
    if (edit) edit(event);
    return edit != nullptr;
  }

 private:
  template <class T>
  static std::optional<T> Next(std::deque<T>& answers) {
    if (answers.empty()) return std::nullopt;
    T answer = answers.front();
    answers.pop_front();
    return answer;
  }
};

}  // namespace quiverion::test
