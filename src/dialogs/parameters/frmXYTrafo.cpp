#include "dialogs/parameters/frmXYTrafo.h"

#include "ui_frmXYTrafo.h"

namespace quiverion {
namespace {

struct Box {
  FilteredLineEdit* edit;
  const char* key;
  const char* refusedZero;  // what is said where the number is 0; null: it may be
};

// In the order in which they are checked.
std::array<Box, 6> BoxesOf(const Ui::frmXYTrafo& ui) {
  constexpr const char* kVectors = "Bitte geben sie als Faktor bei der Vektorskalierung keine Null an!";
  return {{{ui.txtFakX, "TxtFakX", "Bitte geben sie als Faktor bei der x-Koordinate keine Null an!"},
           {ui.txtFakY, "TxtFakY", "Bitte geben sie als Faktor bei der y-Koordinate keine Null an!"},
           {ui.txtFakVecX, "TxtFakVecX", kVectors},
           {ui.txtFakVecY, "TxtFakVecY", kVectors},
           {ui.txtDeltaX, "TxtDeltaX", nullptr},
           {ui.txtDeltaY, "TxtDeltaY", nullptr}}};
}

}  // namespace

frmXYTrafo::frmXYTrafo(UserInterface& messages, QWidget* parent)
    : ParameterWindow(messages, parent), ui_(std::make_unique<Ui::frmXYTrafo>()) {
  ui_->setupUi(this);
  for (const Box& box : BoxesOf(*ui_)) box.edit->SetRule(KeyRule::factor);
  // A new scale of the coordinates is one of the vectors too, until that is typed over.
  connect(ui_->txtFakX, &QLineEdit::textEdited, this, [this] { ui_->txtFakVecX->ShowText(ui_->txtFakX->Text()); });
  connect(ui_->txtFakY, &QLineEdit::textEdited, this, [this] { ui_->txtFakVecY->ShowText(ui_->txtFakY->Text()); });
  connect(ui_->cmdOk, &QPushButton::clicked, this, &QDialog::accept);
  connect(ui_->cmdCancel, &QPushButton::clicked, this, &QDialog::reject);
}

frmXYTrafo::~frmXYTrafo() = default;

void frmXYTrafo::Load(const MacroEvent& event) {
  for (const Box& box : BoxesOf(*ui_)) box.edit->ShowText(event.Text(box.key));
}

void frmXYTrafo::Store(MacroEvent& event) const {
  for (const Box& box : BoxesOf(*ui_)) event.Set(box.key, box.edit->Text());
}

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
