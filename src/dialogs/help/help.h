#pragma once

#include <QObject>
#include <functional>
#include <memory>
#include <string>

#include "dialogs/help/frmHelp.h"
#include "messages/user_interface.h"

namespace quiverion {

/// The help of the program: one window, opened by the two help items and by F1 in any other window. It has no parent
/// window, so that no dialog blocks it.
class Help : public QObject {
 public:
  /// `file` contains the manual. `topic` returns what the program is currently asking about, empty if nothing. `home`
  /// has F1 in its menu. It and `messages` must outlive the object.
  Help(std::string file, std::function<std::string()> topic, const QWidget& home, UserInterface& messages);
  ~Help() override;

  void ShowContents();
  void ShowIndex();

  /// Shows the page about a window or a highlighted menu item: the one for its name, else for a window below it, else
  /// for the current topic. The property "helpTopic" of a window takes precedence over its name.
  void ShowFor(const QWidget& window);

 protected:
  /// Handles F1 in windows other than `home`.
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  // Creates the window if there is none. False, after a message, if there is no help file.
  bool HasWindow();

  QString TopicOf(const QWidget& window) const;
  void Raise();

  std::string file_;
  std::function<std::string()> topic_;
  const QWidget& home_;
  UserInterface& messages_;
  std::unique_ptr<frmHelp> window_;
};

}  // namespace quiverion
