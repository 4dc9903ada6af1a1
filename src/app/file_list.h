#pragma once

#include <QListView>
#include <string>
#include <vector>

#include "platform/files/file_system.h"

namespace quiverion {

/// The names of a file list. A model, because one item per file would be slow for large directories.
class FileListModel : public QAbstractListModel {
  Q_OBJECT

 public:
  using QAbstractListModel::QAbstractListModel;

  int rowCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;

  void SetNames(std::vector<std::string> names);
  const std::vector<std::string>& Names() const { return names_; }

 private:
  std::vector<std::string> names_;
};

/// The files of a directory that a run can load. Ranges are selected with Shift, single files with Ctrl.
class FileList : public QListView {
  Q_OBJECT

 public:
  explicit FileList(QWidget* parent = nullptr);

  /// The file system must outlive the widget. Call this first.
  void Use(FileSystem& files) { files_ = &files; }

  /// Lists a directory; one that cannot be read has no files. If the directory is the same as before, names that still
  /// exist stay selected.
  void ShowDirectory(const std::string& directory);

  /// The name that has the keyboard's focus; empty if there is none.
  std::string CurrentName() const;

  /// All names, in the order of the list.
  const std::vector<std::string>& Names() const { return model_->Names(); }

  /// Selected names in the order of the list.
  std::vector<std::string> SelectedNames() const;
  void SelectNames(const std::vector<std::string>& names);

 private:
  FileSystem* files_ = nullptr;
  FileListModel* model_;  // owned by the widget
  std::string directory_;
};

}  // namespace quiverion
