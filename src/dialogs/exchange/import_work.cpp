#include "dialogs/exchange/import_work.h"

#include "exchange/import_file.h"
#include "log/first_lines.h"
#include "messages/failure.h"
#include "messages/silent_user_interface.h"
#include "platform/files/paths.h"
#include "platform/process/environment.h"
#include "platform/text/text.h"

namespace quiverion {
namespace {

std::string FailureText(const Failure& failure) {
  return failure.formatMessage ? *failure.formatMessage : ErrorText(failure.error);
}

}  // namespace

std::string ReasonOf(const std::string& lines) {
  std::string reason;
  std::string_view rest = lines;
  rest.remove_prefix(std::min(rest.find('\n'), rest.size()));
  while (!rest.empty()) {
    rest.remove_prefix(1);
    const std::string_view line = TrimBlanks(rest.substr(0, rest.find('\n')));
    if (!line.empty()) reason.append(reason.empty() ? "" : " ").append(line);
    rest.remove_prefix(std::min(rest.find('\n'), rest.size()));
  }
  return reason.empty() ? std::string(TrimBlanks(lines)) : reason;
}

ImportFinding InspectFile(FileSystem& files, const std::string& path, const exchange::ImportOptions& options) {
  ImportFinding finding;
  const auto failure = Attempt([&] { finding.report = exchange::ReadForeignFile(files, path, options).report; });
  if (failure) finding.problem = FailureText(*failure);
  return finding;
}

ImportResult ImportOneFile(const ExchangeServices& services, const std::string& path,
                           const exchange::ImportOptions& options, const std::string& directory) {
  ImportResult result;
  SilentUserInterface ui;
  RunLog log;
  FirstLines lines;
  log.Attach(lines);
  Context context(services.files, ui, log, services.clock);
  const auto failure = Attempt([&] {
    for (const std::string& written :
         exchange::SaveImported(context, exchange::ReadForeignFile(services.files, path, options), path, directory)) {
      result.written.emplace_back(FileNameOf(written));
    }
  });
  if (failure) {
    result.problem = FailureText(*failure);
  } else if (context.runHadError) {
    result.problem = ReasonOf(lines.Text());
  }
  result.isDiskFull = context.userAbortRequested;
  return result;
}

}  // namespace quiverion
