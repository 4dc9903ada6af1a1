#include "operations/kernels/faulty_vectors.h"
#include "operations/commands/find_faulty_vectors.h"

#include <gtest/gtest.h>

#include "operations/kernels/compare_vectors.h"
#include "operations/kernels/faulty_vectors_plain.h"
#include "support/kernel_compare.h"
#include "support/test_session.h"

namespace quiverion::test {
namespace {

using Type = CompareVectorType;

FaultyVectorCriteria Deviation(Type type, std::int32_t halfX, std::int32_t halfY) {
  FaultyVectorCriteria criteria;
  criteria.magnitudeDeviation = true;
  criteria.magnitudePercent = 30.0;
  criteria.compareVectorType = type;
  criteria.halfWidthX = halfX;
  criteria.halfWidthY = halfY;
  criteria.userX = 3.0;
  criteria.userY = -2.0;
  return criteria;
}

void ExpectDefinition(const FaultyVectorCriteria& criteria, int leastStops) {
  const int stops =
      ExpectSameAsPlain([&](VectorField& field) { RejectFaultyVectors(field, criteria); },
                        [&](VectorField& field) { plain::RejectFaultyVectors<CheckedReal>(field, criteria); });
  EXPECT_GE(stops, leastStops) << "the mixes must contain errors";
}

TEST(FaultyVectors, EveryCompareVectorDecidesAsThePlainLoops) {
  const std::pair<std::int32_t, std::int32_t> windows[] = {{0, 0}, {1, 1}, {2, 2},           {1, 2},
                                                           {3, 0}, {4, 5}, {199, 2147483647}};
  for (const Type type : {Type::localMean, Type::fieldMean, Type::median, Type::userVector}) {
    for (const auto& [halfX, halfY] : windows) {
      if ((type == Type::fieldMean || type == Type::userVector) && halfX > 0) continue;
      FaultyVectorCriteria criteria = Deviation(type, halfX, halfY);
      ExpectDefinition(criteria, 20);
      criteria.directionDeviation = true;
      criteria.directionDegrees = 40.0;
      criteria.logicalOr = true;
      ExpectDefinition(criteria, 20);
      criteria.magnitudeDeviation = false;
      ExpectDefinition(criteria, 20);
      if (HasFailure()) FAIL() << static_cast<int>(type) << " " << halfX << " " << halfY;
    }
  }
}

// Enough ranks to be counted by blocks, and windows with few of them.
TEST(FaultyVectors, RanksOfALargeField) {
  const VectorField field = RandomField(5, 530, 510, {.invalid = 50, .special = 20});
  const Magnitudes magnitudes = MagnitudesOf(field);
  for (const Window window : {Window{1, 3}, Window{5, 4}}) {
    FaultyVectorCriteria criteria = Deviation(Type::median, window.halfX, window.halfY);
    CompareVectors compare(criteria);
    compare.Resize(field.columnCount, field.rowCount);
    Medians(field, magnitudes, window, compare);
    for (std::size_t p = 0; p < field.status.Values().size(); p += 13) {
      const auto i = static_cast<std::int32_t>(p % 530) + 1, j = static_cast<std::int32_t>(p / 530) + 1;
      if (field.status(i, j) < 1) continue;
      ASSERT_EQ(plain::Median<double>(field, i, j, criteria).magnitude, compare.magnitude(i, j)) << i << "," << j;
    }
  }
}

// All criteria on a few vectors with obvious results. The compare vector is (2, 0).
TEST(FaultyVectors, Criteria) {
  using C = FaultyVectorCriteria;
  const auto deviation = [](bool C::*which, double C::*limit, double allowed) {
    C criteria;
    criteria.*which = true;
    criteria.*limit = allowed;
    return criteria;
  };
  const auto percent = [&](double allowed) { return deviation(&C::magnitudeDeviation, &C::magnitudePercent, allowed); };
  const auto degrees = [&](double allowed) { return deviation(&C::directionDeviation, &C::directionDegrees, allowed); };
  C either;
  either.logicalOr = true;
  const auto interval = [](IntervalCriterion C::*which, bool outside, double low, double high, C criteria = {}) {
    criteria.*which = {true, outside, low, high};
    return criteria;
  };
  const struct {
    C criteria;
    const char* faulty;  // of the vectors below, counted from 0
  } cases[] = {
      {percent(30.0), "12"},
      {percent(50.0), "2"},  // exactly the allowed
      {interval(&C::magnitude, true, 2.0, 2.5), "12"},
      {interval(&C::magnitude, false, 2.0, 3.0), "4"},
      {degrees(89.0), "234"},
      {degrees(179.9), "23"},
      {degrees(179.99999998), "2"},  // 3.14159265359 / 3.141592654 * 180 is a little below 180
      {degrees(185.0), "2"},
      {degrees(0.0), "234"},
      {degrees(-1.0), "01234"},
      {interval(&C::xComponent, true, 0.0, 2.0), "13"},
      {interval(&C::yComponent, false, 2.0, 3.0), "4"},
      {interval(&C::magnitude, true, 0.0, 2.5, interval(&C::xComponent, true, 0.0, 2.0)), "1"},
      {interval(&C::yComponent, false, 2.0, 3.0, interval(&C::xComponent, true, 0.0, 2.0, either)), "134"},
      {{}, ""},
  };
  //                  length 2, length 3, rest, against it, at right angles
  const double u[] = {2.0, 3.0, 0.0, -2.0, 0.0};
  const double v[] = {0.0, 0.0, 0.0, 0.0, 2.5};
  for (const auto& [selected, expected] : cases) {
    VectorField field = MakeField(5, 1);
    field.validVectorCount = 5;
    std::copy(std::begin(u), std::end(u), field.velX.Row(1));
    std::copy(std::begin(v), std::end(v), field.velY.Row(1));
    FaultyVectorCriteria criteria = selected;
    criteria.compareVectorType = Type::userVector;
    criteria.userX = 2.0;
    RejectFaultyVectors(field, criteria);
    std::string faulty;
    for (int i = 0; i < 5; ++i) {
      if (field.status(i + 1, 1) == 0) faulty += std::to_string(i);
    }
    EXPECT_EQ(faulty, expected);
    EXPECT_EQ(field.validVectorCount, 5 - static_cast<int>(faulty.size()));
  }
}

// Angles so close to the allowed one that only the formula of the definition decides.
TEST(FaultyVectors, DirectionsAtTheLimitTakeTheFormula) {
  std::mt19937_64 random(11);
  for (int round = 0; round < 300; ++round) {
    FaultyVectorCriteria criteria;
    criteria.directionDeviation = true;
    criteria.compareVectorType = Type::userVector;
    const double start = Uniform(random, 0.0, 6.28), degrees = round % 4 == 0 ? 0.0 : Uniform(random, 0.0, 180.0);
    criteria.userX = std::cos(start);
    criteria.userY = std::sin(start);
    criteria.directionDegrees = degrees;
    VectorField field = MakeField(41, 1);
    for (std::int32_t i = 1; i <= 41; ++i) {
      const double angle = start + degrees * 3.141592654 / 180.0 + (i - 21) * 1e-14 * (1 << round % 8);
      field.velX(i, 1) = 3.0 * std::cos(angle);
      field.velY(i, 1) = 3.0 * std::sin(angle);
    }
    VectorField expected = field;
    plain::RejectFaultyVectors<double>(expected, criteria);
    RejectFaultyVectors(field, criteria);
    ASSERT_EQ(ResultDifference(expected, field), "") << round;
  }
}

TEST(FaultyVectors, RefusesWhatADamagedMacroHolds) {
  const auto errorOf = [](FaultyVectorCriteria criteria) {
    VectorField field = MakeField(3, 3);
    return ErrorOf([&] { RejectFaultyVectors(field, criteria); });
  };
  EXPECT_EQ(errorOf(Deviation(static_cast<Type>(0), 1, 1)), 5);
  EXPECT_EQ(errorOf(Deviation(static_cast<Type>(65537), 1, 1)), 5);
  EXPECT_EQ(errorOf(Deviation(Type::median, -1, 1)), 5);
  EXPECT_EQ(errorOf(Deviation(Type::localMean, 1, -2147483647 - 1)), 5);
  EXPECT_EQ(errorOf(Deviation(Type::userVector, -1, -1)), 0) << "no window is needed";
  FaultyVectorCriteria interval = Deviation(static_cast<Type>(9), -1, -1);
  interval.magnitudeDeviation = false;
  interval.xComponent = {true, true, -1.0, 1.0};
  EXPECT_EQ(errorOf(interval), 0) << "no compare vector is needed";
}

TEST(FaultyVectors, LogsOnlyTheAnnouncementWithoutACriterion) {
  TestSession program;
  program.context.field = MakeField(2, 2);
  FindFaultyVectors(program.context, {});
  EXPECT_EQ(program.TakeLog(), "Fehlerhafte Vektoren suchen... ");
}

}  // namespace
}  // namespace quiverion::test
