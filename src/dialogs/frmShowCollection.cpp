#include "dialogs/frmShowCollection.h"

#include <QResizeEvent>
#include <QScrollBar>
#include <QShortcut>

#include "dialogs/parameters/file_choices.h"
#include "dialogs/widgets/guarded.h"
#include "dialogs/widgets/qt_text.h"
#include "platform/text/text.h"
#include "statistics/collection_contents.h"
#include "ui_frmShowCollection.h"

namespace quiverion {
namespace {

// True if the user confirms that `count` records be removed and the file can be changed.
bool ConfirmRemoval(Context& context, const std::string& path, std::size_t count) {
  constexpr const char* title = "QuiverionSeries - Vektorfelder entfernen";
  if (!MakeCollectionWritable(context.files, context.ui, path, "der aktuellen Kollektion")) return false;
  if (count < 1) {
    context.ui.Ask({.title = title,
                    .text = "Sie müssen dazu irgendwelche Dateien ausgewählt haben!",
                    .icon = MessageIcon::information});
    return false;
  }
  const std::string files = count == 1 ? " Datei" : " Dateien";
  return context.ui.Ask({.title = title,
                         .text = "Wollen sie diese " + std::to_string(count) + files + " wirklich entfernen?",
                         .buttons = MessageButtons::yesNo,
                         .icon = MessageIcon::question}) == MessageAnswer::yes;
}

}  // namespace

frmShowCollection::frmShowCollection(Context& context, std::string collectionPath, QWidget* parent)
    : QDialog(parent),
      context_(context),
      path_(std::move(collectionPath)),
      ui_(std::make_unique<Ui::frmShowCollection>()) {
  ui_->setupUi(this);
  setWindowFlag(Qt::WindowMaximizeButtonHint);
  const auto remove = [this] { Guarded(context_.ui, [this] { RemoveSelected(); }); };
  connect(ui_->cmdDelete, &QPushButton::clicked, this, remove);
  connect(ui_->cmdOk, &QPushButton::clicked, this, &QDialog::accept);
  auto* const deletion = new QShortcut(QKeySequence(Qt::Key_Delete), ui_->lstCollectedFiles);
  deletion->setContext(Qt::WidgetShortcut);
  connect(deletion, &QShortcut::activated, this, remove);
}

frmShowCollection::~frmShowCollection() = default;

bool frmShowCollection::FillListBox() {
  if (reading_) return true;  // the message box of a failure is open
  reading_ = true;
  const int place = ui_->lstCollectedFiles->verticalScrollBar()->value();
  setCursor(Qt::WaitCursor);
  ui_->cmdDelete->setEnabled(false);
  ui_->lstCollectedFiles->clear();
  const auto contents = ReadCollectionContents(context_, path_, [this](const CollectionHeader& header) {
    ui_->lblCollectionInfo->setText(ToQt(DescribeCollection(path_, header)));
    ui_->lblCollectionInfo->repaint();  // filling the list may take long
  });
  unsetCursor();
  reading_ = false;
  if (!contents) {
    reject();
    return false;
  }
  listed_ = contents->sourcePaths;
  QStringList lines;
  lines.reserve(static_cast<qsizetype>(listed_.size()));
  for (std::string line : listed_) {
    ReplaceControls(line, "");
    lines.append(ToQt(line));
  }
  ui_->lstCollectedFiles->addItems(lines);
  ui_->lstCollectedFiles->verticalScrollBar()->setValue(place);
  ui_->cmdDelete->setEnabled(true);
  return true;
}

void frmShowCollection::resizeEvent(QResizeEvent* event) {
  QDialog::resizeEvent(event);
  if (isVisible()) Guarded(context_.ui, [this] { FillListBox(); });
}

std::vector<std::int32_t> frmShowCollection::SelectedRecords() const {
  std::vector<std::int32_t> numbers;
  for (const QModelIndex& line : ui_->lstCollectedFiles->selectionModel()->selectedIndexes()) {
    numbers.push_back(line.row() + 1);
  }
  return numbers;
}

void frmShowCollection::RemoveSelected() {
  // What the user sees now. The list may be read again while the question is open.
  const std::vector<std::int32_t> numbers = SelectedRecords();
  const std::vector<std::string> listed = listed_;
  if (!ConfirmRemoval(context_, path_, numbers.size())) return;
  setCursor(Qt::WaitCursor);
  const RemovalOutcome outcome = RemoveRecords(context_, path_, numbers, listed);
  unsetCursor();
  if (outcome == RemovalOutcome::collectionDeleted) return accept();
  programMustEnd_ = outcome == RemovalOutcome::lengthNotSet;
  if (programMustEnd_) return reject();
  if (FillListBox()) ui_->lstCollectedFiles->setFocus();  // the button has been disabled and lost the focus
}

}  // namespace quiverion
