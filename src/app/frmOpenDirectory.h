#pragma once

#include <QDialog>
#include <memory>
#include <string>

namespace Ui {
class frmOpenDirectory;
}

namespace quiverion {

/// Asks for a directory by its path, which is completed while it is typed.
class frmOpenDirectory : public QDialog {
  Q_OBJECT

 public:
  /// Begins with the path `directory`.
  explicit frmOpenDirectory(const std::string& directory, QWidget* parent = nullptr);
  ~frmOpenDirectory() override;

  /// The typed path, without blanks and quotation marks around it. A path that begins with "~" is in the home
  /// directory; one without a root is relative to the directory at the beginning.
  std::string Path() const;

 private:
  std::string directory_;
  std::unique_ptr<Ui::frmOpenDirectory> ui_;
};

}  // namespace quiverion
