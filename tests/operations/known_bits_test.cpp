// Golden checksums of random fields: they detect any compiler option that changes values. They were computed by another
// program.
#include <gtest/gtest.h>

#include "operations/commands/filters.h"
#include "operations/commands/find_faulty_vectors.h"
#include "operations/commands/interpolate_invalid_vectors.h"
#include "operations/kernels/derived_scalar.h"
#include "operations/kernels/faulty_vectors.h"
#include "operations/kernels/interpolation.h"
#include "operations/kernels/mathematical.h"
#include "support/known_fields.h"
#include "support/test_session.h"

namespace quiverion::test {
namespace {

TEST(KnownBits, OfTheDerivedScalars) {
  VectorField field = KnownField(20240607, 125, 100);
  for (double& x : field.posX) x = x * 0.37 - 20.0;
  for (double& y : field.posY) y = 18.0 - y * 0.41;
  CalcVorticity(field);
  EXPECT_EQ(Checksum(field.derivedScalar), 0xe03c8a67e9341937u);
  CalcSwirlingStrength(field);
  EXPECT_EQ(Checksum(field.derivedScalar), 0x3c52e963fd2ab09du);
}

// The libraries of the systems give different last digits; a direction at its limit must not depend on them.
TEST(KnownBits, OfTheArcCosine) {
  Grid<double> angles(1, 999);
  for (int k = 0; k < 999; ++k) angles.Values()[static_cast<std::size_t>(k)] = ArcCos((k - 499) / 500.0);
  EXPECT_EQ(Checksum(angles), 0x380cae0baab16fd2u);
}

TEST(KnownBits, OfAnEvaluation) {
  TestSession program;
  VectorField& field = program.context.field;
  field = KnownField(20260711, 60, 50);
  field.validVectorCount = 2500;
  FaultyVectorCriteria criteria;
  criteria.magnitudeDeviation = criteria.directionDeviation = true;
  criteria.magnitudePercent = criteria.directionDegrees = 60.0;
  criteria.halfWidthX = 2, criteria.halfWidthY = 1;
  FindFaultyVectors(program.context, criteria);
  EXPECT_EQ(Checksum(field), 0xd011f374d9dd2ac6u);
  criteria.compareVectorType = CompareVectorType::median;
  criteria.halfWidthY = 2;
  criteria.magnitudePercent = 80.0, criteria.directionDegrees = 170.0;
  criteria.logicalOr = true;
  FindFaultyVectors(program.context, criteria);
  EXPECT_EQ(Checksum(field), 0x49a9ecb5a64ab7cdu);
  InterpolateInvalidVectors(program.context);
  EXPECT_EQ(Checksum(field), 0x612172eddd5b6d2fu);
  FilterGauss5x5(program.context);
  EXPECT_EQ(Checksum(field), 0x28346d4a1c03de24u);
  FilterRect3x3(program.context);
  EXPECT_EQ(Checksum(field), 0x2d42d0baa941b904u);
  FilterVelocityProfile(program.context);
  EXPECT_EQ(Checksum(field), 0x9a6ee099d1db327bu);
  EXPECT_EQ(field.validVectorCount, 2794);
}

}  // namespace
}  // namespace quiverion::test
