#pragma once

#include <QPointer>
#include <QWidget>
#include <memory>

#include "dialogs/parameters/frmChooseMacroEvent.h"
#include "dialogs/parameters/parameter_dialogs.h"
#include "dialogs/parameters/parameter_window.h"
#include "messages/user_interface.h"

namespace quiverion {

/// ParameterDialogs with windows over `parent`.
class ParameterWindows : public ParameterDialogs {
 public:
  /// Both must outlive the object.
  ParameterWindows(QWidget& parent, UserInterface& messages) : parent_(parent), messages_(messages) {}

  const std::string& Topic() const { return topic_; }

  void SetTopic(std::string_view topic) override { topic_ = topic; }
  std::optional<std::int32_t> ChooseCommand() override;
  std::optional<std::string> AskText(const TextQuestion& question) override;
  std::optional<std::string> ChooseFile(const FileQuestion& question) override;
  bool EditInWindow(const CommandRow& command, MacroEvent& event,
                    const std::function<void(const MacroEvent&)>& draft) override;

  /// Puts a text into the box of a parameter if a parameter window that has it is open.
  void ShowText(std::string_view key, const std::string& text);

 private:
  QWidget& parent_;
  UserInterface& messages_;
  std::string topic_;
  QPointer<ParameterWindow> open_;
  frmChooseMacroEvent* commandTree_ = nullptr;  // owned by the parent
};

}  // namespace quiverion
