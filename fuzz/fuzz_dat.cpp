#include <cstddef>
#include <cstdint>

#include "round_trip.h"

namespace quiverion::fuzz {
namespace {

// A comma anywhere in the data lines turns the quick parser off: a last line that stands there once or twice must make
// no difference.
void CheckQuickParser(const std::string& bytes) {
  const std::string line = "16 48 0 0 0 0 1 2";
  test::TestSession quick;
  test::TestSession plain;
  const bool quickLoaded = LoadBytes(quick, "in.dat", bytes + "\n" + line + "\n");
  const bool plainLoaded = LoadBytes(plain, "in.dat", bytes + "\n" + line + "," + line + "\n");
  Demand(quickLoaded == plainLoaded, "only one parser takes the file");
  Demand(test::FirstDifference(quick.context.field, plain.context.field).empty(), "the quick parser differs");
}

}  // namespace
}  // namespace quiverion::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string bytes(data, data + size);
  const bool loaded = quiverion::fuzz::CheckFieldRoundTrip("in.dat", bytes);
  // An open quote would swallow the lines that are added.
  if (loaded && bytes.find('"') == std::string::npos) quiverion::fuzz::CheckQuickParser(bytes);
  return 0;
}
