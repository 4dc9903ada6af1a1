#pragma once

#include <optional>
#include <string>
#include <utility>

#include "dialogs/parameters/parameter_dialogs.h"
#include "messages/user_interface.h"

namespace quiverion {

using TwoNumbers = std::pair<double, double>;

/// "1,5; -2": with decimal commas and a semicolon, as AskTwoNumbers reads them.
std::string TwoNumbersText(double first, double second);

enum class TwoNumbersRule {
  any,
  ascendingOrNone  ///< the first one is smaller; no text stands for no numbers
};

/// Asks for two numbers with a semicolon between them, again if the answer is something else. Decimal points and commas
/// are both understood. None if the user cancels; an empty answer, where it is allowed, is a value without numbers.
std::optional<std::optional<TwoNumbers>> AskTwoNumbers(ParameterDialogs& dialogs, UserInterface& messages,
                                                       TextQuestion question, TwoNumbersRule rule);

}  // namespace quiverion
