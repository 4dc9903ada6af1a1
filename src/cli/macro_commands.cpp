#include "cli/commands.h"
#include "cli/services.h"
#include "json/macro_json.h"
#include "macro/command_catalogue.h"
#include "macro/macro_file.h"
#include "messages/failure.h"
#include "platform/process/environment.h"

namespace quiverion::cli {
namespace {

// The message box of the load error has been shown; this adds the name of the file.
bool Load(Services& services, const std::string& path) {
  if (LoadMacroFile(services.session, path)) return true;
  services.terminal.PrintError("Makrodatei: '" + path + "'\n");
  return false;
}

std::string MessageOf(const Failure& failure) {
  return failure.formatMessage ? *failure.formatMessage : ErrorText(failure.error);
}

}  // namespace

int ShowMacro(const std::string& macroPath) {
  Services services;
  if (!Load(services, macroPath)) return kFailed;
  std::string text;
  for (std::size_t k = 0; k < services.session.macro.size(); ++k) {
    const std::int32_t eventId = services.session.macro[k].EventId();
    text += std::to_string(k + 1) + "\t" + std::to_string(eventId) + "\t";
    text.append(MacroEventDescription(eventId, true)).append("\n");
  }
  services.terminal.Print(text);
  return services.Done();
}

int ExportMacro(const std::string& macroPath) {
  Services services;
  if (!Load(services, macroPath)) return kFailed;
  if (const auto failure = Attempt([&] { services.terminal.Print(MacroToJson(services.session.macro)); })) {
    services.terminal.PrintError("'" + macroPath + "': " + MessageOf(*failure) + "\n");
    return kFailed;
  }
  return services.Done();
}

int ImportMacro(const std::string& jsonPath, const std::string& macroPath) {
  Services services;
  const auto failure = Attempt([&] {
    const std::string text = jsonPath == "-" ? ReadStandardInput() : ReadWholeFile(*services.files, jsonPath);
    services.session.macro = MacroFromJson(text);
  });
  if (failure) {
    services.terminal.PrintError("'" + jsonPath + "': " + MessageOf(*failure) + "\n");
    return kFailed;
  }
  if (SaveMacroFile(services.session, macroPath)) return services.Done();
  services.terminal.PrintError("Makrodatei: '" + macroPath + "'\n");
  return kFailed;
}

}  // namespace quiverion::cli
