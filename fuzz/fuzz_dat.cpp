#include <cstddef>
#include <cstdint>

#include "field/formats/dat_fields.h"
#include "round_trip.h"
#include "support/dat_lines_check.h"

namespace quiverion::fuzz {
namespace {

void CheckQuickParser(const std::string& bytes) {
  test::TestSession quick;
  quick.files.files["in.dat"] = bytes;
  DatFields fields(*quick.files.OpenForReading("in.dat"));
  for (int k = 1; k <= 16; ++k) fields.Next();
  const std::string_view lines = fields.Rest();
  if (lines.find('"') != std::string_view::npos) return;  // a tab may become part of a text in quotes
  test::TestSession plain;
  const bool quickLoaded = LoadBytes(quick, "in.dat", bytes);
  const bool plainLoaded =
      LoadBytes(plain, "in.dat", bytes.substr(0, bytes.size() - lines.size()) + test::WithTabs(lines));
  Demand(quickLoaded == plainLoaded, "only one parser takes the file");
  Demand(test::FirstDifference(quick.context.field, plain.context.field).empty(), "the quick parser differs");
}

}  // namespace
}  // namespace quiverion::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string bytes(data, data + size);
  const quiverion::test::DatLinesCheck check = quiverion::test::CheckDatLines(bytes);
  quiverion::fuzz::Demand(check.wrong.empty(), "other numbers: " + check.wrong);
  if (quiverion::fuzz::CheckFieldRoundTrip("in.dat", bytes)) quiverion::fuzz::CheckQuickParser(bytes);
  return 0;
}
