#include <unordered_set>

#include "cli/commands.h"
#include "cli/input_names.h"
#include "cli/services.h"
#include "exchange/import_file.h"
#include "log/first_lines.h"
#include "messages/failure.h"
#include "platform/files/paths.h"
#include "platform/process/environment.h"

namespace quiverion::cli {
namespace {

// Hidden files of a directory are not meant.
bool IsVisible(const std::string& name) {
  return !name.starts_with('.');
}

std::string FailureText(const Failure& failure) {
  return failure.formatMessage ? *failure.formatMessage : ErrorText(failure.error);
}

// The imports of one call, file by file.
class Import {
 public:
  Import(Services& services, const ImportCall& call) : services_(services), call_(call) {}

  // True if everything was written.
  bool One(const std::string& path) {
    exchange::ForeignFile foreign;
    const auto read = [&] {
      foreign = exchange::ReadForeignFile(*services_.files, AbsolutePath(path), call_.options);
      RequireNewNames(path, foreign.fields.size());
    };
    if (const auto failure = Attempt(read)) return Fail(path, FailureText(*failure));
    const std::string name = "'" + path + "': ";
    std::string said = name + foreign.report.Line() + "\n";
    for (const std::string& warning : foreign.report.warnings) {
      said.append(name).append("Warnung: ").append(warning).append("\n");
    }
    services_.terminal.PrintError(said);

    FirstLines lines;
    services_.log.Attach(lines);
    Context& context = services_.session.context;
    const auto failure = Attempt([&] {
      exchange::SaveImported(context, std::move(foreign), AbsolutePath(path), AbsolutePath(call_.directory));
    });
    services_.log.Detach(lines);
    if (failure) return Fail(path, FailureText(*failure));
    if (context.runHadError) services_.terminal.PrintError(lines.Text());
    return !context.runHadError;
  }

 private:
  bool Fail(const std::string& path, const std::string& reason) {
    services_.terminal.PrintError("'" + path + "': " + reason + "\n");
    return false;
  }

  // Fields with numbers may have the names of other inputs' fields.
  void RequireNewNames(const std::string& path, std::size_t count) {
    for (std::size_t k = 1; k <= count; ++k) {
      const std::string target = exchange::ImportedPath(path, call_.directory, k, count);
      if (written_.insert(FileNameKey(FileNameOf(target))).second) continue;
      throw FormatError("'" + target + "' ist schon das Ergebnis einer anderen Datei dieses Aufrufs.");
    }
  }

  Services& services_;
  const ImportCall& call_;
  std::unordered_set<std::string> written_;
};

}  // namespace

int ImportFields(const ImportCall& call) {
  Services services;
  std::vector<std::string> paths;
  if (const auto failure = Attempt([&] { paths = FilesOf(*services.files, call.inputs, IsVisible); })) {
    services.terminal.PrintError(ErrorText(failure->error) + "\n");
    return kFailed;
  }
  if (paths.empty()) {
    services.terminal.PrintError("Die angegebenen Verzeichnisse enthalten keine passende Datei.\n");
    return kFailed;
  }
  if (const auto same = FilesOfSameName(paths); !same.empty()) {
    services.terminal.PrintError("Zwei Eingabedateien haben denselben Namen: '" + same[0] + "' und '" + same[1] +
                                 "'\n");
    return kUsage;
  }
  CatchAbortRequests();
  Import imports(services, call);
  int code = kDone;
  for (const std::string& path : paths) {
    if (services.terminal.Yield() || services.session.context.userAbortRequested) return kAborted;
    if (!imports.One(path)) code = kFailed;
  }
  return services.session.context.userAbortRequested ? kAborted : code;
}

}  // namespace quiverion::cli
