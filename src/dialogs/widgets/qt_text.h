#pragma once

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

/// A path of the core for calls to Qt and for display, with the separators that the system shows. A name that is not
/// valid text loses information only on systems where names are bytes.
QString PathToQt(std::string_view path);

/// A path from Qt in the form of the core.
std::string PathFromQt(const QString& path);

}  // namespace quiverion
