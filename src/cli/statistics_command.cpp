#include "cli/commands.h"
#include "cli/services.h"
#include "log/first_lines.h"
#include "platform/process/environment.h"

namespace quiverion::cli {

int RunStatistic(StatisticKind kind, const std::string& collectionPath, const std::string& outputPath,
                 double viscosity) {
  Services services;
  if (IsSameFile(collectionPath, outputPath)) {
    services.terminal.PrintError("Die Ergebnisdatei ist die Kollektion selbst: '" + outputPath + "'\n");
    return kUsage;
  }
  CatchAbortRequests();
  FirstLines lines;
  services.log.Attach(lines);
  const bool computed = ComputeStatistic(services.session.context, kind, collectionPath, outputPath, viscosity);
  if (!computed && services.terminal.Yield()) return kAborted;
  if (!computed) return services.FailedOn(collectionPath);
  const int code = services.Outcome();
  if (code != kDone) services.terminal.PrintError(lines.Text());
  return code;
}

}  // namespace quiverion::cli
