#include "preview/macro_preview.h"

#include <algorithm>
#include <cstring>
#include <type_traits>

#include "macro/file_steps.h"
#include "messages/failure.h"
#include "operations/kernels/vortex_maxima.h"
#include "platform/files/paths.h"
#include "platform/text/text.h"
#include "preview/buffer_use.h"

namespace quiverion {
namespace {

template <class Array>
bool HaveSameBytes(const Array& a, const Array& b) {
  using Element = std::decay_t<decltype(a[0])>;
  return a.size() == b.size() && (a.empty() || std::memcmp(a.data(), b.data(), a.size() * sizeof(Element)) == 0);
}

template <class T>
bool HaveSameBytes(const Grid<T>& a, const Grid<T>& b) {
  return a.Columns() == b.Columns() && HaveSameBytes(a.Values(), b.Values());
}

bool AreSame(const GridVectors& a, const GridVectors& b) {
  return a.columnCount == b.columnCount && a.rowCount == b.rowCount && HaveSameBytes(a.posX, b.posX) &&
         HaveSameBytes(a.posY, b.posY) && HaveSameBytes(a.velX, b.velX) && HaveSameBytes(a.velY, b.velY) &&
         HaveSameBytes(a.status, b.status);
}

// Without derivedScalar: no step uses that of another.
GridVectors GridsOf(const GridVectors& field) {
  GridVectors grids;
  grids.columnCount = field.columnCount;
  grids.rowCount = field.rowCount;
  grids.posX = field.posX;
  grids.posY = field.posY;
  grids.velX = field.velX;
  grids.velY = field.velY;
  grids.status = field.status;
  return grids;
}

void PutGrids(VectorField& field, const GridVectors& grids) {
  static_cast<GridVectors&>(field) = grids;
  field.derivedScalar.Reset(grids.columnCount, grids.rowCount);
}

VectorField WithoutGrids(const VectorField& field) {
  VectorField rest;
  static_cast<Source&>(rest) = field;
  static_cast<Recording&>(rest) = field;
  static_cast<Streamlines&>(rest) = field;
  static_cast<Transformation&>(rest) = field;
  static_cast<ViewSettings&>(rest) = field;
  static_cast<CarriedSettings&>(rest) = field;
  return rest;
}

bool AreSame(const BufferField& a, const BufferField& b) {
  return a.bufferFileName == b.bufferFileName && a.bufferColumnCount == b.bufferColumnCount &&
         a.bufferRowCount == b.bufferRowCount && HaveSameBytes(a.bufferVelX, b.bufferVelX) &&
         HaveSameBytes(a.bufferVelY, b.bufferVelY) && HaveSameBytes(a.bufferStatus, b.bufferStatus);
}

std::uint64_t BytesOf(const GridVectors& grids) {
  return grids.velX.Values().size() * (2 * sizeof(double) + sizeof(std::int32_t));
}

std::uint64_t BytesOf(const BufferField& buffer) {
  return buffer.bufferVelX.Values().size() * (2 * sizeof(double) + sizeof(std::int32_t));
}

constexpr std::ptrdiff_t kLogLines = 200;  // of a step; there may be a warning for every vector

// The names of all files that a macro names itself, upper case: the only results that later steps could read.
std::vector<std::string> NamesReadBy(const MacroEventList& macro) {
  std::vector<std::string> names;
  for (const MacroEvent& event : macro) {
    const MacroValue* const value = event.Find("FileName");
    const std::string* const path = value == nullptr ? nullptr : std::get_if<std::string>(value);
    if (path != nullptr) names.push_back(AsciiUpper(FileNameOf(WithOwnSeparators(*path))));
  }
  std::ranges::sort(names);
  return names;
}

}  // namespace

struct MacroPreview::State {
  std::shared_ptr<const GridVectors> grids;
  std::shared_ptr<const VectorField> rest;  // everything else of the field
  std::shared_ptr<const BufferField> buffer;
  std::shared_ptr<const OverlayFiles::State> files;
};

// Runs the steps: everything that a run needs, with nothing shared but the files below.
class MacroPreview::Machine {
 public:
  Machine(MacroPreview& owner, FileSystem& files, const Clock& clock, char decimalSeparator)
      : files_(owner, files), context_(files_, ui_, log_, clock) {
    context_.decimalSeparator = decimalSeparator;
  }

  void KeepContentsOf(const std::vector<std::string>& names) {
    files_.KeepContentsOf(
        [names](const std::string& path) { return std::ranges::binary_search(names, AsciiUpper(FileNameOf(path))); });
  }

