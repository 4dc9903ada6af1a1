#include "dialogs/parameters/frmEditVector.h"

#include "ui_frmEditVector.h"

namespace quiverion {

frmEditVector::frmEditVector(UserInterface& messages, const QString& title, QWidget* parent)
    : ParameterWindow(messages, parent), ui_(std::make_unique<Ui::frmEditVector>()) {
  ui_->setupUi(this);
  setWindowTitle(title);
  connect(ui_->cmdOk, &QPushButton::clicked, this, &QDialog::accept);
  connect(ui_->cmdCancel, &QPushButton::clicked, this, &QDialog::reject);
}

frmEditVector::~frmEditVector() = default;

void frmEditVector::accept() {
  if (NumberOf(*ui_->txtXComp) && NumberOf(*ui_->txtYComp)) QDialog::accept();
}

}  // namespace quiverion
