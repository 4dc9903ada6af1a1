#include "statistics/record_sums.h"

#include <algorithm>
#include <array>
#include <vector>

#include "operations/kernels/neighbour_rows.h"
#include "platform/numeric/bit_select.h"
#include "platform/numeric/multi_target.h"
#include "statistics/record_sums_plain.h"

namespace quiverion {
namespace {

constexpr std::size_t kBlock = 512;
using Masks = std::array<Mask, kBlock + 8>;

// Everything that a block of neighbouring vectors needs. Invalid vectors add +0.0, which changes nothing because no sum
// is ever -0.0 in the end: each begins at +0.0, or a square is added to it.
struct Block {
  std::size_t count;
  const Mask* valid;
  const double *u, *v;
  const double *meanU, *meanV;  // null if there are none
  double *x, *y;
  std::int32_t* status;
};

// Expands the bits of the next vectors to masks, a whole number of bytes.
QUIVERION_MULTI_TARGET void ExpandMasks(const unsigned char* bits, std::size_t count, Mask* masks) {
  for (std::size_t byte = 0; byte < (count + 7) / 8; ++byte) {
    const Mask all = bits[byte];
    for (std::size_t bit = 0; bit < 8; ++bit) masks[8 * byte + bit] = Mask{0} - (all >> bit & 1);
  }
}

QUIVERION_MULTI_TARGET void AddVelocityBlock(const Block& block) {
  const Block b = block;
  QUIVERION_INDEPENDENT_STEPS
  for (std::size_t k = 0; k < b.count; ++k) {
    b.x[k] += SelectOrZero(b.valid[k], b.u[k]);
    b.y[k] += SelectOrZero(b.valid[k], b.v[k]);
  }
  QUIVERION_INDEPENDENT_STEPS
  for (std::size_t k = 0; k < b.count; ++k) b.status[k] += static_cast<std::int32_t>(b.valid[k] & 1);
}

QUIVERION_MULTI_TARGET void AddSquareBlock(const Block& block) {
  const Block b = block;
  QUIVERION_INDEPENDENT_STEPS
  for (std::size_t k = 0; k < b.count; ++k) {
    const double u = SelectOrZero(b.valid[k], b.u[k]), v = SelectOrZero(b.valid[k], b.v[k]);
    b.x[k] += u * u;
    b.y[k] += v * v;
  }
}

QUIVERION_MULTI_TARGET void AddProductBlock(const Block& block) {
  const Block b = block;
  QUIVERION_INDEPENDENT_STEPS
  for (std::size_t k = 0; k < b.count; ++k) {
    b.y[k] += SelectOrZero(b.valid[k], b.u[k]) * SelectOrZero(b.valid[k], b.v[k]);
  }
}

QUIVERION_MULTI_TARGET void AddFluctuationBlock(const Block& block) {
  const Block b = block;
  QUIVERION_INDEPENDENT_STEPS
  for (std::size_t k = 0; k < b.count; ++k) {
    const Mask valid = b.valid[k];
    const double u = SelectOrZero(valid, b.u[k]) - SelectOrZero(valid, b.meanU[k]);
    const double v = SelectOrZero(valid, b.v[k]) - SelectOrZero(valid, b.meanV[k]);
    b.x[k] += u * u + v * v;
    b.y[k] += u * v;
  }
}

// `u`, `v`: the velocities, which become fluctuations for valid vectors.
QUIVERION_MULTI_TARGET void SubtractMeanBlock(const Block& block, double* u, double* v) {
  const Block b = block;
  QUIVERION_INDEPENDENT_STEPS
  for (std::size_t k = 0; k < b.count; ++k) {
    const Mask valid = b.valid[k];
    u[k] = Select(valid, SelectOrZero(valid, u[k]) - SelectOrZero(valid, b.meanU[k]), u[k]);
    v[k] = Select(valid, SelectOrZero(valid, v[k]) - SelectOrZero(valid, b.meanV[k]), v[k]);
  }
  QUIVERION_INDEPENDENT_STEPS
  for (std::size_t k = 0; k < b.count; ++k) b.status[k] = static_cast<std::int32_t>(b.valid[k] & 1);
}

// Calls visit(begin, block) for all blocks of the record.
template <class Visit>
void ForEachBlock(StatisticState& s, Visit visit) {
  Masks masks;
  const auto from = [](auto& grid, std::size_t begin) { return grid.Values().data() + begin; };
  const std::size_t vectors = s.field.velX.Values().size();
  const bool means = !s.meanU.Values().empty();
  for (std::size_t begin = 0; begin < vectors; begin += kBlock) {
    const std::size_t count = std::min(kBlock, vectors - begin);
    ExpandMasks(s.validBits.data() + begin / 8, count, masks.data());
    visit(begin, Block{count, masks.data(), from(s.buffer.bufferVelX, begin), from(s.buffer.bufferVelY, begin),
                       means ? from(s.meanU, begin) : nullptr, means ? from(s.meanV, begin) : nullptr,
                       from(s.field.velX, begin), from(s.field.velY, begin), from(s.field.status, begin)});
  }
}

// The points between the first and the last column of a row. A point without a sample adds 0 / 1 = +0.0; `samples` has
// a mask for each point. No two positions may be equal.
QUIVERION_MULTI_TARGET void AddInnerDerivatives(const RowInput& row, double* sums, Mask* samples,
                                                std::int32_t* counts) {
  double* const __restrict target = sums;
  Mask* const __restrict hasSample = samples;
  ForInnerPoints(row, [=](std::int32_t i, Mask hasValue, const Differences& d) QUIVERION_LAMBDA_INLINE {
    const double dx = Select(hasValue, d.dx, 1.0), dy = Select(hasValue, d.dy, 1.0);
    const double dudx = SelectOrZero(hasValue, d.dxu) / dx * 1000.0;
    const double dudy = SelectOrZero(hasValue, d.dyu) / dy * 1000.0;
    const double dvdy = SelectOrZero(hasValue, d.dyv) / dy * 1000.0;
    target[i] += dudx * dudx + dudy * dudy + dvdy * dudx;
    hasSample[i] = hasValue;
  });
  const std::int32_t last = row.columns - 1;
  QUIVERION_INDEPENDENT_STEPS
  for (std::int32_t i = 1; i < last; ++i) counts[i] += static_cast<std::int32_t>(samples[i] & 1);
}

// The buffer contains the fluctuations.
void AddDerivativesOfRows(StatisticState& state) {
  VectorField& field = state.field;
  const BufferField& buffer = state.buffer;
  std::vector<Mask> samples(static_cast<std::size_t>(field.columnCount));
  ForEachRowInput({field.posX, field.posY, buffer.bufferVelX, buffer.bufferVelY, buffer.bufferStatus},
                  [&](std::int32_t j, const RowInput& row) {
                    AddInnerDerivatives(row, field.velX.Row(j), samples.data(), field.status.Row(j));
                    plain::AddDerivativesAt(state, 1, j);
                    plain::AddDerivativesAt(state, field.columnCount, j);  // no effect if it is also the first
                  });
}

}  // namespace

void AddVelocities(StatisticState& state) {
  ForEachBlock(state, [](std::size_t, const Block& block) { AddVelocityBlock(block); });
}

void AddSquares(StatisticState& state) {
  ForEachBlock(state, [](std::size_t, const Block& block) { AddSquareBlock(block); });
}

void AddProducts(StatisticState& state) {
  ForEachBlock(state, [](std::size_t, const Block& block) { AddProductBlock(block); });
}

void AddFluctuations(StatisticState& state) {
  ForEachBlock(state, [](std::size_t, const Block& block) { AddFluctuationBlock(block); });
}

void AddDerivatives(StatisticState& state) {
  if (HasEqualPositions(state.field.posX) || HasEqualPositions(state.field.posY)) {
    plain::AddDerivatives(state);
    return;
  }
  BufferField& buffer = state.buffer;
  ForEachBlock(state, [&buffer](std::size_t begin, Block block) {
    block.status = buffer.bufferStatus.Values().data() + begin;
    SubtractMeanBlock(block, buffer.bufferVelX.Values().data() + begin, buffer.bufferVelY.Values().data() + begin);
  });
  AddDerivativesOfRows(state);
}

}  // namespace quiverion
