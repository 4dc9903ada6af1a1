#include "operations/kernels/derived_scalar.h"

#include <gtest/gtest.h>

#include "operations/kernels/derived_scalar_plain.h"
#include "support/kernel_compare.h"

namespace quiverion::test {
namespace {

TEST(DerivedScalar, KernelsGiveTheBitsAndTheStopOfThePlainLoops) {
  const auto vorticity = [](VectorField& f) {
    plain::ComputeDerived<CheckedReal>(f, f.derivedScalar, plain::Vorticity<CheckedReal>);
  };
  const auto swirl = [](VectorField& f) {
    plain::ComputeDerived<CheckedReal>(f, f.derivedScalar, plain::SwirlingStrength<CheckedReal>);
  };
  EXPECT_GT(ExpectSameAsPlain(CalcVorticity, vorticity), 100) << "the mixes must contain errors";
  EXPECT_GT(ExpectSameAsPlain(CalcSwirlingStrength, swirl), 100);
}

}  // namespace
}  // namespace quiverion::test
