#include "exchange/export_files.h"

#include "field/formats/load_original_file.h"
#include "log/first_lines.h"
#include "messages/failure.h"
#include "platform/files/paths.h"
#include "platform/files/result_file.h"
#include "platform/process/environment.h"

namespace quiverion::exchange {
namespace {

class Export {
 public:
  Export(Context& context, const ExportJob& job, const ExportWatcher& watcher)
      : context_(context), job_(job), kind_(*job.kind), watcher_(watcher) {}

  // A file for each field.
  ExportEnd Files() {
    ExportEnd end = ExportEnd::done;
    for (std::size_t k = 0; k < job_.paths.size(); ++k) {
      if (!Begins(k)) return ExportEnd::aborted;
      if (!One(k)) end = ExportEnd::failed;
    }
    return isAborted_ ? ExportEnd::aborted : end;
  }

  // One file with all fields.
  ExportEnd Series(const std::string& path) {
    const auto failure = SaveResult(context_.files, &context_.ui, path, [&](ResultFile& file) {
      for (std::size_t k = 0; k < job_.paths.size(); ++k) {
        if (!Begins(k)) throw SystemError::Saying(ErrorNumber::invalidCall, "Der Export wurde abgebrochen.");
        LoadForSeries(k);
        Append(file, k);
      }
    });
    return failure ? Fail(path, *failure) : ExportEnd::done;
  }

  // The files are checked first, so that a series that cannot be one leaves nothing behind.
  ExportEnd FilesWithIndex(const std::string& path) {
    const auto failure = Attempt([&] {
      for (std::size_t k = 0; k < job_.paths.size() && Begins(k); ++k) LoadForSeries(k);
    });
    if (failure) return Fail(path, {*failure});
    std::vector<std::string> names;
    const bool isBeside = IsSameFile(DirectoryPrefixOf(path), WithSeparator(AbsolutePath(job_.directory)));
    for (std::size_t k = 0; k < job_.paths.size(); ++k) {
      if (!Begins(k)) return ExportEnd::aborted;
      if (!One(k)) return isAborted_ ? ExportEnd::aborted : ExportEnd::failed;
      const std::string target = job_.TargetOf(k);
      names.push_back(isBeside ? std::string(FileNameOf(target)) : AbsolutePath(target));
    }
    const auto written = SaveResult(context_.files, &context_.ui, path,
                                    [&](ResultFile& file) { WriteParaViewIndex(file, names, job_.timeStep); });
    return written ? Fail(path, *written) : ExportEnd::done;
  }

 private:
  bool Begins(std::size_t k) {
    if (!isAborted_ && !watcher_.begins(k)) isAborted_ = true;
    return !isAborted_;
  }

  ExportEnd Fail(const std::string& path, const SaveFailure& failure) {
    watcher_.fails("'" + path + "': " + failure.formatMessage.value_or(ErrorText(failure.error)) + "\n");
    if (failure.cancelled) isAborted_ = true;
    return isAborted_ ? ExportEnd::aborted : ExportEnd::failed;
  }

  // What the log says about a failure is the reason.
  bool Load(std::size_t k) {
    FirstLines lines;
    const AttachedSink attached(context_.log, lines);
    context_.abortCurrentFile = context_.runHadError = false;
    LoadOriginalFile(context_, AbsolutePath(job_.paths[k]));
    if (context_.abortCurrentFile || context_.runHadError) watcher_.fails(lines.Text());
    return !context_.abortCurrentFile;
  }

  void LoadForSeries(std::size_t k) {
    const std::string& path = job_.paths[k];
    if (!Load(k)) {
      throw FormatError("Die Serie wird nicht geschrieben, weil '" + path + "' nicht gelesen werden kann.");
    }
    const VectorField& field = context_.field;
    if (k == 0) {
      x_ = field.posX;
      y_ = field.posY;
    }
    if (field.posX == x_ && field.posY == y_) return;
    const bool isSize = field.posX.size() != x_.size() || field.posY.size() != y_.size();
    const auto size = [](std::size_t columns, std::size_t rows) {
      return std::to_string(columns) + " x " + std::to_string(rows);
    };
    throw FormatError("Die Serie wird nicht geschrieben, weil '" + path + "' ein anderes Gitter hat: " +
                      (isSize ? size(field.posX.size(), field.posY.size()) + " statt " + size(x_.size(), y_.size())
                              : std::string("andere Positionen")) +
                      ".");
  }

  void Append(ResultFile& file, std::size_t k) {
    const SeriesPlace place = PlaceInSeries(k + 1, job_.timeStep);
    if (kind_.name == "netcdf") {
      if (k == 0) WriteNetCdfHeader(file, context_.field, job_.paths.size(), place, SourceNames());
      WriteNetCdfRecord(file, context_.field, place);
    } else {
      if (k == 0) WriteTecplotHeader(file);
      WriteTecplotZone(file, context_.field, place);
    }
  }

  std::string SourceNames() const {
    std::string names;
    for (const std::string& path : job_.paths) names.append(names.empty() ? "" : ", ").append(FileNameOf(path));
    return names;
  }

  bool One(std::size_t k) {
    if (!Load(k)) return false;
    const std::string path = job_.TargetOf(k);
    const auto failure = SaveResult(context_.files, &context_.ui, AbsolutePath(path), [&](ResultFile& file) {
      kind_.write(file, context_.field, PlaceInSeries(k + 1, job_.timeStep));
    });
    if (failure) Fail(path, *failure);
    if (!failure) watcher_.written(k);
    return !failure;
  }

  Context& context_;
  const ExportJob& job_;
  const ExportKind& kind_;
  const ExportWatcher& watcher_;
  bool isAborted_ = false;
  decltype(VectorField::posX) x_, y_;  // of the first field of a series
};

}  // namespace

std::string ExportJob::TargetOf(std::size_t k) const {
  std::string path = WithSeparator(directory);
  path += BaseNameOf(FileNameOf(paths[k]));
  return path.append(kind->extension);
}

std::string ExportJob::SeriesPath() const {
  if (series.empty()) return {};
  return AbsolutePath(FileNameOf(series) == series ? WithSeparator(directory) + series : series);
}

ExportEnd ExportFiles(Context& context, const ExportJob& job, const ExportWatcher& watcher) {
  Export exports(context, job, watcher);
  if (job.series.empty()) return exports.Files();
  return job.IsIndex() ? exports.FilesWithIndex(job.SeriesPath()) : exports.Series(job.SeriesPath());
}

}  // namespace quiverion::exchange
