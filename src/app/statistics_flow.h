#pragma once

#include <span>
#include <string>

#include "dialogs/parameters/parameter_dialogs.h"
#include "field/context.h"
#include "statistics/compute_statistic.h"

namespace quiverion {

/// What one item of the statistics menu says and computes.
struct StatisticTexts {
  StatisticKind kind;
  std::string_view item;         // name of the menu item
  std::string_view title;        // of its message boxes
  std::string_view collection;   // end of the text before the collection is chosen
  std::string_view result;       // what the result holds, in the text before its name is chosen
  std::string_view defaultName;  // behind the collection's name
};

std::span<const StatisticTexts> AllStatisticTexts();

/// Leads the user through a statistics command: explains, asks for the collection, for the dissipation for the viscosity,
/// and for the output file, and computes. File dialogs for the collection begin in `directory`. Cancelling a dialog ends
/// it silently. Returns true where it came to the computation, whatever its end was.
bool StatisticsCommandFlow(Context& context, ParameterDialogs& dialogs, const StatisticTexts& texts,
                           const std::string& directory);

}  // namespace quiverion
