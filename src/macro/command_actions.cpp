#include "macro/command_actions.h"

#include "field/vas_file.h"
#include "operations/view_settings.h"
#include "platform/paths.h"
#include "platform/system_error.h"

namespace quiverion::actions {

std::string OutputPath(const CommandCall& call, std::string_view extension) {
  std::string path = call.inputDirectory;
  path.append(call.event.Text("Prefix")).append(BaseNameOf(call.fileName)).append(call.event.Text("Postfix"));
  return path.append(extension);
}

void SaveAsVas(const CommandCall& call) {
  SaveVas(call.context, OutputPath(call, ".vas"));
}

void InsertComment(const CommandCall& call) {
  InsertInfoComment(call.context, call.event.Text("Comment"));
}

void ShowHeader(const CommandCall& call) {
  SetShowHeader(call.context, call.event.Flag("Checked"));
}
void ShowTable(const CommandCall& call) {
  SetShowTable(call.context, call.event.Flag("Checked"));
}
void ShowVectorField(const CommandCall& call) {
  SetShowVectorField(call.context, call.event.Flag("Checked"));
}
void ShowCoordSystem(const CommandCall& call) {
  SetShowCoordSystem(call.context, call.event.Flag("Checked"));
}
void AspectRatio(const CommandCall& call) {
  SetAspectRatio(call.context, call.event.Flag("Checked"));
}

void ScaleFactor(const CommandCall& call) {
  SetScaleFactor(call.context, call.event.Number("Value"));
}

void NoBackground(const CommandCall& call) {
  SetBackground(call.context, Background::none);
}
void Swirl2Background(const CommandCall& call) {
  SetBackground(call.context, Background::swirl2);
}
void VorticityBackground(const CommandCall& call) {
  SetBackground(call.context, Background::vorticity);
}

void PaletteMin(const CommandCall& call) {
  SetPaletteMin(call.context, call.event.Number("Value"));
}
void PaletteMax(const CommandCall& call) {
  SetPaletteMax(call.context, call.event.Number("Value"));
}
void PaletteOptimal(const CommandCall& call) {
  FindOptimalPalette(call.context);
}

void NotAvailable(const CommandCall& call) {
  const std::int32_t eventId = call.event.EventId();
  throw SystemError(ErrorNumber::invalidCall, "der Befehl '" + std::string(MacroEventDescription(eventId, true)) +
                                                  "' ist in dieser Version nicht enthalten");
}

}  // namespace quiverion::actions
