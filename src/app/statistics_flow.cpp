#include "app/statistics_flow.h"

#include <iterator>
#include <optional>

#include "dialogs/parameters/file_choices.h"
#include "dialogs/parameters/parameter_editing.h"
#include "messages/failure.h"
#include "platform/files/paths.h"
#include "platform/text/numbers.h"

namespace quiverion {
namespace {

constexpr StatisticTexts kTexts[] = {
    {StatisticKind::mean, "mnuAverage", "QuiverionSeries - Mittelwert berechnen", "des Mittelwertes",
     "den Mittelwerten", "AVG.vas"},
    {StatisticKind::standardDeviation, "mnuStdDeviation", "QuiverionSeries - Standardabweichung berechnen",
     "der Standardabweichung", "den Standardabweichungen", "RMS.vas"},
    {StatisticKind::fluctuationSquares, "mnuAvgUsAndVs", "QuiverionSeries - <u' ²> und <v' ²> berechnen",
     "von <u' ²> und <v' ²>", "<u' ²> und <v' ²>", "UsAndVs.vas"},
    {StatisticKind::fluctuationProduct, "mnuAvgUsTimesVs", "QuiverionSeries - <u' v'> berechnen", "von <u' v'>",
     "<u' v'>", "UsTimesVs.vas"},
    {StatisticKind::turbulence, "mnuTu", "QuiverionSeries - Turbulenzgrad und -produktion berechnen",
     "von Turbulenzgrad und -produktion", "Turbulenzgrad und -produktion", "TU.vas"},
    {StatisticKind::dissipation, "mnuDissipation", "QuiverionSeries - Energiedissipationsrate berechnen",
     "der Energiedissipationsrate (für isotrope Turbulenz)", "der Energiedissipationsrate als x-Komponente",
     "DISS.vas"},
};

void Inform(Context& context, std::string_view title, std::string text) {
  context.ui.Ask({.title = std::string(title), .text = std::move(text), .icon = MessageIcon::information});
}

// The viscosity in m²/s; none if the user cancels or the answer is refused.
std::optional<double> AskViscosity(Context& context, ParameterDialogs& dialogs, const StatisticTexts& texts) {
  const auto answer =
      dialogs.AskText({std::string(texts.title), "Bitte geben Sie die kinematische Viskosität [m/s²] an:", "15E-6"});
  if (!answer || answer->empty()) return std::nullopt;
  double viscosity = 0.0;
  if (Attempt([&] { viscosity = ReadParameterNumber(*answer); })) {
    RefuseHugeNumber(context.ui, *answer);
    return std::nullopt;
  }
  if (viscosity > 0.0) return viscosity;
  context.ui.Ask({.title = "QuiverionSeries - Fehlerhafte Eingabe",
                  .text = "Ihre Eingabe lautete:  " + FormatNumber(viscosity) +
                          " m/s²\r\n\r\nSie müssen eine Zahl > 0 eingeben!"});
  return std::nullopt;
}

}  // namespace

std::span<const StatisticTexts> AllStatisticTexts() {
  return kTexts;
}

bool StatisticsCommandFlow(Context& context, ParameterDialogs& dialogs, const StatisticTexts& texts,
                           const std::string& directory,
                           const std::function<void(const std::string& collection)>& begins) {
  Inform(context, texts.title,
         "Wählen sie zunächst die Statistik-Kollektion (Datei mit Endung '.col') aus, die für die Berechnung " +
             std::string(texts.collection) + " benutzt werden soll...");
  const auto collection = ChooseCollection(dialogs, context.files, context.ui, texts.title, directory);
  if (!collection) return false;
  double viscosity = 0.0;
  std::string explanation;
  if (texts.kind == StatisticKind::dissipation) {
    const auto answer = AskViscosity(context, dialogs, texts);
    if (!answer) return false;
    viscosity = *answer;
    explanation = "Die verwendete kinenamtische Viskosität beträgt:  " + FormatNumber(viscosity) + " m/s²\r\n\r\n";
  }
  Inform(context, texts.title,
         explanation + "Wählen Sie nun den Dateinamen, unter dem das erzeugte Vektorfeld (mit " +
             std::string(texts.result) + ") gespeichert werden soll...");
  const auto output = ChooseFileWithExtension(
      dialogs, context.files, context.ui,
      {.kind = FileQuestion::Kind::save,
       .title = std::string(texts.title),
       .filters = {"Quiverion-Datei (*.vas)"},
       .directory = DirectoryPrefixOf(*collection),
       .fileName = std::string(BaseNameOf(FileNameOf(*collection))) + std::string(texts.defaultName),
       .extension = "vas"});
  if (!output) return false;
  if (begins) begins(*collection);
  ComputeStatistic(context, texts.kind, *collection, *output, viscosity);
  return true;
}

}  // namespace quiverion
