#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>
#include <functional>

#include "cli/commands.h"
#include "cli/german_usage.h"
#include "field/formats/vas_file.h"
#include "messages/system_error.h"
#include "platform/files/paths.h"
#include "platform/process/environment.h"
#include "platform/text/numbers.h"
#include "platform/text/text.h"
#include "version.h"

namespace quiverion::cli {
namespace {

// The action to run once the command line has been parsed.
using Action = std::function<int()>;

// A path is stored and shown in the form of the system.
CLI::Option* Shown(CLI::Option* path) {
  return path->transform([](std::string typed) { return TypedPath(std::move(typed)); });
}

CLI::Option* AddPath(CLI::App* command, const std::string& name, std::string& target, const std::string& help) {
  return Shown(command->add_option(name, target, help)->required()->type_name(""));
}

CLI::Option* AddChoice(CLI::App* command, const std::string& name, std::string& target, const std::string& help,
                       const std::vector<std::string>& choices) {
  return command->add_option(name, target, help)
      ->type_name("")
      ->check(CLI::Validator(
          [choices](std::string& value) {
            const bool known = std::find(choices.begin(), choices.end(), value) != choices.end();
            return known ? std::string() : "unbekannter Wert '" + value + "'";
          },
          ""));
}

// The path ends in one of one or two extensions, in upper or lower case.
CLI::Validator EndsIn(const std::vector<std::string>& extensions) {
  return CLI::Validator(
      [extensions](std::string& path) {
        const std::string upper = AsciiUpper(path);
        const auto fits = [&](const std::string& extension) { return upper.ends_with(AsciiUpper(extension)); };
        if (std::ranges::any_of(extensions, fits)) return std::string();
        const std::string& first = extensions.front();
        return "'" + path + "' endet " +
               (extensions.size() == 1 ? "nicht auf " + first
                                       : "weder auf " + first + " noch auf " + extensions.back());
      },
      "");
}

struct RunArguments {
  RunOptions options;
  std::string onProblem = "abort";
  std::string decimal;
};

void AddRun(CLI::App& app, Action& action, RunArguments& arguments) {
  CLI::App* const run = app.add_subcommand("run", "Makro auf alle Eingabedateien anwenden");
  RunOptions& options = arguments.options;
  AddPath(run, "--macro", options.macro, "Makrodatei (*.mak)");
  Shown(run->add_option("--log", options.log, "Log auch speichern: als *.rtf formatiert, als *.txt ohne Format"))
      ->type_name("")
      ->check(EndsIn({".rtf", ".txt"}));
  Shown(run->add_option("--table", options.table, "Tabelle der Dateien speichern (*.csv): Ergebnis, Fehler, Vektoren"))
      ->type_name("")
      ->check(EndsIn({".csv"}));
  AddChoice(run, "--on-problem", arguments.onProblem, "Antwort auf Probleme vor dem Lauf: abort (Vorgabe) oder ignore",
            {"abort", "ignore"});
  AddChoice(run, "--decimal", arguments.decimal, "Dezimaltrennzeichen der geschriebenen Zahlen: . oder ,", {".", ","});
  Shown(run->add_option("INPUT", options.inputs, "Dateien oder ein Verzeichnis (alle *.vas, *.vec, *.dat darin)"))
      ->required()
      ->type_name("");
  run->callback([&] {
    action = [&arguments] {
      RunOptions& chosen = arguments.options;
      chosen.onProblem = arguments.onProblem == "ignore" ? MessageAnswer::ignore : MessageAnswer::abort;
      chosen.decimalSeparator = arguments.decimal.empty() ? EnvironmentDecimalSeparator() : arguments.decimal.front();
      return RunSeries(chosen);
    };
  });
}

struct FileArguments {
  std::string first;
  std::string second;
  bool json = false;
};

void AddMacro(CLI::App& app, Action& action, FileArguments& files) {
  CLI::App* const macro = app.add_subcommand("macro", "Makrodateien ansehen und umwandeln");
  macro->require_subcommand(1);
  CLI::App* const show = macro->add_subcommand("show", "Befehle eines Makros auflisten");
  AddPath(show, "MAKRO", files.first, "Makrodatei (*.mak)");
  show->callback([&] { action = [&files] { return ShowMacro(files.first); }; });
  CLI::App* const exported = macro->add_subcommand("export", "Makro als JSON ausgeben");
  AddPath(exported, "MAKRO", files.first, "Makrodatei (*.mak)");
  exported->callback([&] { action = [&files] { return ExportMacro(files.first); }; });
  CLI::App* const imported = macro->add_subcommand("import", "JSON als Makrodatei schreiben");
  AddPath(imported, "JSON", files.first, "JSON-Datei, - für die Standardeingabe");
  AddPath(imported, "MAKRO", files.second, "Makrodatei (*.mak), die geschrieben wird");
  imported->callback([&] { action = [&files] { return ImportMacro(files.first, files.second); }; });
}

struct StatisticsArguments {
  std::string kind;
  std::string collection;
  std::string output;
  std::string viscosity;
};

constexpr std::pair<std::string_view, StatisticKind> kKinds[] = {
    {"mean", StatisticKind::mean},
    {"stddev", StatisticKind::standardDeviation},
    {"squares", StatisticKind::fluctuationSquares},
    {"product", StatisticKind::fluctuationProduct},
    {"turbulence", StatisticKind::turbulence},
    {"dissipation", StatisticKind::dissipation},
};

// The whole text must be a number above 0. Reading only a leading number ("1,5E-5") would be guessing.
double ViscosityOf(const StatisticsArguments& arguments, StatisticKind kind) {
  const std::string& text = arguments.viscosity;
  if (text.empty()) {
    if (kind != StatisticKind::dissipation) return 0.0;
    throw CLI::ValidationError("--viscosity", "für dissipation wird die kinematische Viskosität gebraucht");
  }
  try {
    const NumberPrefix number = ReadNumberPrefix(text);
    if (number.length == text.size() && number.value > 0.0) return number.value;
  } catch (const SystemError&) {  // too large for a number
  }
  throw CLI::ValidationError("--viscosity", "'" + text + "': Sie müssen eine Zahl > 0 eingeben!");
}

void AddStatistics(CLI::App& app, Action& action, StatisticsArguments& arguments) {
  CLI::App* const statistics = app.add_subcommand("statistics", "Statistik über eine Kollektion berechnen");
  std::vector<std::string> names;
  for (const auto& [name, kind] : kKinds) names.emplace_back(name);
  AddChoice(statistics, "ART", arguments.kind, "mean, stddev, squares, product, turbulence oder dissipation", names)
      ->required();
  AddPath(statistics, "KOLLEKTION", arguments.collection, "Kollektion (*.col)");
  AddPath(statistics, "ERGEBNIS", arguments.output, "Vektorfeld (*.vas), das geschrieben wird")
      ->check(CLI::Validator(
          [](std::string& path) {
            return HasVasExtension(path) ? std::string() : "'" + path + "' endet nicht auf .vas";
          },
          ""));
  statistics
      ->add_option("--viscosity", arguments.viscosity, "kinematische Viskosität in m²/s, für dissipation (z. B. 15E-6)")
      ->type_name("");
  statistics->callback([&] {
    const auto chosen = std::ranges::find(kKinds, arguments.kind, [](const auto& kind) { return kind.first; });
    const StatisticKind kind = chosen->second;
    const double viscosity = ViscosityOf(arguments, kind);
    action = [&arguments, kind, viscosity] {
      return RunStatistic(kind, arguments.collection, arguments.output, viscosity);
    };
  });
}

struct CollectionArguments {
  std::string path;
  std::vector<std::string> numbers;
  bool json = false;
};

// Record numbers count from 1. A number that is given twice is a mistake and must not remove another record.
std::vector<std::int32_t> RecordNumbersOf(const std::vector<std::string>& texts) {
  std::vector<std::int32_t> numbers;
  for (const std::string& text : texts) {
    std::int32_t number = 0;
    const char* const end = text.data() + text.size();
    const auto read = std::from_chars(text.data(), end, number);
    if (read.ec != std::errc() || read.ptr != end || number < 1) {
      throw CLI::ValidationError("NUMMER", "'" + text + "' ist keine Nummer ab 1");
    }
    if (std::ranges::find(numbers, number) != numbers.end()) {
      throw CLI::ValidationError("NUMMER", "'" + text + "' ist doppelt angegeben");
    }
    numbers.push_back(number);
  }
  return numbers;
}

void AddCollection(CLI::App& app, Action& action, CollectionArguments& arguments) {
  CLI::App* const collection = app.add_subcommand("collection", "Kollektionen ansehen und bearbeiten");
  collection->require_subcommand(1);
  CLI::App* const list = collection->add_subcommand("list", "Gesammelte Vektorfelder auflisten");
  AddPath(list, "KOLLEKTION", arguments.path, "Kollektion (*.col)");
  list->add_flag("--json", arguments.json, "als JSON ausgeben");
  list->callback([&] { action = [&arguments] { return ListCollection(arguments.path, arguments.json); }; });
  CLI::App* const remove = collection->add_subcommand("remove", "Vektorfelder aus einer Kollektion entfernen");
  AddPath(remove, "KOLLEKTION", arguments.path, "Kollektion (*.col)");
  remove->add_option("NUMMER", arguments.numbers, "Nummern der Vektorfelder, wie list sie zeigt")
      ->required()
      ->type_name("");
  remove->callback([&] {
    const std::vector<std::int32_t> numbers = RecordNumbersOf(arguments.numbers);
    action = [&arguments, numbers] { return RemoveFromCollection(arguments.path, numbers); };
  });
}

void AddQueries(CLI::App& app, Action& action, FileArguments& files) {
  CLI::App* const info = app.add_subcommand("info", "Inhalt einer VAS-, DAT- oder VEC-Datei zeigen");
  AddPath(info, "DATEI", files.first, "Vektorfeld");
  info->add_flag("--json", files.json, "als JSON ausgeben");
  info->callback([&] { action = [&files] { return ShowInfo(files.first, files.json); }; });
  CLI::App* const commands = app.add_subcommand("commands", "Alle Makrobefehle mit ihren Parametern zeigen");
  commands->add_flag("--json", files.json, "als JSON ausgeben");
  commands->callback([&] { action = [&files] { return ListCommands(files.json); }; });
}

int Main(int argc, char** argv) {
  PrepareProcess();
  CLI::App app("QuiverionSeries " QUIVERION_VERSION ": Serienauswertung von PIV-Daten", "quiverionseries-cli");
  app.set_version_flag("--version", "QuiverionSeries " QUIVERION_VERSION, "Version zeigen");
  app.require_subcommand(1);
  app.allow_windows_style_options(false);  // "/data" is a path, on every system
  Action action;
  RunArguments runArguments;
  FileArguments fileArguments;
  StatisticsArguments statisticsArguments;
  CollectionArguments collectionArguments;
  AddRun(app, action, runArguments);
  AddMacro(app, action, fileArguments);
  AddStatistics(app, action, statisticsArguments);
  AddCollection(app, action, collectionArguments);
  AddQueries(app, action, fileArguments);
  UseGerman(app, std::make_shared<GermanHelp>());

  Terminal terminal;
  try {
    std::vector<std::string> arguments = CommandLineArguments(argc, argv);
    std::ranges::reverse(arguments);  // the order the parser expects
    app.parse(std::move(arguments));
    return action();
  } catch (const CLI::CallForHelp&) {
    terminal.Print(app.help());
    return kDone;
  } catch (const CLI::CallForVersion& version) {
    terminal.Print(std::string(version.what()) + "\n");
    return kDone;
  } catch (const CLI::ParseError& error) {
    terminal.PrintError(UsageMessage(app, error) + "\nHilfe zeigt: quiverionseries-cli --help\n");
    return kUsage;
  } catch (const std::exception& error) {
    terminal.PrintError(ErrorText(AsSystemError(error)) + "\n");
    return kFailed;
  }
}

}  // namespace
}  // namespace quiverion::cli

int main(int argc, char** argv) {
  return quiverion::cli::Main(argc, argv);
}
