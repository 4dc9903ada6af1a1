#include "dialogs/parameters/frmEditVector.h"

#include "platform/text/numbers.h"
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

void frmEditVector::Load(const MacroEvent& event) {
  ui_->txtXComp->ShowText(FormatNumber(event.Number("XComp")));
  ui_->txtYComp->ShowText(FormatNumber(event.Number("YComp")));
}

void frmEditVector::Store(MacroEvent& event) const {
  event.Set("XComp", ReadParameterNumber(ui_->txtXComp->Text()));
  event.Set("YComp", ReadParameterNumber(ui_->txtYComp->Text()));
}

void frmEditVector::accept() {
  if (NumberOf(*ui_->txtXComp) && NumberOf(*ui_->txtYComp)) QDialog::accept();
}

}  // namespace quiverion
