#include "dialogs/parameters/frmMirrorOptions.h"

#include "ui_frmMirrorOptions.h"

namespace quiverion {

frmMirrorOptions::frmMirrorOptions(UserInterface& messages, QWidget* parent)
    : ParameterWindow(messages, parent), ui_(std::make_unique<Ui::frmMirrorOptions>()) {
  ui_->setupUi(this);
  connect(ui_->cmdOk, &QPushButton::clicked, this, &QDialog::accept);
  connect(ui_->cmdCancel, &QPushButton::clicked, this, &QDialog::reject);
}

frmMirrorOptions::~frmMirrorOptions() = default;

void frmMirrorOptions::Load(const MacroEvent& event) {
  ui_->chkPosX->setChecked(event.Integer("ChkPosX") > 0);
  ui_->chkPosY->setChecked(event.Integer("ChkPosY") > 0);
}

void frmMirrorOptions::Store(MacroEvent& event) const {
  event.Set("ChkPosX", ui_->chkPosX->isChecked() ? 1 : 0);
  event.Set("ChkPosY", ui_->chkPosY->isChecked() ? 1 : 0);
}

}  // namespace quiverion
