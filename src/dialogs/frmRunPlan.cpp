#include "dialogs/frmRunPlan.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QShortcut>
#include <algorithm>

#include "dialogs/widgets/qt_text.h"
#include "dialogs/widgets/severity_colours.h"
#include "dialogs/widgets/table_text.h"
#include "dialogs/widgets/tool_tip.h"
#include "ui_frmRunPlan.h"

namespace quiverion {
namespace {

struct Choice {
  const char* text;
  std::optional<FileUse> use;
};

constexpr Choice kChoices[] = {{"alles", std::nullopt},
                               {"was ersetzt wird", FileUse::replaces},
                               {"was ergänzt wird", FileUse::appends},
                               {"was neu ist", FileUse::creates},
                               {"was gelesen wird", FileUse::reads}};

}  // namespace

frmRunPlan::frmRunPlan(std::shared_ptr<const PlannedRun> forecast, QWidget* parent)
    : QDialog(parent),
      forecast_(std::move(forecast)),
      model_(*forecast_, palette()),
      ui_(std::make_unique<Ui::frmRunPlan>()) {
  ui_->setupUi(this);
  setWindowFlag(Qt::WindowMaximizeButtonHint);
  ui_->lblSelection->setText(ToQt(SelectionText(forecast_->plan.files.size(), forecast_->listed)));
  ShowFindings();
  Arrange();
  for (const Choice& choice : kChoices) ui_->cboShow->addItem(QString::fromUtf8(choice.text));
  connect(ui_->cboShow, &QComboBox::currentIndexChanged, this, [this](int index) {
    model_.ShowOnly(kChoices[index].use);
    ui_->lblCount->setText(ToQt(std::to_string(model_.rowCount()) + (model_.rowCount() == 1 ? " Zeile" : " Zeilen")));
  });
  emit ui_->cboShow->currentIndexChanged(0);
  auto* const copy = new QShortcut(QKeySequence::Copy, ui_->tblPlan);
  copy->setContext(Qt::WidgetShortcut);
  connect(copy, &QShortcut::activated, this, &frmRunPlan::Copy);
  connect(ui_->cmdCopy, &QPushButton::clicked, this, &frmRunPlan::Copy);
  connect(ui_->cmdOk, &QPushButton::clicked, this, &QDialog::accept);
}

frmRunPlan::~frmRunPlan() = default;

void frmRunPlan::ShowFindings() {
  constexpr int mostLines = 6;
  QListWidget* const list = ui_->lstFindings;
  for (const PlanFinding& finding : forecast_->findings) {
    const QString text = ToQt(finding.text).simplified();
    auto* const line = new QListWidgetItem(text, list);
    line->setForeground(SeverityColour(finding.severity, palette()));
    line->setToolTip(ToolTipOf({text}));
  }
  const int lines = std::clamp(list->count(), 1, mostLines);
  list->setFixedHeight(lines * std::max(list->sizeHintForRow(0), fontMetrics().lineSpacing()) + 2 * list->frameWidth() +
                       2);
  list->setVisible(list->count() > 0);
}

void frmRunPlan::Arrange() {
  QTableView& table = *ui_->tblPlan;
  table.setModel(&model_);
  QHeaderView& header = *table.horizontalHeader();
  header.setResizeContentsPrecision(200);  // rows that are measured
  table.resizeColumnsToContents();
  const int letter = fontMetrics().averageCharWidth();
  for (int column = 0; column < RunPlanModel::kColumnCount; ++column) {
    header.resizeSection(column, std::min(header.sectionSize(column) + letter, 45 * letter));
  }
  header.setStretchLastSection(true);
  table.verticalHeader()->setDefaultSectionSize(fontMetrics().height() * 3 / 2);
}

void frmRunPlan::Copy() {
  QGuiApplication::clipboard()->setText(TableText(*ui_->tblPlan));
}

}  // namespace quiverion
