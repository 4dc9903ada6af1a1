#pragma once

#include <span>
#include <string>
#include <string_view>

#include "sample_field.h"

namespace quiverion::samples {

/// A file of another program, written without any code of the readers.
struct ForeignSample {
  std::string_view name;    ///< with the extension that the program uses
  std::string_view format;  ///< the name of the format, as `import --format` takes it
  double tolerance;         ///< of a velocity, m/s: what is lost to the digits of the format
  bool hasMask;             ///< masked vectors are told from rejected ones
  std::string (*bytes)(const SampleField& field);
};

/// All kinds. Positions are those of the sample field in mm, velocities in m/s, y points up.
std::span<const ForeignSample> ForeignSamples();

/// The sample with this name. Throws std::invalid_argument if there is none.
const ForeignSample& ForeignSampleOf(std::string_view name);

}  // namespace quiverion::samples
