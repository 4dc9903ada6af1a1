#include "dialogs/parameters/frmFaultVectors.h"

#include <algorithm>
#include <array>

#include "dialogs/widgets/qt_text.h"
#include "ui_frmFaultVectors.h"

namespace quiverion {
namespace {

struct CheckBox {
  QCheckBox* box;
  QWidget* controls;  // of the criterion
};

std::array<CheckBox, 5> CriteriaOf(const Ui::frmFaultVectors& ui) {
  return {{{ui.chkAbsDeviation, ui.wdgAbsDeviation},
           {ui.chkAbsInterval, ui.wdgAbsInt},
           {ui.chkDirDeviation, ui.wdgDirDeviation},
           {ui.chkXComp, ui.wdgXCompInt},
           {ui.chkYComp, ui.wdgYCompInt}}};
}

struct Interval {
  FilteredLineEdit* lower;
  FilteredLineEdit* upper;
};

std::array<Interval, 3> IntervalsOf(const Ui::frmFaultVectors& ui) {
  return {{{ui.txtAbsIntMin, ui.txtAbsIntMax},
           {ui.txtXCompIntMin, ui.txtXCompIntMax},
           {ui.txtYCompIntMin, ui.txtYCompIntMax}}};
}

struct TextBox {
  FilteredLineEdit* box;
  KeyRule rule;
};

std::array<TextBox, 10> TextBoxesOf(const Ui::frmFaultVectors& ui) {
  return {{{ui.txtAbsDeviation, KeyRule::digits},
           {ui.txtAbsIntMin, KeyRule::unsignedNumber},
           {ui.txtAbsIntMax, KeyRule::unsignedNumber},
           {ui.txtDirDeviation, KeyRule::digits},
           {ui.txtXCompIntMin, KeyRule::signedNumber},
           {ui.txtXCompIntMax, KeyRule::signedNumber},
           {ui.txtYCompIntMin, KeyRule::signedNumber},
           {ui.txtYCompIntMax, KeyRule::signedNumber},
           {ui.txtUserVectorX, KeyRule::signedNumber},
           {ui.txtUserVectorY, KeyRule::signedNumber}}};
}

// In the order of CompareVectorType.
std::array<QRadioButton*, 4> CompareOptionsOf(const Ui::frmFaultVectors& ui) {
  return {ui.optLocalMiddle, ui.optAllMiddle, ui.optMedian, ui.optUserVector};
}

}  // namespace

frmFaultVectors::frmFaultVectors(UserInterface& messages, QWidget* parent)
    : ParameterWindow(messages, parent), ui_(std::make_unique<Ui::frmFaultVectors>()) {
  ui_->setupUi(this);
  QStringList sizes;  // the index is the half width
  for (int halfWidth = 0; halfWidth <= kLargestHalfWidth; ++halfWidth) sizes.append(QString::number(2 * halfWidth + 1));
  for (QComboBox* const box : findChildren<QComboBox*>()) box->addItems(sizes);
  for (const TextBox& text : TextBoxesOf(*ui_)) text.box->SetRule(text.rule);
  for (const CheckBox& criterion : CriteriaOf(*ui_)) {
    connect(criterion.box, &QCheckBox::toggled, this, [this] { EnableControls(); });
  }
  for (QRadioButton* const option : CompareOptionsOf(*ui_)) {
    connect(option, &QRadioButton::toggled, this, [this] { EnableControls(); });
  }
  connect(ui_->cmdOk, &QPushButton::clicked, this, &QDialog::accept);
  connect(ui_->cmdCancel, &QPushButton::clicked, this, &QDialog::reject);
  EnableControls();
}

frmFaultVectors::~frmFaultVectors() = default;

FaultVectorChoices frmFaultVectors::Choices() const {
  const auto options = CompareOptionsOf(*ui_);
  const auto chosen = std::find_if(options.begin(), options.end(), [](auto* option) { return option->isChecked(); });
  return {ui_->chkAbsDeviation->isChecked(), ui_->chkAbsInterval->isChecked(),
          ui_->chkDirDeviation->isChecked(), ui_->chkXComp->isChecked(),
          ui_->chkYComp->isChecked(),        static_cast<CompareVectorType>(1 + chosen - options.begin())};
}

void frmFaultVectors::EnableControls() {
  for (const CheckBox& criterion : CriteriaOf(*ui_)) criterion.controls->setEnabled(criterion.box->isChecked());
  const FaultVectorControls controls = EnabledControls(Choices());
  ui_->fraCompareWith->setEnabled(controls.compareWith);
  ui_->wdgLocalMiddle->setEnabled(controls.localMiddle);
  ui_->wdgMedian->setEnabled(controls.median);
  ui_->wdgUserVector->setEnabled(controls.userVector);
  ui_->fraLogicalAndOr->setEnabled(controls.logicalAndOr);
  ui_->cmdOk->setEnabled(controls.ok);
}

void frmFaultVectors::Load(const MacroEvent& event) {
  ParameterWindow::Load(event);
  const auto type = static_cast<std::size_t>(ChoiceOf(event, "CompareVectorType"));
  CompareOptionsOf(*ui_)[type - 1]->setChecked(true);
}

void frmFaultVectors::Store(MacroEvent& event) const {
  ParameterWindow::Store(event);
  for (const std::string interval : {"TxtAbsInt", "TxtXCompInt", "TxtYCompInt"}) {
    std::string lower = event.Text(interval + "Min"), upper = event.Text(interval + "Max");
    OrderBounds(lower, upper);
    event.Set(interval + "Min", lower);
    event.Set(interval + "Max", upper);
  }
  event.Set("CompareVectorType", static_cast<std::int32_t>(Choices().compareWith));
}

void frmFaultVectors::accept() {
  for (const TextBox& text : TextBoxesOf(*ui_)) {
    if (!NumberOf(*text.box)) return;
  }
  for (const Interval& interval : IntervalsOf(*ui_)) {
    std::string lower = interval.lower->Text(), upper = interval.upper->Text();
    OrderBounds(lower, upper);
    interval.lower->ShowText(lower);
    interval.upper->ShowText(upper);
  }
  QDialog::accept();
}

}  // namespace quiverion
