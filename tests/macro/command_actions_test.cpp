// How commands pass on their parameters.
#include "macro/command_actions.h"

#include <gtest/gtest.h>

#include "platform/text/numbers.h"
#include "support/approved.h"
#include "support/field_builder.h"
#include "support/test_session.h"

namespace quiverion::test {
namespace {

// Each parameter of the search alone, with what of the criteria it sets.
TEST(CommandActions, FaultVectorsPassesEveryParameterToItsPlace) {
  std::string told;
  for (const std::int32_t type : {1, 3}) {
    for (const Parameter& set : ParametersOf(30001)) {
      MacroEvent event(30001);
      for (const Parameter& parameter : ParametersOf(30001)) {
        const bool isText = parameter.kind == ParameterKind::text;
        event.Set(parameter.key, isText ? MacroValue(std::string("0 m/s")) : MacroValue(0));
      }
      event.Set("CompareVectorType", type);
      if (set.kind == ParameterKind::text) {
        event.Set(set.key, std::string(" 2.5 m/s"));
      } else {
        event.Set(set.key, 2);  // greyed, which counts as checked
      }
      const FaultyVectorCriteria c = actions::FaultyVectorCriteriaOf(event);
      told += std::string(set.key) + ":";
      for (const double value :
           {c.magnitudePercent, c.directionDegrees, c.userX, c.userY, c.magnitude.low, c.magnitude.high,
            c.xComponent.low, c.xComponent.high, c.yComponent.low, c.yComponent.high}) {
        told += " " + FormatNumber(value);
      }
      for (const int value : {int{c.magnitudeDeviation}, int{c.directionDeviation}, int{c.magnitude.selected},
                              int{c.magnitude.outside}, int{c.xComponent.selected}, int{c.xComponent.outside},
                              int{c.yComponent.selected}, int{c.yComponent.outside}, int{c.logicalOr},
                              static_cast<int>(c.compareVectorType), c.halfWidthX, c.halfWidthY}) {
        told += " " + std::to_string(value);
      }
      told += "\n";
    }
  }
  ExpectApproved("fault_vector_parameters.txt", told);
}

TEST(CommandActions, TransformationAndMirrorPassTheirParametersInOrder) {
  TestSession program;
  VectorField& field = program.context.field;
  field = MakeField(2, 3);
  field.velX(1, 1) = field.velY(1, 1) = 1.0;
  const auto run = [&](std::int32_t id, std::initializer_list<std::pair<const char*, MacroValue>> values) {
    MacroEvent event(id);
    for (const auto& [key, value] : values) event.Set(key, value);
    FindCommand(id)->run({program.context, event, "", ""});
  };
  run(30003,
      {{"TxtFakX", 2}, {"TxtDeltaX", 3}, {"TxtFakY", 4}, {"TxtDeltaY", 5}, {"TxtFakVecX", 6}, {"TxtFakVecY", 7}});
  EXPECT_EQ(std::pair(field.posX[1], field.posY[2]), std::pair(7.0, 17.0));
  EXPECT_EQ(std::pair(field.velX(1, 1), field.velY(1, 1)), std::pair(6.0, 7.0));
  run(30002, {{"ChkPosX", 1}, {"ChkPosY", 0}});
  EXPECT_EQ(field.velX(2, 1), 6.0);
  run(30002, {{"ChkPosX", 0}, {"ChkPosY", 1}});
  run(40202, {{"XComp", 1.0}, {"YComp", -2.0}});
  EXPECT_EQ(std::pair(field.velX(2, 3), field.velY(2, 3)), std::pair(5.0, 9.0));
}

}  // namespace
}  // namespace quiverion::test
