// Names of files are UTF-16, perhaps with half a surrogate pair.
#include <QDir>

#include "dialogs/widgets/qt_text.h"
#include "platform/windows/paths.h"

namespace quiverion {

QString PathToQt(std::string_view path) {
  return QDir::toNativeSeparators(QString::fromStdWString(windows::ShownUtf16(path)));
}

std::string PathFromQt(const QString& path) {
  return windows::Utf8FromUtf16(QDir::toNativeSeparators(path).toStdWString());
}

}  // namespace quiverion
