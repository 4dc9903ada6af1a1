#pragma once

#include <QObject>
#include <functional>
#include <memory>
#include <string>

#include "dialogs/help/frmHelp.h"
#include "messages/user_interface.h"

namespace quiverion {

/// The help of the program: one window, opened by the two help items and by F1 in any other window. It belongs to no
/// other window, so that no dialog blocks it.
class Help : public QObject {
 public:
  /// `file` holds the manual. `topic` names what the program is asking about at the moment, empty for nothing. `home` has
  /// F1 in its menu. It and `messages` must outlive the object.
  Help(std::string file, std::function<std::string()> topic, const QWidget& home, UserInterface& messages);
  ~Help() override;

  void ShowContents();
  void ShowIndex();

  /// The page about a window or a highlighted menu item: that of its name, else that of a window below it, else that of
  /// the current topic. The property "helpTopic" of a window goes before its name.
  void ShowFor(const QWidget& window);

 protected:
  /// F1 in a window other than `home`.
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  // Makes the window where there is none yet. False where there is no help, which is said.
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
