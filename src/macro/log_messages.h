#pragma once

#include <string>
#include <string_view>

#include "messages/system_error.h"
#include "messages/user_interface.h"

namespace quiverion {

inline constexpr std::string_view kSaveLogTitle = "Log-Datei speichern";

/// The message box for a log that cannot be saved.
inline Message LogNotSaved(const std::string& path, const SystemError& error) {
  return {.title = std::string(kSaveLogTitle),
          .text = "Die Log-Datei kann nicht gespeichert werden unter '" + path + "'!\r\n" + ErrorText(error)};
}

inline constexpr std::string_view kSaveTableTitle = "Tabelle speichern";

/// The message box for a table of the run that cannot be saved.
inline Message TableNotSaved(const std::string& path, const SystemError& error) {
  return {.title = std::string(kSaveTableTitle),
          .text = "Die Tabelle kann nicht gespeichert werden unter '" + path + "'!\r\n" + ErrorText(error)};
}

}  // namespace quiverion
