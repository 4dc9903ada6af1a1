// Golden checksums of random fields: any compiler option that changes values changes these. They were computed by another program.
#include <gtest/gtest.h>

#include <bit>
#include <limits>
#include <type_traits>

#include "field/buffer_commands.h"
#include "operations/derived_scalar.h"
#include "operations/faulty_vectors.h"
#include "operations/filters.h"
#include "operations/interpolation.h"
#include "support/field_builder.h"
#include "support/test_session.h"

namespace quiverion::test {
namespace {

// FNV-1a over all elements, eight bytes each.
template <class... Grids>
std::uint64_t Checksum(const Grids&... grids) {
  std::uint64_t hash = 0xcbf29ce484222325;
  const auto add = [&hash](std::uint64_t bits) {
    for (int k = 0; k < 8; ++k, bits >>= 8) hash = (hash ^ (bits & 0xFF)) * 0x100000001b3;
  };
  const auto addDouble = [&](double value) { add(std::bit_cast<std::uint64_t>(value)); };
  const auto addStatus = [&](std::int32_t value) { add(static_cast<std::uint32_t>(value)); };
  const auto addGrid = [&](const auto& grid) {
    for (const auto value : grid.Values()) {
      if constexpr (std::is_same_v<decltype(value), const double>) {
        addDouble(value);
      } else {
        addStatus(value);
      }
    }
  };
  (addGrid(grids), ...);
  return hash;
}

std::uint64_t Checksum(const VectorField& field) {
  return Checksum(field.velX, field.velY, field.status);
}

// Velocities below 20 m/s, a fifth of the vectors invalid or masked.
VectorField KnownField(std::uint64_t seed, std::int32_t columns, std::int32_t rows) {
  std::mt19937_64 random(seed);
  VectorField field = MakeField(columns, rows);
  for (std::size_t p = 0; p < field.status.Values().size(); ++p) {
    field.velX.Values()[p] = Uniform(random, -20, 20);
    field.velY.Values()[p] = Uniform(random, -20, 20);
    field.status.Values()[p] = static_cast<std::int32_t>(random() % 10) - 1;
  }
  return field;
}

TEST(KnownBits, OfTheDerivedScalars) {
  VectorField field = KnownField(20240607, 125, 100);
  for (double& x : field.posX) x = x * 0.37 - 20.0;
  for (double& y : field.posY) y = 18.0 - y * 0.41;
  CalcVorticity(field);
  EXPECT_EQ(Checksum(field.derivedScalar), 0xe03c8a67e9341937u);
  CalcSwirlingStrength(field);
  EXPECT_EQ(Checksum(field.derivedScalar), 0x3c52e963fd2ab09du);
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

// The count comes from the file; whatever it is, it ends no command.
TEST(KnownBits, TheCountOfValidVectorsStaysInItsRange) {
  using Limits = std::numeric_limits<std::int32_t>;
  const auto search = [](Context& context) {
    FaultyVectorCriteria all;
    all.xComponent = {true, false, -100.0, 100.0};
    FindFaultyVectors(context, all);
  };
  const auto mask = [](Context& context) {
    for (std::int32_t& status : context.buffer.bufferStatus.Values()) status = -1;
    UseBufferAsMask(context);
  };
  const auto addInvalid = [](Context& context) {
    for (std::int32_t& status : context.buffer.bufferStatus.Values()) status = 0;
    AddBufferToField(context);
  };
  const std::pair<void (*)(Context&), std::int32_t> commands[] = {{InterpolateInvalidVectors, Limits::max()},
                                                                  {FilterRect3x3, Limits::max()},
                                                                  {FilterVelocityProfile, Limits::max()},
                                                                  {search, Limits::min()},
                                                                  {mask, Limits::min()},
                                                                  {addInvalid, Limits::min()}};
  for (const auto& [command, count] : commands) {
    TestSession program;
    program.context.field = KnownField(1, 9, 8);
    program.context.field.validVectorCount = count;
    CopyFieldToBuffer(program.context);
    command(program.context);
    EXPECT_EQ(program.context.field.validVectorCount, count) << program.TakeLog();
  }
}

}  // namespace
}  // namespace quiverion::test
