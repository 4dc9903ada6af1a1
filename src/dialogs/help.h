#pragma once

#include <QObject>
#include <QPointer>
#include <functional>
#include <string>

#include "dialogs/frmHelp.h"
#include "platform/user_interface.h"

namespace quiverion {

/// The help of the program: one window, opened by the two help items and by F1 in any other window.
class Help : public QObject {
  Q_OBJECT

 public:
  /// `file` holds the manual. `topic` names what the program is asking about at the moment, empty for nothing. `home`,
  /// where the window belongs while no dialog is open, and `messages` must outlive the object.
  Help(std::string file, std::function<std::string()> topic, QWidget& home, UserInterface& messages);
  ~Help() override;

  void ShowContents();
  void ShowIndex();

  /// The page about a window: the one its property "helpTopic" names, else its own, else that of the current topic.
  void ShowFor(const QWidget& window);

 protected:
  /// F1 in a window other than the main one, which has it in its menu.
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  // Makes the window where there is none yet. False where there is no help, which is said.
  bool HasWindow();

  // A dialog blocks all windows but its own: the help becomes one of them, and goes back when the dialog is done.
  void FollowDialog();

  void Raise();

  std::string file_;
  std::function<std::string()> topic_;
  QWidget& home_;
  UserInterface& messages_;
  QPointer<frmHelp> window_;
};

}  // namespace quiverion
