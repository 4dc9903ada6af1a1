#include "preview/search_report.h"

#include <algorithm>
#include <cmath>

#include "log/log_lines.h"
#include "macro/command_actions.h"
#include "messages/failure.h"
#include "picture/scales.h"
#include "platform/text/numbers.h"

namespace quiverion {
namespace {

// All five criteria, in the order of the window.
struct Criterion {
  std::string_view name;
  std::string_view unit;
  std::vector<std::string_view> keys;
  bool wholeNumbers;
  IntervalCriterion FaultyVectorCriteria::*interval;  // null for a deviation
  bool FaultyVectorCriteria::*deviation;
};

const std::vector<Criterion>& AllCriteria() {
  static const std::vector<Criterion> all = {
      {"Abweichung des Betrags", "%", {"TxtAbsDeviation"}, true, nullptr, &FaultyVectorCriteria::magnitudeDeviation},
      {"Betrag", "m/s", {"TxtAbsIntMin", "TxtAbsIntMax"}, false, &FaultyVectorCriteria::magnitude, nullptr},
      {"Abweichung der Richtung", "°", {"TxtDirDeviation"}, true, nullptr, &FaultyVectorCriteria::directionDeviation},
      {"x-Komponente", "m/s", {"TxtXCompIntMin", "TxtXCompIntMax"}, false, &FaultyVectorCriteria::xComponent, nullptr},
      {"y-Komponente", "m/s", {"TxtYCompIntMin", "TxtYCompIntMax"}, false, &FaultyVectorCriteria::yComponent, nullptr},
  };
  return all;
}

bool IsSelected(const FaultyVectorCriteria& criteria, const Criterion& criterion) {
  return criterion.interval != nullptr ? (criteria.*criterion.interval).selected : criteria.*criterion.deviation;
}

FaultyVectorCriteria Alone(const FaultyVectorCriteria& criteria, const Criterion& criterion) {
  FaultyVectorCriteria alone = criteria;
  for (const Criterion& each : AllCriteria()) {
    const bool selected = &each == &criterion;
    if (each.interval != nullptr) {
      (alone.*each.interval).selected = selected;
    } else {
      alone.*each.deviation = selected;
    }
  }
  return alone;
}

std::int64_t ValidIn(const Grid<std::int32_t>& status) {
  return std::ranges::count_if(status.Values(), [](std::int32_t each) { return each > 0; });
}

// By the search itself; the statuses of `work` are as before afterwards.
std::int64_t RejectedBy(VectorField& work, const VectorField& field, std::int64_t tested,
                        const FaultyVectorCriteria& criteria) {
  RejectFaultyVectors(work, criteria);
  const std::int64_t rejected = tested - ValidIn(work.status);
  work.status = field.status;
  return rejected;
}

// `valueAt(k)` is NaN for vectors that are not tested, infinite for those without anything to compare with.
template <class ValueAt>
void CollectValues(CriterionReport& report, std::size_t count, std::size_t mostValues, ValueAt valueAt) {
  std::vector<double>& values = report.values;
  for (std::size_t k = 0; k < count; ++k) {
    const double value = valueAt(k);
    if (std::isfinite(value)) values.push_back(value);
    if (std::isinf(value)) ++report.incomparable;
  }
  report.valueCount = static_cast<std::int64_t>(values.size());
  const std::size_t step = mostValues == 0 ? 1 : (values.size() + mostValues - 1) / mostValues;
  if (step < 2) return;
  for (std::size_t k = 0; k * step < values.size(); ++k) values[k] = values[k * step];
  values.resize((values.size() + step - 1) / step);
}

void CollectValues(CriterionReport& report, const VectorField& field, const Criterion& criterion,
                   const Deviations& deviations, std::size_t mostValues) {
  const std::size_t count = field.status.Values().size();
  const auto collect = [&](auto valueAt) { CollectValues(report, count, mostValues, valueAt); };
  const auto ofTested = [&](auto value) {
    return [&field, value](std::size_t k) {
      const double u = field.velX.Values()[k], v = field.velY.Values()[k];
      return field.status.Values()[k] > 0 ? value(u, v) : std::nan("");
    };
  };
  if (criterion.deviation == &FaultyVectorCriteria::magnitudeDeviation) {
    collect([&](std::size_t k) { return deviations.magnitudePercent.Values()[k]; });
  } else if (criterion.deviation == &FaultyVectorCriteria::directionDeviation) {
    collect([&](std::size_t k) { return deviations.directionDegrees.Values()[k]; });
  } else if (criterion.interval == &FaultyVectorCriteria::magnitude) {
    collect(ofTested([](double u, double v) { return std::sqrt(u * u + v * v); }));
  } else if (criterion.interval == &FaultyVectorCriteria::xComponent) {
    collect(ofTested([](double u, double) { return u; }));
  } else {
    collect(ofTested([](double, double v) { return v; }));
  }
}

std::vector<SearchLimit> LimitsOf(const FaultyVectorCriteria& criteria, const Criterion& criterion) {
  if (criterion.interval != nullptr) {
    const IntervalCriterion& interval = criteria.*criterion.interval;
    return {{criterion.keys[0], interval.low}, {criterion.keys[1], interval.high}};
  }
  const bool magnitude = criterion.deviation == &FaultyVectorCriteria::magnitudeDeviation;
  return {{criterion.keys[0], magnitude ? criteria.magnitudePercent : criteria.directionDegrees}};
}

void Fill(SearchReport& report, const VectorField& field, const FaultyVectorCriteria& criteria,
          std::size_t mostValues) {
  report.anyOf = criteria.logicalOr;
  report.tested = ValidIn(field.status);
  if (criteria.SelectedCount() == 0) return;
  VectorField work = field;
  report.rejected = RejectedBy(work, field, report.tested, criteria);
  const Deviations deviations = DeviationsOf(field, criteria);
  for (const Criterion& criterion : AllCriteria()) {
    if (!IsSelected(criteria, criterion)) continue;
    CriterionReport each;
    each.name = criterion.name;
    each.unit = criterion.unit;
    each.limits = LimitsOf(criteria, criterion);
    each.wholeNumbers = criterion.wholeNumbers;
    if (criterion.interval != nullptr) each.rejectsBetween = !(criteria.*criterion.interval).outside;
    each.rejectedAlone = criteria.SelectedCount() == 1
                             ? report.rejected
                             : RejectedBy(work, field, report.tested, Alone(criteria, criterion));
    CollectValues(each, field, criterion, deviations, mostValues);
    report.criteria.push_back(std::move(each));
  }
}

}  // namespace

bool IsSearch(const MacroEvent& event) {
  const CommandRow* row = nullptr;
  Attempt([&] { row = FindCommand(event.EventId()); });
  return row != nullptr && row->editor.kind == EditorKind::faultVectors;
}

SearchReport ReportSearch(const VectorField& field, const MacroEvent& event, std::size_t mostValues) {
  SearchReport report;
  const auto failure = Attempt([&] { Fill(report, field, actions::FaultyVectorCriteriaOf(event), mostValues); });
  if (!failure) return report;
  report = {};
  report.error = ErrorText(failure->error);
  return report;
}

void AddReport(SearchReport& sum, const SearchReport& more) {
  if (!more.error.empty()) {
    if (sum.error.empty()) sum.error = more.error;
    return;
  }
  sum.tested += more.tested;
  sum.rejected += more.rejected;
  sum.anyOf = more.anyOf;
  if (sum.criteria.empty()) {
    sum.criteria = more.criteria;
    return;
  }
  for (std::size_t k = 0; k < std::min(sum.criteria.size(), more.criteria.size()); ++k) {
    CriterionReport& into = sum.criteria[k];
    const CriterionReport& from = more.criteria[k];
    into.rejectedAlone += from.rejectedAlone;
    into.incomparable += from.incomparable;
    into.valueCount += from.valueCount;
    into.values.insert(into.values.end(), from.values.begin(), from.values.end());
  }
}

Histogram HistogramOf(const CriterionReport& criterion, int bins) {
  Histogram histogram;
  histogram.bins.assign(static_cast<std::size_t>(bins), 0);
  double lower = 0.0, upper = 0.0;
  std::vector<double> values = criterion.values;
  if (!values.empty()) {
    const auto at = [&](double share) {
      const double index = share * static_cast<double>(values.size() - 1);
      const auto place = values.begin() + static_cast<std::ptrdiff_t>(share < 0.5 ? index : std::ceil(index));
      std::ranges::nth_element(values, place);
      return *place;
    };
    lower = std::min(0.0, at(0.005));
    upper = std::max(0.0, at(0.995));
  }
  for (const SearchLimit& limit : criterion.limits) {
    if (!std::isfinite(limit.value)) continue;
    lower = std::min(lower, limit.value);
    upper = std::max(upper, limit.value);
  }
  const double width = upper - lower;
  if (std::isfinite(width) && width > 0.0) {
    const double step = RoundDown125(width / 8.0);
    histogram.from = std::floor(lower / step) * step;
    histogram.to = std::ceil((upper + width * 0.02) / step) * step;
  }
  const double scale = static_cast<double>(bins) / (histogram.to - histogram.from);
  for (const double value : criterion.values) {
    const double place = (value - histogram.from) * scale;
    if (place >= 0.0 && place < static_cast<double>(bins)) {
      ++histogram.bins[static_cast<std::size_t>(place)];
    } else {
      ++histogram.beyond;
    }
  }
  return histogram;
}

std::string LimitText(const CriterionReport& criterion, const Histogram& histogram, double value) {
  const bool isSigned = criterion.name.ends_with("Komponente");
  if (!isSigned) value = std::max(value, 0.0);
  double step = RoundDown125((histogram.to - histogram.from) / 200.0);
  if (criterion.wholeNumbers) step = std::max(step, 1.0);
  const double steps = std::nearbyint(value / step);
  // Dividing by the inverse of a step below 1 gives the decimal number that is nearest to what is meant.
  const double rounded = step < 1.0 ? steps / std::nearbyint(1.0 / step) : steps * step;
  return FormatNumber(rounded == 0.0 ? 0.0 : rounded);
}

}  // namespace quiverion
