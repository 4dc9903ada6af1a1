#pragma once

#include <QDir>
#include <QFileDialog>
#include <optional>
#include <string>
#include <vector>

#include "dialogs/widgets/qt_text.h"
#include "dialogs/widgets/run_modal.h"

namespace quiverion {

/// Sizes a file dialog by its letters, which it does not do itself, and shows it.
inline bool ShowFileDialog(QFileDialog& dialog) {
  const QFontMetrics letters = dialog.fontMetrics();
  dialog.resize(dialog.sizeHint().expandedTo({100 * letters.averageCharWidth(), 28 * letters.lineSpacing()}));
  return RunModal(dialog) == QDialog::Accepted && !dialog.selectedFiles().isEmpty();
}

/// Existing files; none if the user cancels. A filter is as Qt needs it: "Bilder (*.png *.jpg)".
inline std::vector<std::string> ChooseExistingFiles(QWidget& parent, const QString& title, const std::string& directory,
                                                    const QStringList& filters) {
  QFileDialog dialog(&parent, title, PathToQt(directory));
  dialog.setFileMode(QFileDialog::ExistingFiles);
  dialog.setNameFilters(filters);
  std::vector<std::string> paths;
  if (!ShowFileDialog(dialog)) return paths;
  for (const QString& path : dialog.selectedFiles()) paths.push_back(PathFromQt(path));
  return paths;
}

/// A directory, which may be missing yet; none if the user cancels.
inline std::optional<std::string> ChooseDirectory(QWidget& parent, const QString& title, const std::string& directory) {
  QString begin = PathToQt(directory);
  while (!QDir(begin).exists() && begin.contains('/')) begin = begin.section('/', 0, -2);
  QFileDialog dialog(&parent, title, begin);
  dialog.setFileMode(QFileDialog::Directory);
  dialog.setOption(QFileDialog::ShowDirsOnly);
  if (!ShowFileDialog(dialog)) return std::nullopt;
  return PathFromQt(dialog.selectedFiles().front());
}

}  // namespace quiverion
