// The fast sums compared with the plain loops of their definition.
#include "statistics/record_sums.h"

#include <gtest/gtest.h>

#include "platform/numeric/float_errors.h"
#include "statistics/record_sums_plain.h"
#include "support/field_compare.h"
#include "support/kernel_compare.h"

namespace quiverion::test {
namespace {

struct Sums {
  const char* name;
  void (*fast)(StatisticState&);
  void (*plain)(StatisticState&);
};

// A state in the middle of a pass: a record, means and incomplete sums.
struct Pass {
  VectorField field;
  BufferField buffer;
  StatisticState state{field, buffer, {}};

  Pass(std::uint64_t seed, std::int32_t columns, std::int32_t rows, const Mix& mix) {
    field = RandomField(seed, columns, rows, Mix{.equalPositions = mix.equalPositions});
    field.status.Reset(columns, rows);
    const VectorField record = RandomField(seed + 1, columns, rows, mix);
    const VectorField means = RandomField(seed + 2, columns, rows, mix);
    buffer.bufferVelX = record.velX;
    buffer.bufferVelY = record.velY;
    buffer.bufferStatus = means.status;  // of an earlier record
    state.validBits = PackValidBits(record.status.Values());
    state.meanU = means.velX;
    state.meanV = means.velY;
  }
};

TEST(RecordSums, AreThoseOfThePlainLoops) {
  const Sums all[] = {{"velocities", AddVelocities, plain::AddVelocities},
                      {"squares", AddSquares, plain::AddSquares},
                      {"products", AddProducts, plain::AddProducts},
                      {"fluctuations", AddFluctuations, plain::AddFluctuations},
                      {"derivatives", AddDerivatives, plain::AddDerivatives}};
  constexpr Mix mixes[] = {{.invalid = 100},
                           {.invalid = 500, .special = 300},
                           {.invalid = 100, .special = 100, .notFinite = 100},
                           {.invalid = 200, .huge = 200},
                           {.invalid = 100, .equalPositions = true}};
  std::uint64_t seed = 1;
  const auto compare = [&](std::int32_t columns, std::int32_t rows) {
    for (const Mix& mix : mixes) {
      ++seed;
      for (const Sums& sums : all) {
        Pass expected(seed, columns, rows, mix), pass(seed, columns, rows, mix);
        sums.plain(expected.state);
        sums.fast(pass.state);
        const std::string place = sums.name + (" " + std::to_string(columns)) + "x" + std::to_string(rows);
        ASSERT_EQ(ResultDifference(expected.field, pass.field), "") << place << " seed " << seed;
        ASSERT_EQ(FirstDifference(expected.buffer.bufferVelX, pass.buffer.bufferVelX), "") << place;
        ASSERT_EQ(FirstDifference(expected.buffer.bufferVelY, pass.buffer.bufferVelY), "") << place;
        ASSERT_TRUE(SameItem(expected.buffer.bufferStatus, pass.buffer.bufferStatus)) << place;
      }
    }
  };
  ForEverySize(compare);
  compare(60, 43);  // several blocks, the last one incomplete
}

// Operands that do not count raise no flag: a huge velocity of an invalid vector does not stop a statistic.
TEST(RecordSums, RaiseFlagsOnlyForWhatCounts) {
  for (const auto add : {AddVelocities, AddSquares, AddProducts, AddFluctuations, AddDerivatives}) {
    for (const bool counts : {false, true}) {
      Pass pass(9, 33, 9, {});
      pass.buffer.bufferVelX(7, 4) = pass.buffer.bufferVelY(7, 4) = 1.7E308;
      pass.buffer.bufferVelX(8, 4) = -1.7E308;
      pass.state.meanU(7, 4) = -1.7E308;
      pass.field.velX(7, 4) = 1.7E308;
      Grid<std::int32_t> status(33, 9);
      for (std::int32_t& s : status.Values()) s = 1;
      if (!counts) status(7, 4) = status(8, 4) = 0;
      pass.state.validBits = PackValidBits(status.Values());
      EXPECT_EQ(RaisesFloatError([&] { add(pass.state); }), counts);
    }
  }
}

}  // namespace
}  // namespace quiverion::test
