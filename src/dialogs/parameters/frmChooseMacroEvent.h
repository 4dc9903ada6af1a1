#pragma once

#include <QDialog>
#include <cstdint>
#include <memory>
#include <optional>

class QTreeWidgetItem;

namespace Ui {
class frmChooseMacroEvent;
}

namespace quiverion {

/// The tree of all commands. After use it is hidden, not destroyed, so that it keeps its expanded menus and its
/// selection.
class frmChooseMacroEvent : public QDialog {
  Q_OBJECT

 public:
  explicit frmChooseMacroEvent(QWidget* parent = nullptr);
  ~frmChooseMacroEvent() override;

  /// Shows the window and returns the chosen command; none if the user cancels.
  std::optional<std::int32_t> Choose();

 private:
  void FillTree();
  bool CommandIsSelected() const;
  void AcceptCommand();

  std::unique_ptr<Ui::frmChooseMacroEvent> ui_;
};

}  // namespace quiverion
