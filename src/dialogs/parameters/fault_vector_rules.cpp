#include "dialogs/parameters/fault_vector_rules.h"

#include <utility>

#include "platform/text/numbers.h"

namespace quiverion {

FaultVectorControls EnabledControls(const FaultVectorChoices& choices) {
  const int marked = choices.absDeviation + choices.absInterval + choices.dirDeviation + choices.xComp + choices.yComp;
  FaultVectorControls controls;
  controls.compareWith = choices.absDeviation || choices.dirDeviation;
  const auto chosen = [&](CompareVectorType type) { return controls.compareWith && choices.compareWith == type; };
  controls.localMiddle = chosen(CompareVectorType::localMean);
  controls.median = chosen(CompareVectorType::median);
  controls.userVector = chosen(CompareVectorType::userVector);
  controls.logicalAndOr = marked >= 2;
  controls.ok = marked >= 1;
  return controls;
}

void OrderBounds(std::string& lower, std::string& upper) {
  if (ReadParameterNumber(lower) > ReadParameterNumber(upper)) std::swap(lower, upper);
}

}  // namespace quiverion
