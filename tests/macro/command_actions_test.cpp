// What commands pass on of their parameters.
#include "macro/command_actions.h"

#include <gtest/gtest.h>

#include "support/field_builder.h"
#include "support/test_session.h"

namespace quiverion::test {
namespace {

using actions::FaultyVectorCriteriaOf;

// Every value differs from every other that could stand in its place.
MacroEvent SearchEvent() {
  MacroEvent event(30001);
  const char* checks[] = {"ChkAbsDeviation", "ChkAbsInterval", "ChkDirDeviation", "ChkXComp", "ChkYComp"};
  for (const char* key : checks) event.Set(key, 0);
  for (const char* key : {"OptAbsIntOut", "OptXCompIntOut", "OptYCompIntOut", "LogicalOr"}) event.Set(key, false);
  const char* texts[] = {"TxtAbsDeviation", "TxtAbsIntMin",   "TxtAbsIntMax",   "TxtDirDeviation", "TxtXCompIntMin",
                         "TxtXCompIntMax",  "TxtYCompIntMin", "TxtYCompIntMax", "TxtUserVectorX",  "TxtUserVectorY"};
  int number = 10;
  for (const char* key : texts) event.Set(key, " " + std::to_string(++number) + ".5 m/s");
  event.Set("CompareVectorType", 3);
  for (const char* key : {"CboMedianX", "CboMedianY", "CboLocalMiddleX", "CboLocalMiddleY"}) event.Set(key, ++number);
  return event;
}

TEST(CommandActions, FaultVectorsPassesEveryParameterToItsPlace) {
  MacroEvent event = SearchEvent();
  FaultyVectorCriteria c = FaultyVectorCriteriaOf(event);
  EXPECT_EQ(c.magnitudePercent, 11.5);
  EXPECT_EQ(std::pair(c.magnitude.low, c.magnitude.high), std::pair(12.5, 13.5));
  EXPECT_EQ(c.directionDegrees, 14.5);
  EXPECT_EQ(std::pair(c.xComponent.low, c.xComponent.high), std::pair(15.5, 16.5));
  EXPECT_EQ(std::pair(c.yComponent.low, c.yComponent.high), std::pair(17.5, 18.5));
  EXPECT_EQ(std::pair(c.userX, c.userY), std::pair(19.5, 20.5));
  EXPECT_EQ(std::pair(c.halfWidthX, c.halfWidthY), std::pair(21, 22));
  event.Set("CompareVectorType", 1);
  c = FaultyVectorCriteriaOf(event);
  EXPECT_EQ(std::pair(c.halfWidthX, c.halfWidthY), std::pair(23, 24));
  EXPECT_EQ(c.compareVectorType, CompareVectorType::localMean);
}

TEST(CommandActions, FaultVectorsPassesEverySwitchToItsPlace) {
  const std::pair<const char*, bool (*)(const FaultyVectorCriteria&)> switches[] = {
      {"ChkAbsDeviation", [](const FaultyVectorCriteria& c) { return c.magnitudeDeviation; }},
      {"ChkAbsInterval", [](const FaultyVectorCriteria& c) { return c.magnitude.selected; }},
      {"OptAbsIntOut", [](const FaultyVectorCriteria& c) { return c.magnitude.outside; }},
      {"ChkDirDeviation", [](const FaultyVectorCriteria& c) { return c.directionDeviation; }},
      {"ChkXComp", [](const FaultyVectorCriteria& c) { return c.xComponent.selected; }},
      {"OptXCompIntOut", [](const FaultyVectorCriteria& c) { return c.xComponent.outside; }},
      {"ChkYComp", [](const FaultyVectorCriteria& c) { return c.yComponent.selected; }},
      {"OptYCompIntOut", [](const FaultyVectorCriteria& c) { return c.yComponent.outside; }},
      {"LogicalOr", [](const FaultyVectorCriteria& c) { return c.logicalOr; }},
  };
  for (const auto& [set, unused] : switches) {
    MacroEvent event = SearchEvent();
    event.Set(set, 2);  // greyed, which counts as checked
    const FaultyVectorCriteria criteria = FaultyVectorCriteriaOf(event);
    for (const auto& [key, value] : switches) EXPECT_EQ(value(criteria), key == set) << set << " seen as " << key;
  }
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
