#include <cstddef>
#include <cstdint>

#include "round_trip.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  quiverion::fuzz::CheckFieldRoundTrip("in.vas", std::string(data, data + size));
  return 0;
}
