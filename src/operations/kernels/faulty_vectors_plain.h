#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <utility>
#include <vector>

#include "field/vector_field.h"
#include "operations/kernels/faulty_vectors.h"
#include "operations/kernels/mathematical.h"
#include "platform/numeric/checked_real.h"

/// The definition of the search for faulty vectors: plain loops in visiting order. `Real` is double, or CheckedReal if
/// the search must stop at an arithmetic error.
namespace quiverion::plain {

inline constexpr std::int32_t kFaulty = 5;  // marks a faulty vector until the whole field has been tested

template <class Real>
Real Length(Real x, Real y) {
  return std::sqrt(ToDouble(x * x + y * y));
}

/// What a vector is compared with: magnitude and components are 0 if there is none; all criteria treat that alike.
template <class Real>
struct CompareVector {
  Real x = 0.0, y = 0.0;
  Real magnitude = 0.0;  // not always the length of (x, y)
};

/// The vectors of a window around (i, j) whose status is greater than 0, without (i, j) itself, column by column.
template <class Visit>
void ForEachInWindow(const VectorField& f, std::int32_t i, std::int32_t j, std::int32_t halfWidthX,
                     std::int32_t halfWidthY, Visit visit) {
  const auto begin = [](std::int32_t at, std::int32_t half) { return half < at ? at - half : 1; };
  const auto end = [](std::int32_t at, std::int32_t half, std::int32_t last) {
    return half < last - at ? at + half : last;
  };
  for (std::int32_t k = begin(i, halfWidthX); k <= end(i, halfWidthX, f.columnCount); ++k) {
    for (std::int32_t l = begin(j, halfWidthY); l <= end(j, halfWidthY, f.rowCount); ++l) {
      if (f.status(k, l) > 0 && (k != i || l != j)) visit(k, l);
    }
  }
}

/// The mean vector; the magnitude is the mean of the magnitudes.
template <class Real>
CompareVector<Real> LocalMean(const VectorField& f, std::int32_t i, std::int32_t j, const FaultyVectorCriteria& c) {
  Real u = 0.0, v = 0.0, magnitude = 0.0;
  std::int64_t count = 0;
  ForEachInWindow(f, i, j, c.halfWidthX, c.halfWidthY, [&](std::int32_t k, std::int32_t l) {
    u = u + Real(f.velX(k, l));
    v = v + Real(f.velY(k, l));
    magnitude = magnitude + Length<Real>(f.velX(k, l), f.velY(k, l));
    ++count;
  });
  if (count == 0) return {};
  const Real n = static_cast<double>(count);
  return {u / n, v / n, magnitude / n};
}

/// The middle of the window's vectors in descending order of magnitude. The order of equal magnitudes is that of this
/// selection sort; a magnitude of 0 is never selected.
template <class Real>
CompareVector<Real> Median(const VectorField& f, std::int32_t i, std::int32_t j, const FaultyVectorCriteria& c) {
  std::vector<double> u, v, length;
  ForEachInWindow(f, i, j, c.halfWidthX, c.halfWidthY, [&](std::int32_t k, std::int32_t l) {
    u.push_back(f.velX(k, l));
    v.push_back(f.velY(k, l));
    length.push_back(ToDouble(Length<Real>(f.velX(k, l), f.velY(k, l))));
  });
  const std::size_t count = u.size();
  if (count == 0) return {};
  for (std::size_t a = 0; a + 1 < count; ++a) {
    std::size_t largest = a;
    double largestLength = 0.0;
    for (std::size_t b = a; b < count; ++b) {
      if (length[b] > largestLength) largest = b, largestLength = length[b];
    }
    std::swap(u[a], u[largest]);
    std::swap(v[a], v[largest]);
    std::swap(length[a], length[largest]);
  }
  const std::size_t middle = (count - 1) / 2;
  if (count % 2 == 1) return {u[middle], v[middle], length[middle]};
  const auto mean = [middle](const std::vector<double>& list) { return (Real(list[middle]) + list[middle + 1]) / 2.0; };
  return {mean(u), mean(v), mean(length)};
}

/// The mean of all valid vectors; the magnitude is its length.
template <class Real>
CompareVector<Real> FieldMean(const VectorField& f) {
  Real u = 0.0, v = 0.0;
  std::int64_t count = 0;
  for (std::int32_t i = 1; i <= f.columnCount; ++i) {
    for (std::int32_t j = 1; j <= f.rowCount; ++j) {
      if (f.status(i, j) <= 0) continue;
      u = u + Real(f.velX(i, j));
      v = v + Real(f.velY(i, j));
      ++count;
    }
  }
  if (count == 0) return {};
  const Real n = static_cast<double>(count);
  return {u / n, v / n, Length<Real>(u / n, v / n)};
}

template <class Real>
bool MeetsInterval(const IntervalCriterion& interval, Real value) {
  const Real low = interval.low, high = interval.high;
  return interval.outside ? value < low || high < value : low < value && value < high;
}

template <class Real>
bool MeetsMagnitudeDeviation(double percent, Real magnitude, Real compareMagnitude) {
  if (!(Real(0.0) < compareMagnitude)) return true;
  const Real difference = std::fabs(ToDouble(compareMagnitude - magnitude));
  return compareMagnitude * Real(percent) < difference * Real(100.0);
}

/// Compares the angle of a cosine of at most 1 with the allowed angle.
inline bool IsAngleGreater(double cosine, double degrees) {
  return ArcCos(cosine) / 3.141592654 * 180.0 > degrees;
}

template <class Real>
bool MeetsDirectionDeviation(double degrees, Real u, Real v, Real magnitude, const CompareVector<Real>& compare) {
  const Real length = Length<Real>(compare.x, compare.y);
  if (!(Real(0.0) < length) || !(Real(0.0) < magnitude)) return true;
  const double cosine = ToDouble((compare.x * u + compare.y * v) / magnitude / length);
  return std::fabs(cosine) <= 1.0 ? IsAngleGreater(cosine, degrees) : true;
}

template <class Real>
bool IsFaulty(const FaultyVectorCriteria& c, Real u, Real v, const CompareVector<Real>& compare) {
  const Real magnitude = Length<Real>(u, v);
  int met = 0;
  if (c.magnitudeDeviation) met += MeetsMagnitudeDeviation<Real>(c.magnitudePercent, magnitude, compare.magnitude);
  if (c.magnitude.selected) met += MeetsInterval<Real>(c.magnitude, magnitude);
  if (c.directionDeviation) met += MeetsDirectionDeviation<Real>(c.directionDegrees, u, v, magnitude, compare);
  if (c.xComponent.selected) met += MeetsInterval<Real>(c.xComponent, u);
  if (c.yComponent.selected) met += MeetsInterval<Real>(c.yComponent, v);
  return c.logicalOr ? met >= 1 : met == c.SelectedCount();
}

/// The compare vector for the whole field; none if each vector has its own.
template <class Real>
CompareVector<Real> CommonCompareVector(const VectorField& field, const FaultyVectorCriteria& c) {
  if (c.compareVectorType == CompareVectorType::fieldMean) return FieldMean<Real>(field);
  if (c.compareVectorType != CompareVectorType::userVector) return {};
  return {c.userX, c.userY, Length<Real>(c.userX, c.userY)};
}

/// Makes every marked vector invalid.
inline void RejectMarked(VectorField& field) {
  for (std::int32_t& status : field.status.Values()) {
    if (status != kFaulty) continue;
    status = 0;
    ChangeValidCount(field, -1);
  }
}

/// `criteria` must be valid and have a selected criterion.
template <class Real>
void RejectFaultyVectors(VectorField& field, const FaultyVectorCriteria& criteria) {
  CompareVector<Real> compare;
  if (criteria.NeedsCompareVector()) compare = CommonCompareVector<Real>(field, criteria);
  for (std::int32_t i = 1; i <= field.columnCount; ++i) {
    for (std::int32_t j = 1; j <= field.rowCount; ++j) {
      if (field.status(i, j) < 1) continue;
      if (criteria.NeedsCompareVector()) {
        if (criteria.compareVectorType == CompareVectorType::localMean)
          compare = LocalMean<Real>(field, i, j, criteria);
        if (criteria.compareVectorType == CompareVectorType::median) compare = Median<Real>(field, i, j, criteria);
      }
      if (IsFaulty<Real>(criteria, field.velX(i, j), field.velY(i, j), compare)) field.status(i, j) = kFaulty;
    }
  }
  RejectMarked(field);
}

}  // namespace quiverion::plain
