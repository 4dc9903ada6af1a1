#include "platform/system_error.h"

#include <gtest/gtest.h>

namespace quiverion::test {
namespace {

TEST(SystemError, HasAGermanTextForEveryNumber) {
  const std::pair<int, std::string_view> cases[] = {{5, "Ungültiger Prozeduraufruf oder ungültiges Argument"},
                                                    {6, "Überlauf"},
                                                    {7, "Nicht genügend Speicher"},
                                                    {9, "Index außerhalb des gültigen Bereichs"},
                                                    {11, "Division durch Null"},
                                                    {53, "Datei nicht gefunden"},
                                                    {57, "Geräte-E/A-Fehler"},
                                                    {61, "Datenträger voll"},
                                                    {62, "Einlesen hinter Dateiende"},
                                                    {67, "Zu viele Dateien"},
                                                    {70, "Zugriff verweigert"},
                                                    {75, "Fehler beim Zugriff auf Pfad/Datei"},
                                                    {76, "Pfad nicht gefunden"}};
  for (const auto& [number, description] : cases) {
    const SystemError error(static_cast<ErrorNumber>(number));
    EXPECT_EQ(error.Description(), description);
    EXPECT_EQ(ErrorText(error), std::string(description) + "   (Fehler-Nr. " + std::to_string(number) + ")");
  }
  EXPECT_EQ(ErrorText(SystemError(ErrorNumber::deviceError, "Network is down")),
            "Geräte-E/A-Fehler (Network is down)   (Fehler-Nr. 57)");
}

}  // namespace
}  // namespace quiverion::test
