#pragma once

#include <string>

#include "operations/kernels/faulty_vectors.h"

/// What the window for faulty vectors decides.
namespace quiverion {

/// What is marked in it.
struct FaultVectorChoices {
  bool absDeviation = false;
  bool absInterval = false;
  bool dirDeviation = false;
  bool xComp = false;
  bool yComp = false;
  CompareVectorType compareWith = CompareVectorType::localMean;
};

/// Which of its controls are enabled; those of a criterion are enabled where it is marked.
struct FaultVectorControls {
  bool compareWith = false;   // the frame and its four options
  bool localMiddle = false;   // the sizes of its window
  bool median = false;        // the sizes of its window
  bool userVector = false;    // the components
  bool logicalAndOr = false;  // the frame and its options
  bool ok = false;

  bool operator==(const FaultVectorControls&) const = default;
};

FaultVectorControls EnabledControls(const FaultVectorChoices& choices);

/// Exchanges the texts of two bounds where the lower one is the greater number. Throws SystemError 6 for a number that is
/// too large.
void OrderBounds(std::string& lower, std::string& upper);

}  // namespace quiverion
