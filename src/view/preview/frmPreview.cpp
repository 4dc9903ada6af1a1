#include "view/preview/frmPreview.h"

#include <QActionGroup>
#include <QEvent>
#include <QHeaderView>
#include <algorithm>

#include "dialogs/widgets/disconnect_children.h"
#include "dialogs/widgets/icons.h"
#include "dialogs/widgets/qt_text.h"
#include "macro/command_catalogue.h"
#include "messages/failure.h"
#include "picture/frame.h"
#include "preview/buffer_use.h"
#include "ui_frmPreview.h"

namespace quiverion {
namespace {

constexpr int kTen = 10;  // files for one page key

std::vector<std::string> TitlesOf(const MacroEventList& macro) {
  std::vector<std::string> titles = {"Laden der Orginaldatei"};
  for (const MacroEvent& event : macro) {
    titles.emplace_back(MacroEventDescription(0, true));
    Attempt([&] { titles.back() = MacroEventDescription(event.EventId(), true); });
  }
  return titles;
}

}  // namespace

frmPreview::frmPreview(PreviewServices services, QWidget* parent)
    : QMainWindow(parent),
      services_(std::move(services)),
      names_(std::make_shared<const std::vector<std::string>>()),
      ui_(std::make_unique<Ui::frmPreview>()),
      worker_(services_.files, services_.clock, services_.decimalSeparator) {
  UseIcons();
  ui_->setupUi(this);
  ui_->tblSteps->setModel(&table_);
  ui_->tblSteps->verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 6);
  ui_->tblSteps->horizontalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
  ui_->tblSteps->horizontalHeader()->setSectionResizeMode(StepTable::title, QHeaderView::Interactive);
  ui_->tblSteps->setColumnWidth(StepTable::title, 24 * fontMetrics().averageCharWidth());
  ui_->splitter->setSizes({540, 640});
  ui_->splitterSteps->setSizes({420, 220});
  ui_->splitterPicture->setSizes({460, 220});
  ui_->pageSearch->hide();
  AddQuantities();
  ConnectChoices();
  ConnectKeys();
  connect(&worker_, &PreviewWorker::Answered, this,
          [this](const std::shared_ptr<PreviewAnswer>& answer) { TakeAnswer(*answer); });
  ui_->Comparison->MainView().setFocus();
}

frmPreview::~frmPreview() {
  DisconnectChildren(*this);
}

void frmPreview::AddQuantities() {
  ui_->cboBackground->addItem("Wie in der Datei");
  for (const QuantityTexts& texts : AllQuantities()) ui_->cboBackground->addItem(ToQt(texts.name));
  connect(ui_->cboBackground, &QComboBox::activated, this, [this](int index) {
    wishes_.quantity.reset();
    if (index > 0) wishes_.quantity = AllQuantities()[static_cast<std::size_t>(index - 1)].quantity;
    Ask();
  });
}

// In the order of ComparisonMode.
QAction* frmPreview::ModeAction(ComparisonMode mode) const {
  QAction* const actions[] = {ui_->mnuAfter, ui_->mnuBefore,     ui_->mnuBlink,
                              ui_->mnuWipe,  ui_->mnuSideBySide, ui_->mnuDifference};
  return actions[static_cast<std::size_t>(mode)];
}

