#include "view/preview/preview_worker.h"

#include <QDateTime>
#include <QFileInfo>
#include <utility>

#include "dialogs/widgets/qt_text.h"
#include "messages/failure.h"
#include "preview/buffer_use.h"
#include "preview/field_difference.h"

namespace quiverion {
namespace {

// A computation that is nearly done is worth more than one that begins: while somebody drags a limit, small fields
// follow at once.
constexpr std::chrono::milliseconds kMayFinish{60};

std::string VersionOf(const std::string& path) {
  const QFileInfo file(PathToQt(path));
  if (!file.exists()) return "-";
  return std::to_string(file.size()) + "@" + std::to_string(file.lastModified().toMSecsSinceEpoch());
}

// Of the files that the macro names: whether they exist decides what it does.
std::string VersionsOf(const MacroEventList& macro) {
  std::string versions;
  for (const MacroEvent& event : macro) {
    if (event.Find("FileName") == nullptr) continue;
    Attempt([&] { versions += "|" + VersionOf(event.Path("FileName")); });
  }
  return versions;
}

HeldScale ScaleOf(PreparedField& before, PreparedField& after, Quantity quantity) {
  SeriesScale scale(quantity);
  for (PreparedField* const each : {&before, &after}) scale.Add(*each->field, each->shown.Values(quantity).grid);
  return {quantity, StatisticResultOf(*after.field), scale.Reference(), scale.BarLimits()};
}

}  // namespace

PreparedField::PreparedField(std::unique_ptr<VectorField> preparedField, Quantity quantity)
    : field(std::move(preparedField)), shown(*field) {
  if (field->columnCount == 0) return;
  shown.Summary();
  shown.Values(quantity);
}

// What was found out about a series with a macro.
struct PreviewWorker::Sampling {
  std::string directory;
  std::shared_ptr<const std::vector<std::string>> names;
  MacroEventList macro;
  std::shared_ptr<const BufferField> buffer;
  std::optional<std::size_t> searchStep;
  std::vector<std::size_t> indices;
  std::vector<SampledFile> files;
};

PreviewWorker::PreviewWorker(FileSystem& files, const Clock& clock, char decimalSeparator)
    : preview_(files, clock, decimalSeparator), samplePreview_(files, clock, decimalSeparator, 0) {
  for (MacroPreview* const each : {&preview_, &samplePreview_}) each->CancelIf([this] { return IsCancelled(); });
  thread_ = std::thread([this] { Loop(); });
}

PreviewWorker::~PreviewWorker() {
  {
    const std::scoped_lock lock(mutex_);
    isEnding_ = true;
    isStopped_ = true;
  }
  changed_.notify_all();
  thread_.join();
}

std::uint64_t PreviewWorker::Ask(PreviewRequest request) {
  const std::scoped_lock lock(mutex_);
  next_ = std::move(request);
  isStopped_ = false;
  changed_.notify_all();
  return ++wanted_;
}

void PreviewWorker::Cancel() {
  const std::scoped_lock lock(mutex_);
  next_.reset();
  isStopped_ = true;
}

void PreviewWorker::Stop() {
  Cancel();
  std::unique_lock lock(mutex_);
  changed_.wait(lock, [this] { return !isWorking_; });
}

bool PreviewWorker::IsCancelled() const {
  if (isStopped_) return true;
  if (wanted_ == current_) return false;
  return isSampling_ || std::chrono::steady_clock::now() - started_ > kMayFinish;
}

void PreviewWorker::Loop() {
  const auto samples = [this] { return sampling_ != nullptr && sampling_->files.size() < sampling_->indices.size(); };
  for (;;) {
    {
      std::unique_lock lock(mutex_);
      isWorking_ = false;
      changed_.notify_all();
      changed_.wait(lock, [&] { return isEnding_ || (!isStopped_ && (next_ || samples())); });
      if (isEnding_) return;
      isWorking_ = true;
      isSampling_ = !next_;
      if (next_) {
        request_ = *std::exchange(next_, std::nullopt);
        current_ = wanted_;
        started_ = std::chrono::steady_clock::now();
      }
    }
    try {
      if (isSampling_) {
        SampleNext();
      } else {
        Answer();
      }
    } catch (const PreviewCancelled&) {
    } catch (const std::exception& error) {
      sampling_.reset();
      Post({.error = ErrorText(FailureOf(error).error)});
    }
  }
}

void PreviewWorker::Post(PreviewAnswer answer) {
  answer.request = current_;
  emit Answered(std::make_shared<PreviewAnswer>(std::move(answer)));
}

void PreviewWorker::PostSteps(PreviewAnswer answer) {
  std::vector<StepReport> steps;
  for (std::size_t step = 0; step < preview_.StepsDone(); ++step) steps.push_back(preview_.Report(step));
  answer.steps = std::make_shared<const std::vector<StepReport>>(std::move(steps));
  Post(std::move(answer));
}

PreviewFile PreviewWorker::FileOf(std::size_t index) const {
  PreviewFile file{.directory = request_.directory,
                   .name = (*request_.names)[index],
                   .version = VersionsOf(request_.macro),
                   .earlierPaths = {},
                   .buffer = request_.buffer};
  file.version += VersionOf(file.Path());
  if (UsesBuffer(request_.macro)) {
    for (std::size_t k = 0; k < index; ++k) file.earlierPaths.push_back(request_.directory + (*request_.names)[k]);
  }
  return file;
}

void PreviewWorker::ComputeTo(std::size_t step) {
  while (preview_.StepsDone() <= step && preview_.ComputeNext()) {
  }
}

void PreviewWorker::Answer() {
  const std::optional<std::size_t> searchStep =
      request_.step > 0 && IsSearch(request_.macro[request_.step - 1]) ? std::optional(request_.step) : std::nullopt;
  const bool isSameSeries = sampling_ != nullptr && sampling_->directory == request_.directory &&
                            (sampling_->names == request_.names || *sampling_->names == *request_.names) &&
                            sampling_->macro == request_.macro && sampling_->buffer == request_.buffer &&
                            sampling_->searchStep == searchStep;
  const std::vector<std::size_t> indices = SpreadEvenly(request_.names->size(), request_.sampleSize);
  if (!isSameSeries || sampling_->indices != indices) {
    sampling_ = std::make_unique<Sampling>(
        Sampling{request_.directory, request_.names, request_.macro, request_.buffer, searchStep, indices, {}});
  }
  preview_.Begin(FileOf(request_.file), request_.macro);
  ComputeTo(request_.step);
  PostSteps({.fields = Fields()});
  if (searchStep) AnswerSearch();
  if (preview_.StepsDone() < preview_.StepCount()) {
    ComputeTo(request_.macro.size());
    PostSteps({});
  }
}

std::shared_ptr<PreviewFields> PreviewWorker::Fields() {
  auto fields = std::make_shared<PreviewFields>();
  fields->step = request_.step;
  fields->comparedStep =
      request_.comparedWith == ComparedWith::loadedField || request_.step == 0 ? 0 : request_.step - 1;
  std::unique_ptr<VectorField> before = preview_.FieldAfter(fields->comparedStep);
  std::unique_ptr<VectorField> after = preview_.FieldAfter(fields->step);
  fields->quantity = QuantityFor(*after, request_.wishes);
  std::unique_ptr<VectorField> difference;
  if (request_.wantsDifference) {
    if (auto found = DifferenceOf(*before, *after)) difference = std::make_unique<VectorField>(std::move(*found));
  }
  fields->before = std::make_shared<PreparedField>(std::move(before), fields->quantity);
  fields->after = std::make_shared<PreparedField>(std::move(after), fields->quantity);
  if (fields->after->field->columnCount == 0) return fields;
  if (difference) fields->difference = std::make_shared<PreparedField>(std::move(difference), Quantity::speed);
  fields->scale = ScaleOf(*fields->before, *fields->after, fields->quantity);
  return fields;
}

void PreviewWorker::AnswerSearch() {
  const StepReport& report = preview_.Report(request_.step);
  if (!report.wasReached || !report.isKnown) return;
  const std::unique_ptr<VectorField> field = preview_.FieldAfter(request_.step - 1);
  Post({.search = ReportSearch(*field, request_.macro[request_.step - 1])});
}

void PreviewWorker::SampleNext() {
  const std::size_t index = sampling_->indices[sampling_->files.size()];
  samplePreview_.Begin(FileOf(index), sampling_->macro);
  SampledFile file = SampleFile(samplePreview_, sampling_->macro, sampling_->searchStep);
  file.index = index;
  sampling_->files.push_back(std::move(file));
  MarkOdd(sampling_->files);
  Post({.sample = sampling_->files});
}

}  // namespace quiverion
