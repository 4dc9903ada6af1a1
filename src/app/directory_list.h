#pragma once

#include <QListWidget>
#include <string>

#include "platform/files/file_system.h"

namespace quiverion {

/// The directories from the root down to the current one, and the directories in it. A double-click or Enter opens one,
/// Backspace goes up.
class DirectoryList : public QListWidget {
  Q_OBJECT

 public:
  explicit DirectoryList(QWidget* parent = nullptr);

  /// The file system must outlive the widget. Call this first.
  void Use(FileSystem& files) { files_ = &files; }

  /// The current directory, without a separator at the end unless it is a root.
  const std::string& Path() const { return path_; }

  /// Opens a directory. Throws SystemError if it cannot be listed; the list then stays as it was.
  void SetPath(const std::string& path);

 signals:
  /// The user wants to open a directory.
  void Chosen(const QByteArray& path);

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  QItemSelectionModel::SelectionFlags selectionCommand(const QModelIndex& index, const QEvent* event) const override;

 private:
  void Choose(const QListWidgetItem* line);

  FileSystem* files_ = nullptr;
  std::string path_;
};

}  // namespace quiverion
