#pragma once

#include <QDialog>
#include <memory>
#include <string>
#include <vector>

#include "field/context.h"

namespace Ui {
class frmShowCollection;
}

namespace quiverion {

/// Lists the fields of a collection and removes selected ones. Entry k of the list is record k of the file.
class frmShowCollection : public QDialog {
  Q_OBJECT

 public:
  /// The context must outlive the window. The collection is not read before FillListBox.
  frmShowCollection(Context& context, std::string collectionPath, QWidget* parent = nullptr);
  ~frmShowCollection() override;

  /// Reads the collection (again) into list and label; no line is selected then. False if that fails: a message box has
  /// given the reason, and the window closes. Called before the window is shown, and by the window itself when it is
  /// resized.
  bool FillListBox();

  /// True once a removal has failed in a way after which the program has to end. A message box has been shown.
  bool ProgramMustEnd() const { return programMustEnd_; }

 protected:
  void resizeEvent(QResizeEvent* event) override;

 private:
  std::vector<std::int32_t> SelectedRecords() const;
  void RemoveSelected();

  Context& context_;
  std::string path_;
  std::vector<std::string> listed_;  // source paths of the records, as read
  bool reading_ = false;
  bool programMustEnd_ = false;
  std::unique_ptr<Ui::frmShowCollection> ui_;
};

}  // namespace quiverion
