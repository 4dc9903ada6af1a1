#include "dialogs/parameters/frmPrefixPostfix.h"

#include <QEvent>

#include "dialogs/widgets/severity_colours.h"
#include "ui_frmPrefixPostfix.h"

namespace quiverion {

frmPrefixPostfix::frmPrefixPostfix(UserInterface& messages, QWidget* parent)
    : ParameterWindow(messages, parent), ui_(std::make_unique<Ui::frmPrefixPostfix>()) {
  ui_->setupUi(this);
  ui_->txtPrefix->SetRule(KeyRule::prefix);
  ui_->txtPostfix->SetRule(KeyRule::postfix);
  for (const auto* const box : {ui_->txtPrefix, ui_->txtPostfix}) {
    connect(box, &QLineEdit::textChanged, this, &frmPrefixPostfix::ColourWarning);
  }
  connect(ui_->cmdSubdirectory, &QPushButton::clicked, this, [this] {
    ui_->txtPrefix->ShowText("Ergebnis\\");
    ui_->txtPrefix->setFocus();
  });
  ColourWarning();
  connect(ui_->cmdOk, &QPushButton::clicked, this, &QDialog::accept);
  connect(ui_->cmdCancel, &QPushButton::clicked, this, &QDialog::reject);
}

frmPrefixPostfix::~frmPrefixPostfix() = default;

void frmPrefixPostfix::ColourWarning() {
  const bool replaces = ui_->txtPrefix->text().isEmpty() && ui_->txtPostfix->text().isEmpty();
  const auto colour = [this](QWidget& widget, QPalette::ColorRole role, const QColor& wanted) {
    QPalette colours = palette();
    colours.setColor(role, wanted);
    widget.setPalette(colours);
  };
  colour(*ui_->lblWarning, QPalette::WindowText,
         SeverityColour(replaces ? Severity::danger : Severity::note, palette()));
  colour(*ui_->cmdSubdirectory, QPalette::ButtonText, LinkColour(palette()));
}

void frmPrefixPostfix::changeEvent(QEvent* event) {
  ParameterWindow::changeEvent(event);
  if (event->type() == QEvent::PaletteChange) ColourWarning();
}

}  // namespace quiverion
