#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>
#include <functional>

#include "cli/commands.h"
#include "cli/german_usage.h"
#include "exchange/formats.h"
#include "exchange/writers.h"
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

// A number above 0, the whole text.
double FactorOf(const char* option, const std::string& text) {
  try {
    const NumberPrefix number = ReadNumberPrefix(text);
    if (number.length == text.size() && number.value > 0.0) return number.value;
  } catch (const SystemError&) {  // too large for a number
  }
  throw CLI::ValidationError(option, "'" + text + "' ist keine Zahl über 0");
}

struct ImportArguments {
  ImportCall call;
  std::string y, units, length, velocity, zeros, column5;
};

exchange::Column5 Column5Of(const std::string& text) {
  if (text == "snr") return exchange::Column5::signalToNoise;
  if (text == "invalid") return exchange::Column5::invalid;
  return text == "valid" ? exchange::Column5::valid : exchange::Column5::guessed;
}

void TakeImportOptions(const ImportArguments& arguments, exchange::ImportOptions& options) {
  if (!arguments.y.empty()) options.yPointsDown = arguments.y == "down";
  if (!arguments.zeros.empty()) options.zerosAreInvalid = arguments.zeros == "invalid";
  options.column5 = Column5Of(arguments.column5);
  if (!arguments.length.empty()) options.lengthFactor = FactorOf("--length", arguments.length);
  if (!arguments.velocity.empty()) options.velocityFactor = FactorOf("--velocity", arguments.velocity);
  if (arguments.units.empty()) return;
  const std::size_t cut = arguments.units.find(';');
  if (cut == std::string::npos) {
    throw CLI::ValidationError("--units", "'" + arguments.units + "': zwei Einheiten wie in 'mm;m/s' sind verlangt");
  }
  options.lengthUnit = arguments.units.substr(0, cut);
  options.velocityUnit = arguments.units.substr(cut + 1);
}

void AddImport(CLI::App& app, Action& action, ImportArguments& arguments) {
  CLI::App* const command = app.add_subcommand("import", "Vektorfelder anderer Programme als VAS-Dateien schreiben");
  ImportCall& call = arguments.call;
  AddPath(command, "--to", call.directory, "Verzeichnis der VAS-Dateien");
  std::vector<std::string> formats;
  for (const exchange::ForeignFormat& format : exchange::ForeignFormats()) formats.emplace_back(format.name);
  AddChoice(command, "--format", call.options.format, "Format, wenn es falsch erkannt wird (z. B. pivlab oder jpiv)",
            formats);
  AddChoice(command, "--y", arguments.y, "wohin y in der Datei zeigt: up oder down (wie in einem Bild)",
            {"up", "down"});
  command->add_option("--units", arguments.units, "Einheiten der Datei, z. B. \"mm;m/s\"")->type_name("");
  command->add_option("--length", arguments.length, "Faktor der Positionen zu mm")->type_name("");
  command->add_option("--velocity", arguments.velocity, "Faktor der Geschwindigkeiten zu m/s")->type_name("");
  AddChoice(command, "--zeros", arguments.zeros, "ob Vektoren (0, 0) gültig sind: valid oder invalid",
            {"valid", "invalid"});
  AddChoice(command, "--column5", arguments.column5,
            "fünfte Spalte ohne Namen: snr (Signal/Rauschen), invalid oder valid", {"snr", "invalid", "valid"});
  Shown(command->add_option("INPUT", call.inputs, "Dateien, oder Verzeichnisse mit solchen"))
      ->required()
      ->type_name("");
  command->callback([&] {
    TakeImportOptions(arguments, arguments.call.options);
    action = [&arguments] { return ImportFields(arguments.call); };
  });
}

struct ExportArguments {
  ExportCall call;
  std::string timeStep;
};

void AddExport(CLI::App& app, Action& action, ExportArguments& arguments) {
  CLI::App* const command = app.add_subcommand("export", "Vektorfelder für andere Programme schreiben");
  ExportCall& call = arguments.call;
  std::vector<std::string> kinds;
  for (const exchange::ExportKind& kind : exchange::ExportKinds()) kinds.emplace_back(kind.name);
  AddChoice(command, "--as", call.kind, "netcdf, vtk, tecplot, matlab oder csv", kinds)->required();
  AddPath(command, "--to", call.directory, "Verzeichnis der Dateien");
  Shown(command->add_option("--series", call.series,
                            "eine Datei für alle Felder (netcdf, tecplot) oder deren Verzeichnis (*.pvd für vtk)"))
      ->type_name("");
  command->add_option("--dt", arguments.timeStep, "Sekunden zwischen zwei Feldern")->type_name("");
  Shown(command->add_option("INPUT", call.inputs, "Dateien oder Verzeichnisse (alle *.vas, *.vec, *.dat darin)"))
      ->required()
      ->type_name("");
  command->callback([&] {
    ExportCall& chosen = arguments.call;
    if (!arguments.timeStep.empty()) chosen.timeStep = FactorOf("--dt", arguments.timeStep);
    if (!chosen.series.empty() && exchange::FindExportKind(chosen.kind)->seriesExtension.empty()) {
      throw CLI::ValidationError("--series", "geht nur mit netcdf, vtk und tecplot");
    }
    action = [&arguments] { return ExportFields(arguments.call); };
  });
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
  ImportArguments importArguments;
  ExportArguments exportArguments;
  AddRun(app, action, runArguments);
  AddMacro(app, action, fileArguments);
  AddStatistics(app, action, statisticsArguments);
  AddCollection(app, action, collectionArguments);
  AddImport(app, action, importArguments);
  AddExport(app, action, exportArguments);
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
