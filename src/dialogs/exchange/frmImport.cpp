#include "dialogs/exchange/frmImport.h"

#include <QHeaderView>
#include <QLineEdit>
#include <QShortcut>
#include <QSignalBlocker>
#include <algorithm>

#include "dialogs/exchange/choose_paths.h"
#include "dialogs/exchange/import_work.h"
#include "dialogs/widgets/disconnect_children.h"
#include "dialogs/widgets/dropped_files.h"
#include "dialogs/widgets/guarded.h"
#include "dialogs/widgets/log_colours.h"
#include "messages/failure.h"
#include "platform/files/paths.h"
#include "platform/process/environment.h"
#include "ui_frmImport.h"

namespace quiverion {
namespace {

constexpr const char* kTitle = "QuiverionSeries  -  Dateien importieren";
// The widths of columns with long texts, in letters.
constexpr std::pair<int, int> kMostLetters[] = {
    {ImportList::name, 30},  {ImportList::result, 46}, {ImportList::format, 32}, {ImportList::grid, 24},
    {ImportList::units, 30}, {ImportList::yAxis, 24},  {ImportList::valid, 24}};
constexpr int kCompareAfter = 200;  // ms, so that many answers cost one comparison

// Unlike a box that chooses, a box that is typed in has no index for a text of its own.
void ShowUnit(QComboBox& box, const std::string& text) {
  box.setEditText(text.empty() ? box.itemText(0) : ToQt(text));
}

std::string UnitIn(const QComboBox& box) {
  const QString text = box.currentText().trimmed();
  return text == box.itemText(0) ? std::string() : FromQt(text);
}

// `choices` with everything that differs between `shown` and `chosen`.
ImportChoices Changed(ImportChoices choices, const ImportChoices& shown, const ImportChoices& chosen) {
  const auto take = [](auto& target, const auto& before, const auto& after) {
    if (before != after) target = after;
  };
  take(choices.format, shown.format, chosen.format);
  take(choices.y, shown.y, chosen.y);
  take(choices.zeros, shown.zeros, chosen.zeros);
  take(choices.column5, shown.column5, chosen.column5);
  take(choices.length, shown.length, chosen.length);
  take(choices.velocity, shown.velocity, chosen.velocity);
  return choices;
}

}  // namespace

frmImport::frmImport(const ExchangeServices& services, QWidget* parent)
    : QDialog(parent), services_(services), ui_(std::make_unique<Ui::frmImport>()) {
  ui_->setupUi(this);
  setWindowFlag(Qt::WindowMaximizeButtonHint);
  UseProblemColour();
  for (const FormatChoice& format : ChoosableFormats()) ui_->cboFormat->addItem(ToQt(format.title));
  QTableView& table = *ui_->tblFiles;
  QHeaderView& header = *table.horizontalHeader();
  table.setModel(&list_);
  const int letter = fontMetrics().averageCharWidth();
  for (const auto& [column, letters] : kMostLetters) header.resizeSection(column, letters * letter / 2);
  header.setResizeContentsPrecision(200);  // rows that are measured
  header.setStretchLastSection(true);
  table.verticalHeader()->setDefaultSectionSize(fontMetrics().height() * 3 / 2);
  compareLater_.setSingleShot(true);
  compareLater_.setInterval(kCompareAfter);
  ConnectControls();
  ConnectChoices();
  ShowChoices();
  ShowWork();
}

frmImport::~frmImport() {
  DisconnectChildren(*this);
}

void frmImport::ConnectControls() {
  connect(ui_->cmdAdd, &QPushButton::clicked, this, &frmImport::ChooseFiles);
  connect(ui_->cmdRemove, &QPushButton::clicked, this, &frmImport::RemoveFiles);
  auto* const remove = new QShortcut(QKeySequence(Qt::Key_Delete), ui_->tblFiles);
  remove->setContext(Qt::WidgetShortcut);
  connect(remove, &QShortcut::activated, ui_->cmdRemove, &QPushButton::click);
  connect(new QShortcut(QKeySequence(Qt::Key_F5), this), &QShortcut::activated, this, [this] {
    if (work_ != Work::importing) Read(ChosenRows());
  });
  connect(ui_->tblFiles->selectionModel(), &QItemSelectionModel::selectionChanged, this, [this] {
    ShowChoices();
    ShowWork();
  });
  connect(ui_->txtDirectory, &QLineEdit::textEdited, this, [this](const QString& text) {
    directory_ = PathFromQt(text);
    compareLater_.start();
  });
  connect(ui_->cmdDirectory, &QPushButton::clicked, this, [this] {
    Guarded(services_.messages, [this] {
      if (const auto chosen = ChooseDirectory(*this, "Zielverzeichnis", Directory())) SetDirectory(*chosen);
    });
  });
  connect(ui_->cmdImport, &QPushButton::clicked, this, &frmImport::Import);
  connect(ui_->cmdCancel, &QPushButton::clicked, this, [this] { work_ == Work::none ? reject() : Cancel(); });
  connect(&compareLater_, &QTimer::timeout, this, &frmImport::CompareResults);
}

void frmImport::ConnectChoices() {
  for (QComboBox* const box : {ui_->cboFormat, ui_->cboY, ui_->cboZeros, ui_->cboColumn5}) {
    connect(box, &QComboBox::activated, this, &frmImport::ApplyChoices);
  }
  for (QComboBox* const box : {ui_->cboLength, ui_->cboVelocity}) {
    connect(box, &QComboBox::activated, this, &frmImport::ApplyChoices);
    connect(box->lineEdit(), &QLineEdit::editingFinished, this, &frmImport::ApplyChoices);
    box->setCompleter(nullptr);  // it would make "m" of "M"
  }
}

void frmImport::UseProblemColour() {
  list_.SetProblemColour(QColor(OnScreen(palette())[static_cast<std::size_t>(LogColour::red)]));
}

void frmImport::changeEvent(QEvent* event) {
  QDialog::changeEvent(event);
  if (event->type() == QEvent::PaletteChange) UseProblemColour();
}

std::vector<int> frmImport::ChosenRows() const {
  std::vector<int> rows;
  for (const QModelIndex& index : ui_->tblFiles->selectionModel()->selectedRows()) rows.push_back(index.row());
  std::ranges::sort(rows);
  if (!rows.empty()) return rows;
  for (int row = 0; row < list_.rowCount(); ++row) rows.push_back(row);
  return rows;
}

// The choices for the first of the chosen files.
void frmImport::ShowChoices() {
  const std::size_t marked = static_cast<std::size_t>(ui_->tblFiles->selectionModel()->selectedRows().size());
  const std::vector<int> rows = ChosenRows();
  const QString count = QString::number(marked);
  ui_->fraOptions->setTitle(marked == 0   ? QStringLiteral("Angaben für alle Dateien")
                            : marked == 1 ? QStringLiteral("Angaben für die markierte Datei")
                                          : "Angaben für die " + count + " markierten Dateien");
  shown_ = rows.empty() ? ImportChoices() : ChoicesOf(list_.ItemAt(rows.front()).options);
  ui_->cboFormat->setCurrentIndex(shown_.format);
  ui_->cboY->setCurrentIndex(shown_.y);
  ui_->cboZeros->setCurrentIndex(shown_.zeros);
  ui_->cboColumn5->setCurrentIndex(shown_.column5);
  ShowUnit(*ui_->cboLength, shown_.length);
  ShowUnit(*ui_->cboVelocity, shown_.velocity);
}

// Only what has been changed, so that files keep what they do not have in common.
void frmImport::ApplyChoices() {
  if (work_ == Work::importing) return;
  const ImportChoices chosen = {.format = ui_->cboFormat->currentIndex(),
                                .y = ui_->cboY->currentIndex(),
                                .zeros = ui_->cboZeros->currentIndex(),
                                .column5 = ui_->cboColumn5->currentIndex(),
                                .length = UnitIn(*ui_->cboLength),
                                .velocity = UnitIn(*ui_->cboVelocity)};
  std::vector<int> changed;
  for (const int row : ChosenRows()) {
    const ImportChoices before = ChoicesOf(list_.ItemAt(row).options);
    const ImportChoices after = Changed(before, shown_, chosen);
    if (after == before) continue;
    list_.Expect(row, 0, OptionsOf(after));
    changed.push_back(row);
  }
  shown_ = chosen;
  Read(changed);
}

void frmImport::ChooseFiles() {
  Guarded(services_.messages, [this] {
    const std::string directory = list_.Items().empty() ? begin_ : std::string(DirectoryOf(list_.Items().back().path));
    AddPaths(
        ChooseExistingFiles(*this, "Dateien anderer Programme", directory,
                            {"Alle Dateien (*)", "Text (*.txt *.csv *.dat *.vec *.tec *.plt *.jvc)",
                             "DaVis (*.vc7 *.txt *.dat)", "netCDF (*.nc)", "MATLAB (*.mat)", "VTK (*.vti *.pvd)"}));
  });
}

void frmImport::AddPaths(const std::vector<std::string>& paths) {
  std::vector<std::string> files;
  for (const std::string& path : paths) {
    if (!services_.files.IsDirectory(path)) {
      files.push_back(path);
      continue;
    }
    std::vector<std::string> names;
    Attempt([&] { names = services_.files.ListFiles(path); });
    for (const std::string& name : names) {
      if (!name.starts_with('.')) files.push_back(WithSeparator(path) + name);
    }
  }
  // Choices that all files have in common are those of the new ones, too.
  const exchange::ImportOptions options = CommonOptions();
  const std::vector<int> rows = list_.Add(files);
  if (rows.empty()) return;
  for (const int row : rows) list_.Expect(row, 0, options);
  if (ui_->txtDirectory->text().isEmpty()) {
    SetDirectory(DirectoryPrefixOf(list_.ItemAt(rows.front()).path) + "VAS");
  }
  Read(rows);
}

exchange::ImportOptions frmImport::CommonOptions() const {
  if (list_.Items().empty()) return {};
  const ImportChoices first = ChoicesOf(list_.Items().front().options);
  const bool isCommon =
      std::ranges::all_of(list_.Items(), [&first](const ImportItem& item) { return ChoicesOf(item.options) == first; });
  return isCommon ? OptionsOf(first) : exchange::ImportOptions();
}

void frmImport::SetDirectory(const std::string& directory) {
  directory_ = directory;
  ui_->txtDirectory->setText(PathToQt(directory));
  CompareResults();
}

std::string frmImport::Directory() const {
  return directory_.empty() ? std::string() : AbsolutePath(directory_);
}

void frmImport::RemoveFiles() {
  std::vector<int> rows;
  for (const QModelIndex& index : ui_->tblFiles->selectionModel()->selectedRows()) rows.push_back(index.row());
  if (rows.empty() || work_ == Work::importing) return;
  const int first = *std::ranges::min_element(rows);
  list_.Remove(rows);
  if (list_.rowCount() > 0) {
    const QModelIndex next = list_.index(std::min(first, list_.rowCount() - 1), 0);
    ui_->tblFiles->selectionModel()->setCurrentIndex(next, QItemSelectionModel::NoUpdate);
  }
  compareLater_.start();
  ShowChoices();
  ShowWork();
}

void frmImport::Read(const std::vector<int>& rows) {
  if (rows.empty()) return;
  if (work_ == Work::none) done_ = total_ = 0;
  work_ = Work::reading;
  total_ += static_cast<int>(rows.size());
  for (const int row : rows) {
    const std::uint64_t request = nextRequest_++;
    list_.Expect(row, request, list_.ItemAt(row).options);
    tasks_.Add([this, request, path = list_.ItemAt(row).path, options = list_.ItemAt(row).options] {
      return [this, request, finding = InspectFile(services_.files, path, options)] { TakeFinding(request, finding); };
    });
  }
  ShowWork();
}

void frmImport::TakeFinding(std::uint64_t request, ImportFinding finding) {
  const int row = list_.RowOf(request);
  if (row >= 0) list_.ShowFinding(row, std::move(finding));
  if (!compareLater_.isActive()) compareLater_.start();
  CountDone();
}

void frmImport::CompareResults() {
  std::set<std::string> existing;
  Attempt([&] {
    for (const std::string& name : services_.files.ListFiles(Directory())) existing.insert(FileNameKey(name));
  });
  list_.CompareResults(existing);
  ShowWork();
}

bool frmImport::MayReplace(const std::vector<int>& rows) {
  CompareResults();
  std::size_t count = 0;
  std::string names;
  constexpr std::size_t kNamed = 10;
  for (const int row : rows) {
    const ImportItem& item = list_.ItemAt(row);
    if (item.existingFiles == 0) continue;
    if (count < kNamed) names += "\r\n    " + std::string(FileNameOf(item.path));
    count += item.existingFiles;
  }
  if (count == 0) return true;
  const std::string text =
      (count == 1 ? std::string("Eine vorhandene Datei des Zielverzeichnisses wird ersetzt. Die Quelle ist:")
                  : std::to_string(count) + " vorhandene Dateien des Zielverzeichnisses werden ersetzt. Quellen sind:");
  return services_.messages.Ask(
             {.title = kTitle,
              .text = text + names + (count > kNamed ? "\r\n    ..." : "") + "\r\n\r\nSoll importiert werden?",
              .buttons = MessageButtons::yesNo,
              .icon = MessageIcon::question}) == MessageAnswer::yes;
}

void frmImport::Import() {
  Guarded(services_.messages, [this] {
    if (work_ != Work::none) return;
    const std::vector<int> rows = list_.ReadyRows();
    const std::string directory = Directory();
    if (rows.empty() || directory.empty() || !MayReplace(rows)) return;
    if (directory != importedDirectory_) importedNames_.clear();
    importedDirectory_ = directory;
    work_ = Work::importing;
    done_ = 0;
    total_ = static_cast<int>(rows.size());
    for (const int row : rows) {
      const ImportItem& item = list_.ItemAt(row);
      tasks_.Add([this, request = item.request, path = item.path, options = item.options, directory] {
        const ImportResult result = ImportOneFile(services_, path, options, directory);
        if (result.isDiskFull) tasks_.React([this] { Cancel(); });
        return [this, request, result] { TakeResult(request, result.problem, result.written); };
      });
    }
    ShowWork();
  });
}

void frmImport::TakeResult(std::uint64_t request, const std::string& problem, const std::vector<std::string>& written) {
  list_.ShowResult(list_.RowOf(request), problem);
  importedNames_.insert(importedNames_.end(), written.begin(), written.end());
  CountDone();
}

// The file that is being read or written is finished; its answer still comes.
void frmImport::Cancel() {
  tasks_.Cancel();
  tasks_.Add([this]() -> BackgroundTasks::Reaction {
    return [this] {
      work_ = Work::none;
      list_.Settle();
      CompareResults();
    };
  });
}

void frmImport::CountDone() {
  if (++done_ >= total_ && work_ != Work::none) {
    work_ = Work::none;
    CompareResults();
    FitColumns();
  }
  ShowProgress();
}

// As wide as their texts, as long as nobody has changed them.
void frmImport::FitColumns() {
  if (std::exchange(isFitted_, true)) return;
  ui_->tblFiles->resizeColumnsToContents();
  QHeaderView& header = *ui_->tblFiles->horizontalHeader();
  const int letter = fontMetrics().averageCharWidth();
  for (const auto& [column, letters] : kMostLetters) {
    header.resizeSection(column, std::min(header.sectionSize(column), letters * letter));
  }
}

void frmImport::ShowProgress() {
  const bool isFree = work_ == Work::none;
  ui_->pgbProgress->setVisible(!isFree);
  ui_->pgbProgress->setRange(0, std::max(total_, 1));
  ui_->pgbProgress->setValue(done_);
  const QString place = QString(" (%1 von %2)").arg(std::min(done_ + 1, total_)).arg(total_);
  const char* const what = work_ == Work::importing ? "Import läuft" : "Dateien werden gelesen";
  ui_->lblState->setText(isFree ? QString() : what + place);
}

void frmImport::ShowWork() {
  const bool isImporting = work_ == Work::importing, isFree = work_ == Work::none;
  const std::vector<int> ready = list_.ReadyRows();
  const bool isMarked = ui_->tblFiles->selectionModel()->hasSelection();
  const auto ofRows = [this](auto states) { return std::ranges::count_if(list_.Items(), states); };
  const auto problems = ofRows([](const ImportItem& item) {
    return item.state == ImportState::refused || item.state == ImportState::failed || !item.conflict.empty();
  });
  const auto imported = ofRows([](const ImportItem& item) { return item.state == ImportState::imported; });
  QString summary = QString("%1 Dateien").arg(list_.rowCount());
  if (list_.rowCount() == 1) summary = "1 Datei";
  if (imported > 0) summary += QString(", %1 importiert").arg(imported);
  if (problems > 0) summary += QString(", %1 mit Problemen").arg(problems);
  ui_->lblSummary->setText(summary);
  ui_->cmdAdd->setEnabled(!isImporting);
  ui_->cmdRemove->setEnabled(!isImporting && isMarked);
  ui_->fraOptions->setEnabled(!isImporting && list_.rowCount() > 0);
  ui_->txtDirectory->setEnabled(!isImporting);
  ui_->cmdDirectory->setEnabled(!isImporting);
  ui_->cmdImport->setEnabled(isFree && !ready.empty() && !directory_.empty());
  ui_->cmdCancel->setText(isFree ? "S&chließen" : "Abbre&chen");
  ShowProgress();
}

// While files are written, closing only ends that, so that nobody misses what has become of them.
void frmImport::reject() {
  if (work_ == Work::importing) return Cancel();
  tasks_.Cancel();
  QDialog::reject();
}

void frmImport::dragEnterEvent(QDragEnterEvent* event) {
  if (event->mimeData()->hasUrls() && work_ != Work::importing) CopyOnly(*event);
}

void frmImport::dropEvent(QDropEvent* event) {
  CopyOnly(*event);
  // Not inside the drop handler, because the source waits until it ends.
  QMetaObject::invokeMethod(
      this,
      [this, paths = LocalPaths(*event)] {
        if (work_ != Work::importing) AddPaths(paths);
      },
      Qt::QueuedConnection);
}

}  // namespace quiverion
