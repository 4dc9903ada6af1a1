#pragma once

#include <QString>
#include <string>
#include <vector>

#include "exchange/foreign_field.h"

/// What somebody chooses in the drop-downs of the import window, and the options that it means.
namespace quiverion {

/// The indices of the drop-downs, and the texts of those that can be typed in; empty: as in the file.
struct ImportChoices {
  int format = 0;   // 0: by content, else a name of ChoosableFormats() plus 1
  int y = 0;        // by itself, up, down
  int zeros = 0;    // by itself, valid, invalid
  int column5 = 0;  // in the order of exchange::Column5
  std::string length{}, velocity{};

  bool operator==(const ImportChoices&) const = default;
};

/// The formats that can be chosen, name and title.
struct FormatChoice {
  std::string name, title;
};
const std::vector<FormatChoice>& ChoosableFormats();

ImportChoices ChoicesOf(const exchange::ImportOptions& options);

/// A number above 0 is a factor, anything else a unit.
exchange::ImportOptions OptionsOf(const ImportChoices& choices);

}  // namespace quiverion
