#include "operations/kernels/buffer_combination.h"

#include <cstdint>

#include "field/new_vectors.h"
#include "operations/kernels/buffer_combination_plain.h"
#include "platform/numeric/bit_select.h"
#include "platform/numeric/float_errors.h"
#include "platform/numeric/multi_target.h"

namespace quiverion {
namespace {

// The arrays of field and buffer, in memory order.
struct CombineInput {
  std::size_t count;
  const double *velX, *velY, *bufferVelX, *bufferVelY;
  const std::int32_t *status, *bufferStatus;
};

template <class Operation>
QUIVERION_ALWAYS_INLINE std::int64_t CombinePoints(const CombineInput& input, double* __restrict velX,
                                                   double* __restrict velY, std::int32_t* __restrict status,
                                                   Operation operation) {
  const CombineInput in = input;  // a copy cannot alias the targets
  std::int64_t lost = 0;
  for (std::size_t p = 0; p < in.count; ++p) {
    const std::int32_t s = in.status[p], b = in.bufferStatus[p];
    const double x = in.velX[p], y = in.velY[p];
    const Mask both = MaskOf((s > 0) & (b > 0));
    velX[p] = Select(both, operation(x, in.bufferVelX[p]), x);
    velY[p] = Select(both, operation(y, in.bufferVelY[p]), y);
    status[p] = ((s > 0) & (b > 0)) ? 2 : -static_cast<std::int32_t>((s < 0) | (b < 0));
    lost += (s > 0) & (b <= 0);
  }
  return lost;
}

QUIVERION_MULTI_TARGET std::int64_t Combine(const CombineInput& in, double* velX, double* velY, std::int32_t* status,
                                            plain::FieldPlusBuffer operation) {
  return CombinePoints(in, velX, velY, status, operation);
}
QUIVERION_MULTI_TARGET std::int64_t Combine(const CombineInput& in, double* velX, double* velY, std::int32_t* status,
                                            plain::FieldMinusBuffer operation) {
  return CombinePoints(in, velX, velY, status, operation);
}
QUIVERION_MULTI_TARGET std::int64_t Combine(const CombineInput& in, double* velX, double* velY, std::int32_t* status,
                                            plain::BufferMinusField operation) {
  return CombinePoints(in, velX, velY, status, operation);
}

QUIVERION_MULTI_TARGET std::int64_t MaskPoints(const std::int32_t* bufferStatus, std::size_t count,
                                               std::int32_t* status) {
  std::int64_t lost = 0;
  for (std::size_t p = 0; p < count; ++p) {
    lost += (status[p] > 0) & (bufferStatus[p] < 0);
    status[p] = bufferStatus[p] < 0 ? -1 : status[p];
  }
  return lost;
}

// The fast kernel works on scratch memory. If it raises a floating-point flag, the plain loops run in place and stop at
// the exact point of an arithmetic error, if there is one.
template <class Operation>
void CombineWithBuffer(VectorField& field, const BufferField& buffer, Operation operation) {
  const auto data = [](auto& grid) { return grid.Values().data(); };
  const CombineInput input{field.status.Values().size(), data(field.velX),        data(field.velY),
                           data(buffer.bufferVelX),      data(buffer.bufferVelY), data(field.status),
                           data(buffer.bufferStatus)};
  NewVectors result(field);
  const auto combine = [&] {
    result.gained = -Combine(input, data(result.velX), data(result.velY), data(result.status), operation);
  };
  if (RaisesFloatError(combine)) {
    plain::CombineWithBuffer<CheckedReal>(field, buffer, operation);
  } else {
    result.SwapInto(field);
  }
}

}  // namespace

void MaskWithBuffer(VectorField& field, const BufferField& buffer) {
  const auto status = field.status.Values();
  ChangeValidCount(field, -MaskPoints(buffer.bufferStatus.Values().data(), status.size(), status.data()));
}

void AddBuffer(VectorField& field, const BufferField& buffer) {
  CombineWithBuffer(field, buffer, plain::FieldPlusBuffer{});
}

void SubtractBuffer(VectorField& field, const BufferField& buffer) {
  CombineWithBuffer(field, buffer, plain::FieldMinusBuffer{});
}

void SubtractFromBuffer(VectorField& field, const BufferField& buffer) {
  CombineWithBuffer(field, buffer, plain::BufferMinusField{});
}

}  // namespace quiverion
