#include "dialogs/exchange/frmExport.h"

#include <QHeaderView>
#include <QLineEdit>
#include <QShortcut>
#include <algorithm>
#include <unordered_map>

#include "dialogs/exchange/choose_paths.h"
#include "dialogs/exchange/import_work.h"
#include "dialogs/widgets/disconnect_children.h"
#include "dialogs/widgets/dropped_files.h"
#include "dialogs/widgets/guarded.h"
#include "dialogs/widgets/log_colours.h"
#include "macro/series_files.h"
#include "messages/failure.h"
#include "messages/silent_user_interface.h"
#include "platform/files/paths.h"
#include "platform/process/environment.h"
#include "platform/text/numbers.h"
#include "ui_frmExport.h"

namespace quiverion {
namespace {

constexpr const char* kTitle = "QuiverionSeries  -  Felder exportieren";

// Two fields whose results would be one file; empty if there are none.
std::string FieldsOfOneName(const exchange::ExportJob& job) {
  std::unordered_map<std::string, std::string> known;
  for (const std::string& path : job.paths) {
    const auto [other, isNew] = known.emplace(FileNameKey(BaseNameOf(FileNameOf(path))), path);
    if (!isNew) return "'" + std::string(FileNameOf(other->second)) + "' und '" + std::string(FileNameOf(path)) + "'";
  }
  return {};
}

}  // namespace

frmExport::frmExport(const ExchangeServices& services, QWidget* parent)
    : QDialog(parent), services_(services), ui_(std::make_unique<Ui::frmExport>()) {
  ui_->setupUi(this);
  setWindowFlag(Qt::WindowMaximizeButtonHint);
  UseProblemColour();
  for (const exchange::ExportKind& kind : exchange::ExportKinds()) {
    ui_->cboKind->addItem(ToQt(std::string(kind.title) + " (*" + std::string(kind.extension) + ")"));
  }
  ui_->txtTimeStep->SetRule(KeyRule::unsignedNumber);
  ui_->tblFiles->setModel(&list_);
  QHeaderView& header = *ui_->tblFiles->horizontalHeader();
  header.resizeSection(ExportList::name, 34 * fontMetrics().averageCharWidth());
  header.setStretchLastSection(true);
  ui_->tblFiles->verticalHeader()->setDefaultSectionSize(fontMetrics().height() * 3 / 2);
  ConnectControls();
  KindChanged();
}

frmExport::~frmExport() {
  DisconnectChildren(*this);
}

void frmExport::ConnectControls() {
  connect(ui_->cmdAdd, &QPushButton::clicked, this, &frmExport::ChooseFiles);
  connect(ui_->cmdRemove, &QPushButton::clicked, this, &frmExport::RemoveFiles);
  auto* const remove = new QShortcut(QKeySequence(Qt::Key_Delete), ui_->tblFiles);
  remove->setContext(Qt::WidgetShortcut);
  connect(remove, &QShortcut::activated, ui_->cmdRemove, &QPushButton::click);
  connect(ui_->tblFiles->selectionModel(), &QItemSelectionModel::selectionChanged, this, &frmExport::ShowWork);
  connect(ui_->cboKind, &QComboBox::activated, this, &frmExport::KindChanged);
  connect(ui_->chkSeries, &QCheckBox::toggled, this, [this] {
    ShowTargets();
    ShowWork();
  });
  connect(ui_->txtSeries, &QLineEdit::editingFinished, this, &frmExport::ShowTargets);
  connect(ui_->txtDirectory, &QLineEdit::textEdited, this,
          [this](const QString& text) { directory_ = PathFromQt(text); });
  connect(ui_->txtDirectory, &QLineEdit::editingFinished, this, &frmExport::ShowTargets);
  connect(ui_->cmdDirectory, &QPushButton::clicked, this, [this] {
    Guarded(services_.messages, [this] {
      if (const auto chosen = ChooseDirectory(*this, "Zielverzeichnis", directory_)) SetDirectory(*chosen);
    });
  });
  connect(ui_->cmdExport, &QPushButton::clicked, this, &frmExport::Export);
  connect(ui_->cmdCancel, &QPushButton::clicked, this, &frmExport::reject);
}

void frmExport::UseProblemColour() {
  list_.SetProblemColour(QColor(OnScreen(palette())[static_cast<std::size_t>(LogColour::red)]));
}

void frmExport::changeEvent(QEvent* event) {
  QDialog::changeEvent(event);
  if (event->type() == QEvent::PaletteChange) UseProblemColour();
}

const exchange::ExportKind& frmExport::Kind() const {
  return exchange::ExportKinds()[static_cast<std::size_t>(ui_->cboKind->currentIndex())];
}

// A name that nobody has changed follows the kind.
void frmExport::KindChanged() {
  const std::string_view extension = Kind().seriesExtension;
  if (extension.empty()) ui_->chkSeries->setChecked(false);
  if (ui_->txtSeries->text() == proposed_) {
    proposed_ = ToQt("Serie" + std::string(extension));
    ui_->txtSeries->setText(proposed_);
  }
  ShowTargets();
  ShowWork();
}

void frmExport::ChooseFiles() {
  Guarded(services_.messages, [this] {
    AddPaths(ChooseExistingFiles(*this, "Vektorfelder", directory_,
                                 {"Vektorfelder (*.vas *.vec *.dat *.VAS *.VEC *.DAT)", "Alle Dateien (*)"}));
  });
}

void frmExport::AddPaths(const std::vector<std::string>& paths) {
  std::vector<std::string> fields;
  for (const std::string& path : paths) {
    if (!services_.files.IsDirectory(path)) {
      fields.push_back(path);
      continue;
    }
    Attempt([&] {
      for (const std::string& name : ListSeriesFiles(services_.files, path)) {
        fields.push_back(WithSeparator(path) + name);
      }
    });
  }
  if (fields.empty()) return;
  list_.Add(fields);
  ended_.clear();
  if (ui_->txtDirectory->text().isEmpty()) return SetDirectory(std::string(DirectoryOf(fields.front())));
  ShowTargets();
  ShowWork();
}

void frmExport::SetDirectory(const std::string& directory) {
  directory_ = directory;
  ui_->txtDirectory->setText(PathToQt(directory));
  ShowTargets();
  ShowWork();
}

void frmExport::RemoveFiles() {
  std::vector<int> rows;
  for (const QModelIndex& index : ui_->tblFiles->selectionModel()->selectedRows()) rows.push_back(index.row());
  if (rows.empty() || isWorking_) return;
  const int first = *std::ranges::min_element(rows);
  list_.Remove(rows);
  if (list_.rowCount() > 0) {
    const QModelIndex next = list_.index(std::min(first, list_.rowCount() - 1), 0);
    ui_->tblFiles->selectionModel()->setCurrentIndex(next, QItemSelectionModel::NoUpdate);
  }
  ShowTargets();
  ShowWork();
}

exchange::ExportJob frmExport::JobOfControls() const {
  exchange::ExportJob job;
  job.kind = &Kind();
  job.directory = AbsolutePath(directory_);
  if (ui_->chkSeries->isChecked()) {
    job.series = PathFromQt(ui_->txtSeries->text().trimmed());
    if (!job.series.empty() && FileNameOf(job.series).find('.') == std::string_view::npos) {
      job.series += job.kind->seriesExtension;
    }
  }
  for (const ExportItem& item : list_.Items()) job.paths.push_back(item.path);
  return job;
}

std::vector<std::string> frmExport::ExistingTargets(const exchange::ExportJob& job) const {
  std::vector<std::string> names;
  std::unordered_map<std::string, bool> existing;
  Attempt([&] {
    for (const std::string& name : services_.files.ListFiles(job.directory)) existing[FileNameKey(name)] = true;
  });
  for (std::size_t k = 0; k < job.paths.size() && !job.IsOneFile(); ++k) {
    const std::string target = job.TargetOf(k);
    if (existing.contains(FileNameKey(FileNameOf(target)))) names.emplace_back(FileNameOf(target));
  }
  if (!job.series.empty() && FileExists(services_.files, job.SeriesPath())) names.push_back(job.series);
  return names;
}

// Before an export: which file each field makes, and whether it exists.
void frmExport::ShowTargets() {
  if (isWorking_ || list_.Items().empty()) return;
  const exchange::ExportJob job = JobOfControls();
  std::unordered_map<std::string, bool> existing;
  for (const std::string& name : ExistingTargets(job)) existing[name] = true;
  for (std::size_t k = 0; k < job.paths.size(); ++k) {
    const std::string target = job.IsOneFile() ? job.series : std::string(FileNameOf(job.TargetOf(k)));
    list_.ShowResult(k, (existing.contains(target) ? "ersetzt: " : "neu: ") + target, false);
  }
  ended_.clear();
}

std::optional<exchange::ExportJob> frmExport::Job() {
  exchange::ExportJob job = JobOfControls();
  std::string problem;
  const std::string timeStep = ui_->txtTimeStep->Text();
  if (!timeStep.empty()) {
    Attempt([&] { job.timeStep = ReadParameterNumber(timeStep); });
    if (!(job.timeStep > 0.0)) problem = "Die Zeit zwischen zwei Feldern muss größer als 0 sein!";
  }
  if (ui_->chkSeries->isChecked() && job.series.empty()) problem = "Die Serie braucht einen Namen!";
  if (FileNameOf(job.series) != job.series) problem = "Der Name der Serie darf kein Verzeichnis enthalten!";
  if (directory_.empty()) problem = "Das Zielverzeichnis fehlt!";
  if (const std::string same = FieldsOfOneName(job); !job.IsOneFile() && !same.empty()) {
    problem = "Zwei Dateien haben denselben Namen:\r\n" + same;
  }
  if (problem.empty()) return job;
  services_.messages.Ask({.title = kTitle, .text = problem});
  return std::nullopt;
}

bool frmExport::MayReplace(const exchange::ExportJob& job) {
  const std::vector<std::string> existing = ExistingTargets(job);
  if (existing.empty()) return true;
  constexpr std::size_t kNamed = 10;
  std::string text = existing.size() == 1 ? std::string("Eine vorhandene Datei wird ersetzt:")
                                          : std::to_string(existing.size()) + " vorhandene Dateien werden ersetzt:";
  for (std::size_t k = 0; k < std::min(kNamed, existing.size()); ++k) text += "\r\n    " + existing[k];
  if (existing.size() > kNamed) text += "\r\n    ...";
  return services_.messages.Ask({.title = kTitle,
                                 .text = text + "\r\n\r\nSoll exportiert werden?",
                                 .buttons = MessageButtons::yesNo,
                                 .icon = MessageIcon::question}) == MessageAnswer::yes;
}

void frmExport::Export() {
  Guarded(services_.messages, [this] {
    if (isWorking_ || list_.Items().empty()) return;
    ShowTargets();
    const auto job = Job();
    if (!job || !MayReplace(*job)) return;
    for (std::size_t k = 0; k < job->paths.size(); ++k) list_.ShowResult(k, "", false);
    isWorking_ = true;
    done_ = 0;
    ended_.clear();
    job_ = *job;
    tasks_.Add([this] {
      const exchange::ExportEnd end = Run(job_);
      return [this, end] { Ended(end); };
    });
    ShowWork();
  });
}

exchange::ExportEnd frmExport::Run(const exchange::ExportJob& job) {
  SilentUserInterface ui;
  RunLog log;
  Context context(services_.files, ui, log, services_.clock);
  std::size_t current = 0;
  return ExportFiles(
      context, job,
      {.begins =
           [&](std::size_t k) {
             current = k;
             tasks_.React([this, k] {
               done_ = static_cast<int>(k);
               ShowWork();
             });
             return !tasks_.IsCancelled();
           },
       .written = [&](std::size_t k) { tasks_.React([this, k] { list_.ShowResult(k, "geschrieben", false); }); },
       .fails =
           [&](const std::string& lines) { tasks_.React([this, current, lines] { TakeFailure(current, lines); }); }});
}

// A series that is not written adds its own reason to the one of the field.
void frmExport::TakeFailure(std::size_t row, const std::string& lines) {
  const ExportItem& item = list_.Items()[row];
  const std::string reason = ReasonOf(lines);
  list_.ShowResult(row, item.isProblem ? item.result + " " + reason : reason, true);
}

void frmExport::Ended(exchange::ExportEnd end) {
  isWorking_ = false;
  std::size_t problems = 0, written = 0;
  for (std::size_t k = 0; k < list_.Items().size(); ++k) {
    const ExportItem& item = list_.Items()[k];
    problems += item.isProblem ? 1 : 0;
    if (job_.IsOneFile() && end == exchange::ExportEnd::done) {
      list_.ShowResult(k, "geschrieben: " + job_.series, false);
    } else if (item.result.empty()) {
      list_.ShowResult(k, "nicht geschrieben", false);
    }
    written += item.result.starts_with("geschrieben") ? 1 : 0;
  }
  ended_ = QString("%1 von %2 Feldern geschrieben").arg(written).arg(list_.rowCount());
  if (problems > 0) ended_ += QString(", %1 mit Problemen").arg(problems);
  if (end == exchange::ExportEnd::aborted) ended_ += ", abgebrochen";
  ShowWork();
}

void frmExport::ShowWork() {
  const bool isMarked = ui_->tblFiles->selectionModel()->hasSelection();
  const bool hasSeries = !Kind().seriesExtension.empty(), isFree = !isWorking_;
  const int count = list_.rowCount();
  ui_->lblSummary->setText(count == 1 ? QStringLiteral("1 Feld") : QString("%1 Felder").arg(count));
  ui_->cmdAdd->setEnabled(isFree);
  ui_->cmdRemove->setEnabled(isFree && isMarked);
  ui_->cboKind->setEnabled(isFree);
  ui_->chkSeries->setEnabled(isFree && hasSeries);
  ui_->txtSeries->setEnabled(isFree && hasSeries && ui_->chkSeries->isChecked());
  ui_->txtTimeStep->setEnabled(isFree && hasSeries);
  ui_->lblTimeStep->setEnabled(isFree && hasSeries);
  ui_->txtDirectory->setEnabled(isFree);
  ui_->cmdDirectory->setEnabled(isFree);
  ui_->cmdExport->setEnabled(isFree && count > 0);
  ui_->cmdCancel->setText(isFree ? "S&chließen" : "Abbre&chen");
  ui_->pgbProgress->setVisible(isWorking_);
  ui_->pgbProgress->setRange(0, std::max(count, 1));
  ui_->pgbProgress->setValue(done_);
  ui_->lblState->setText(isWorking_ ? QString("Export läuft (%1 von %2)").arg(done_ + 1).arg(count) : ended_);
}

// An export that runs ends after the current file.
void frmExport::reject() {
  if (!isWorking_) return QDialog::reject();
  tasks_.Cancel();
  tasks_.Add([this]() -> BackgroundTasks::Reaction {  // it may not even have begun
    return [this] {
      if (isWorking_) Ended(exchange::ExportEnd::aborted);
    };
  });
}

void frmExport::dragEnterEvent(QDragEnterEvent* event) {
  if (event->mimeData()->hasUrls() && !isWorking_) CopyOnly(*event);
}

void frmExport::dropEvent(QDropEvent* event) {
  CopyOnly(*event);
  // Not inside the drop handler, because the source waits until it ends.
  QMetaObject::invokeMethod(
      this,
      [this, paths = LocalPaths(*event)] {
        if (!isWorking_) AddPaths(paths);
      },
      Qt::QueuedConnection);
}

}  // namespace quiverion
