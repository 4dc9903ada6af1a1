#include "macro/file_steps.h"

#include "field/formats/load_original_file.h"
#include "log/log_lines.h"
#include "messages/failure.h"

namespace quiverion {
namespace {

template <class Action>
void Guarded(Context& context, Action action) {
  if (const auto failure = Attempt(action)) {
    LogLines(context.log, {kErrorMark, ErrorLine(failure->error)});
    context.abortCurrentFile = true;
    context.runHadError = true;
  }
}

}  // namespace

void LoadStep(Context& context, const std::string& path) {
  Guarded(context, [&] { LoadOriginalFile(context, path); });
}

const CommandRow* FindStep(Context& context, const MacroEvent& event) {
  const CommandRow* row = nullptr;
  Guarded(context, [&] { row = FindCommand(event.EventId()); });
  return row;
}

void RunStep(const CommandRow* row, const CommandCall& call) {
  if (row == nullptr || row->IsMenu()) return;
  Guarded(call.context, [&] { row->run(call); });
}

}  // namespace quiverion
