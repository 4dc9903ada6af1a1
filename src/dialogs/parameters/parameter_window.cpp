#include "dialogs/parameters/parameter_window.h"

#include <QCheckBox>
#include <QComboBox>
#include <QRadioButton>
#include <algorithm>

#include "dialogs/parameters/parameter_editing.h"
#include "dialogs/widgets/qt_text.h"
#include "messages/failure.h"
#include "platform/text/numbers.h"

namespace quiverion {
namespace {

// The control of a parameter as a `Control`; null if it has none of this kind.
template <class Control>
Control* ControlOf(const QWidget& window, const Parameter& parameter) {
  const QString key = ToQt(parameter.key);
  for (const QString& name : {key.left(1).toLower() + key.mid(1), "txt" + key, "opt" + key}) {
    if (auto* const control = window.findChild<Control*>(name)) return control;
  }
  return nullptr;
}

// The other button of a pair.
QRadioButton* CounterpartOf(const QRadioButton& button) {
  const auto pair = button.parentWidget()->findChildren<QRadioButton*>(QString(), Qt::FindDirectChildrenOnly);
  const auto other = std::ranges::find_if(pair, [&](const QRadioButton* each) { return each != &button; });
  return other == pair.end() ? nullptr : *other;
}

std::string ShownText(const MacroEvent& event, const Parameter& parameter) {
  return parameter.kind == ParameterKind::number ? FormatNumber(event.Number(parameter.key))
                                                 : event.Text(parameter.key);
}

}  // namespace

void ParameterWindow::Load(const MacroEvent& event) {
  parameters_ = ParametersOf(event.EventId());
  for (const Parameter& parameter : parameters_) {
    if (auto* const control = ControlOf<QWidget>(*this, parameter)) control->setAccessibleName(ToQt(parameter.label));
    if (auto* const box = ControlOf<FilteredLineEdit>(*this, parameter)) {
      box->ShowText(ShownText(event, parameter));
    } else if (auto* const check = ControlOf<QCheckBox>(*this, parameter)) {
      check->setChecked(event.Integer(parameter.key) > 0);
    } else if (auto* const choice = ControlOf<QComboBox>(*this, parameter)) {
      choice->setCurrentIndex(ChoiceOf(event, parameter.key));
    } else if (auto* const option = ControlOf<QRadioButton>(*this, parameter)) {
      (event.Flag(parameter.key) ? option : CounterpartOf(*option))->setChecked(true);
    }
  }
}

void ParameterWindow::Store(MacroEvent& event) const {
  for (const Parameter& parameter : parameters_) {
    if (const auto* const box = ControlOf<FilteredLineEdit>(*this, parameter)) {
      const bool isNumber = parameter.kind == ParameterKind::number;
      event.Set(parameter.key, isNumber ? MacroValue(ReadParameterNumber(box->Text())) : MacroValue(box->Text()));
    } else if (const auto* const check = ControlOf<QCheckBox>(*this, parameter)) {
      event.Set(parameter.key, check->isChecked() ? 1 : 0);
    } else if (const auto* const choice = ControlOf<QComboBox>(*this, parameter)) {
      event.Set(parameter.key, choice->currentIndex());
    } else if (const auto* const option = ControlOf<QRadioButton>(*this, parameter)) {
      event.Set(parameter.key, option->isChecked());
    }
  }
}

MacroEvent ParameterWindow::Draft(const MacroEvent& event) const {
  MacroEvent draft = event;
  if (Attempt([&] { Store(draft); })) return event;
  return draft;
}

void ParameterWindow::ReportChanges(const std::function<void()>& changed) {
  for (const auto* const box : findChildren<QLineEdit*>()) connect(box, &QLineEdit::textChanged, this, changed);
  for (const auto* const button : findChildren<QAbstractButton*>()) {
    if (button->isCheckable()) connect(button, &QAbstractButton::toggled, this, changed);
  }
  for (const auto* const choice : findChildren<QComboBox*>()) {
    connect(choice, &QComboBox::currentIndexChanged, this, changed);
  }
  changed();
}

void ParameterWindow::ShowText(std::string_view key, const std::string& text) {
  const auto parameter = std::ranges::find(parameters_, key, &Parameter::key);
  if (parameter == parameters_.end()) return;
  if (auto* const box = ControlOf<FilteredLineEdit>(*this, *parameter)) box->ShowText(text);
}

int ParameterWindow::ChoiceOf(const MacroEvent& event, std::string_view key) const {
  const Parameter& parameter = *std::ranges::find(parameters_, key, &Parameter::key);
  return static_cast<int>(std::clamp<double>(event.Integer(key), parameter.low, parameter.high));
}

std::optional<double> ParameterWindow::NumberOf(FilteredLineEdit& box) {
  std::optional<double> number;
  if (Attempt([&] { number = ReadParameterNumber(box.Text()); })) {
    RefuseHugeNumber(messages_, box.Text());
    box.setFocus();
  }
  return number;
}

}  // namespace quiverion
