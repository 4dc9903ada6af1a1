#pragma once

#include <QListView>
#include <functional>
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

  /// Hides the names for which `hides` is true, now and whenever the list changes; nothing if it is empty. Shown names
  /// stay selected.
  void HideNames(std::function<std::vector<bool>(const std::vector<std::string>&)> hides);

  /// Asks it again.
  void UpdateHidden();

  /// How many names of the directory are not shown.
  std::size_t HiddenCount() const { return all_.size() - model_->Names().size(); }

  /// True if one of the names is of the directory, but not shown.
  bool HidesOneOf(const std::vector<std::string>& names) const;

  /// The name that has the keyboard's focus; empty if there is none.
  std::string CurrentName() const;

  /// All shown names, in the order of the list.
  const std::vector<std::string>& Names() const { return model_->Names(); }

  /// Selected names in the order of the list.
  std::vector<std::string> SelectedNames() const;
  void SelectNames(const std::vector<std::string>& names);

 private:
  void ShowNames(std::vector<std::string> names);
  std::vector<std::string> NamesToShow() const;

  FileSystem* files_ = nullptr;
  FileListModel* model_;  // owned by the widget
  std::string directory_;
  std::vector<std::string> all_;  // names of the directory
  std::function<std::vector<bool>(const std::vector<std::string>&)> hides_;
};

}  // namespace quiverion