  void Start(const std::shared_ptr<const BufferField>& buffer) {
    files_.Clear();
    context_.field = {};
    context_.buffer = buffer ? *buffer : BufferField();
  }

  // The state now; shares what has not changed since `before`.
  std::shared_ptr<const State> Capture(const State* before) {
    const bool sameGrids = before != nullptr && AreSame(context_.field, *before->grids);
    const bool sameBuffer = before != nullptr && AreSame(context_.buffer, *before->buffer);
    return std::make_shared<const State>(
        State{sameGrids ? before->grids : std::make_shared<const GridVectors>(GridsOf(context_.field)),
              std::make_shared<const VectorField>(WithoutGrids(context_.field)),
              sameBuffer ? before->buffer : std::make_shared<const BufferField>(context_.buffer), files_.Save()});
  }

  void PutBack(const State& state) {
    context_.field = *state.rest;
    PutGrids(context_.field, *state.grids);
    context_.buffer = *state.buffer;
    files_.Restore(*state.files);
  }

  // Runs a step and keeps its log.
  template <class Step>
  void Run(Step step) {
    lines_ = FirstLines(kLogLines);
    context_.abortCurrentFile = context_.runHadError = context_.userAbortRequested = false;
    files_.TakeJournal();
    log_.Attach(lines_);
    try {
      step(context_);
    } catch (...) {
      log_.Detach(lines_);
      throw;
    }
    log_.Detach(lines_);
  }

  void Describe(StepReport& report) {
    report.files = files_.TakeJournal();
    report.log = lines_.Text();
    report.failed = Failed();
    report.warned = context_.runHadError && !report.failed;
  }

  // The last step has ended the file.
  bool Failed() const { return context_.abortCurrentFile || context_.userAbortRequested; }

  const VectorField& Field() const { return context_.field; }

 private:
  // A long step comes here whenever it opens a file.
  class Files : public OverlayFiles {
   public:
    Files(MacroPreview& owner, FileSystem& below) : OverlayFiles(below), owner_(owner) {}
    std::unique_ptr<InputFile> OpenForReading(const std::string& path) override {
      owner_.RequireWanted();
      return OverlayFiles::OpenForReading(path);
    }
    std::unique_ptr<OutputFile> CreateResultFile(const std::string& path, ExistingFile existing) override {
      owner_.RequireWanted();
      return OverlayFiles::CreateResultFile(path, existing);
    }

   private:
    MacroPreview& owner_;
  };

