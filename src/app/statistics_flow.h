#pragma once

#include <functional>
#include <span>
#include <string>

#include "dialogs/parameters/parameter_dialogs.h"
#include "field/context.h"
#include "statistics/compute_statistic.h"

namespace quiverion {

/// The texts and the computation of one item of the statistics menu.
struct StatisticTexts {
  StatisticKind kind;
  std::string_view item;         // name of the menu item
  std::string_view title;        // of its message boxes
  std::string_view collection;   // end of the text before the collection is chosen
  std::string_view result;       // description of the result, in the text before its name is chosen
  std::string_view defaultName;  // appended to the collection's name
};

std::span<const StatisticTexts> AllStatisticTexts();

/// Guides the user through a statistics command: explains it, asks for the collection, for the viscosity (dissipation
/// only) and for the output file, then computes. File dialogs for the collection begin in `directory`. Cancelling a
/// dialog ends it silently. `begins` is called before the computation. Returns true if the computation was started,
/// whatever its outcome.
bool StatisticsCommandFlow(Context& context, ParameterDialogs& dialogs, const StatisticTexts& texts,
                           const std::string& directory,
                           const std::function<void(const std::string& collection)>& begins);

}  // namespace quiverion
