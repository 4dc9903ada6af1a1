#pragma once

#include <cstdio>
#include <cstdlib>
#include <string>

#include "field/formats/load_original_file.h"
#include "field/formats/vas_file.h"
#include "support/field_compare.h"
#include "support/test_session.h"

namespace quiverion::fuzz {

/// Ends the program, which is a finding for a fuzzer.
[[noreturn]] inline void Fail(const std::string& reason) {
  std::fprintf(stderr, "fuzz: %s\n", reason.c_str());
  std::abort();
}

inline void Demand(bool holds, const std::string& reason) {
  if (!holds) Fail(reason);
}

/// Loads the bytes as a file of that name. Returns true if the field was loaded; the log must agree.
inline bool LoadBytes(test::TestSession& program, const std::string& name, std::string bytes) {
  program.files.files[name] = std::move(bytes);
  program.context.abortCurrentFile = false;
  LoadOriginalFile(program.context, name);
  const std::string log = program.TakeLog();
  const bool loaded = !program.context.abortCurrentFile;
  Demand(log.ends_with(loaded ? "fertig\r\n" : "    Die Bearbeitung der aktuellen Datei wird abgebrochen!\r\n"),
         "the log does not fit the flag: " + log);
  return loaded;
}

/// Loads the file. If that succeeds, saving it as VAS and loading it again must not change it, and a second save must
/// give the same bytes. Returns true if the file was loaded.
inline bool CheckFieldRoundTrip(const std::string& name, const std::string& bytes) {
  constexpr std::size_t enoughPoints = 1 << 16;  // a larger grid shows nothing new
  test::TestSession program;
  Context& context = program.context;
  if (!LoadBytes(program, name, bytes)) return false;
  const VectorField field = context.field;
  Demand(field.columnCount >= 1 && field.rowCount >= 1, "an empty field");
  if (field.status.Values().size() > enoughPoints) return true;
  context.runHadError = false;
  SaveVas(context, "first.vas");
  Demand(!context.runHadError, "cannot be saved: " + program.TakeLog());
  const std::string first = program.files.files["first.vas"];
  Demand(LoadBytes(program, "first.vas", first), "the copy cannot be loaded");
  Demand(test::FirstDifference(field, context.field).empty(),
         "the copy differs in " + test::FirstDifference(field, context.field));
  SaveVas(context, "second.vas");
  Demand(program.files.files["second.vas"] == first, "the second copy differs");
  return true;
}

}  // namespace quiverion::fuzz
