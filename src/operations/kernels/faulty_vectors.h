#pragma once

#include <cstdint>

#include "field/vector_field.h"

namespace quiverion {

/// A criterion for a value and an interval: met outside the interval (outside = true: below `low` or above `high`) or
/// strictly inside it.
struct IntervalCriterion {
  bool selected = false;
  bool outside = false;
  double low = 0.0;  // m/s
  double high = 0.0;
};

/// What a vector is compared with. Any other value comes from a damaged macro.
enum class CompareVectorType : std::int32_t { localMean = 1, fieldMean = 2, median = 3, userVector = 4 };

/// When a vector counts as faulty.
struct FaultyVectorCriteria {
  bool magnitudeDeviation = false;  // the magnitude deviates from the compare vector's by more than ...
  double magnitudePercent = 0.0;
  IntervalCriterion magnitude = {};
  bool directionDeviation = false;  // the direction deviates from the compare vector's by more than ...
  double directionDegrees = 0.0;
  IntervalCriterion xComponent = {};
  IntervalCriterion yComponent = {};
  CompareVectorType compareVectorType = CompareVectorType::localMean;
  std::int32_t halfWidthX = 0;  // of the window for localMean and median: 2 * half width + 1 vectors
  std::int32_t halfWidthY = 0;
  double userX = 0.0;  // m/s
  double userY = 0.0;
  bool logicalOr = false;  // faulty if one selected criterion is met; otherwise only if all are

  int SelectedCount() const {
    return magnitudeDeviation + magnitude.selected + directionDeviation + xComponent.selected + yComponent.selected;
  }
  bool NeedsCompareVector() const { return magnitudeDeviation || directionDeviation; }
};

/// Sets the status of every faulty valid vector to 0 and lowers `validVectorCount`; each is tested while all others are
/// still valid. Does nothing if no criterion is selected. If a compare vector is needed, throws SystemError 5 for an
/// unknown compare type or a negative half width. Throws SystemError at an arithmetic error: in column-by-column order,
/// the faulty vectors before it have status 5, and nothing else has changed.
void RejectFaultyVectors(VectorField& field, const FaultyVectorCriteria& criteria);

/// What the search compares with the limits of its two deviations, for each grid point. Points that are not tested have
/// NaN. Infinity stands for a vector that has nothing to be compared with: it meets the criterion whatever the limit.
struct Deviations {
  Grid<double> magnitudePercent;  // of the compare vector's; empty if the criterion is not selected
  Grid<double> directionDegrees;
};

/// Errors as RejectFaultyVectors, but no arithmetic error of a single vector: its value is unspecified.
Deviations DeviationsOf(const VectorField& field, const FaultyVectorCriteria& criteria);

}  // namespace quiverion
