#include "view/frmView.h"

#include <QActionGroup>
#include <QApplication>
#include <QClipboard>
#include <QCloseEvent>
#include <QShortcut>
#include <algorithm>

#include "dialogs/widgets/disconnect_children.h"
#include "dialogs/widgets/dropped_files.h"
#include "dialogs/widgets/elided_label.h"
#include "dialogs/widgets/guarded.h"
#include "dialogs/widgets/icons.h"
#include "dialogs/widgets/qt_text.h"
#include "picture/frame.h"
#include "platform/files/paths.h"
#include "ui_frmView.h"
#include "view/asked_numbers.h"
#include "view/picture_output.h"

namespace quiverion {
namespace {

constexpr double kLonger = 1.25;  // factor of the length of arrows for one key
constexpr int kTen = 10;          // fields for one page key

QAction* CheckIn(QActionGroup* group, QAction* action, bool checked) {
  group->addAction(action);
  action->setChecked(checked);
  return action;
}

}  // namespace

frmView::frmView(const ViewServices& services, QWidget* parent)
    : QMainWindow(parent),
      services_(services),
      context_(services.files, messages_, log_, services.clock),
      shown_(context_.field),
      sampler_(services.files, services.clock, [this] { ShowPicture(); }),
      ui_(std::make_unique<Ui::frmView>()) {
  log_.Attach(logText_);
  UseIcons();
  ui_->setupUi(this);
  setWindowIcon(QIcon(":/icons/viewer.ico"));
  setProperty("helpTopic", "frmView");
  takenFor_ = new ElidedLabel(this);
  takenFor_->setTextFormat(Qt::PlainText);
  ui_->statusbar->addWidget(takenFor_, 1);
  AddQuantities();
  ConnectFileMenu();
  ConnectViewMenu();
  ConnectSeries();
  ConnectPicture();
  ShowIn(*ui_->tblVectors, table_);
  ui_->tabPages->hide();
  ui_->splitter->setStretchFactor(0, 3);
  ui_->splitter->setStretchFactor(1, 2);
  ui_->splitter->setSizes({600, 400});
  ui_->lblPoints->hide();
  ui_->FieldView->ShowMessage("Vektorfelder hierher ziehen oder mit Strg+O öffnen");
  ShowSeriesPlace();
  ui_->FieldView->setFocus();
}

frmView::~frmView() {
  DisconnectChildren(*this);
}

void frmView::Guarded(const std::function<void()>& action) {
  quiverion::Guarded(messages_, action);
}

// A key of a menu item that acts in the picture only: elsewhere it moves a cursor.
void frmView::AddKey(QAction* action) {
  action->setShortcutContext(Qt::WidgetShortcut);
  ui_->FieldView->addAction(action);
}

void frmView::AddQuantities() {
  quantities_ = new QActionGroup(this);
  const auto add = [this](const QString& text, int key, std::optional<Quantity> quantity) {
    QAction* const action = ui_->mnuBackground->addAction(text);
    action->setCheckable(true);
    action->setShortcut(QKeySequence(Qt::Key_0 + key));
    AddKey(action);
    CheckIn(quantities_, action, !quantity);
    connect(action, &QAction::triggered, this, [this, quantity] { SetQuantity(quantity); });
    ui_->cboBackground->addItem(text);
  };
  add("Wie in der Datei", 0, std::nullopt);
  int key = 1;
  for (const QuantityTexts& texts : AllQuantities()) add(ToQt(texts.name), key++, texts.quantity);
  connect(ui_->cboBackground, &QComboBox::activated, this, [this](int index) {
    quantities_->actions().at(index)->trigger();
    ui_->FieldView->setFocus();  // the next key is meant for the picture
  });
}

void frmView::ConnectFileMenu() {
  connect(ui_->mnuOpen, &QAction::triggered, this, &frmView::ChooseFiles);
  connect(ui_->mnuReload, &QAction::triggered, this, &frmView::Reload);
  const auto onPicture = [this](QAction* item, std::function<void(const Picture&)> action) {
    connect(item, &QAction::triggered, this, [this, action = std::move(action)] { WithPicture(action); });
  };
  onPicture(ui_->mnuSavePicture, [this](const Picture& picture) {
    SavePictureAs({*this, services_.files, messages_, dialogs_}, picture, CurrentPath());
  });
  onPicture(ui_->mnuCopyPicture, CopyPicture);
  onPicture(ui_->mnuPrint, [this](const Picture& picture) { PrintPicture(*this, messages_, picture); });
  connect(ui_->mnuClose, &QAction::triggered, this, &QWidget::close);
  connect(ui_->mnuShowHelp, &QAction::triggered, this, [this] { Guarded(services_.showHelp); });
  connect(ui_->mnuAbout, &QAction::triggered, this, [this] {
    messages_.Ask({.title = "Über das Programm", .text = "QuiverionView V1.0", .icon = MessageIcon::information});
  });
}

void frmView::ConnectViewMenu() {
  const auto choose = [this](QActionGroup* group, QAction* action, bool checked, std::function<void()> wish) {
    CheckIn(group, action, checked);
    connect(action, &QAction::triggered, this, [this, wish = std::move(wish)] {
      wish();
      ShowPicture();
    });
  };
  auto* const modes = new QActionGroup(this);
  choose(modes, ui_->mnuProportional, true, [this] { wishes_.mode = ArrowMode::proportional; });
  choose(modes, ui_->mnuEqualLength, false, [this] { wishes_.mode = ArrowMode::equalLength; });
  choose(modes, ui_->mnuSquareRoot, false, [this] { wishes_.mode = ArrowMode::squareRoot; });
  auto* const anchors = new QActionGroup(this);
  choose(anchors, ui_->mnuMiddle, true, [this] { wishes_.anchor = ArrowAnchor::middle; });
  choose(anchors, ui_->mnuTail, false, [this] { wishes_.anchor = ArrowAnchor::tail; });
  auto* const subtract = new QActionGroup(this);
  choose(subtract, ui_->mnuSubtractNothing, true, [this] { wishes_.subtracted = Subtracted::nothing; });
  choose(subtract, ui_->mnuSubtractMean, false, [this] { wishes_.subtracted = Subtracted::mean; });
  choose(subtract, ui_->mnuSubtractVector, false, [this] { AskVector(); });
  const auto toggle = [this](QAction* action, std::function<void(bool)> wish) {
    connect(action, &QAction::triggered, this, [this, wish = std::move(wish)](bool checked) {
      wish(checked);
      ShowPicture();
    });
  };
  toggle(ui_->mnuHold, [this](bool checked) { wishes_.holdScale = checked; });
  toggle(ui_->mnuCoordSystem, [this](bool checked) { wishes_.coordinateSystem = checked; });
  toggle(ui_->mnuAspectRatio, [this](bool checked) { wishes_.equalScales = checked; });
  toggle(ui_->mnuHeader, [this](bool checked) { wishes_.header = checked; });
  toggle(ui_->mnuVectorField, [this](bool checked) { wishes_.arrows = checked; });
  toggle(ui_->mnuLonger, [this](bool) { wishes_.factor = std::min(wishes_.factor * kLonger, 1000.0); });
  toggle(ui_->mnuShorter, [this](bool) { wishes_.factor = std::max(wishes_.factor / kLonger, 0.001); });
  ui_->mnuHold->setChecked(true);
  ui_->mnuAspectRatio->setChecked(true);
  ui_->chkHold->setChecked(true);
  connect(ui_->chkHold, &QCheckBox::clicked, ui_->mnuHold, &QAction::trigger);
  connect(ui_->mnuHold, &QAction::toggled, ui_->chkHold, &QCheckBox::setChecked);
  connect(ui_->mnuLimits, &QAction::triggered, this, &frmView::AskLimits);
  connect(ui_->mnuTable, &QAction::triggered, this, [this](bool shown) { wishesTable_ = shown; });
  connect(ui_->mnuTable, &QAction::toggled, this, [this](bool shown) {
    ui_->tabPages->setVisible(shown);
    ShowTable();
  });
  connect(ui_->mnuFit, &QAction::triggered, ui_->FieldView, &FieldView::Fit);
  connect(ui_->cmdFit, &QPushButton::clicked, ui_->FieldView, &FieldView::Fit);
  for (QAction* const action : {ui_->mnuLonger, ui_->mnuShorter, ui_->mnuFit}) AddKey(action);
}

void frmView::ConnectSeries() {
  const auto move = [this](QAction* action, int by) {
    AddKey(action);
    connect(action, &QAction::triggered, this, [this, by] { GoTo(series_.Current() + by); });
  };
  move(ui_->mnuNext, 1);
  move(ui_->mnuPrevious, -1);
  move(ui_->mnuTenOn, kTen);
  move(ui_->mnuTenBack, -kTen);
  AddKey(ui_->mnuPlay);
  connect(ui_->sldSeries, &QSlider::valueChanged, this, &frmView::GoTo);
  connect(ui_->mnuPlay, &QAction::toggled, this, &frmView::SetPlaying);
  connect(ui_->cmdPlay, &QPushButton::toggled, ui_->mnuPlay, &QAction::setChecked);
  connect(ui_->spnRate, &QSpinBox::valueChanged, this, [this](int rate) { player_.setInterval(1000 / rate); });
  player_.setInterval(1000 / ui_->spnRate->value());
  connect(&player_, &QTimer::timeout, this,
          [this] { GoTo(series_.Current() + 1 < series_.Count() ? series_.Current() + 1 : 0); });
}

void frmView::ConnectPicture() {
  connect(ui_->FieldView, &FieldView::PointHovered, this, &frmView::HoverPoint);
  connect(ui_->FieldView, &FieldView::PointClicked, this, &frmView::ClickPoint);
  connect(ui_->FieldView, &FieldView::LegendClicked, this, [this](StatusKind kind) {
    bool& hidden = wishes_.hidden[static_cast<std::size_t>(kind)];
    hidden = !hidden;
    ShowPicture();
  });
  connect(ui_->FieldView, &FieldView::LineDrawn, this, [this](Point from, Point to) {
    profile_ = ProfileAlong(shown_.Field(), shown_.Summary(), from, to);
    wishesTable_ = true;
    ui_->mnuTable->setChecked(true);
    ui_->tabPages->setCurrentWidget(ui_->pageProfile);
    ShowProfile();
  });
  connect(ui_->cmdCopyRows, &QPushButton::clicked, this, &frmView::CopyRows);
  auto* const copy = new QShortcut(QKeySequence::Copy, ui_->tblVectors);
  copy->setContext(Qt::WidgetShortcut);
  connect(copy, &QShortcut::activated, this, &frmView::CopyRows);
  connect(ui_->cmdCopyProfile, &QPushButton::clicked, this, [this] {
    if (isLoaded_) QGuiApplication::clipboard()->setText(ToQt(ProfileText(shown_.Field(), profile_)));
  });
  auto* const escape = new QShortcut(QKeySequence(Qt::Key_Escape), ui_->FieldView);
  escape->setContext(Qt::WidgetShortcut);
  connect(escape, &QShortcut::activated, this, [this] {
    points_.clear();
    ShowPoints();
  });
}

void frmView::OpenPaths(const std::vector<std::string>& paths) {
  if (paths.empty()) return;
  series_.Open(services_.files, paths);
  points_.clear();
  if (series_.IsEmpty()) {
    isLoaded_ = false;
    ui_->FieldView->ShowMessage("Im Verzeichnis '" + PathToQt(paths.front()) +
                                "' ist kein Vektorfeld (*.vas, *.vec, *.dat).");
    return ShowField();
  }
  LoadCurrent();
  BeginScale();
  ShowPicture();
}

void frmView::ChooseFiles() {
  Guarded([this] {
    const auto path = dialogs_.ChooseFile({.title = "Vektorfeld öffnen",
                                           .filters = {"Vektorfelder (*.vas;*.vec;*.dat)",
                                                       "Andere Programme (*.txt;*.csv;*.tec;*.nc;*.mat;*.vti;*.pvd;"
                                                       "*.vc7;*.jvc)",
                                                       "Alle Dateien (*.*)"},
                                           .directory = std::string(DirectoryOf(CurrentPath()))});
    if (path) OpenPaths({*path});
  });
}

void frmView::Reload() {
  if (series_.IsEmpty()) return;
  series_.Reread(services_.files);
  loader_.Forget();
  LoadCurrent();
  BeginScale();
  ShowPicture();
}

void frmView::GoTo(int index) {
  if (!series_.MoveTo(index)) return;
  LoadCurrent();
  const std::optional<HeldScale>& scale = sampler_.Scale();
  const bool fits = isLoaded_ && scale && scale->quantity == QuantityFor(shown_.Field(), wishes_) &&
                    scale->result == StatisticResultOf(shown_.Field());
  if (!fits) BeginScale();
  ShowPicture();
}

void frmView::LoadCurrent() {
  logText_.Clear();
  ui_->statusbar->clearMessage();
  context_.abortCurrentFile = context_.runHadError = false;
  loader_.Load(series_.CurrentPath(), series_.CurrentItem().field);
  isLoaded_ = !context_.abortCurrentFile;
  series_.Expand(loader_.FieldCount());
  takenFor_->setText(isLoaded_ ? ToQt(loader_.TakenFor()) : QString());
  shown_.Changed();
  profile_.clear();
  if (isLoaded_) ObeyViewSettings();
  ShowField();
}

// Everything but the picture.
void frmView::ShowField() {
  ShowSeriesPlace();
  ShowTable();
  ShowTexts();
  ShowProfile();
  ShowPoints();
}

// What the file says, unless somebody has chosen something else.
void frmView::ObeyViewSettings() {
  const VectorField& field = shown_.Field();
  const PictureChoices choices = ChoicesFor(field, shown_.Summary(), wishes_, std::nullopt);
  ui_->mnuCoordSystem->setChecked(choices.coordinateSystem);
  ui_->mnuHeader->setChecked(choices.header);
  ui_->mnuVectorField->setChecked(choices.arrows);
  ui_->mnuTable->setChecked(wishesTable_.value_or(field.showTable));
}

void frmView::BeginScale() {
  if (isLoaded_) sampler_.Begin(series_, shown_, QuantityFor(shown_.Field(), wishes_));
}

void frmView::ShowSeriesPlace() {
  const bool some = !series_.IsEmpty();
  const QSignalBlocker blocker(ui_->sldSeries);
  ui_->sldSeries->setRange(0, std::max(series_.Count() - 1, 0));
  ui_->sldSeries->setValue(series_.Current());
  ui_->sldSeries->setEnabled(series_.Count() > 1);
  ui_->cmdPlay->setEnabled(series_.Count() > 1);
  ui_->mnuPlay->setEnabled(series_.Count() > 1);
  QString name = some ? ToQt(DrawnText(FileNameOf(series_.CurrentPath()), 60)) : QString();
  if (some && series_.CurrentItem().isPart) name += QString(", Feld %1").arg(series_.CurrentItem().field + 1);
  ui_->lblFile->setText(some ? QString("%1 von %2   %3").arg(series_.Current() + 1).arg(series_.Count()).arg(name)
                             : QString());
  setWindowTitle(some ? name + " - QuiverionView" : QStringLiteral("QuiverionView"));
  for (QAction* const action : {ui_->mnuSavePicture, ui_->mnuCopyPicture, ui_->mnuPrint}) action->setEnabled(isLoaded_);
}

void frmView::ShowPicture() {
  if (series_.IsEmpty()) return;
  if (!isLoaded_) return ui_->FieldView->ShowMessage(LinesToQt(logText_.Text()));
  ui_->FieldView->ShowField(shown_, ChoicesFor(shown_.Field(), shown_.Summary(), wishes_, sampler_.Scale()));
}

void frmView::ShowTexts() {
  if (!isLoaded_) return ui_->txtTexts->setPlainText(LinesToQt(logText_.Text()));
  const VectorField& field = shown_.Field();
  QString text;
  for (const std::string& line : field.headerLines) text += ToQt(DrawnText(line, line.size() + 1)) + "\n";
  text += "\n" + LinesToQt(field.infoText);
  if (context_.runHadError) text += "\n\n" + LinesToQt(logText_.Text());
  ui_->txtTexts->setPlainText(text);
}

// Only while it is seen: a view keeps some bytes for each row.
void frmView::ShowTable() {
  const bool seen = ui_->mnuTable->isChecked();
  table_.ShowField(seen && isLoaded_ ? &shown_.Field() : nullptr);
}

void frmView::ShowProfile() {
  ui_->cmdCopyProfile->setEnabled(!profile_.empty());
  if (profile_.empty()) return ui_->ProfileView->Show({});
  ui_->ProfileView->Show(
      [this](const PictureChoices& choices) { return ProfilePicture(shown_.Field(), profile_, choices); });
}

void frmView::SetQuantity(std::optional<Quantity> quantity) {
  wishes_.quantity = quantity;
  wishes_.limits.reset();
  ui_->cboBackground->setCurrentIndex(static_cast<int>(quantities_->actions().indexOf(quantities_->checkedAction())));
  BeginScale();
  ShowPicture();
}

void frmView::SetPlaying(bool playing) {
  ui_->cmdPlay->setChecked(playing);
  if (playing) {
    player_.start();
  } else {
    player_.stop();
  }
}

void frmView::AskLimits() {
  Guarded([this] {
    std::string preset;
    if (wishes_.limits) preset = TwoNumbersText(wishes_.limits->lower, wishes_.limits->upper);
    const auto answer = AskTwoNumbers(dialogs_, messages_,
                                      {.title = "QuiverionView  -  Grenzen der Farbskala",
                                       .prompt = "Kleinster und größter Wert, durch ein Semikolon getrennt; ohne "
                                                 "Eingabe wie in der Datei oder automatisch:",
                                       .preset = preset},
                                      TwoNumbersRule::ascendingOrNone);
    if (!answer) return;
    wishes_.limits.reset();
    if (*answer) wishes_.limits = Limits{(*answer)->first, (*answer)->second};
    ShowPicture();
  });
}

void frmView::AskVector() {
  Guarded([this] {
    const auto answer = AskTwoNumbers(dialogs_, messages_,
                                      {.title = "QuiverionView  -  Geschwindigkeit abziehen",
                                       .prompt = "x- und y-Komponente in m/s, durch ein Semikolon getrennt:",
                                       .preset = TwoNumbersText(wishes_.subtractU, wishes_.subtractV)},
                                      TwoNumbersRule::any);
    if (answer) {
      wishes_.subtracted = Subtracted::typed;
      std::tie(wishes_.subtractU, wishes_.subtractV) = **answer;
      return;
    }
    // Nothing has changed.
    ui_->mnuSubtractNothing->setChecked(wishes_.subtracted == Subtracted::nothing);
    ui_->mnuSubtractMean->setChecked(wishes_.subtracted == Subtracted::mean);
  });
}

// Does something with the picture as it is on paper, if there is one.
void frmView::WithPicture(const std::function<void(const Picture&)>& action) {
  Guarded([&] {
    if (isLoaded_) action(ui_->FieldView->PictureForPaper());
  });
}

void frmView::HoverPoint(std::optional<GridPoint> point) {
  if (point && isLoaded_) return ui_->statusbar->showMessage(ToQt(ReadoutText(shown_.Field(), *point)));
  ui_->statusbar->clearMessage();
}

void frmView::ClickPoint(GridPoint point) {
  if (points_.size() == 2) points_.clear();
  points_.push_back(point);
  ShowPoints();
}

// What is pinned, and the difference of two points. A point that the next field does not have is forgotten.
void frmView::ShowPoints() {
  const VectorField& field = shown_.Field();
  std::erase_if(points_,
                [&](GridPoint point) { return !isLoaded_ || point.i > field.columnCount || point.j > field.rowCount; });
  QString text;
  for (const GridPoint point : points_) text += (text.isEmpty() ? "" : "\n") + ToQt(ReadoutText(field, point));
  if (points_.size() == 2) text += "\n" + ToQt(DifferenceText(field, points_[0], points_[1]));
  ui_->lblPoints->setText(text);
  ui_->lblPoints->setVisible(!text.isEmpty());
  ui_->FieldView->MarkPoints(points_);
}

void frmView::CopyRows() {
  Guarded([this] { CopySelectedRows(table_, ui_->tblVectors->selectionModel()->selection(), messages_); });
}

void frmView::closeEvent(QCloseEvent* event) {
  ui_->mnuPlay->setChecked(false);
  QMainWindow::closeEvent(event);
}

void frmView::dragEnterEvent(QDragEnterEvent* event) {
  if (event->mimeData()->hasUrls()) CopyOnly(*event);
}

void frmView::dropEvent(QDropEvent* event) {
  CopyOnly(*event);
  // Not inside the drop handler, because the source waits until it ends.
  QMetaObject::invokeMethod(
      this, [this, paths = LocalPaths(*event)] { Guarded([&] { OpenPaths(paths); }); }, Qt::QueuedConnection);
}

}  // namespace quiverion
