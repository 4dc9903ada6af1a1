// Golden checksums: any compiler option that changes values changes these. They were computed by another program.
#include <gtest/gtest.h>

#include <bit>

#include "operations/faulty_vectors.h"
#include "operations/filters.h"
#include "operations/interpolation.h"
#include "support/field_builder.h"
#include "support/test_session.h"

namespace quiverion::test {
namespace {

// FNV-1a over velocities and statuses, eight bytes each.
std::uint64_t Checksum(const VectorField& field) {
  std::uint64_t hash = 0xcbf29ce484222325;
  const auto add = [&hash](std::uint64_t bits) {
    for (int k = 0; k < 8; ++k, bits >>= 8) hash = (hash ^ (bits & 0xFF)) * 0x100000001b3;
  };
  for (const double u : field.velX.Values()) add(std::bit_cast<std::uint64_t>(u));
  for (const double v : field.velY.Values()) add(std::bit_cast<std::uint64_t>(v));
  for (const std::int32_t status : field.status.Values()) add(static_cast<std::uint32_t>(status));
  return hash;
}

TEST(KnownBits, OfAnEvaluation) {
  std::mt19937_64 random(20260711);
  TestSession program;
  VectorField& field = program.context.field;
  field = MakeField(60, 50);
  field.validVectorCount = 2500;
  for (std::size_t p = 0; p < 3000; ++p) {
    field.velX.Values()[p] = Uniform(random, -20, 20);
    field.velY.Values()[p] = Uniform(random, -20, 20);
    field.status.Values()[p] = static_cast<std::int32_t>(random() % 10) - 1;
  }
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
