#include "preview/search_report.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numeric>
#include <random>

#include "macro/command_actions.h"
#include "operations/kernels/faulty_vectors_plain.h"
#include "preview/series_sample.h"
#include "support/field_builder.h"

namespace quiverion::test {
namespace {

// Noise with outliers, vectors at rest, invalid ones, and one that has the mark of the search already.
VectorField NoisyField(unsigned seed) {
  VectorField field = MakeField(23, 17);
  std::mt19937_64 random(seed);
  for (std::size_t k = 0; k < field.velX.Values().size(); ++k) {
    const double scale = k % 29 == 0 ? 8.0 : k % 31 == 0 ? 0.0 : 1.0;
    field.velX.Values()[k] = scale * (3.0 + Uniform(random, -1.0, 1.0));
    field.velY.Values()[k] = scale * Uniform(random, -1.0, 1.0);
    if (k % 13 == 0) field.status.Values()[k] = k % 2 == 0 ? 0 : -1;
  }
  field.status(2, 2) = 5;
  return field;
}

MacroEvent SearchEvent() {
  MacroEvent event(30001);
  for (const Parameter& parameter : ParametersOf(30001)) event.Set(parameter.key, PresetOf(parameter));
  return event;
}

std::int64_t RejectedByRun(VectorField field, const MacroEvent& event) {
  const std::int32_t before = field.validVectorCount = 0;
  RejectFaultyVectors(field, actions::FaultyVectorCriteriaOf(event));
  return before - field.validVectorCount;
}

TEST(SearchReport, CountsAreThoseOfTheSearch) {
  constexpr std::string_view kCriteria[] = {"ChkAbsDeviation", "ChkAbsInterval", "ChkDirDeviation", "ChkXComp",
                                            "ChkYComp"};
  const VectorField field = NoisyField(1);
  std::mt19937 random(5);
  for (int round = 0; round < 200; ++round) {
    MacroEvent event = SearchEvent();
    std::vector<std::string_view> selected;
    for (const std::string_view key : kCriteria) {
      event.Set(key, static_cast<std::int32_t>(random() % 2));
      if (event.Integer(key) > 0) selected.push_back(key);
    }
    event.Set("CompareVectorType", static_cast<std::int32_t>(1 + random() % 4));
    event.Set("LogicalOr", random() % 2 == 0);
    for (const char* key : {"TxtAbsDeviation", "TxtDirDeviation", "TxtAbsIntMax", "TxtXCompIntMax"}) {
      event.Set(key, std::to_string(random() % 30));
    }
    event.Set("OptXCompIntOut", random() % 2 == 0);
    event.Set("TxtUserVectorX", std::string("3"));
    const SearchReport report = ReportSearch(field, event);
    ASSERT_EQ(report.error, "");
    EXPECT_EQ(report.rejected, RejectedByRun(field, event));
    ASSERT_EQ(report.criteria.size(), selected.size());
    for (std::size_t k = 0; k < selected.size(); ++k) {
      MacroEvent alone = event;
      for (const std::string_view key : kCriteria) alone.Set(key, key == selected[k] ? 1 : 0);
      const CriterionReport& criterion = report.criteria[k];
      EXPECT_EQ(criterion.rejectedAlone, RejectedByRun(field, alone));
      // What the histogram shows beyond the limits is what is rejected; a mark in the file adds one.
      std::int64_t beyond = criterion.incomparable;
      for (const double value : criterion.values) {
        beyond +=
            criterion.limits.size() == 1
                ? value > criterion.limits[0].value
                : plain::MeetsInterval<double>(
                      {true, !criterion.rejectsBetween, criterion.limits[0].value, criterion.limits[1].value}, value);
      }
      EXPECT_GE(criterion.rejectedAlone, beyond) << selected[k];
      EXPECT_LE(criterion.rejectedAlone, beyond + 1) << selected[k];
      EXPECT_EQ(criterion.valueCount + criterion.incomparable, report.tested);
    }
  }
}

TEST(SearchReport, ErrorsAreThoseOfTheSearch) {
  VectorField field = NoisyField(1);
  field.velX(4, 4) = 1e200;
  MacroEvent event = SearchEvent();
  event.Set("ChkAbsDeviation", 1);
  EXPECT_NE(ReportSearch(field, event).error, "");
  event = SearchEvent();
  event.Set("ChkAbsDeviation", 1);
  event.Set("CompareVectorType", 9);
  EXPECT_NE(ReportSearch(NoisyField(1), event).error, "");
  EXPECT_NE(ReportSearch(NoisyField(1), MacroEvent(30001)).error, "");
  EXPECT_EQ(ReportSearch(field, SearchEvent()).criteria.size(), 0u);
}

TEST(SearchReport, ReportsOfSeveralFieldsAreAdded) {
  MacroEvent event = SearchEvent();
  event.Set("ChkAbsDeviation", 1);
  SearchReport sum;
  std::int64_t rejected = 0;
  for (unsigned seed = 1; seed < 4; ++seed) {
    AddReport(sum, ReportSearch(NoisyField(seed), event, 100));
    rejected += RejectedByRun(NoisyField(seed), event);
  }
  EXPECT_EQ(sum.rejected, rejected);
  EXPECT_EQ(sum.criteria[0].rejectedAlone, rejected);
  EXPECT_GT(sum.criteria[0].values.size(), 200u);
  EXPECT_LE(sum.criteria[0].values.size(), 300u);
}

TEST(SearchHistogram, HasEveryValueItsLimitsAndRoundNumbers) {
  const struct {
    std::vector<double> values, limits;
    double from, to;
    const char* dragged;  // a limit in the middle
  } cases[] = {
      {{1, 2, 3, 4, 90}, {30}, 0, 100, "50"},
      {{-3, 4, 1}, {-10, 10}, -10, 12, "1"},
      {{0.001, 0.002, 0.0031}, {0.002, 0.003}, 0, 0.0034, "0.0017"},
      {{}, {}, 0, 1, "0.5"},
      {{5, 5, 5}, {1e300}, 0, 1.1e300, "5.5E+299"},
  };
  for (const auto& each : cases) {
    CriterionReport criterion;
    criterion.name = "x-Komponente";
    criterion.values = each.values;
    for (const double limit : each.limits) criterion.limits.push_back({"Txt", limit});
    const Histogram histogram = HistogramOf(criterion, 40);
    EXPECT_NEAR(histogram.from, each.from, 1e-9 * std::fabs(each.from));
    EXPECT_NEAR(histogram.to, each.to, 0.1 * each.to);
    const std::int64_t counted = std::accumulate(histogram.bins.begin(), histogram.bins.end(), histogram.beyond);
    EXPECT_EQ(counted, static_cast<std::int64_t>(each.values.size()));
    EXPECT_EQ(LimitText(criterion, histogram, (each.from + each.to) / 2), each.dragged);
  }
  CriterionReport whole;
  whole.name = "Abweichung des Betrags";
  whole.wholeNumbers = true;
  EXPECT_EQ(LimitText(whole, {0, 40, {}, 0}, 17.6), "18");
  EXPECT_EQ(LimitText(whole, {0, 40, {}, 0}, -3), "0");
}

TEST(SeriesSample, MarksWhatIsFarFromTheRest) {
  const auto oddOf = [](std::initializer_list<std::int64_t> rejected) {
    std::vector<SampledFile> files;
    for (const std::int64_t count : rejected) {
      SampledFile file;
      file.points = 10000;
      file.rejected = count < 0 ? 0 : count;
      file.failed = count < 0;
      files.push_back(file);
    }
    MarkOdd(files);
    std::string odd;
    for (const SampledFile& file : files) odd += file.isOdd ? 'x' : '.';
    return odd;
  };
  EXPECT_EQ(oddOf({100, 110, 95, 105, 900, 102}), "....x.");
  EXPECT_EQ(oddOf({100, 110, -1, 105, 100, 102}), "..x...");
  EXPECT_EQ(oddOf({0, 0, 0, 40, 0, 0}), "......") << "0.4 % are nothing odd";
  EXPECT_EQ(oddOf({0, 0, 0, 60, 0, 0}), "...x..");
  EXPECT_EQ(oddOf({500}), ".");
  EXPECT_EQ(SpreadEvenly(100, 4), (std::vector<std::size_t>{0, 33, 66, 99}));
  EXPECT_EQ(SpreadEvenly(3, 20), (std::vector<std::size_t>{0, 1, 2}));
  EXPECT_EQ(SpreadEvenly(5, 1), (std::vector<std::size_t>{0}));
}

}  // namespace
}  // namespace quiverion::test
