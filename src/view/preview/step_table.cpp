#include "view/preview/step_table.h"

#include <QBrush>
#include <QGuiApplication>
#include <QPalette>
#include <algorithm>

#include "dialogs/widgets/dark_palette.h"
#include "dialogs/widgets/qt_text.h"
#include "picture/scales.h"

namespace quiverion {
namespace {

constexpr const char* kUnknown = "hängt von den Dateien davor ab";

QString CountText(std::int64_t count) {
  return count == 0 ? QString() : QString::number(count);
}

QColor Red() {
  return IsDark(QGuiApplication::palette()) ? QColor(255, 120, 110) : QColor(190, 0, 0);
}

QString Escaped(const std::string& text) {
  return LinesToQt(text).toHtmlEscaped().replace(u'\n', QStringLiteral("<br>"));
}

QString InRed(const QString& text) {
  return "<span style=\"color:" + Red().name() + "\">" + text + "</span>";
}

const char* WordOf(FileChangeKind kind) {
  switch (kind) {
    case FileChangeKind::created:
      return "neu";
    case FileChangeKind::replaced:
      return "ersetzt";
    case FileChangeKind::extended:
      return "ergänzt";
    case FileChangeKind::removed:
      break;
  }
  return "gelöscht";
}

// The log with its blanks; lines about errors in red.
QString LogHtml(const std::string& log) {
  QString html;
  bool isRed = false;
  for (const QString& line : LinesToQt(log).split(u'\n')) {
    if (!line.startsWith("    ")) isRed = false;  // an indented line belongs to the one before
    isRed = isRed || line.contains("FEHLER") || line.contains("WARNUNG");
    const QString text = line.toHtmlEscaped().replace("  ", " &nbsp;");
    html += (isRed ? InRed(text) : text) + "<br>";
  }
  return html;
}

}  // namespace

void StepTable::Show(std::vector<std::string> titles, std::shared_ptr<const std::vector<StepReport>> steps) {
  const bool sameRows = titles.size() == titles_.size();
  if (!sameRows) beginResetModel();
  titles_ = std::move(titles);
  steps_ = std::move(steps);
  if (!sameRows) return endResetModel();
  if (!titles_.empty()) emit dataChanged(index(0, 0), index(rowCount() - 1, kColumnCount - 1));
}

const StepReport* StepTable::Report(int row) const {
  const bool isDone = steps_ != nullptr && row >= 0 && static_cast<std::size_t>(row) < steps_->size();
  return isDone ? &(*steps_)[static_cast<std::size_t>(row)] : nullptr;
}

int StepTable::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(titles_.size());
}

int StepTable::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : kColumnCount;
}

QString StepTable::Text(const StepReport& report, int column) const {
  if (!report.isKnown) return column == title ? ToQt(report.title) + "  (" + kUnknown + ")" : QString();
  if (!report.wasReached) return column == title ? ToQt(report.title) : QString();
  const FieldChanges& changes = report.changes;
  switch (column) {
    case title:
      return ToQt(report.title);
    case rejected:
      return CountText(changes.rejected);
    case filled:
      return CountText(changes.filled);
    case changed:
      return CountText(changes.changed);
    case valid:
      return QString::number(changes.valid);
    case greatest:
      return changes.greatest > 0.0 ? ToQt(NumberText(changes.greatest, 4)) : QString();
    case vortices:
      return report.vortices ? QString::number(*report.vortices) : QString();
    case files:
      return CountText(static_cast<std::int64_t>(report.files.size()));
    default:
      return {};
  }
}

QVariant StepTable::data(const QModelIndex& index, int role) const {
  const StepReport* const report = Report(index.row());
  if (role == Qt::TextAlignmentRole && index.column() != title) return int(Qt::AlignRight | Qt::AlignVCenter);
  if (report == nullptr) {
    const bool isTitle = role == Qt::DisplayRole && index.column() == title;
    return isTitle ? QVariant(ToQt(titles_[static_cast<std::size_t>(index.row())])) : QVariant();
  }
  if (role == Qt::DisplayRole) return Text(*report, index.column());
  if (role == Qt::ToolTipRole && index.column() == title) return StepDetails(*report);
  if (role != Qt::ForegroundRole) return {};
  const auto replaces = [](const FileChange& change) { return change.kind == FileChangeKind::replaced; };
  const bool warns = index.column() == files && std::ranges::any_of(report->files, replaces);
  if (report->failed || report->warned || warns) return QBrush(Red());
  if (!report->wasReached || !report->isKnown) {
    return QBrush(QGuiApplication::palette().color(QPalette::Disabled, QPalette::Text));
  }
  return {};
}

QVariant StepTable::headerData(int section, Qt::Orientation orientation, int role) const {
  if (role != Qt::DisplayRole) return {};
  if (orientation == Qt::Vertical) return section;
  constexpr const char* names[] = {"Schritt", "verworfen",       "gefüllt", "geändert",
                                   "gültig",  "größte Änd. [m/s]", "Wirbel",  "Dateien"};
  return QString::fromUtf8(names[section]);
}

QString StepDetails(const StepReport& report) {
  QString html = "<b>" + Escaped(report.title) + "</b><br>";
  if (!report.isKnown) {
    return html +
           "Der Inhalt des Buffers stammt hier von den Dateien davor. Die Vorschau bearbeitet nur diese Datei "
           "und rät nicht.";
  }
  if (!report.wasReached) return html + "Wird nicht ausgeführt: Ein Schritt davor beendet die Bearbeitung der Datei.";
  const FieldChanges& changes = report.changes;
  if (changes.greatest > 0.0) {
    html += QString("Größte Änderung: %1 m/s in Spalte %2, Zeile %3<br>")
                .arg(ToQt(NumberText(changes.greatest, 4)))
                .arg(changes.column)
                .arg(changes.row);
  }
  constexpr std::size_t shown = 50;
  for (std::size_t k = 0; k < std::min(report.files.size(), shown); ++k) {
    const FileChange& change = report.files[k];
    const QString line = QString(WordOf(change.kind)) + ": " + Escaped(change.path);
    html += (change.kind == FileChangeKind::replaced ? InRed(line) : line) + "<br>";
  }
  if (report.files.size() > shown) html += QString("... und %1 weitere Dateien<br>").arg(report.files.size() - shown);
  return html + LogHtml(report.log);
}

}  // namespace quiverion
