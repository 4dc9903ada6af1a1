#include "dialogs/parameters/fault_vector_rules.h"

#include <gtest/gtest.h>

namespace quiverion {
namespace {

TEST(FaultVectorRules, EnableWhatTheMarkedCriteriaNeed) {
  using enum CompareVectorType;
  const struct {
    FaultVectorChoices choices;
    FaultVectorControls controls;
  } cases[] = {
      {{}, {}},
      {{.absInterval = true, .compareWith = median}, {.ok = true}},  // needs no compare vector
      {{.absDeviation = true}, {.compareWith = true, .localMiddle = true, .ok = true}},
      {{.dirDeviation = true, .compareWith = fieldMean}, {.compareWith = true, .ok = true}},
      {{.dirDeviation = true, .compareWith = median}, {.compareWith = true, .median = true, .ok = true}},
      {{.absDeviation = true, .yComp = true, .compareWith = userVector},
       {.compareWith = true, .userVector = true, .logicalAndOr = true, .ok = true}},
      {{.xComp = true, .yComp = true}, {.logicalAndOr = true, .ok = true}},
  };
  for (const auto& c : cases) EXPECT_EQ(EnabledControls(c.choices), c.controls) << &c - cases;
}

TEST(FaultVectorRules, OrderTheBoundsByTheirNumbers) {
  const struct {
    std::string lower, upper, orderedLower, orderedUpper;
  } cases[] = {{"10", "9", "9", "10"}, {"9", "10", "9", "10"}, {"-1", "-2.5", "-2.5", "-1"}, {"1", "", "", "1"}};
  for (auto c : cases) {
    OrderBounds(c.lower, c.upper);
    EXPECT_EQ(c.lower, c.orderedLower);
    EXPECT_EQ(c.upper, c.orderedUpper);
  }
}

}  // namespace
}  // namespace quiverion