  Files files_;
  SilentUserInterface ui_;
  RunLog log_;
  FirstLines lines_;
  Context context_;
};

MacroPreview::MacroPreview(FileSystem& files, const Clock& clock, char decimalSeparator, std::uint64_t memoryLimit)
    : memoryLimit_(memoryLimit), machine_(std::make_unique<Machine>(*this, files, clock, decimalSeparator)) {}

MacroPreview::~MacroPreview() = default;

void MacroPreview::RequireWanted() const {
  if (isCancelled_()) throw PreviewCancelled{};
}

void MacroPreview::Begin(const PreviewFile& file, const MacroEventList& macro) {
  const auto differs = std::ranges::mismatch(macro_, macro).in1 - macro_.begin();
  std::size_t from = static_cast<std::size_t>(differs) + 1;
  const std::vector<std::string> readNames = NamesReadBy(macro);
  if (!std::ranges::includes(readNames_, readNames)) from = 1;  // a result may be read now
  if (file != file_) from = 0;
  const std::string copiedFrom = file.buffer ? file.buffer->bufferFileName : std::string();
  std::optional<std::size_t> unknown = CommandThatNeedsEarlierFiles(macro, {copiedFrom, file.earlierPaths});
  if (unknown) ++*unknown;
  if (unknown != unknown_) from = std::min({from, unknown.value_or(from), unknown_.value_or(from)});
  Forget(from);
  file_ = file;
  macro_ = macro;
  readNames_ = readNames;
  unknown_ = unknown;
  machine_->KeepContentsOf(readNames_);
}

void MacroPreview::Forget(std::size_t fromStep) {
  if (fromStep >= reports_.size()) return;
  reports_.resize(fromStep);
  if (states_.size() > fromStep) states_.resize(fromStep);
  if (ended_ != kNever && ended_ >= fromStep) ended_ = kNever;
  if (current_ && *current_ >= fromStep) current_.reset();
  if (states_.empty()) stride_ = 1;
}

std::string MacroPreview::TitleOf(std::size_t step) const {
  if (step == 0) return "Laden der Orginaldatei";
  std::string title(MacroEventDescription(0, true));
  Attempt([&] { title = MacroEventDescription(macro_[step - 1].EventId(), true); });
  return title;
}

bool MacroPreview::ComputeNext() {
  const std::size_t step = reports_.size();
  if (step >= StepCount()) return false;
  if (step > ended_) {
    StepReport report;
    report.title = TitleOf(step);
    report.wasReached = false;
    reports_.push_back(std::move(report));
    return true;
  }
  if (step == unknown_) {
    StepReport report;
    report.title = TitleOf(step);
    report.isKnown = false;
    reports_.push_back(std::move(report));
    ended_ = step;
    return true;
  }
  if (step > 0) MoveTo(step - 1);
  const std::shared_ptr<const State> before = currentState_;
  RunStep(step);
  StepReport report = ReportOf(step);
  if (report.failed && step == 0) {
    ended_ = step;
    reports_.push_back(std::move(report));
    return true;
  }
  const std::shared_ptr<const State> after = machine_->Capture(step > 0 ? before.get() : nullptr);
  const bool sameSize = step > 0 && before->grids->columnCount == after->grids->columnCount &&
                        before->grids->rowCount == after->grids->rowCount;
  report.changes = CountChanges(sameSize ? *before->grids : *after->grids, *after->grids);
  states_.resize(step + 1);
  if (report.failed) ended_ = step;
  reports_.push_back(std::move(report));
  current_ = step;
  currentState_ = after;
  if (step % stride_ == 0) states_[step] = after;
  Keep();
  return true;
}

// The machine is in no state until the step is complete.
void MacroPreview::RunStep(std::size_t step) {
  RequireWanted();
  current_.reset();
  if (step == 0) {
    machine_->Start(file_.buffer);
    machine_->Run([&](Context& context) { LoadStep(context, file_.Path()); });
    return;
  }
  const MacroEvent& event = macro_[step - 1];
  machine_->Run([&](Context& context) {
    const CommandRow* const row = FindStep(context, event);
    if (!context.abortCurrentFile) quiverion::RunStep(row, {context, event, file_.directory, file_.name});
  });
}

StepReport MacroPreview::ReportOf(std::size_t step) {
  StepReport report;
  report.title = TitleOf(step);
  machine_->Describe(report);
  const CommandRow* row = nullptr;
  if (step > 0) Attempt([&] { row = FindCommand(macro_[step - 1].EventId()); });
  if (row != nullptr && row->editor.kind == EditorKind::vortexCentres && !report.failed) {
    Grid<std::int16_t> marks;
    MarkMaxima(machine_->Field().derivedScalar, marks);
    report.vortices = std::ranges::count_if(marks.Values(), [](std::int16_t mark) { return mark != 0; });
  }
  return report;
}

// Brings the machine into the state after a step that was run before.
void MacroPreview::MoveTo(std::size_t step) {
  if (current_ == step) return;
  std::size_t from = std::min(step + 1, states_.size());
  while (from > 0 && states_[from - 1] == nullptr) --from;
  if (from > 0) {
    currentState_ = states_[from - 1];
    machine_->PutBack(*currentState_);
  }
  for (std::size_t k = from; k <= step; ++k) {
    RunStep(k);
    if (machine_->Failed() && !reports_[k].failed) throw SystemError(ErrorNumber::pathAccess);  // the file has changed
  }
  if (from <= step) currentState_ = machine_->Capture(from > 0 ? currentState_.get() : nullptr);
  current_ = step;
}

std::uint64_t MacroPreview::KeptBytes() const {
  std::uint64_t bytes = 0;
  const State* previous = nullptr;  // only neighbours share
  for (const auto& state : states_) {
    if (state == nullptr) continue;
    if (previous == nullptr || state->grids != previous->grids) bytes += BytesOf(*state->grids);
    if (previous == nullptr || state->buffer != previous->buffer) bytes += BytesOf(*state->buffer);
    previous = state.get();
  }
  return bytes;
}

// Forgets every other state until the rest fits.
void MacroPreview::Keep() {
  while (KeptBytes() > memoryLimit_) {
    stride_ *= 2;
    for (std::size_t k = 0; k < states_.size(); ++k) {
      if (k % stride_ != 0 || stride_ > states_.size()) states_[k].reset();
    }
  }
}

std::unique_ptr<VectorField> MacroPreview::FieldAfter(std::size_t step) {
  auto field = std::make_unique<VectorField>();
  if (states_.empty()) return field;
  step = std::min(step, states_.size() - 1);
  std::shared_ptr<const State> state = states_[step];
  if (state == nullptr) {
    MoveTo(step);
    state = currentState_;
  }
  *field = *state->rest;
  PutGrids(*field, *state->grids);
  return field;
}

}  // namespace quiverion
