#include "operations/kernels/faulty_vectors.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <utility>
#include <vector>

#include "operations/kernels/compare_vectors.h"
#include "operations/kernels/faulty_vectors_plain.h"
#include "platform/numeric/bit_select.h"
#include "platform/numeric/float_errors.h"

namespace quiverion {
namespace {

// One row of the data that the criteria need. Constant compare vectors are expanded to rows as well.
struct Row {
  std::size_t count;
  const std::int32_t* status;
  const double *u, *v, *magnitude;
  const double* compareMagnitude;                         // null if no criterion needs it
  const double *compareX = nullptr, *compareY = nullptr;  // null if not needed
};

QUIVERION_MULTI_TARGET bool FillMagnitudes(const std::int32_t* status, const double* u, const double* v,
                                           std::size_t count, double* __restrict target) {
  Mask unordered = 0;
  for (std::size_t p = 0; p < count; ++p) {
    const Mask valid = MaskOf(status[p] > 0);
    const double magnitude = VectorLength(SelectOrZero(valid, u[p]), SelectOrZero(valid, v[p]));
    unordered |= MaskOf(magnitude != magnitude);
    target[p] = magnitude;
  }
  return unordered != 0;
}

QUIVERION_MULTI_TARGET void MeetMagnitudeDeviation(const Row& row, double percent, Mask* __restrict met) {
  const double *const magnitude = row.magnitude, *const compare = row.compareMagnitude;
  for (std::size_t i = 0; i < row.count; ++i) {
    const double difference = std::fabs(compare[i] - magnitude[i]);
    met[i] = ~MaskOf(compare[i] > 0.0) | MaskOf(compare[i] * percent < difference * 100.0);
  }
}

QUIVERION_MULTI_TARGET void MeetInterval(const double* values, std::size_t count, const IntervalCriterion& interval,
                                         Mask* __restrict met) {
  const double low = interval.low, high = interval.high;
  const Mask outside = MaskOf(interval.outside);
  for (std::size_t i = 0; i < count; ++i) {
    const Mask isOutside = MaskOf(values[i] < low) | MaskOf(values[i] > high);
    const Mask isInside = MaskOf(values[i] > low) & MaskOf(values[i] < high);
    met[i] = (outside & isOutside) | (~outside & isInside);
  }
}

// If a cosine is at least this far from the limit, the computed angle is on the corresponding side of its limit: the
// error of the computed angle is below 1e-15 of its cosine.
constexpr double kUnclear = 1e-12;

// The cosine of the allowed angle. No angle is below 0 (then all cosines meet the criterion). From about pi on the
// limit is -1, because the cosine would rise again; the exact test decides there.
double CosineLimit(double degrees) {
  const double radians = degrees / 180.0 * 3.141592654;
  if (radians < 0.0) return 2.0;
  return radians < 3.14159265 ? std::cos(radians) : -1.0;
}

QUIVERION_ALWAYS_INLINE void TestCosines(const Row& row, double limit, Mask* __restrict met, double* __restrict cosines,
                                         Mask* __restrict unclear) {
  const Row in = row;
  for (std::size_t i = 0; i < in.count; ++i) {
    const double x = in.compareX[i], y = in.compareY[i];
    const double length = VectorLength(x, y);
    const Mask usable = MaskOf(length > 0.0) & MaskOf(in.magnitude[i] > 0.0);
    const double dot = x * in.u[i] + y * in.v[i];
    const double cosine = dot / Select(usable, in.magnitude[i], 1.0) / Select(usable, length, 1.0);
    const Mask isCosine = usable & MaskOf(std::fabs(cosine) <= 1.0);
    met[i] = ~isCosine | MaskOf(cosine < limit);
    unclear[i] = isCosine & MaskOf(std::fabs(cosine - limit) <= kUnclear);
    cosines[i] = cosine;
  }
}

QUIVERION_MULTI_TARGET_CALL(MeetDirectionDeviation,
                            (const Row& row, double limit, Mask* __restrict met, double* __restrict cosines,
                             Mask* __restrict unclear),
                            (row, limit, met, cosines, unclear), TestCosines(row, limit, met, cosines, unclear))

// Sets `target` to 0 for tested vectors that are faulty (or had the mark already in the file), and returns their
// number.
QUIVERION_MULTI_TARGET std::int32_t ApplyRow(const std::int32_t* status, const Mask* faulty, std::size_t count,
                                             std::int32_t* __restrict target) {
  std::int32_t rejected = 0;
  for (std::size_t i = 0; i < count; ++i) {
    const std::int32_t isFaulty = (faulty[i] != 0 ? 1 : 0) | (status[i] == plain::kFaulty ? 1 : 0);
    const std::int32_t reject = isFaulty & (status[i] > 0 ? 1 : 0);
    target[i] = reject != 0 ? 0 : status[i];
    rejected += reject;
  }
  return rejected;
}

// Evaluates the criteria row by row, all vectors of a row at once.
class CriteriaRows {
 public:
  CriteriaRows(const FaultyVectorCriteria& criteria, std::size_t columns)
      : criteria_(criteria),
        limit_(CosineLimit(criteria.directionDegrees)),
        faulty_(columns),
        met_(columns),
        unclear_(columns),
        cosines_(columns) {}

