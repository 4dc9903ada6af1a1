#include <QDir>

#include "app/drives.h"
#include "dialogs/widgets/qt_text.h"

namespace quiverion {

std::vector<std::string> MountedDrives() {
  std::vector<std::string> drives;
  for (const QFileInfo& drive : QDir::drives()) drives.push_back(PathFromQt(drive.absolutePath()));
  return drives;
}

}  // namespace quiverion
