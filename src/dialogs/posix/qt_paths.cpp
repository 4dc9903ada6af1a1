// Names of files are bytes.
#include <QFile>

#include "dialogs/widgets/qt_text.h"

namespace quiverion {

QString PathToQt(std::string_view path) {
  return QFile::decodeName(QByteArray(path.data(), static_cast<qsizetype>(path.size())));
}

std::string PathFromQt(const QString& path) {
  return QFile::encodeName(path).toStdString();
}

}  // namespace quiverion
