#include "cli/commands.h"
#include "cli/input_names.h"
#include "cli/services.h"
#include "exchange/writers.h"
#include "field/formats/load_original_file.h"
#include "log/first_lines.h"
#include "macro/series_files.h"
#include "messages/failure.h"
#include "platform/files/paths.h"
#include "platform/files/result_file.h"
#include "platform/process/environment.h"

namespace quiverion::cli {
namespace {

using exchange::ExportKind;

std::string FailureText(const Failure& failure) {
  return failure.formatMessage ? *failure.formatMessage : ErrorText(failure.error);
}

class Export {
 public:
  Export(Services& services, const ExportCall& call, std::vector<std::string> paths)
      : services_(services), call_(call), kind_(*exchange::FindExportKind(call.kind)), paths_(std::move(paths)) {}

  // A file for each field.
  int Files() {
    int code = kDone;
    for (std::size_t k = 0; k < paths_.size(); ++k) {
      if (Aborted()) return kAborted;
      if (!One(k)) code = kFailed;
    }
    return code;
  }

  // One file with all fields: a field that cannot be read would leave a gap in time.
  int Series(const std::string& path) {
    if (kind_.name == "vtk") return FilesWithIndex(path);
    const auto failure = SaveResult(*services_.files, &services_.terminal, path, [&](ResultFile& file) {
      for (std::size_t k = 0; k < paths_.size(); ++k) {
        if (Aborted()) throw SystemError::Saying(ErrorNumber::invalidCall, "Der Export wurde abgebrochen.");
        LoadForSeries(k);
        Append(file, k);
      }
    });
    return failure ? Fail(path, *failure) : Aborted() ? kAborted : kDone;
  }

 private:
  const VectorField& Field() const { return services_.session.context.field; }
  bool Aborted() const { return services_.terminal.Yield() || services_.session.context.userAbortRequested; }

  int Fail(const std::string& path, const SaveFailure& failure) {
    services_.terminal.PrintError("'" + path + "': " + FailureText(failure) + "\n");
    return failure.cancelled || Aborted() ? kAborted : kFailed;
  }

  // Loads input `k` (from 0). What the log says about a failure is the reason.
  bool Load(std::size_t k) {
    FirstLines lines;
    services_.log.Attach(lines);
    Context& context = services_.session.context;
    context.abortCurrentFile = context.runHadError = false;
    LoadOriginalFile(context, AbsolutePath(paths_[k]));
    services_.log.Detach(lines);
    if (context.abortCurrentFile || context.runHadError) services_.terminal.PrintError(lines.Text());
    return !context.abortCurrentFile;
  }

  void LoadForSeries(std::size_t k) {
    if (!Load(k))
      throw FormatError("Die Serie wird nicht geschrieben, weil '" + paths_[k] + "' nicht gelesen werden kann.");
    const VectorField& field = Field();
    if (k == 0) {
      x_ = field.posX;
      y_ = field.posY;
    }
    if (field.posX == x_ && field.posY == y_) return;
    const bool isSize = field.posX.size() != x_.size() || field.posY.size() != y_.size();
    const auto size = [](std::size_t columns, std::size_t rows) {
      return std::to_string(columns) + " x " + std::to_string(rows);
    };
    throw FormatError("Die Serie wird nicht geschrieben, weil '" + paths_[k] + "' ein anderes Gitter hat: " +
                      (isSize ? size(field.posX.size(), field.posY.size()) + " statt " + size(x_.size(), y_.size())
                              : std::string("andere Positionen")) +
                      ".");
  }

  void Append(ResultFile& file, std::size_t k) {
    const exchange::SeriesPlace place = exchange::PlaceInSeries(k + 1, call_.timeStep);
    if (kind_.name == "netcdf") {
      if (k == 0) exchange::WriteNetCdfHeader(file, Field(), paths_.size(), place, SourceNames());
      exchange::WriteNetCdfRecord(file, Field(), place);
    } else {
      if (k == 0) exchange::WriteTecplotHeader(file);
      exchange::WriteTecplotZone(file, Field(), place);
    }
  }

  std::string SourceNames() const {
    std::string names;
    for (const std::string& path : paths_) names.append(names.empty() ? "" : ", ").append(FileNameOf(path));
    return names;
  }

  std::string TargetOf(std::size_t k) const {
    std::string path = WithSeparator(call_.directory);
    path += BaseNameOf(FileNameOf(paths_[k]));
    return path.append(kind_.extension);
  }

  bool Write(std::size_t k) {
    const std::string path = TargetOf(k);
    const auto failure = SaveResult(*services_.files, &services_.terminal, AbsolutePath(path), [&](ResultFile& file) {
      kind_.write(file, Field(), exchange::PlaceInSeries(k + 1, call_.timeStep));
    });
    if (!failure) return true;
    if (Fail(path, *failure) == kAborted) services_.session.context.userAbortRequested = true;
    return false;
  }

  bool One(std::size_t k) { return Load(k) && Write(k); }

  // The files are checked first, so that a series that cannot be one leaves nothing behind.
  int FilesWithIndex(const std::string& path) {
    const auto failure = Attempt([&] {
      for (std::size_t k = 0; k < paths_.size() && !Aborted(); ++k) LoadForSeries(k);
    });
    if (failure) return Fail(path, {*failure});
    std::vector<std::string> names;
    const bool isBeside = IsSameFile(DirectoryPrefixOf(path), WithSeparator(AbsolutePath(call_.directory)));
    for (std::size_t k = 0; k < paths_.size(); ++k) {
      if (Aborted()) return kAborted;
      if (!One(k)) return kFailed;
      names.push_back(isBeside ? std::string(FileNameOf(TargetOf(k))) : AbsolutePath(TargetOf(k)));
    }
    const auto written = SaveResult(*services_.files, &services_.terminal, path, [&](ResultFile& file) {
      exchange::WriteParaViewIndex(file, names, call_.timeStep);
    });
    return written ? Fail(path, *written) : kDone;
  }

  Services& services_;
  const ExportCall& call_;
  const ExportKind& kind_;
  std::vector<std::string> paths_;
  decltype(VectorField::posX) x_, y_;  // of the first field of a series
};

// A series without a directory of its own is among the other results.
std::string SeriesPath(const ExportCall& call) {
  const bool isName = FileNameOf(call.series) == call.series;
  return AbsolutePath(isName ? WithSeparator(call.directory) + call.series : call.series);
}

}  // namespace

int ExportFields(const ExportCall& call) {
  Services services;
  std::vector<std::string> paths;
  if (const auto failure = Attempt([&] { paths = FilesOf(*services.files, call.inputs, IsSeriesFile); })) {
    services.terminal.PrintError(ErrorText(failure->error) + "\n");
    return kFailed;
  }
  if (paths.empty()) {
    services.terminal.PrintError("Die angegebenen Verzeichnisse enthalten keine passende Datei.\n");
    return kFailed;
  }
  const bool oneFile = !call.series.empty() && call.kind != "vtk";
  if (const auto same = FilesOfSameName(paths); !oneFile && !same.empty()) {
    services.terminal.PrintError("Zwei Eingabedateien haben denselben Namen: '" + same[0] + "' und '" + same[1] +
                                 "'\n");
    return kUsage;
  }
  CatchAbortRequests();
  Export exports(services, call, std::move(paths));
  return call.series.empty() ? exports.Files() : exports.Series(SeriesPath(call));
}

}  // namespace quiverion::cli