void frmPreview::ConnectChoices() {
  modes_ = new QActionGroup(this);
  for (int k = 0; k <= static_cast<int>(ComparisonMode::difference); ++k) {
    const auto mode = static_cast<ComparisonMode>(k);
    QAction* const action = ModeAction(mode);
    modes_->addAction(action);
    ui_->cboMode->addItem(action->text().remove(u'&'));
    connect(action, &QAction::triggered, this, [this, mode] { ChooseMode(mode); });
  }
  ui_->mnuAfter->setChecked(true);
  connect(ui_->cboMode, &QComboBox::activated, this,
          [this](int index) { ChooseMode(static_cast<ComparisonMode>(index)); });
  ui_->cboComparedWith->addItems({"dem Schritt davor", "der geladenen Datei"});
  connect(ui_->cboComparedWith, &QComboBox::activated, this, [this] { Ask(); });
  connect(ui_->cmdFit, &QPushButton::clicked, this, [this] { ui_->Comparison->Fit(); });
  connect(ui_->tblSteps->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
          [this](const QModelIndex& current) {
            if (current.isValid() && !isShowing_) GoToStep(current.row());
          });
  connect(ui_->sldStep, &QSlider::valueChanged, this, &frmPreview::GoToStep);
  connect(ui_->sldSeries, &QSlider::valueChanged, this, &frmPreview::GoToFile);
  connect(ui_->Sample, &SampleStrip::Chosen, this, &frmPreview::GoToFile);
  connect(ui_->spnSample, &QSpinBox::valueChanged, this, [this] { Ask(); });
  connect(ui_->chkSample, &QCheckBox::toggled, this, &frmPreview::ShowSearch);
  connect(ui_->Histogram, &HistogramView::LimitMoved, this, [this](const QString& key, const QString& text) {
    if (!isStopped_ && step_ > 0) emit LimitMoved(step_ - 1, key, text);
  });
  connect(ui_->Histogram, &HistogramView::LimitReleased, this, &frmPreview::LimitReleased);
  connect(ui_->Comparison, &ComparisonView::PointHovered, this, [this](std::optional<GridPoint> point) {
    if (point) return ui_->statusbar->showMessage(ui_->Comparison->Readout(*point));
    ui_->statusbar->clearMessage();
  });
  connect(ui_->Comparison, &ComparisonView::LegendClicked, this, [this](StatusKind kind) {
    bool& hidden = wishes_.hidden[static_cast<std::size_t>(kind)];
    hidden = !hidden;
    Ask();
  });
}

// A key that acts in the picture only: elsewhere it moves a cursor.
void frmPreview::AddKey(QAction* action) {
  action->setShortcutContext(Qt::WidgetShortcut);
  ui_->Comparison->MainView().addAction(action);
}

void frmPreview::ConnectKeys() {
  const auto onFile = [this](QAction* action, int by) {
    AddKey(action);
    connect(action, &QAction::triggered, this, [this, by] { GoToFile(file_ + by); });
  };
  onFile(ui_->mnuNext, 1);
  onFile(ui_->mnuPrevious, -1);
  onFile(ui_->mnuTenOn, kTen);
  onFile(ui_->mnuTenBack, -kTen);
  const auto onStep = [this](QAction* action, std::function<int()> target) {
    AddKey(action);
    connect(action, &QAction::triggered, this, [this, target] { GoToStep(target()); });
  };
  onStep(ui_->mnuNextStep, [this] { return step_ + 1; });
  onStep(ui_->mnuPreviousStep, [this] { return step_ - 1; });
  onStep(ui_->mnuLastStep, [this] { return static_cast<int>(ShownMacro().size()); });
  AddKey(ui_->mnuFit);
  connect(ui_->mnuFit, &QAction::triggered, ui_->cmdFit, &QPushButton::click);
  connect(ui_->mnuToggle, &QAction::triggered, this, [this] {
    const bool isAfter = ui_->Comparison->Mode() == ComparisonMode::after;
    ChooseMode(isAfter ? ComparisonMode::before : ComparisonMode::after);
  });
  connect(ui_->mnuReload, &QAction::triggered, this, &frmPreview::Reload);
  connect(ui_->mnuClose, &QAction::triggered, this, &QWidget::close);
  connect(ui_->mnuShowHelp, &QAction::triggered, this, [this] { services_.showHelp(); });
}

void frmPreview::ChooseMode(ComparisonMode mode) {
  ModeAction(mode)->setChecked(true);
  ui_->cboMode->setCurrentIndex(static_cast<int>(mode));
  ui_->Comparison->SetMode(mode);
  if (mode == ComparisonMode::difference) Ask();
}