  const Mask* Evaluate(const Row& row) {
    std::fill(faulty_.begin(), faulty_.end(), MaskOf(!criteria_.logicalOr));
    if (criteria_.magnitudeDeviation) {
      MeetMagnitudeDeviation(row, criteria_.magnitudePercent, met_.data());
      Combine();
    }
    MeetSelected(criteria_.magnitude, row.magnitude);
    if (criteria_.directionDeviation) {
      MeetDirection(row);
      Combine();
    }
    MeetSelected(criteria_.xComponent, row.u);
    MeetSelected(criteria_.yComponent, row.v);
    return faulty_.data();
  }

 private:
  void MeetSelected(const IntervalCriterion& interval, const double* values) {
    if (!interval.selected) return;
    MeetInterval(values, met_.size(), interval, met_.data());
    Combine();
  }

  void MeetDirection(const Row& row) {
    MeetDirectionDeviation(row, limit_, met_.data(), cosines_.data(), unclear_.data());
    for (std::size_t i = 0; i < row.count; ++i) {
      if (unclear_[i] != 0) met_[i] = MaskOf(plain::IsAngleGreater(cosines_[i], criteria_.directionDegrees));
    }
  }

  void Combine() {
    for (std::size_t i = 0; i < met_.size(); ++i) {
      faulty_[i] = criteria_.logicalOr ? faulty_[i] | met_[i] : faulty_[i] & met_[i];
    }
  }

  const FaultyVectorCriteria& criteria_;
  double limit_;
  std::vector<Mask> faulty_, met_, unclear_;
  std::vector<double> cosines_;
};

constexpr double kNotTested = std::numeric_limits<double>::quiet_NaN();
constexpr double kIncomparable = std::numeric_limits<double>::infinity();

double PercentOf(double magnitude, double compareMagnitude) {
  if (!(compareMagnitude > 0.0)) return kIncomparable;
  return std::fabs(compareMagnitude - magnitude) * 100.0 / compareMagnitude;
}

double DegreesBetween(const Row& row, std::size_t i) {
  const double x = row.compareX[i], y = row.compareY[i];
  const double length = VectorLength(x, y);
  if (!(length > 0.0) || !(row.magnitude[i] > 0.0)) return kIncomparable;
  const double cosine = (x * row.u[i] + y * row.v[i]) / row.magnitude[i] / length;
  return std::fabs(cosine) <= 1.0 ? ArcCos(cosine) / 3.141592654 * 180.0 : kIncomparable;
}

// The vectors to compare with and the rows of everything that the criteria need.
class ComparedRows {
 public:
  ComparedRows(const VectorField& field, const FaultyVectorCriteria& criteria)
      : field_(field), criteria_(criteria), compare_(criteria) {
    // Half widths are not negative. If no window is needed, they do not matter.
    window_ = {std::min(std::max(criteria.halfWidthX, 0), field.columnCount - 1),
               std::min(std::max(criteria.halfWidthY, 0), field.rowCount - 1)};
  }

