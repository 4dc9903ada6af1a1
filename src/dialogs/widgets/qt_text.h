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

/// A path of the core for the calls of Qt, and to be shown: with the separators that the system shows. Of a name that is
/// no text something is lost only where the system has names of bytes.
QString PathToQt(std::string_view path);

/// A path that Qt has given, as the core takes it.
std::string PathFromQt(const QString& path);

}  // namespace quiverion
