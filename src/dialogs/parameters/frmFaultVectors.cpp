#include "dialogs/parameters/frmFaultVectors.h"

#include <algorithm>
#include <array>

#include "dialogs/widgets/qt_text.h"
#include "ui_frmFaultVectors.h"

namespace quiverion {
namespace {

constexpr int kWindowSizes = 200;  // 1, 3, ... 399 vectors; the index is the half width

struct CheckBox {
  QCheckBox* box;
  const char* key;
  QWidget* controls;  // of the criterion
};

std::array<CheckBox, 5> CriteriaOf(const Ui::frmFaultVectors& ui) {
  return {{{ui.chkAbsDeviation, "ChkAbsDeviation", ui.wdgAbsDeviation},
           {ui.chkAbsInterval, "ChkAbsInterval", ui.wdgAbsInt},
           {ui.chkDirDeviation, "ChkDirDeviation", ui.wdgDirDeviation},
           {ui.chkXComp, "ChkXComp", ui.wdgXCompInt},
           {ui.chkYComp, "ChkYComp", ui.wdgYCompInt}}};
}

struct Interval {
  QRadioButton* inside;
  QRadioButton* outside;
  const char* key;  // of `outside`
  FilteredLineEdit* lower;
  FilteredLineEdit* upper;
};

std::array<Interval, 3> IntervalsOf(const Ui::frmFaultVectors& ui) {
  return {{{ui.optAbsIntIn, ui.optAbsIntOut, "OptAbsIntOut", ui.txtAbsIntMin, ui.txtAbsIntMax},
           {ui.optXCompIntIn, ui.optXCompIntOut, "OptXCompIntOut", ui.txtXCompIntMin, ui.txtXCompIntMax},
           {ui.optYCompIntIn, ui.optYCompIntOut, "OptYCompIntOut", ui.txtYCompIntMin, ui.txtYCompIntMax}}};
}

struct TextBox {
  FilteredLineEdit* box;
  const char* key;
  KeyRule rule;
};

std::array<TextBox, 10> TextBoxesOf(const Ui::frmFaultVectors& ui) {
  return {{{ui.txtAbsDeviation, "TxtAbsDeviation", KeyRule::digits},
           {ui.txtAbsIntMin, "TxtAbsIntMin", KeyRule::unsignedNumber},
           {ui.txtAbsIntMax, "TxtAbsIntMax", KeyRule::unsignedNumber},
           {ui.txtDirDeviation, "TxtDirDeviation", KeyRule::digits},
           {ui.txtXCompIntMin, "TxtXCompIntMin", KeyRule::signedNumber},
           {ui.txtXCompIntMax, "TxtXCompIntMax", KeyRule::signedNumber},
           {ui.txtYCompIntMin, "TxtYCompIntMin", KeyRule::signedNumber},
           {ui.txtYCompIntMax, "TxtYCompIntMax", KeyRule::signedNumber},
           {ui.txtUserVectorX, "TxtUserVectorX", KeyRule::signedNumber},
           {ui.txtUserVectorY, "TxtUserVectorY", KeyRule::signedNumber}}};
}

struct SizeBox {
  QComboBox* box;
  const char* key;
};

std::array<SizeBox, 4> SizeBoxesOf(const Ui::frmFaultVectors& ui) {
  return {{{ui.cboMedianX, "CboMedianX"},
           {ui.cboMedianY, "CboMedianY"},
           {ui.cboLocalMiddleX, "CboLocalMiddleX"},
           {ui.cboLocalMiddleY, "CboLocalMiddleY"}}};
}

// In the order of CompareVectorType.
std::array<QRadioButton*, 4> CompareOptionsOf(const Ui::frmFaultVectors& ui) {
  return {ui.optLocalMiddle, ui.optAllMiddle, ui.optMedian, ui.optUserVector};
}

}  // namespace

frmFaultVectors::frmFaultVectors(UserInterface& messages, QWidget* parent)
    : ParameterWindow(messages, parent), ui_(std::make_unique<Ui::frmFaultVectors>()) {
  ui_->setupUi(this);
  QStringList sizes;
  for (int index = 0; index < kWindowSizes; ++index) sizes.append(QString::number(2 * index + 1));
  for (const SizeBox& size : SizeBoxesOf(*ui_)) size.box->addItems(sizes);
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
  for (const CheckBox& criterion : CriteriaOf(*ui_)) criterion.box->setChecked(event.Integer(criterion.key) > 0);
  for (const Interval& interval : IntervalsOf(*ui_)) {
    (event.Flag(interval.key) ? interval.outside : interval.inside)->setChecked(true);
  }
  for (const TextBox& text : TextBoxesOf(*ui_)) text.box->ShowText(event.Text(text.key));
  // A macro file may hold sizes and a type that the window has not.
  for (const SizeBox& size : SizeBoxesOf(*ui_)) {
    size.box->setCurrentIndex(std::clamp(event.Integer(size.key), 0, kWindowSizes - 1));
  }
  const auto options = CompareOptionsOf(*ui_);
  const std::int32_t type =
      std::clamp(event.Integer("CompareVectorType"), 1, static_cast<std::int32_t>(options.size()));
  options[static_cast<std::size_t>(type - 1)]->setChecked(true);
  (event.Flag("LogicalOr") ? ui_->optLogicalOr : ui_->optLogicalAnd)->setChecked(true);
}

void frmFaultVectors::Store(MacroEvent& event) const {
  for (const CheckBox& criterion : CriteriaOf(*ui_)) event.Set(criterion.key, criterion.box->isChecked() ? 1 : 0);
  for (const Interval& interval : IntervalsOf(*ui_)) event.Set(interval.key, interval.outside->isChecked());
  for (const TextBox& text : TextBoxesOf(*ui_)) event.Set(text.key, text.box->Text());
  for (const SizeBox& size : SizeBoxesOf(*ui_)) event.Set(size.key, size.box->currentIndex());
  event.Set("CompareVectorType", static_cast<std::int32_t>(Choices().compareWith));
  event.Set("LogicalOr", ui_->optLogicalOr->isChecked());
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
