// Statistics over collections: closed forms, golden bits, and the frame around the computation.
#include "statistics/compute_statistic.h"

#include <gtest/gtest.h>

#include <cmath>

#include "collection_fixture.h"
#include "field/formats/load_original_file.h"
#include "support/approved.h"
#include "support/field_compare.h"
#include "support/known_fields.h"
#include "support/random_fields.h"

namespace quiverion::test {
namespace {

using enum StatisticKind;

constexpr StatisticKind kKinds[] = {mean,       standardDeviation, fluctuationSquares, fluctuationProduct,
                                    turbulence, dissipation};

class Statistics : public CollectionTest {
 protected:
  // Computes and returns the saved result.
  VectorField Compute(StatisticKind kind, double viscosity = 0.0) {
    program.files.files.erase("r.vas");
    EXPECT_TRUE(ComputeStatistic(context, kind, "C.col", "r.vas", viscosity)) << program.ui.messages.back().text;
    EXPECT_EQ(program.TakeLog(), "Datei speichern unter 'r.vas'... fertig\r\n");
    LoadOriginalFile(context, "r.vas");
    program.TakeLog();
    return context.field;
  }

  // A field per amplitude: amplitude times the flow u(x, y), v(x, y), positions in mm.
  template <class U, class V>
  void CollectMultiples(const VectorField& grid, std::initializer_list<double> amplitudes, U u, V v) {
    for (const double amplitude : amplitudes) {
      VectorField field = grid;
      SetVelocities(
          field, [&](double x, double y) { return amplitude * u(x, y); },
          [&](double x, double y) { return amplitude * v(x, y); });
      Collect(field);
    }
  }
};

void ExpectValid(const VectorField& result, std::int32_t i, std::int32_t j, double x, double y) {
  EXPECT_EQ(result.status(i, j), 1) << i << " " << j;
  EXPECT_NEAR(result.velX(i, j), x, 1e-11 * (1 + std::fabs(x))) << i << " " << j;
  EXPECT_NEAR(result.velY(i, j), y, 1e-11 * (1 + std::fabs(y))) << i << " " << j;
}

// Every sum in its order, including the values left at invalid vectors; computed by another program.
TEST_F(Statistics, HaveTheseBits) {
  for (std::uint64_t seed = 1; seed <= 5; ++seed) {
    VectorField field = KnownField(seed, 23, 17);
    for (double& x : field.posX) x = x * 0.37 - 20.0;
    for (double& y : field.posY) y = 18.0 - y * 0.41;
    Collect(field);
  }
  const std::pair<std::uint64_t, std::int32_t> known[] = {{0x2772ba92a0543af8u, 391}, {0xa1bc758cc64c1211u, 390},
                                                          {0xbabf722852ff22a9u, 390}, {0xeb8a44f717497411u, 390},
                                                          {0xc6ff150b367f1596u, 390}, {0x08ce52ba799f96a7u, 391}};
  for (const StatisticKind kind : kKinds) {
    const VectorField result = Compute(kind, 15E-6);
    EXPECT_EQ(Checksum(result), known[static_cast<std::size_t>(kind)].first) << static_cast<int>(kind);
    EXPECT_EQ(result.validVectorCount, known[static_cast<std::size_t>(kind)].second);
  }
}

TEST_F(Statistics, CarryOnWhereAFormulaHasNoValue) {
  VectorField field = MakeField(3, 3);
  field.posY = {1, 2, 1};  // the reconstructed rows are all at 1 mm
  SetVelocities(
      field, [](double x, double) { return x == 2 ? 0 : 0.1; }, [](double, double) { return 0; });
  for (int k = 0; k < 3; ++k) Collect(field);
  const VectorField deviations = Compute(standardDeviation);
  for (const double deviation : deviations.velX.Values()) EXPECT_EQ(deviation, 0) << "never a NaN";
  const VectorField flat = Compute(turbulence);
  EXPECT_EQ(flat.status(1, 2), 0);
  EXPECT_EQ(flat.posY[1], 1.0);
  EXPECT_EQ(Compute(dissipation, 1).validVectorCount, 0);
  Content().replace(67, 8, Bytes().F64(3).Get());
  const VectorField still = Compute(turbulence);
  EXPECT_EQ(still.status(1, 2), 1);
  EXPECT_EQ(still.status(2, 2), 0) << "no mean velocity";
  EXPECT_EQ(std::pair(still.velX(2, 2), still.velY(2, 2)), std::pair(0.0, 0.0));
}

// A single row or column has means, but no gradient.
TEST_F(Statistics, OfTheSmallestGrids) {
  for (const auto& [columns, rows] : {std::pair{1, 1}, {1, 3}, {3, 1}}) {
    program.files.files.erase("C.col");
    VectorField field = MakeField(columns, rows);
    field.posX.back() = 7;
    field.posY.back() = 9;
    CollectMultiples(
        field, {1, 3}, [](double, double y) { return y; }, [](double x, double) { return x; });
    const std::int32_t count = columns * rows;
    const VectorField average = Compute(mean);
    EXPECT_EQ(average.validVectorCount, count);
    EXPECT_EQ(std::pair(average.posX.back(), average.posY.back()), std::pair(7.0, 9.0));
    ExpectValid(average, columns, rows, 18, 14);
    EXPECT_EQ(Compute(standardDeviation).validVectorCount, count);
    EXPECT_EQ(Compute(turbulence).validVectorCount, rows > 1 ? count : 0);
    EXPECT_EQ(Compute(dissipation, 1).validVectorCount, 0);
  }
}

struct Overflow {
  StatisticKind kind;
  std::pair<double, double> first, second;  // u, v in two fields
};

// Each in a different step: first pass, between the passes, second pass, end.
TEST_F(Statistics, EndWhereAnyStepOverflows) {
  constexpr Overflow overflows[] = {{mean, {1.5E308, 0}, {1.5E308, 0}},
                                    {standardDeviation, {1E154, 0}, {1E154, 0}},
                                    {fluctuationProduct, {1E200, 1E200}, {-1E200, 1E200}},
                                    {fluctuationSquares, {1E200, 0}, {-1E200, 0}},
                                    {dissipation, {1, 1}, {2, 2}}};
  for (const auto& [kind, first, second] : overflows) {
    program.files.files.erase("C.col");
    for (const auto& [u, v] : {first, second}) {
      VectorField field = MakeField(3, 2);
      field.velX(1, 1) = u;
      field.velY(1, 1) = v;
      Collect(field);
    }
    program.ui.messages.clear();
    EXPECT_FALSE(ComputeStatistic(context, kind, "C.col", "r.vas", 1E308));
    ASSERT_EQ(program.ui.messages.size(), 1u);
    EXPECT_TRUE(program.ui.messages.back().text.ends_with("Überlauf   (Fehler-Nr. 6)"));
  }
  Content().replace(43, 16, Bytes().F64(-1.7E308).F64(1.7E308).Get());
  EXPECT_FALSE(ComputeStatistic(context, mean, "C.col", "r.vas"));
  EXPECT_FALSE(program.files.files.contains("r.vas"));
}

TEST_F(Statistics, AreAllInvalidWithoutRecords) {
  CollectNumbered(1);
  Content() = With(Content(), kCountAt, 0).substr(0, kHeader);
  for (const StatisticKind kind : kKinds) {
    program.ui.computation.clear();
    EXPECT_EQ(Compute(kind, 1).validVectorCount, 0);
    EXPECT_EQ(program.ui.computation, (std::vector<std::pair<std::int64_t, std::int64_t>>{{0, 1}}));
  }
}

TEST_F(Statistics, ShowTheirProgressAndYieldBehindEveryRecord) {
  CollectNumbered(3);
  context.field.paletteSetting = 4;
  for (const StatisticKind kind : {mean, turbulence}) {
    program.ui.computation.clear();
    program.ui.yields = 0;
    Compute(kind);
    const std::int64_t total = kind == mean ? 3 : 6;
    ASSERT_EQ(program.ui.computation.size(), static_cast<std::size_t>(total) + 1);
    for (std::int64_t k = 0; k <= total; ++k) {
      EXPECT_EQ(program.ui.computation[static_cast<std::size_t>(k)], std::pair(k, total));
    }
    EXPECT_EQ(program.ui.yields, total + 1);
    EXPECT_FALSE(program.ui.running);
  }
}

TEST_F(Statistics, SaveNothingWhereAYieldAsksThemToStop) {
  CollectNumbered(3);
  program.ui.abortAtYield = 5;  // in the second pass
  EXPECT_FALSE(ComputeStatistic(context, turbulence, "C.col", "stopped.vas"));
  EXPECT_EQ(program.ui.yields, 5);
  EXPECT_TRUE(program.ui.messages.empty());
  EXPECT_FALSE(program.ui.running || context.busy || program.files.files.contains("stopped.vas"));
}

TEST_F(Statistics, SayWhatTheyAreInTheirHeader) {
  CollectNumbered(2);
  VectorField& field = context.field;
  field.headerLines.fill("old");
  field.imageWidth = field.streamlineCount = 7;
  field.offsetX = field.scaleFactor = 5;
  field.background = Background::vorticity;
  field.showHeader = true, field.showVectorField = false;
  field.paletteSetting = 4;
  VectorField expected;
  ResetForLoad(expected, "");
  for (const StatisticKind kind : {mean, dissipation}) {
    const VectorField result = Compute(kind, 1);
    CreateArrays(expected, 3, 2);
    expected.posX = result.posX, expected.posY = result.posY;
    expected.velX = result.velX, expected.velY = result.velY, expected.status = result.status;
    expected.headerLines[0] = "01.02.2003 04:05:06";
    expected.validVectorCount = 6;
    expected.paletteSetting = 4;
    expected.showTable = true;
    expected.infoText =
        (kind == mean ? "Mittelwerte" : "Energiedissipationsrate") + std::string(" erzeugt aus der Kollektion: C.col");
    EXPECT_EQ(FirstDifference(expected, result), "");
  }
  program.files.files[" C.col "] = Content();
  EXPECT_TRUE(ComputeStatistic(context, mean, " C.col ", "r.vas"));
  EXPECT_EQ(context.field.infoText, "Mittelwerte erzeugt aus der Kollektion: C.col");
}

TEST_F(Statistics, SayWhyTheyFailAndSaveNothing) {
  CollectNumbered(3);
  const std::string good = Content();
  auto cases = Damaged(good);
  const std::string noRecords = With(good, kCountAt, 0).substr(0, kHeader);
  cases.emplace_back(With(With(noRecords, kColumnsAt, 1100), kRowsAt, 1000), 7);
  std::string told;
  const auto fails = [&](const std::string& path) {
    EXPECT_FALSE(ComputeStatistic(context, fluctuationSquares, path, "r.vas"));
    EXPECT_EQ(program.TakeLog(), "");
    EXPECT_FALSE(program.ui.running || context.busy || program.files.files.contains("r.vas"));
    told += program.ui.TakeBoxes();
  };
  for (const auto& [content, number] : cases) {
    Content() = content;
    fails("C.col");
  }
  fails("fehlt.col");
  Content() = good;
  program.files.readFailsAt["C.col"] = 400;
  fails("C.col");
  ExpectApproved("failed_statistics.txt", told);
}

// A yield must not be able to start another computation.
TEST_F(Statistics, AreNotStartedTwice) {
  CollectNumbered(1);
  context.busy = true;
  EXPECT_FALSE(ComputeStatistic(context, mean, "C.col", "r.vas"));
  EXPECT_TRUE(context.busy);
  EXPECT_FALSE(program.files.files.contains("r.vas"));
}

}  // namespace
}  // namespace quiverion::test
