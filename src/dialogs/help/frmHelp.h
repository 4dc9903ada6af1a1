#pragma once

#include <QDialog>
#include <memory>

#include "dialogs/help/help_pages.h"

namespace Ui {
class frmHelp;
}
class QTreeWidgetItem;

namespace quiverion {

/// The manual: the page, with contents and keywords next to it.
class frmHelp : public QDialog {
  Q_OBJECT

 public:
  /// `directory` contains the pages (":/..." for a resource).
  explicit frmHelp(const QString& directory, QWidget* parent = nullptr);
  ~frmHelp() override;

  void ShowContents();
  void ShowIndex();

  /// Shows the page of a topic, or the contents if it has none.
  void ShowTopic(const QString& topic);

  const HelpPages& Pages() const { return pages_; }

 protected:
  /// Moves through the keywords with keys pressed in the box above them.
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void Open(const QString& target);
  void FillContents();
  void FilterKeywords(const QString& text);
  void PageChanged(const QUrl& url);  // before the browser itself knows it

  QString directory_;
  HelpPages pages_;
  std::unique_ptr<Ui::frmHelp> ui_;
};

}  // namespace quiverion
