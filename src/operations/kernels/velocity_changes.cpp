#include "operations/kernels/velocity_changes.h"

#include <cstddef>
#include <cstdint>

#include "field/new_vectors.h"
#include "operations/kernels/velocity_changes_plain.h"
#include "platform/numeric/bit_select.h"
#include "platform/numeric/float_errors.h"
#include "platform/numeric/multi_target.h"

namespace quiverion {
namespace {

// One component of all velocities, in memory order.
struct Component {
  std::size_t count;
  const double* velocity;
  const std::int32_t* status;
};

QUIVERION_MULTI_TARGET void ScaleComponent(const Component& component, double factor, double* __restrict target) {
  const Component in = component;  // a copy cannot alias the target
  for (std::size_t p = 0; p < in.count; ++p) target[p] = in.velocity[p] * factor;
}

QUIVERION_MULTI_TARGET void ShiftComponent(const Component& component, double shift, double* __restrict target) {
  const Component in = component;
  for (std::size_t p = 0; p < in.count; ++p) {
    target[p] = Select(MaskOf(in.status[p] > 0), in.velocity[p] + shift, in.velocity[p]);
  }
}

using ComponentKernel = void(const Component&, double, double*);
using PlainLoops = void(VectorField&, double, double);

// The fast kernel works on scratch memory. Only if a floating-point flag was raised do the plain loops run in place;
// they stop at the exact point of an error, if there is one.
void ChangeVelocities(VectorField& field, double x, double y, ComponentKernel* kernel, PlainLoops* checkedLoops) {
  NewVelocities result(field);
  const auto run = [&](const Grid<double>& velocity, double value, Grid<double>& target) {
    const Component component{velocity.Values().size(), velocity.Values().data(), field.status.Values().data()};
    kernel(component, value, target.Values().data());
  };
  const bool raised = RaisesFloatError([&] {
    run(field.velX, x, result.velX);
    run(field.velY, y, result.velY);
  });
  if (raised) {
    checkedLoops(field, x, y);
  } else {
    result.SwapInto(field);
  }
}

}  // namespace

void ScaleVelocities(VectorField& field, double factorX, double factorY) {
  ChangeVelocities(field, factorX, factorY, ScaleComponent, plain::ScaleVelocities<CheckedReal>);
}

void ShiftVelocities(VectorField& field, double shiftX, double shiftY) {
  ChangeVelocities(field, shiftX, shiftY, ShiftComponent, plain::ShiftVelocities<CheckedReal>);
}

}  // namespace quiverion
