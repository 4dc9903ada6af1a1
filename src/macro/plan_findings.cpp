#include <algorithm>

#include "macro/run_plan.h"
#include "platform/files/paths.h"

namespace quiverion {
namespace {

using Kind = PlannedCommand::Kind;

// "1 Datei", "2 Dateien"
std::string Counted(std::int64_t count, std::string_view one, std::string_view more) {
  return std::to_string(count) + " " + std::string(count == 1 ? one : more);
}

class Findings {
 public:
  explicit Findings(const RunPlan& plan) : plan_(plan) {}

  std::vector<PlanFinding> Take() {
    Results();
    for (const PlannedCollection& collection : plan_.collections) Collection(collection);
    Inputs();
    Commands();
    std::ranges::stable_sort(found_, std::ranges::greater(), &PlanFinding::severity);
    return std::move(found_);
  }

 private:
  void Add(Severity severity, std::string text) { found_.push_back({severity, std::move(text)}); }

  void AddIf(std::int64_t count, Severity severity, std::string text) {
    if (count > 0) Add(severity, std::move(text));
  }

  void Results() {
    AddIf(plan_.replacedOriginals, Severity::danger,
          "ersetzt " + Counted(plan_.replacedOriginals, "Original", "Originale"));
    AddIf(plan_.laterInputs, Severity::danger,
          Counted(plan_.laterInputs, "Ergebnis ist eine spätere Eingabe", "Ergebnisse sind spätere Eingaben"));
    const std::string results = std::to_string(plan_.sharedResults) + " Ergebnisse";
    AddIf(plan_.sharedResults, Severity::warning,
          std::to_string(plan_.sharingFiles) + " Dateien ergeben " +
              (plan_.sharedResults == 1 ? "dasselbe Ergebnis" : "nur " + results));
    AddIf(plan_.replacedResults, Severity::warning,
          "ersetzt " + Counted(plan_.replacedResults, "Ergebnis", "Ergebnisse"));
    AddIf(plan_.createdResults, Severity::note, Counted(plan_.createdResults, "neues Ergebnis", "neue Ergebnisse"));
  }

  void Collection(const PlannedCollection& collection) {
    const std::string name = "Kollektion " + std::string(FileNameOf(collection.path));
    if (!collection.problem.empty()) {
      Add(Severity::warning, name + " ist nicht lesbar: " + collection.problem);
    } else if (collection.contained > 0) {
      Add(Severity::warning, name + " enthält " + std::to_string(collection.contained) + " davon schon");
    }
  }

  void Inputs() {
    const auto missing = static_cast<std::int64_t>(plan_.missingFiles.size());
    AddIf(missing, Severity::warning, Counted(missing, "Datei fehlt", "Dateien fehlen"));
  }

  void Commands() {
    const auto number = [](std::int32_t position) { return "Befehl " + std::to_string(position + 1); };
    for (const PlannedCommand& command : plan_.commands) {
      if (command.kind == Kind::fail) Add(Severity::warning, number(command.position) + " ist unvollständig");
      if (command.leavesSeries) Add(Severity::warning, number(command.position) + " führt aus dem Verzeichnis hinaus");
      if (command.kind == Kind::read && !command.exists) {
        Add(Severity::warning, "Datei für den Buffer fehlt: " + std::string(FileNameOf(command.path)));
      }
      if (command.kind == Kind::copies) Add(Severity::note, "Kopien für Wirbelzentren je nach Feld");
    }
    for (const std::int32_t position : plan_.unknown) Add(Severity::warning, number(position) + " ist unbekannt");
    const auto writes = [](const PlannedCommand& command) {
      return command.kind != Kind::read && command.kind != Kind::forgetBuffer && command.kind != Kind::fail;
    };
    if (std::ranges::none_of(plan_.commands, writes)) {
      Add(Severity::warning, plan_.macroLength == 0 ? "kein Befehl im Makro" : "kein Speicherbefehl im Makro");
    }
  }

  const RunPlan& plan_;
  std::vector<PlanFinding> found_;
};

}  // namespace

std::vector<PlanFinding> FindingsOf(const RunPlan& plan) {
  return Findings(plan).Take();
}

std::string SelectionText(std::size_t selected, std::size_t all) {
  return std::to_string(selected) + " von " + std::to_string(all) + (all == 1 ? " Datei" : " Dateien") + " gewählt";
}

}  // namespace quiverion
