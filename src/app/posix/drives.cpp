#include "app/drives.h"

#include <QDir>
#include <QStorageInfo>
#include <algorithm>

#include "dialogs/widgets/qt_text.h"

namespace quiverion {

std::vector<std::string> MountedDrives() {
  std::vector<std::string> drives = {PathFromQt(QDir::rootPath())};
  for (const QStorageInfo& volume : QStorageInfo::mountedVolumes()) {
    // A mount point can also be a single file.
    if (QFileInfo(volume.rootPath()).isDir()) drives.push_back(PathFromQt(volume.rootPath()));
  }
  std::ranges::sort(drives);
  drives.erase(std::unique(drives.begin(), drives.end()), drives.end());
  return drives;
}

}  // namespace quiverion
