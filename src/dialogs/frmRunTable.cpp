#include "dialogs/frmRunTable.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QShortcut>
#include <algorithm>
#include <numeric>

#include "dialogs/parameters/file_choices.h"
#include "dialogs/parameters/parameter_windows.h"
#include "dialogs/widgets/guarded.h"
#include "dialogs/widgets/log_colours.h"
#include "dialogs/widgets/qt_text.h"
#include "dialogs/widgets/table_text.h"
#include "macro/log_messages.h"
#include "platform/files/result_file.h"
#include "ui_frmRunTable.h"

namespace quiverion {

frmRunTable::frmRunTable(RunTableServices services, QWidget* parent)
    : QDialog(parent),
      services_(std::move(services)),
      model_(services_.rows, services_.decimalSeparator),
      ui_(std::make_unique<Ui::frmRunTable>()) {
  ui_->setupUi(this);
  setWindowFlag(Qt::WindowMaximizeButtonHint);
  UseErrorColour();
  QTableView& table = *ui_->tblRun;
  QHeaderView& header = *table.horizontalHeader();
  table.setModel(&model_);
  header.setSortIndicator(-1, Qt::AscendingOrder);  // the order of the run
  header.setSortIndicatorClearable(true);
  table.setSortingEnabled(true);
  header.setResizeContentsPrecision(200);  // rows that are measured
  table.resizeColumnsToContents();
  constexpr int name = 0, message = 3;
  const int letter = fontMetrics().averageCharWidth();
  header.resizeSection(name, std::min(header.sectionSize(name), 40 * letter));
  header.resizeSection(message, 24 * letter);
  header.moveSection(message, static_cast<int>(kTableColumns) - 1);  // it gets the rest of the width
  header.setStretchLastSection(true);
  table.verticalHeader()->setDefaultSectionSize(fontMetrics().height() * 3 / 2);
  ui_->lblSummary->setText(ToQt(ErrorCountText(services_.rows)));
  connect(&table, &QTableView::doubleClicked, this, &frmRunTable::Open);
  const auto onTable = [&](QKeySequence keys, const std::function<void()>& action) {
    auto* const shortcut = new QShortcut(keys, &table);
    shortcut->setContext(Qt::WidgetShortcut);
    connect(shortcut, &QShortcut::activated, this, action);
  };
  onTable(QKeySequence::Copy, [this] { Copy(); });
  for (const Qt::Key enter : {Qt::Key_Return, Qt::Key_Enter}) {
    onTable(enter, [this] {
      if (ui_->tblRun->currentIndex().isValid()) Open(ui_->tblRun->currentIndex());
    });
  }
  connect(ui_->chkOnlyErrors, &QCheckBox::toggled, this, [this](bool only) { model_.ShowOnlyErrors(only); });
  connect(ui_->cmdCopy, &QPushButton::clicked, this, &frmRunTable::Copy);
  connect(ui_->cmdSave, &QPushButton::clicked, this, &frmRunTable::Save);
  connect(ui_->cmdSelect, &QPushButton::clicked, this, &frmRunTable::Select);
  connect(ui_->cmdOk, &QPushButton::clicked, this, &QDialog::accept);
}

frmRunTable::~frmRunTable() = default;

void frmRunTable::UseErrorColour() {
  model_.SetErrorColour(QColor(OnScreen(palette())[static_cast<std::size_t>(LogColour::red)]));
}

void frmRunTable::changeEvent(QEvent* event) {
  QDialog::changeEvent(event);
  if (event->type() == QEvent::PaletteChange) UseErrorColour();
}

std::vector<int> frmRunTable::ChosenRows() const {
  std::vector<int> rows;
  for (const QItemSelectionRange& range : ui_->tblRun->selectionModel()->selection()) {
    for (int row = range.top(); row <= range.bottom(); ++row) rows.push_back(row);
  }
  if (rows.empty()) {
    rows.resize(static_cast<std::size_t>(model_.rowCount()));
    std::iota(rows.begin(), rows.end(), 0);
  }
  std::ranges::sort(rows);
  return rows;
}

void frmRunTable::Open(const QModelIndex& index) {
  const FileRow& row = model_.RowAt(index.row());
  (row.HasErrors() ? services_.showLog : services_.showField)(row);
}

void frmRunTable::Copy() {
  QGuiApplication::clipboard()->setText(TableText(*ui_->tblRun));
}

void frmRunTable::Save() {
  Guarded(services_.messages, [this] {
    ParameterWindows dialogs(*this, services_.messages);
    const auto path = ChooseFileWithExtension(dialogs, services_.files, services_.messages,
                                              {.kind = FileQuestion::Kind::save,
                                               .title = std::string(kSaveTableTitle),
                                               .filters = {"Tabelle (*.csv)"},
                                               .directory = services_.directory,
                                               .fileName = "Lauf.csv",
                                               .extension = "csv"});
    if (!path) return;
    std::vector<FileRow> shown;
    for (int row = 0; row < model_.rowCount(); ++row) shown.push_back(model_.RowAt(row));
    const auto failure = SaveResult(services_.files, &services_.messages, *path, [&](ResultFile& file) {
      WriteTable(shown, services_.decimalSeparator, [&file](std::string_view bytes) { file.Write(bytes); });
    });
    if (failure) services_.messages.Ask(TableNotSaved(*path, failure->error));
  });
}

void frmRunTable::Select() {
  std::vector<std::string> names;
  for (const int row : ChosenRows()) names.push_back(model_.RowAt(row).name);
  accept();
  services_.select(names);
}

}  // namespace quiverion
