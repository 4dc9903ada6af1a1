#pragma once

#include <gtest/gtest.h>

#include <string>

#include "field/context.h"
#include "support/error_of.h"
#include "support/random_fields.h"

/// Compares fast operations with the plain loops of their definition: the same bits, the same stop.
namespace quiverion::test {

/// The difference between two fields in what operations change; empty if there is none.
inline std::string ResultDifference(const VectorField& expected, const VectorField& actual) {
  if (const auto x = FirstDifference(expected.velX, actual.velX); !x.empty()) return "velX" + x;
  if (const auto y = FirstDifference(expected.velY, actual.velY); !y.empty()) return "velY" + y;
  if (const auto s = FirstDifference(expected.derivedScalar, actual.derivedScalar); !s.empty()) return "scalar" + s;
  if (!std::ranges::equal(expected.status.Values(), actual.status.Values())) return "status";
  if (expected.validVectorCount != actual.validVectorCount) return "validVectorCount";
  return {};
}

/// Mixes in which something overflows or is divided by 0.
inline constexpr Mix kStoppedMixes[] = {{.invalid = 100, .huge = 15},
                                        {.invalid = 300, .special = 50, .notFinite = 50, .huge = 40},
                                        {.invalid = 700, .huge = 150},
                                        {.invalid = 100, .special = 500, .notFinite = 200, .equalPositions = true},
                                        {.invalid = 300, .notFinite = 800, .equalPositions = true}};

/// Mixes with ties.
inline constexpr Mix kTiedMixes[] = {{.invalid = 100, .quantised = 1000},
                                     {.invalid = 50, .special = 300, .quantised = 700},
                                     {.invalid = 50, .special = 200, .notFinite = 60, .quantised = 600}};

/// Runs a command on `field` instead of the current field and lets exceptions through.
template <class Command>
void RunOn(Context& context, VectorField& field, Command command) {
  std::swap(context.field, field);
  const int error = ErrorOf([&] { command(context); });
  std::swap(context.field, field);
  if (error != 0) throw SystemError(static_cast<ErrorNumber>(error));
}

/// Runs both on random fields of every size and mix and expects the same field and the same error. Both are called as
/// f(field). Returns how many computations stopped at an error.
template <class Fast, class Plain>
int ExpectSameAsPlain(Fast fast, Plain plain) {
  std::uint64_t seed = 1;
  int stops = 0;
  const auto compare = [&](std::int32_t columns, std::int32_t rows, const Mix& mix) {
    VectorField field = RandomField(++seed, columns, rows, mix);
    VectorField expected = field;
    const int expectedError = ErrorOf([&] { plain(expected); });
    const int error = ErrorOf([&] { fast(field); });
    stops += error != 0 ? 1 : 0;
    EXPECT_EQ(expectedError, error) << columns << "x" << rows << " seed " << seed;
    EXPECT_EQ(ResultDifference(expected, field), "") << columns << "x" << rows << " seed " << seed;
  };
  ForEverySize([&](std::int32_t columns, std::int32_t rows) {
    for (const Mix& mix : kCarriedMixes) compare(columns, rows, mix);
    for (const Mix& mix : kTiedMixes) compare(columns, rows, mix);
    for (const Mix& mix : kStoppedMixes) {
      if (!testing::Test::HasFailure()) compare(columns, rows, mix);
    }
  });
  return stops;
}

}  // namespace quiverion::test
