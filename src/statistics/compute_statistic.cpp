#include "statistics/compute_statistic.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <string_view>

#include "field/formats/vas_file.h"
#include "field/frames.h"
#include "platform/numeric/float_errors.h"
#include "platform/text/text.h"
#include "statistics/collection_file.h"
#include "statistics/record_sums.h"
#include "statistics/statistic_steps.h"

namespace quiverion {
namespace {

constexpr std::string_view kErrorTitle = "QuiverionSeries - Fehler";

// Shows a computation from its start until it ends, however it ends.
class ShownComputation {
 public:
  explicit ShownComputation(UserInterface& ui) : ui_(ui) { ui_.ComputationStarted(); }
  ~ShownComputation() { ui_.ComputationEnded(); }
  ShownComputation(const ShownComputation&) = delete;
  ShownComputation& operator=(const ShownComputation&) = delete;

 private:
  UserInterface& ui_;
};

// Computes equally spaced positions between the first and the last, which must be set.
template <class PositionList>
void ReconstructPositions(PositionList& positions) {
  const std::size_t count = positions.size();
  const double first = positions.front(), last = positions.back();
  for (std::size_t k = 1; k + 1 < count; ++k) {
    positions[k] = (last - first) / static_cast<double>(count - 1) * static_cast<double>(k) + first;
  }
}

void ReconstructGrid(VectorField& field, const CollectionHeader& header) {
  field.posX.front() = header.firstPosX;
  field.posX.back() = header.lastPosX;
  field.posY.front() = header.firstPosY;
  field.posY.back() = header.lastPosY;
  ReconstructPositions(field.posX);
  ReconstructPositions(field.posY);
}

void CreateBuffer(BufferField& buffer, const CollectionHeader& header) {
  buffer.bufferColumnCount = header.columnCount;
  buffer.bufferRowCount = header.rowCount;
  buffer.bufferVelX.Reset(header.columnCount, header.rowCount);
  buffer.bufferVelY.Reset(header.columnCount, header.rowCount);
  buffer.bufferStatus.Reset(header.columnCount, header.rowCount);
}

// An operation on finite numbers whose result is not finite ends the computation.
template <class Step>
void Checked(Step step) {
  if (RaisesFloatError(step)) throw SystemError(ErrorNumber::overflow);
}

class Computation {
 public:
  Computation(Context& context, InputFile& file) : context_(context), fileSize_(file.Size()), reader_(file) {}

  // False if the user has asked to stop. Throws FormatError and SystemError. Both leave the field as far as the
  // computation had got.
  bool Run(const StatisticSteps& steps, double viscosity) {
    if (!ReadIdentity(reader_, header_)) throw FormatError("Dies ist keine gültige COL-Datei!");
    ReadCountsAndPositions(reader_, header_);
    CheckSparseGrid(header_.columnCount, header_.rowCount, fileSize_);
    const bool twoPasses = steps.addRecord != nullptr;
    total_ = std::max(std::int64_t{header_.fieldCount} * (twoPasses ? 2 : 1), std::int64_t{1});
    if (!ShowProgress()) return false;
    CreateArrays(context_.field, header_.columnCount, header_.rowCount);
    CreateBuffer(context_.buffer, header_);
    StatisticState state{context_.field, context_.buffer, ValidBits(header_.VectorCount() / 8 + 1), viscosity};
    Checked([&] { ReconstructGrid(context_.field, header_); });
    if (!Pass(state, AddVelocities)) return false;
    if (twoPasses) {
      Checked([&] { steps.betweenPasses(state); });
      if (!Pass(state, steps.addRecord)) return false;
    }
    Checked([&] { steps.finish(state); });
    return true;
  }

 private:
  bool Pass(StatisticState& state, void (*addRecord)(StatisticState&)) {
    reader_.MoveTo(RecordPosition(header_, 0));
    for (std::int32_t k = 0; k < header_.fieldCount; ++k) {
      reader_.Skip(collection::kPathBytes);
      reader_.Blocks(state.buffer.bufferVelX.Values(), state.buffer.bufferVelY.Values(), state.validBits);
      Checked([&] { addRecord(state); });
      ++done_;
      if (!ShowProgress()) return false;
    }
    return true;
  }

  // False if the user has asked to stop.
  bool ShowProgress() {
    context_.ui.ShowComputation(done_, total_);
    return !context_.ui.Yield();
  }

  Context& context_;
  std::uint64_t fileSize_;
  BinaryReader reader_;
  CollectionHeader header_;
  std::int64_t done_ = 0;
  std::int64_t total_ = 1;
};

// The header and info text of a result. `paletteSetting`, `viewerSettings` and the paths stay.
void SetResultHeader(Context& context, StatisticKind kind, std::string_view collectionPath) {
  VectorField& field = context.field;
  ResetHeader(field);
  field.headerLines[0] = context.clock.DateAndTime();
  const auto& status = field.status.Values();
  field.validVectorCount = static_cast<std::int32_t>(std::ranges::count_if(status, [](auto s) { return s > 0; }));
  field.showTable = true;
  field.infoText = kind == StatisticKind::dissipation ? "Energiedissipationsrate" : "Mittelwerte";
  field.infoText.append(" erzeugt aus der Kollektion: ").append(TrimBlanks(collectionPath));
}

}  // namespace

bool ComputeStatistic(Context& context, StatisticKind kind, const std::string& collectionPath,
                      const std::string& outputPath, double viscosity) {
  const BusyGuard guard(context);
  if (!guard.Entered()) return false;
  std::optional<ShownComputation> shown(context.ui);
  std::unique_ptr<InputFile> file;
  bool stopped = false;
  const auto failure = Attempt([&] { file = context.files.OpenForReading(collectionPath); },
                               [&] { stopped = !Computation(context, *file).Run(StepsOf(kind), viscosity); });
  if (stopped) return false;
  if (failure) {
    shown.reset();  // the window is as before when a message stands in front of it
    ShowFailureBox(context, kErrorTitle,
                   failure->atOpening ? "Die Kollektion kann nicht geöffnet werden! Folgender Fehler ist aufgetreten:"
                                      : "Fehler beim Einlesen der Kollektion! Folgender Fehler ist aufgetreten:",
                   *failure);
    return false;
  }
  file.reset();
  SetResultHeader(context, kind, collectionPath);
  SaveVas(context, outputPath);
  return true;
}

}  // namespace quiverion