  // May throw an arithmetic error.
  void PrepareCommon() {
    if (criteria_.NeedsCompareVector() && !HasWindow()) {
      common_ = plain::CommonCompareVector<CheckedReal>(field_, criteria_);
    }
  }

  void Prepare() {
    magnitudes_ = MagnitudesOf(field_);
    if (HasWindow()) {
      compare_.Resize(field_.columnCount, field_.rowCount);
      if (criteria_.compareVectorType == CompareVectorType::localMean) {
        LocalMeans(field_, magnitudes_, window_, compare_);
      } else {
        Medians(field_, magnitudes_, window_, compare_);
      }
    } else {
      const auto columns = static_cast<std::size_t>(field_.columnCount);
      commonMagnitude_.assign(columns, common_.magnitude.Value());
      commonX_.assign(columns, common_.x.Value());
      commonY_.assign(columns, common_.y.Value());
    }
  }

  Row At(std::int32_t j) const {
    const auto compare = [&](const Grid<double>& own, const std::vector<double>& common, bool isNeeded) {
      return !isNeeded ? nullptr : HasWindow() ? own.Row(j) : common.data();
    };
    return {static_cast<std::size_t>(field_.columnCount),
            field_.status.Row(j),
            field_.velX.Row(j),
            field_.velY.Row(j),
            magnitudes_.values.Row(j),
            compare(compare_.magnitude, commonMagnitude_, compare_.needMagnitude),
            compare(compare_.x, commonX_, compare_.needDirection),
            compare(compare_.y, commonY_, compare_.needDirection)};
  }

  bool HasWindow() const {
    return criteria_.NeedsCompareVector() && (criteria_.compareVectorType == CompareVectorType::localMean ||
                                              criteria_.compareVectorType == CompareVectorType::median);
  }

  Window SeenWindow() const { return HasWindow() ? window_ : Window{0, 0}; }

  plain::CompareVector<CheckedReal> CompareVectorOf(std::int32_t i, std::int32_t j) const {
    if (!HasWindow()) return common_;
    plain::CompareVector<CheckedReal> compare;
    if (compare_.needMagnitude) compare.magnitude = compare_.magnitude(i, j);
    if (compare_.needDirection) compare.x = compare_.x(i, j), compare.y = compare_.y(i, j);
    return compare;
  }

 private:
  const VectorField& field_;
  const FaultyVectorCriteria& criteria_;
  Window window_{};
  Magnitudes magnitudes_;
  CompareVectors compare_;
  plain::CompareVector<CheckedReal> common_;
  std::vector<double> commonMagnitude_, commonX_, commonY_;  // a row of it
};

class Search {
 public:
  Search(VectorField& field, const FaultyVectorCriteria& criteria)
      : field_(field), criteria_(criteria), compared_(field, criteria) {}

  void Run() {
    compared_.PrepareCommon();
    Grid<std::int32_t> statuses;
    statuses.ResetUninitialised(field_.columnCount, field_.rowCount);
    std::int32_t rejected = 0;
    if (RaisesFloatError([&] { rejected = TestAll(statuses); })) {
      TestChecked();
      return;
    }
    std::swap(field_.status, statuses);
    ChangeValidCount(field_, -std::int64_t{rejected});
  }

 private:
  std::int32_t TestAll(Grid<std::int32_t>& statuses) {
    compared_.Prepare();
    const auto columns = static_cast<std::size_t>(field_.columnCount);
    CriteriaRows rows(criteria_, columns);
    std::int32_t rejected = 0;
    for (std::int32_t j = 1; j <= field_.rowCount; ++j) {
      const Row row = compared_.At(j);
      rejected += ApplyRow(row.status, rows.Evaluate(row), columns, statuses.Row(j));
    }
    return rejected;
  }

