#pragma once

#include <QDropEvent>
#include <QMimeData>
#include <QUrl>
#include <string>
#include <vector>

#include "dialogs/widgets/qt_text.h"

namespace quiverion {

/// Files are read where they are. If the drop were accepted as a move, its source would delete them.
inline void CopyOnly(QDropEvent& event) {
  if (!event.possibleActions().testFlag(Qt::CopyAction)) return event.ignore();
  event.setDropAction(Qt::CopyAction);
  event.accept();
}

/// The files and directories of this machine among what is dropped.
inline std::vector<std::string> LocalPaths(const QDropEvent& event) {
  std::vector<std::string> paths;
  for (const QUrl& url : event.mimeData()->urls()) {
    if (url.isLocalFile()) paths.push_back(PathFromQt(url.toLocalFile()));
  }
  return paths;
}

}  // namespace quiverion
