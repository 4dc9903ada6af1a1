#include "dialogs/frmEditVector.h"

#include <algorithm>

#include "dialogs/parameter_editing.h"
#include "platform/numbers.h"
#include "platform/system_error.h"
#include "ui_frmEditVector.h"

namespace quiverion {
namespace {

// Typed commas are points already; a shown text may hold one.
double NumberOf(const FilteredLineEdit& box) {
  std::string text = box.Text();
  std::replace(text.begin(), text.end(), ',', '.');
  return ReadParameterNumber(text);
}

}  // namespace

frmEditVector::frmEditVector(UserInterface& messages, const QString& title, QWidget* parent)
    : ParameterWindow(parent), messages_(messages), ui_(std::make_unique<Ui::frmEditVector>()) {
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
  event.Set("XComp", NumberOf(*ui_->txtXComp));
  event.Set("YComp", NumberOf(*ui_->txtYComp));
}

void frmEditVector::accept() {
  for (FilteredLineEdit* const box : {ui_->txtXComp, ui_->txtYComp}) {
    try {
      NumberOf(*box);
    } catch (const SystemError&) {
      RefuseHugeNumber(messages_, box->Text());
      box->setFocus();
      return;
    }
  }
  QDialog::accept();
}

}  // namespace quiverion
