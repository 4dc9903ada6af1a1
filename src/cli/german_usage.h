#pragma once

#include <CLI/CLI.hpp>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

/// The German words of CLI11's help pages and usage errors. For main.cpp only.
namespace quiverion::cli {

class GermanHelp : public CLI::Formatter {
 public:
  GermanHelp() {
    label("REQUIRED", "(Pflicht)");
    label("POSITIONALS", "Argumente");
    label("Positionals", "Argumente");
    label("TEXT", "TEXT");
    label("Needs", "nur mit");
    column_width(34);
  }
  std::string make_usage(const CLI::App* app, std::string name) const override {
    std::string usage = CLI::Formatter::make_usage(app, std::move(name));
    Replace(usage, "Usage:", "Aufruf:");
    Replace(usage, "[OPTIONS]", "[OPTIONEN]");
    Replace(usage, "[SUBCOMMAND]", "BEFEHL");
    Replace(usage, "SUBCOMMAND", "BEFEHL");
    return usage;
  }
  std::string make_group(std::string group, bool isPositional, std::vector<const CLI::Option*> options) const override {
    if (group == "Options") group = "Optionen";
    return CLI::Formatter::make_group(group, isPositional, options);
  }
  std::string make_subcommands(const CLI::App* app, CLI::AppFormatMode mode) const override {
    std::string text = CLI::Formatter::make_subcommands(app, mode);
    Replace(text, "Subcommands:", "Befehle:");
    return text;
  }

 private:
  static void Replace(std::string& text, std::string_view from, std::string_view to) {
    const std::size_t at = text.find(from);
    if (at != std::string::npos) text.replace(at, from.size(), to);
  }
};

/// CLI11 reports errors in English. Their kind and the names in them are enough to build a German sentence.
inline std::string UsageMessage(const CLI::App& app, const CLI::ParseError& error) {
  const std::string what = error.what();
  const std::string name = what.substr(0, what.find_first_of(": "));
  if (dynamic_cast<const CLI::ValidationError*>(&error)) return "Ungültiger Wert: " + what;
  if (dynamic_cast<const CLI::ExtrasError*>(&error)) {
    return "Unbekanntes Argument: " + what.substr(what.find(": ") == std::string::npos ? 0 : what.find(": ") + 2);
  }
  if (dynamic_cast<const CLI::ArgumentMismatch*>(&error)) return "Wert fehlt oder ist zu viel: " + name;
  if (dynamic_cast<const CLI::RequiresError*>(&error)) {  // "--step requires --macro"
    return name + " geht nur mit " + what.substr(what.rfind(' ') + 1);
  }
  if (dynamic_cast<const CLI::RequiredError*>(&error)) {
    const std::vector<std::string> unknown = app.remaining(true);
    if (!unknown.empty()) return "Unbekannter Befehl: " + unknown.front();
    return what.find("ubcommand") != std::string::npos ? "Ein Befehl fehlt." : "Argument fehlt: " + name;
  }
  return "Ungültiger Aufruf: " + name;
}

inline void UseGerman(CLI::App& app, const std::shared_ptr<GermanHelp>& german) {
  app.formatter(german);
  app.set_help_flag("-h,--help", "Diese Hilfe zeigen");
  for (CLI::App* command : app.get_subcommands([](const CLI::App*) { return true; })) UseGerman(*command, german);
}

}  // namespace quiverion::cli
