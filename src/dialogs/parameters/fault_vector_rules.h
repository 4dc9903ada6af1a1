#pragma once

#include <string>

#include "operations/kernels/faulty_vectors.h"

/// The decisions of the window for faulty vectors.
namespace quiverion {

/// What is checked in it.
struct FaultVectorChoices {
  bool absDeviation = false;
  bool absInterval = false;
  bool dirDeviation = false;
  bool xComp = false;
  bool yComp = false;
  CompareVectorType compareWith = CompareVectorType::localMean;
};

/// Which of its controls are enabled; those of a criterion are enabled if it is checked.
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

/// Swaps the texts of two bounds if the lower bound is the greater number. Throws SystemError 6 for a number that is
/// too large.
void OrderBounds(std::string& lower, std::string& upper);

}  // namespace quiverion
