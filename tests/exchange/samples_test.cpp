// Files of every kind, written by the generator, which shares no code with the readers.
#include <gtest/gtest.h>

#include <cmath>

#include "exchange/exchange_fixture.h"
#include "generator/foreign_files.h"

namespace quiverion::exchange::test {
namespace {

using samples::ForeignSample;
using samples::SampleField;

// What the file of this kind can say about a vector.
std::int32_t StatusIn(const ForeignSample& kind, const SampleField& sample, std::size_t p) {
  const std::int32_t status = sample.status[p];
  const bool hasPeak = kind.format == "vc7" && kind.name != "vc7_2.vc7" && kind.name != "vc7_4.vc7";
  if (status > 0 && hasPeak) return p % 3 == 0 ? 4 : 2;
  return status < 0 && !kind.hasMask ? 0 : status;
}

void ExpectField(const ForeignSample& kind, const SampleField& sample, const VectorField& field) {
  ASSERT_EQ(field.columnCount, sample.columns);
  ASSERT_EQ(field.rowCount, sample.rows);
  for (int i = 1; i <= sample.columns; ++i) {
    EXPECT_NEAR(field.posX[static_cast<std::size_t>(i - 1)], samples::PositionX(sample, i), 0.01);
  }
  for (int j = 1; j <= sample.rows; ++j) {
    EXPECT_NEAR(field.posY[static_cast<std::size_t>(j - 1)], samples::PositionY(sample, j), 0.01);
  }
  for (std::size_t p = 0; p < sample.u.size(); ++p) {
    const double scale = std::max(1.0, std::fabs(sample.u[p]) + std::fabs(sample.v[p]));
    ASSERT_NEAR(field.velX.Values()[p], sample.u[p], kind.tolerance * scale) << p;
    ASSERT_NEAR(field.velY.Values()[p], sample.v[p], kind.tolerance * scale) << p;
    ASSERT_EQ(field.status.Values()[p], StatusIn(kind, sample, p)) << p;
  }
}

TEST(ForeignSamples, AreRecognisedAndReadWithTheirStatuses) {
  for (const ForeignSample& kind : samples::ForeignSamples()) {
    for (const auto& [columns, rows] : {std::pair{30, 20}, {1, 1}, {7, 1}, {1, 5}, {2, 2}}) {
      SCOPED_TRACE(std::string(kind.name) + " " + std::to_string(columns) + " x " + std::to_string(rows));
      const SampleField sample =
          samples::MakeSampleField({.columns = columns, .rows = rows, .maskedBody = columns > 10});
      const ForeignFile foreign = ReadBytes(kind.bytes(sample));
      EXPECT_EQ(foreign.report.format, kind.format);
      ASSERT_EQ(foreign.fields.size(), 1u);
      ExpectField(kind, sample, foreign.fields.front().field);
    }
  }
}

TEST(ForeignSamples, ThatAreCutOffAreRefusedOrWholeFields) {
  for (const ForeignSample& kind : samples::ForeignSamples()) {
    const std::string whole = kind.bytes(samples::MakeSampleField({.columns = 5, .rows = 4}));
    for (std::size_t size = 0; size < whole.size(); size += 1 + whole.size() / 400) {
      SCOPED_TRACE(std::string(kind.name) + " " + std::to_string(size));
      const std::string refusal = RefusalOf(whole.substr(0, size));
      // Lines without a header may lose whole rows, the last digits of a number, or an empty end.
      EXPECT_TRUE(refusal.empty() || refusal.find_first_of("0123456789") != std::string::npos) << refusal;
    }
  }
}

}  // namespace
}  // namespace quiverion::exchange::test
