#include "view/asked_numbers.h"

#include <algorithm>

#include "messages/failure.h"
#include "picture/scales.h"
#include "platform/text/numbers.h"
#include "platform/text/text.h"

namespace quiverion {
namespace {

constexpr int kDigits = 6;

// "1,5" and "1.5"; none if this is no number.
std::optional<double> TypedNumber(std::string text) {
  std::ranges::replace(text, ',', '.');
  const std::string_view number = TrimBlanks(text);
  if (number.empty()) return std::nullopt;
  NumberPrefix read;
  if (Attempt([&] { read = ReadNumberPrefix(number); }) || read.length != number.size()) return std::nullopt;
  return read.value;
}

// Two numbers with a semicolon between them.
std::optional<TwoNumbers> TypedNumbers(const std::string& text) {
  const std::size_t at = text.find(';');
  if (at == std::string::npos) return std::nullopt;
  const auto first = TypedNumber(text.substr(0, at)), second = TypedNumber(text.substr(at + 1));
  if (!first || !second) return std::nullopt;
  return std::pair(*first, *second);
}

}  // namespace

std::string TwoNumbersText(double first, double second) {
  return NumberText(first, kDigits) + "; " + NumberText(second, kDigits);
}

std::optional<std::optional<TwoNumbers>> AskTwoNumbers(ParameterDialogs& dialogs, UserInterface& messages,
                                                       TextQuestion question, TwoNumbersRule rule) {
  const bool ascending = rule == TwoNumbersRule::ascendingOrNone;
  for (;;) {
    const auto answer = dialogs.AskText(question);
    if (!answer) return std::nullopt;
    if (ascending && TrimBlanks(*answer).empty()) return std::optional<TwoNumbers>();
    const auto numbers = TypedNumbers(*answer);
    if (numbers && (!ascending || numbers->first < numbers->second)) return numbers;
    messages.Ask({.title = question.title,
                  .text = std::string(ascending ? "Das sind nicht zwei Zahlen, von denen die erste kleiner ist: '"
                                                : "Das sind nicht zwei Zahlen: '") +
                          *answer + "'"});
    question.preset = *answer;
  }
}

}  // namespace quiverion
