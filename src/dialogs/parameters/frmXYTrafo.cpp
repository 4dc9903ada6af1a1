#include "dialogs/parameters/frmXYTrafo.h"

#include "ui_frmXYTrafo.h"

namespace quiverion {
namespace {

struct Box {
  FilteredLineEdit* edit;
  const char* refusedZero;  // message if the number is 0; null: 0 is allowed
};

// In the order of the checks.
std::array<Box, 6> BoxesOf(const Ui::frmXYTrafo& ui) {
  constexpr const char* kVectors = "Bitte geben sie als Faktor bei der Vektorskalierung keine Null an!";
  return {{{ui.txtFakX, "Bitte geben sie als Faktor bei der x-Koordinate keine Null an!"},
           {ui.txtFakY, "Bitte geben sie als Faktor bei der y-Koordinate keine Null an!"},
           {ui.txtFakVecX, kVectors},
           {ui.txtFakVecY, kVectors},
           {ui.txtDeltaX, nullptr},
           {ui.txtDeltaY, nullptr}}};
}

}  // namespace

frmXYTrafo::frmXYTrafo(UserInterface& messages, QWidget* parent)
    : ParameterWindow(messages, parent), ui_(std::make_unique<Ui::frmXYTrafo>()) {
  ui_->setupUi(this);
  for (const Box& box : BoxesOf(*ui_)) box.edit->SetRule(KeyRule::factor);
  // A new scale of the coordinates also becomes that of the vectors, until the user types another one there.
  connect(ui_->txtFakX, &QLineEdit::textEdited, this, [this] { ui_->txtFakVecX->ShowText(ui_->txtFakX->Text()); });
  connect(ui_->txtFakY, &QLineEdit::textEdited, this, [this] { ui_->txtFakVecY->ShowText(ui_->txtFakY->Text()); });
  connect(ui_->cmdOk, &QPushButton::clicked, this, &QDialog::accept);
  connect(ui_->cmdCancel, &QPushButton::clicked, this, &QDialog::reject);
}

frmXYTrafo::~frmXYTrafo() = default;

void frmXYTrafo::accept() {
  for (const Box& box : BoxesOf(*ui_)) {
    const std::optional<double> number = NumberOf(*box.edit);
    if (!number) return;
    if (*number != 0.0 || box.refusedZero == nullptr) continue;
    messages_.Ask({.title = "Ungültige Eingabe", .text = box.refusedZero});
    return box.edit->setFocus();
  }
  QDialog::accept();
}

}  // namespace quiverion
