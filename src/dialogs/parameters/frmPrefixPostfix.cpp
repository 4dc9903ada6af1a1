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

}  // namespace quiverion