  // Vector by vector in visiting order, with the compare vectors that exist already. They are valid unless a vector in
  // the window overflows, and then the search stops.
  void TestChecked() {
    const WindowCounts overflows(field_.columnCount, field_.rowCount,
                                 [this](std::int32_t i, std::int32_t j) { return MagnitudeOverflows(i, j); });
    const Window seen = compared_.SeenWindow();
    for (std::int32_t i = 1; i <= field_.columnCount; ++i) {
      for (std::int32_t j = 1; j <= field_.rowCount; ++j) {
        if (field_.status(i, j) < 1) continue;
        if (overflows.Around(i, j, seen) > 0) throw SystemError(ErrorNumber::overflow);
        if (plain::IsFaulty<CheckedReal>(criteria_, field_.velX(i, j), field_.velY(i, j),
                                         compared_.CompareVectorOf(i, j))) {
          field_.status(i, j) = plain::kFaulty;
        }
      }
    }
    plain::RejectMarked(field_);
  }

  bool MagnitudeOverflows(std::int32_t i, std::int32_t j) const {
    if (field_.status(i, j) <= 0) return false;
    const double u = field_.velX(i, j), v = field_.velY(i, j);
    return HasOverflowed(u, u, u * u) || HasOverflowed(v, v, v * v) || HasOverflowed(u * u, v * v, u * u + v * v);
  }

  VectorField& field_;
  const FaultyVectorCriteria& criteria_;
  ComparedRows compared_;
};

void CheckCriteria(const FaultyVectorCriteria& criteria) {
  if (!criteria.NeedsCompareVector()) return;
  const CompareVectorType type = criteria.compareVectorType;
  const bool isWindow = type == CompareVectorType::localMean || type == CompareVectorType::median;
  if (!isWindow && type != CompareVectorType::fieldMean && type != CompareVectorType::userVector) {
    throw SystemError(ErrorNumber::invalidCall, "unbekannte Art des Vergleichsvektors");
  }
  if (isWindow && (criteria.halfWidthX < 0 || criteria.halfWidthY < 0)) {
    throw SystemError(ErrorNumber::invalidCall, "negative Größe des Bereichs für den Vergleichsvektor");
  }
}

}  // namespace

Magnitudes MagnitudesOf(const VectorField& field) {
  Magnitudes magnitudes;
  magnitudes.values.ResetUninitialised(field.columnCount, field.rowCount);
  magnitudes.haveNaN =
      FillMagnitudes(field.status.Values().data(), field.velX.Values().data(), field.velY.Values().data(),
                     field.status.Values().size(), magnitudes.values.Values().data());
  return magnitudes;
}

void RejectFaultyVectors(VectorField& field, const FaultyVectorCriteria& criteria) {
  if (criteria.SelectedCount() == 0) return;
  CheckCriteria(criteria);
  Search(field, criteria).Run();
}

Deviations DeviationsOf(const VectorField& field, const FaultyVectorCriteria& criteria) {
  Deviations deviations;
  if (!criteria.NeedsCompareVector()) return deviations;
  CheckCriteria(criteria);
  ComparedRows compared(field, criteria);
  compared.PrepareCommon();
  compared.Prepare();
  if (criteria.magnitudeDeviation) deviations.magnitudePercent.ResetUninitialised(field.columnCount, field.rowCount);
  if (criteria.directionDeviation) deviations.directionDegrees.ResetUninitialised(field.columnCount, field.rowCount);
  for (std::int32_t j = 1; j <= field.rowCount; ++j) {
    const Row row = compared.At(j);
    for (std::size_t k = 0; k < row.count; ++k) {
      const bool isTested = row.status[k] > 0;
      if (criteria.magnitudeDeviation) {
        deviations.magnitudePercent.Row(j)[k] =
            isTested ? PercentOf(row.magnitude[k], row.compareMagnitude[k]) : kNotTested;
      }
      if (criteria.directionDeviation) {
        deviations.directionDegrees.Row(j)[k] = isTested ? DegreesBetween(row, k) : kNotTested;
      }
    }
  }
  return deviations;
}

}  // namespace quiverion
