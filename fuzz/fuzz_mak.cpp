#include <cstddef>
#include <cstdint>

#include "macro/macro_file.h"
#include "round_trip.h"

namespace quiverion::fuzz {
namespace {

bool SameValue(const MacroValue& a, const MacroValue& b) {
  const double* const x = std::get_if<double>(&a);
  const double* const y = std::get_if<double>(&b);
  return x != nullptr && y != nullptr ? test::SameBits({x, 1}, {y, 1}) : a == b;
}

bool SameMacro(const MacroEventList& a, const MacroEventList& b) {
  return std::ranges::equal(a, b, [](const MacroEvent& x, const MacroEvent& y) {
    return std::ranges::equal(x.Values(), y.Values(), [](const auto& p, const auto& q) {
      return p.first == q.first && SameValue(p.second, q.second);
    });
  });
}

void CheckMacroRoundTrip(std::string bytes) {
  test::TestSession program;
  Session& session = program.session;
  program.files.files["in.mak"] = std::move(bytes);
  session.macro.emplace_back(12345);
  if (!LoadMacroFile(session, "in.mak")) {
    Demand(program.ui.messages.size() == 1, "a failure shows one message");
    Demand(session.macro.size() == 1 && session.macro[0].EventId() == 12345, "a failure changes the macro");
    return;
  }
  const MacroEventList macro = session.macro;
  Demand(SaveMacroFile(session, "first.mak"), "cannot be saved");
  Demand(LoadMacroFile(session, "first.mak"), "the copy cannot be loaded");
  Demand(SameMacro(macro, session.macro), "the copy differs");
  Demand(SaveMacroFile(session, "second.mak"), "the copy cannot be saved");
  Demand(program.files.files["first.mak"] == program.files.files["second.mak"], "the second copy differs");
}

}  // namespace
}  // namespace quiverion::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  quiverion::fuzz::CheckMacroRoundTrip(std::string(data, data + size));
  return 0;
}
