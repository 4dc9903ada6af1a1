#include "dialogs/exchange/import_choices.h"

#include <algorithm>

#include "exchange/formats.h"
#include "messages/failure.h"
#include "platform/text/numbers.h"
#include "platform/text/text.h"

namespace quiverion {
namespace {

int IndexOf(const std::optional<bool>& choice) {
  return choice ? 1 + static_cast<int>(*choice) : 0;
}

std::optional<bool> ChoiceAt(int index) {
  return index > 0 ? std::optional(index == 2) : std::nullopt;
}

std::optional<double> FactorIn(std::string text) {
  std::ranges::replace(text, ',', '.');
  std::optional<double> factor;
  Attempt([&] {  // a number may be too large
    const NumberPrefix number = ReadNumberPrefix(text);
    if (number.length > 0 && number.length == text.size() && number.value > 0.0) factor = number.value;
  });
  return factor;
}

void TakeUnit(const std::string& typed, std::string& unit, std::optional<double>& factor) {
  const std::string text(TrimBlanks(typed));
  factor = FactorIn(text);
  unit = factor ? std::string() : text;
}

}  // namespace

const std::vector<FormatChoice>& ChoosableFormats() {
  static const std::vector<FormatChoice> formats = [] {
    std::vector<FormatChoice> all;
    for (const exchange::ForeignFormat& format : exchange::ForeignFormats()) {
      const bool isNamedOnly = format.name == "hdf5" || format.name == "dynamicstudio";
      if (format.isForeign && !isNamedOnly) all.push_back({std::string(format.name), std::string(format.title)});
    }
    return all;
  }();
  return formats;
}

ImportChoices ChoicesOf(const exchange::ImportOptions& options) {
  ImportChoices choices;
  const auto& formats = ChoosableFormats();
  const auto found = std::ranges::find(formats, options.format, &FormatChoice::name);
  if (found != formats.end()) choices.format = static_cast<int>(found - formats.begin()) + 1;
  choices.y = IndexOf(options.yPointsDown);
  choices.zeros = IndexOf(options.zerosAreInvalid);
  choices.column5 = static_cast<int>(options.column5);
  const auto text = [](const std::string& unit, const std::optional<double>& factor) {
    return factor ? FormatNumber(*factor) : unit;
  };
  choices.length = text(options.lengthUnit, options.lengthFactor);
  choices.velocity = text(options.velocityUnit, options.velocityFactor);
  return choices;
}

exchange::ImportOptions OptionsOf(const ImportChoices& choices) {
  exchange::ImportOptions options;
  if (choices.format > 0) options.format = ChoosableFormats().at(static_cast<std::size_t>(choices.format) - 1).name;
  options.yPointsDown = ChoiceAt(choices.y);
  options.zerosAreInvalid = ChoiceAt(choices.zeros);
  options.column5 = static_cast<exchange::Column5>(choices.column5);
  TakeUnit(choices.length, options.lengthUnit, options.lengthFactor);
  TakeUnit(choices.velocity, options.velocityUnit, options.velocityFactor);
  return options;
}

}  // namespace quiverion
