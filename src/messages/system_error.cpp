#include "messages/system_error.h"

#include <new>
#include <stdexcept>
#include <utility>

namespace quiverion {

std::string_view ErrorDescription(ErrorNumber number) {
  switch (number) {
    case ErrorNumber::invalidCall:
      return "Ungültiger Prozeduraufruf oder ungültiges Argument";
    case ErrorNumber::overflow:
      return "Überlauf";
    case ErrorNumber::outOfMemory:
      return "Nicht genügend Speicher";
    case ErrorNumber::indexOutOfRange:
      return "Index außerhalb des gültigen Bereichs";
    case ErrorNumber::divisionByZero:
      return "Division durch Null";
    case ErrorNumber::fileNotFound:
      return "Datei nicht gefunden";
    case ErrorNumber::deviceError:
      return "Geräte-E/A-Fehler";
    case ErrorNumber::diskFull:
      return "Datenträger voll";
    case ErrorNumber::endOfFile:
      return "Einlesen hinter Dateiende";
    case ErrorNumber::tooManyFiles:
      return "Zu viele Dateien";
    case ErrorNumber::accessDenied:
      return "Zugriff verweigert";
    case ErrorNumber::pathAccess:
      return "Fehler beim Zugriff auf Pfad/Datei";
    case ErrorNumber::pathNotFound:
      return "Pfad nicht gefunden";
  }
  return {};
}

SystemError::SystemError(ErrorNumber number, std::string_view detail)
    : number_(number), description_(ErrorDescription(number)) {
  if (!detail.empty()) description_.append(" (").append(detail).append(")");
}

SystemError SystemError::Saying(ErrorNumber number, std::string description) {
  SystemError error(number);
  error.description_ = std::move(description);
  return error;
}

std::string ErrorText(const SystemError& error) {
  return error.Description() + "   (Fehler-Nr. " + std::to_string(static_cast<int>(error.Number())) + ")";
}

SystemError AsSystemError(const std::exception& error) {
  if (const auto* own = dynamic_cast<const SystemError*>(&error)) return *own;
  if (dynamic_cast<const std::bad_alloc*>(&error) || dynamic_cast<const std::length_error*>(&error)) {
    return SystemError(ErrorNumber::outOfMemory);
  }
  return SystemError(ErrorNumber::invalidCall, error.what());
}

}  // namespace quiverion
