#include "viewer/arguments.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>
#include <cmath>
#include <tuple>

#include "cli/exit_code.h"
#include "cli/german_usage.h"
#include "cli/terminal.h"
#include "platform/files/paths.h"
#include "version.h"

namespace quiverion {
namespace {

constexpr double kSmallestSide = 16.0, kLargestSide = 20000.0;
constexpr double kLargestArea = 64E6;  // pixels

// The whole text is a finite number.
std::optional<double> NumberOf(std::string_view text) {
  double value = 0.0;
  const auto read = std::from_chars(text.data(), text.data() + text.size(), value);
  const bool whole = read.ec == std::errc() && read.ptr == text.data() + text.size() && std::isfinite(value);
  return whole ? std::optional(value) : std::nullopt;
}

// Both parts around the first `separator`.
std::optional<std::pair<double, double>> TwoNumbers(std::string_view text, char separator) {
  const std::size_t at = text.find(separator);
  if (at == std::string_view::npos) return std::nullopt;
  const auto first = NumberOf(text.substr(0, at)), second = NumberOf(text.substr(at + 1));
  if (!first || !second) return std::nullopt;
  return std::pair(*first, *second);
}

// An option whose text `read` understands; false is a usage error.
template <class Read>
CLI::Option* AddParsed(CLI::App& app, const std::string& name, const std::string& value, const std::string& help,
                       Read read) {
  return app
      .add_option_function<std::string>(
          name,
          [name, read](const std::string& text) {
            if (!read(text)) throw CLI::ValidationError(name + ": '" + text + "'");
          },
          help)
      ->type_name(value);
}

std::string QuantityNames() {
  std::string names;
  for (const QuantityTexts& texts : AllQuantities()) names.append(names.empty() ? "" : ", ").append(texts.option);
  return names;
}

// "800x600", within what can be drawn.
bool ReadSize(const std::string& text, PictureOptions& options) {
  const auto size = TwoNumbers(text, 'x');
  const auto fits = [](double side) {
    return side >= kSmallestSide && side <= kLargestSide && side == std::floor(side);
  };
  if (!size || !fits(size->first) || !fits(size->second) || size->first * size->second > kLargestArea) return false;
  std::tie(options.width, options.height) = *size;
  return true;
}

bool ReadQuantity(const std::string& text, PictureOptions& options) {
  const auto& all = AllQuantities();
  const auto found = std::ranges::find(all, std::string_view(text), &QuantityTexts::option);
  if (found != all.end()) options.background = found->quantity;
  return found != all.end();
}

bool ReadLimits(const std::string& text, PictureOptions& options) {
  const auto limits = TwoNumbers(text, ':');
  if (limits && limits->first < limits->second) options.limits = Limits{limits->first, limits->second};
  return options.limits.has_value();
}

bool ReadReference(const std::string& text, PictureOptions& options) {
  const auto speed = NumberOf(text);
  if (speed && *speed > 0.0) options.reference = speed;
  return options.reference.has_value();
}

bool ReadStep(const std::string& text, PictureOptions& options) {
  const auto count = NumberOf(text);
  const bool whole = count && *count >= 0.0 && *count <= 1E9 && *count == std::floor(*count);
  if (whole) options.step = static_cast<std::size_t>(*count);
  return whole;
}

void AddOptions(CLI::App& app, PictureOptions& options, std::vector<std::string>& files) {
  app.add_option("DATEI", files, "Vektorfelder (VAS, DAT, VEC), auch Verzeichnisse")->type_name("");
  CLI::Option* const picture =
      app.add_option("--picture", options.output,
                     "ein Bild schreiben: *.png, *.svg oder *.pdf, bei mehreren Dateien ein Verzeichnis")
          ->type_name("BILD");
  const auto add = [&](const char* name, const char* value, const std::string& help, auto read) {
    return AddParsed(app, name, value, help, [&options, read](const std::string& text) { return read(text, options); })
        ->needs(picture);
  };
  add("--size", "BxH", "Größe des Bildes in Pixeln, Breite x Höhe (1200x900)", ReadSize);
  add("--background", "GRÖSSE", "was hinter den Pfeilen steht: " + QuantityNames(), ReadQuantity);
  add("--limits", "VON:BIS", "Grenzen der Farbskala", ReadLimits);
  add("--reference", "V", "Geschwindigkeit in m/s, deren Pfeil 0,9 Gitterabstände lang ist", ReadReference);
  CLI::Option* const macro =
      app.add_option("--macro", options.macro, "das Feld nach diesem Makro zeigen; geschrieben wird nur das Bild")
          ->type_name("M.mak")
          ->needs(picture);
  add("--step", "K", "nur die ersten K Befehle des Makros", ReadStep)->needs(macro);
}

}  // namespace

ViewerArguments ReadArguments(std::vector<std::string> arguments) {
  CLI::App app("QuiverionView " QUIVERION_VERSION ": Vektorfelder ansehen", "QuiverionView");
  app.set_version_flag("--version", "QuiverionView " QUIVERION_VERSION, "Version zeigen");
  app.allow_windows_style_options(false);  // "/data" is a path, on every system
  PictureOptions options;
  ViewerArguments result;
  AddOptions(app, options, result.files);
  cli::UseGerman(app, std::make_shared<cli::GermanHelp>());
  cli::Terminal terminal;
  try {
    std::ranges::reverse(arguments);  // the order the parser expects
    app.parse(std::move(arguments));
    for (std::string& file : result.files) file = TypedPath(std::move(file));
    if (app.count("--picture") == 0) return result;
    if (result.files.empty()) throw CLI::RequiredError("DATEI");
    options.output = TypedPath(std::move(options.output));
    options.macro = TypedPath(std::move(options.macro));
    options.inputs = std::move(result.files);
    result.picture = std::move(options);
  } catch (const CLI::CallForHelp&) {
    terminal.Print(app.help());
    result.exitCode = cli::kDone;
  } catch (const CLI::CallForVersion& version) {
    terminal.Print(std::string(version.what()) + "\n");
    result.exitCode = cli::kDone;
  } catch (const CLI::ParseError& error) {
    terminal.PrintError(cli::UsageMessage(app, error) + "\nHilfe zeigt: QuiverionView --help\n");
    result.exitCode = cli::kUsage;
  }
  return result;
}

}  // namespace quiverion
