#include "cli/commands.h"
#include "cli/input_names.h"
#include "cli/services.h"
#include "exchange/export_files.h"
#include "macro/series_files.h"
#include "messages/failure.h"
#include "platform/process/environment.h"

namespace quiverion::cli {

int ExportFields(const ExportCall& call) {
  Services services;
  exchange::ExportJob job{.kind = exchange::FindExportKind(call.kind),
                          .directory = call.directory,
                          .series = call.series,
                          .timeStep = call.timeStep,
                          .paths = {}};
  if (const auto failure = Attempt([&] { job.paths = FilesOf(*services.files, call.inputs, IsSeriesFile); })) {
    services.terminal.PrintError(ErrorText(failure->error) + "\n");
    return kFailed;
  }
  if (job.paths.empty()) {
    services.terminal.PrintError("Die angegebenen Verzeichnisse enthalten keine passende Datei.\n");
    return kFailed;
  }
  if (const auto same = FilesOfSameName(job.paths); !job.IsOneFile() && !same.empty()) {
    services.terminal.PrintError("Zwei Eingabedateien haben denselben Namen: '" + same[0] + "' und '" + same[1] +
                                 "'\n");
    return kUsage;
  }
  CatchAbortRequests();
  switch (ExportFiles(services.session.context, job,
                      {.begins = [&](std::size_t) { return !services.terminal.Yield(); },
                       .written = [](std::size_t) {},
                       .fails = [&](const std::string& lines) { services.terminal.PrintError(lines); }})) {
    case exchange::ExportEnd::done:
      return kDone;
    case exchange::ExportEnd::failed:
      return kFailed;
    case exchange::ExportEnd::aborted:
      break;
  }
  return kAborted;
}

}  // namespace quiverion::cli
