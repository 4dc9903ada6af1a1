#include "dialogs/run_plan_model.h"

#include "dialogs/widgets/qt_text.h"
#include "dialogs/widgets/severity_colours.h"
#include "dialogs/widgets/tool_tip.h"
#include "macro/command_catalogue.h"

namespace quiverion {
namespace {

constexpr const char* kCaptions[RunPlanModel::kColumnCount] = {"Datei", "Was", "Ziel oder Quelle", "Befehl", "Hinweis"};

std::string NoteOf(const PlannedStep& step) {
  std::string text;
  const auto add = [&text](const char* part) { text.append(text.empty() ? "" : ", ").append(part); };
  if (step.isOriginal) add("Original");
  if (step.isLaterInput) add("spätere Eingabe");
  if (step.isShared) add("auch Ergebnis einer anderen Datei");
  return text;
}

}  // namespace

RunPlanModel::RunPlanModel(const PlannedRun& forecast, const QPalette& palette, QObject* parent)
    : QAbstractTableModel(parent), forecast_(forecast), palette_(palette) {
  ShowOnly(std::nullopt);
}

void RunPlanModel::ShowOnly(std::optional<FileUse> use) {
  beginResetModel();
  rows_.clear();
  const RunPlan& plan = forecast_.plan;
  if (!use) {
    for (const std::int32_t file : plan.missingFiles) rows_.push_back(-1 - file);
  }
  for (std::int32_t k = 0; k < static_cast<std::int32_t>(plan.steps.size()); ++k) {
    if (!use || plan.steps[static_cast<std::size_t>(k)].use == *use) rows_.push_back(k);
  }
  endResetModel();
}

int RunPlanModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

int RunPlanModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : kColumnCount;
}

const PlannedStep* RunPlanModel::StepOf(int row) const {
  const std::int32_t index = rows_[static_cast<std::size_t>(row)];
  return index < 0 ? nullptr : &forecast_.plan.steps[static_cast<std::size_t>(index)];
}

const std::string& RunPlanModel::InputOf(int row) const {
  const PlannedStep* const step = StepOf(row);
  const std::int32_t file = step != nullptr ? step->file : -1 - rows_[static_cast<std::size_t>(row)];
  return forecast_.plan.files[static_cast<std::size_t>(file)];
}

std::string RunPlanModel::Text(int row, int column) const {
  const PlannedStep* const step = StepOf(row);
  if (column == input) return InputOf(row);
  if (step == nullptr) return column == action ? "fehlt" : "";
  const RunPlan& plan = forecast_.plan;
  switch (column) {
    case action:
      return std::string(WordOf(step->use));
    case path: {
      const std::string whole = plan.PathOf(*step);
      return whole.starts_with(plan.directory) ? whole.substr(plan.directory.size()) : whole;
    }
    case command: {
      const auto position = static_cast<std::size_t>(plan.commands[static_cast<std::size_t>(step->command)].position);
      return std::to_string(position + 1) + ". " +
             std::string(MacroEventDescription(forecast_.macro[position].EventId(), false));
    }
    default:
      return NoteOf(*step);
  }
}

Severity RunPlanModel::SeverityOf(int row) const {
  const PlannedStep* const step = StepOf(row);
  if (step == nullptr) return Severity::warning;
  if (step->isOriginal || step->isLaterInput) return Severity::danger;
  return step->isShared || step->use == FileUse::replaces ? Severity::warning : Severity::note;
}

QVariant RunPlanModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid()) return {};
  switch (role) {
    case Qt::DisplayRole:
      return ToQt(Text(index.row(), index.column()));
    case Qt::ForegroundRole:
      if (index.column() != action && index.column() != note) return {};
      return SeverityColour(SeverityOf(index.row()), palette_);
    case Qt::ToolTipRole:  // names may look like markup
      if (index.column() != input && index.column() != path) return {};
      return ToolTipOf({ToQt(Text(index.row(), index.column()))});
    default:
      return {};
  }
}

QVariant RunPlanModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (orientation != Qt::Horizontal) return {};
  if (role == Qt::TextAlignmentRole) return QVariant(Qt::AlignLeft | Qt::AlignVCenter);
  if (role != Qt::DisplayRole) return {};
  return QString::fromUtf8(kCaptions[section]);
}

}  // namespace quiverion