void frmPreview::ShowMacro(const MacroEventList& macro, int command) {
  macro_ = macro;
  if (command >= 0) {
    step_ = command + 1;
    followsEnd_ = false;
  }
  Ask();
}

void frmPreview::ShowDraft(const std::optional<DraftCommand>& draft) {
  draft_ = draft;
  if (draft_) {
    draftMacro_ = macro_;
    const std::size_t position = std::min(draft_->position, draftMacro_.size());
    if (draft_->replaces && position < draftMacro_.size()) {
      draftMacro_[position] = draft_->event;
    } else {
      draftMacro_.insert(draftMacro_.begin() + static_cast<std::ptrdiff_t>(position), draft_->event);
    }
    step_ = static_cast<int>(position) + 1;
    followsEnd_ = false;
  }
  Ask();
}

void frmPreview::ShowFiles(const std::string& directory, std::vector<std::string> names) {
  const std::string shown = names_->empty() ? std::string() : (*names_)[static_cast<std::size_t>(file_)];
  const bool sameDirectory = directory == directory_;
  directory_ = directory;
  names_ = std::make_shared<const std::vector<std::string>>(std::move(names));
  const auto same = std::ranges::find(*names_, shown);
  file_ = sameDirectory && same != names_->end() ? static_cast<int>(same - names_->begin()) : 0;
  Ask();
}

void frmPreview::Reload() {
  isStopped_ = false;
  buffer_.reset();
  ui_->centralwidget->setEnabled(true);
  Ask();
}

void frmPreview::Stop() {
  isStopped_ = true;
  ui_->centralwidget->setEnabled(false);
  worker_.Stop();
}

void frmPreview::GoToFile(int index) {
  index = std::clamp(index, 0, std::max(static_cast<int>(names_->size()) - 1, 0));
  if (index == file_) return;
  file_ = index;
  Ask();
}

void frmPreview::GoToStep(int step) {
  step = std::clamp(step, 0, static_cast<int>(ShownMacro().size()));
  followsEnd_ = step == static_cast<int>(ShownMacro().size());
  if (step == step_) return;
  step_ = step;
  Ask();
}

std::shared_ptr<const BufferField> frmPreview::BufferBeforeRun() {
  const BufferField& now = services_.buffer();
  if (!UsesBufferBeforeRun(ShownMacro(), now.bufferFileName)) return nullptr;
  if (buffer_ == nullptr) buffer_ = std::make_shared<const BufferField>(now);
  return buffer_;
}

void frmPreview::Ask() {
  const int last = static_cast<int>(ShownMacro().size());
  step_ = followsEnd_ ? last : std::clamp(step_, 0, last);
  ShowPlaces();
  if (isStopped_ || !isVisible()) return;
  if (names_->empty()) {
    worker_.Cancel();
    ui_->Comparison->ShowMessage("Im Verzeichnis ist kein Vektorfeld.");
    return;
  }
  if (!ui_->Comparison->MainView().HasField()) ui_->Comparison->ShowMessage("Die Vorschau wird berechnet...");
  asked_ = worker_.Ask({.directory = directory_,
                        .names = names_,
                        .file = static_cast<std::size_t>(file_),
                        .buffer = BufferBeforeRun(),
                        .macro = ShownMacro(),
                        .step = static_cast<std::size_t>(step_),
                        .comparedWith = static_cast<ComparedWith>(ui_->cboComparedWith->currentIndex()),
                        .wantsDifference = ui_->Comparison->Mode() == ComparisonMode::difference,
                        .wishes = wishes_,
                        .sampleSize = static_cast<std::size_t>(ui_->spnSample->value())});
}

