#pragma once

#include <QFile>
#include <QString>
#include <string>
#include <string_view>

/// The core's texts are UTF-8, Qt's are UTF-16.
namespace quiverion {

inline QString ToQt(std::string_view text) {
  return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

/// A text of the core (its line breaks are "\r\n") for a widget.
inline QString LinesToQt(std::string_view text) {
  return ToQt(text).remove(u'\r');
}

inline std::string FromQt(const QString& text) {
  return text.toStdString();
}

/// Paths are bytes for the core; Qt shows those that are no UTF-8 with replacement characters.
inline std::string PathFromQt(const QString& path) {
  return QFile::encodeName(path).toStdString();
}

}  // namespace quiverion
