#include "dialogs/parameters/frmPrefixPostfix.h"

#include "ui_frmPrefixPostfix.h"

namespace quiverion {

frmPrefixPostfix::frmPrefixPostfix(UserInterface& messages, QWidget* parent)
    : ParameterWindow(messages, parent), ui_(std::make_unique<Ui::frmPrefixPostfix>()) {
  ui_->setupUi(this);
  ui_->txtPrefix->SetRule(KeyRule::prefix);
  ui_->txtPostfix->SetRule(KeyRule::postfix);
  connect(ui_->cmdOk, &QPushButton::clicked, this, &QDialog::accept);
  connect(ui_->cmdCancel, &QPushButton::clicked, this, &QDialog::reject);
}

frmPrefixPostfix::~frmPrefixPostfix() = default;

void frmPrefixPostfix::Load(const MacroEvent& event) {
  ui_->txtPrefix->ShowText(event.Text("Prefix"));
  ui_->txtPostfix->ShowText(event.Text("Postfix"));
}

void frmPrefixPostfix::Store(MacroEvent& event) const {
  event.Set("Prefix", ui_->txtPrefix->Text());
  event.Set("Postfix", ui_->txtPostfix->Text());
}

}  // namespace quiverion
