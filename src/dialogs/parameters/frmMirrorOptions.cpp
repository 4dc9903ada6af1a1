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

}  // namespace quiverion
