#pragma once

#include <QObject>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "picture/shown_field.h"
#include "picture/wishes.h"
#include "preview/macro_preview.h"
#include "preview/search_report.h"
#include "preview/series_sample.h"

namespace quiverion {

/// A field with everything computed that its first picture needs.
struct PreparedField {
  PreparedField(std::unique_ptr<VectorField> preparedField, Quantity quantity);

  std::unique_ptr<VectorField> field;
  ShownField shown;
};

enum class ComparedWith { stepBefore, loadedField };

/// What a preview is to show. Steps are counted as in StepReport.
struct PreviewRequest {
  std::string directory;                                  ///< ends in a separator
  std::shared_ptr<const std::vector<std::string>> names;  ///< of the files of the run, in its order
  std::size_t file = 0;                                   ///< index of the one that is shown
  std::shared_ptr<const BufferField> buffer;              ///< before the run
  MacroEventList macro;
  std::size_t step = 0;
  ComparedWith comparedWith = ComparedWith::stepBefore;
  bool wantsDifference = false;
  ViewWishes wishes;
  std::size_t sampleSize = 20;  ///< files of the sample
};

/// The field after a step, and what it is compared with.
struct PreviewFields {
  std::size_t step = 0, comparedStep = 0;
  Quantity quantity = Quantity::none;
  std::shared_ptr<PreparedField> after, before;  ///< without vectors if the file could not be loaded
  std::shared_ptr<PreparedField> difference;  ///< null if it was not asked for, or the grids are not at the same place
  std::optional<HeldScale> scale;             ///< of both
};

/// What has been computed until now. Parts that are not set have not changed.
struct PreviewAnswer {
  std::uint64_t request = 0;
  std::shared_ptr<const std::vector<StepReport>> steps{};  ///< those that are done
  std::shared_ptr<PreviewFields> fields{};
  std::optional<SearchReport> search{};  ///< of the step if it is a search
  std::optional<std::vector<SampledFile>> sample{};
  std::string error{};  ///< why there is nothing to show, a line
};

/// Computes previews in a thread of its own, on data of its own: a newer request ends an older one. First what is seen:
/// the step that is asked for, its search; then the other steps; then the sample of the series.
class PreviewWorker : public QObject {
  Q_OBJECT

 public:
  /// `files` is only read, from the other thread. Both must outlive the object.
  PreviewWorker(FileSystem& files, const Clock& clock, char decimalSeparator);
  ~PreviewWorker() override;

  /// Returns the number of the request.
  std::uint64_t Ask(PreviewRequest request);

  /// Ends what is being computed as soon as possible. The next request begins again.
  void Cancel();

  /// The same, and returns when the thread works no more and no file is open.
  void Stop();

 signals:
  void Answered(const std::shared_ptr<PreviewAnswer>& answer);

 private:
  struct Sampling;

  void Loop();
  void Answer();
  void ComputeTo(std::size_t step);
  std::shared_ptr<PreviewFields> Fields();
  void AnswerSearch();
  void SampleNext();
  PreviewFile FileOf(std::size_t index) const;
  void Post(PreviewAnswer answer);
  void PostSteps(PreviewAnswer answer);
  bool IsCancelled() const;

  MacroPreview preview_;
  MacroPreview samplePreview_;

  // Of the thread.
  PreviewRequest request_;
  std::uint64_t current_ = 0;
  std::chrono::steady_clock::time_point started_;
  std::unique_ptr<Sampling> sampling_;
  bool isSampling_ = false;

  // Of both.
  std::mutex mutex_;
  std::condition_variable changed_;
  std::optional<PreviewRequest> next_;
  std::atomic<std::uint64_t> wanted_ = 0;
  std::atomic<bool> isStopped_ = false;
  bool isWorking_ = false;
  bool isEnding_ = false;

  std::thread thread_;
};

}  // namespace quiverion