void frmPreview::TakeAnswer(const PreviewAnswer& answer) {
  if (isStopped_ || !isVisible()) return;
  if (answer.steps) {
    steps_ = answer.steps;
    ShowSteps();
  }
  if (answer.fields) {
    const bool isLoaded = answer.fields->after->field->columnCount > 0;
    if (isLoaded) {
      ui_->Comparison->Show(answer.fields, wishes_);
    } else {
      ui_->Comparison->ShowMessage(steps_ && !steps_->empty() ? LinesToQt(steps_->front().log) : QString());
    }
  }
  if (answer.search) search_ = answer.search;
  if (answer.sample) {
    sample_ = *answer.sample;
    ShowSample();
  }
  // Over the sample, an answer for the file alone would show the limits as they were.
  if (answer.sample || (answer.search && !ui_->chkSample->isChecked())) ShowSearch();
  if (!answer.error.empty()) ui_->Comparison->ShowMessage(ToQt(answer.error));
}

void frmPreview::ShowSteps() {
  table_.Show(TitlesOf(ShownMacro()), steps_);
  ShowStep();
}

void frmPreview::ShowStep() {
  isShowing_ = true;
  ui_->tblSteps->selectRow(step_);
  isShowing_ = false;
  ui_->tblSteps->scrollTo(table_.index(step_, 0));
  const StepReport* const report = table_.Report(step_);
  ui_->txtStep->setHtml(report == nullptr ? QString() : StepDetails(*report));
}

bool frmPreview::CurrentIsSearch() const {
  return step_ > 0 && step_ <= static_cast<int>(ShownMacro().size()) &&
         IsSearch(ShownMacro()[static_cast<std::size_t>(step_ - 1)]);
}

void frmPreview::ShowSearch() {
  const bool isSearch = CurrentIsSearch();
  ui_->pageSearch->setVisible(isSearch);
  if (!isSearch) return;
  SearchReport report = search_.value_or(SearchReport());
  if (ui_->chkSample->isChecked()) {
    report = {};
    for (const SampledFile& file : sample_) AddReport(report, file.search);
  }
  ui_->lblTogether->setText(TogetherText(report));
  ui_->Histogram->Show(report);
}

void frmPreview::ShowSample() {
  const std::size_t count = std::min<std::size_t>(names_->size(), static_cast<std::size_t>(ui_->spnSample->value()));
  ui_->Sample->Show(sample_, count, *names_, static_cast<std::size_t>(file_));
}

// Where we are: file, step, title.
void frmPreview::ShowPlaces() {
  const int last = static_cast<int>(ShownMacro().size());
  const QSignalBlocker noStep(ui_->sldStep), noFile(ui_->sldSeries);
  ui_->sldStep->setRange(0, last);
  ui_->sldStep->setValue(step_);
  ui_->lblStepName->setText(QString("%1 von %2").arg(step_).arg(last));
  const int count = static_cast<int>(names_->size());
  ui_->sldSeries->setRange(0, std::max(count - 1, 0));
  ui_->sldSeries->setValue(file_);
  ui_->sldSeries->setEnabled(count > 1);
  const QString name =
      count > 0 ? ToQt(DrawnText((*names_)[static_cast<std::size_t>(file_)], 60)) : QStringLiteral("keine Datei");
  ui_->lblFile->setText(count > 0 ? QString("%1 von %2   %3").arg(file_ + 1).arg(count).arg(name) : QString());
  setWindowTitle("Vorschau - " + name);
  if (table_.rowCount() != last + 1) table_.Show(TitlesOf(ShownMacro()), steps_);
  ShowStep();
  if (!CurrentIsSearch()) ui_->pageSearch->hide();
  ShowSample();
}

void frmPreview::showEvent(QShowEvent* event) {
  QMainWindow::showEvent(event);
  Ask();
}

void frmPreview::hideEvent(QHideEvent* event) {
  worker_.Cancel();
  QMainWindow::hideEvent(event);
}

// Files may have changed while another program was active.
void frmPreview::changeEvent(QEvent* event) {
  QMainWindow::changeEvent(event);
  if (event->type() == QEvent::ActivationChange && isActiveWindow()) Ask();
}

}  // namespace quiverion
