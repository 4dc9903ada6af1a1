#include "dialogs/widgets/message_box.h"

#include <QDialogButtonBox>
#include <QGridLayout>
#include <QMessageBox>
#include <QPushButton>
#include <algorithm>
#include <iterator>

#include "dialogs/widgets/qt_text.h"
#include "dialogs/widgets/run_modal.h"

namespace quiverion {
namespace {

using Button = QMessageBox::StandardButton;

struct Answer {
  MessageAnswer answer;
  Button button;
  const char* text;
};

constexpr Answer kAnswers[] = {
    {MessageAnswer::ok, QMessageBox::Ok, "&Ok"},
    {MessageAnswer::retry, QMessageBox::Retry, "&Wiederholen"},
    {MessageAnswer::cancel, QMessageBox::Cancel, "&Abbrechen"},
    {MessageAnswer::abort, QMessageBox::Abort, "&Abbrechen"},
    {MessageAnswer::ignore, QMessageBox::Ignore, "&Ignorieren"},
    {MessageAnswer::yes, QMessageBox::Yes, "&Ja"},
    {MessageAnswer::no, QMessageBox::No, "&Nein"},
};

struct ButtonSet {
  MessageButtons kind;
  QMessageBox::StandardButtons buttons;
  Button first;   // what Enter presses by default
  Button escape;  // the answer if the box is closed
};

constexpr ButtonSet kButtonSets[] = {
    {MessageButtons::ok, QMessageBox::Ok, QMessageBox::Ok, QMessageBox::Ok},
    {MessageButtons::okCancel, QMessageBox::Ok | QMessageBox::Cancel, QMessageBox::Ok, QMessageBox::Cancel},
    {MessageButtons::retryCancel, QMessageBox::Retry | QMessageBox::Cancel, QMessageBox::Retry, QMessageBox::Cancel},
    {MessageButtons::abortRetryIgnore, QMessageBox::Abort | QMessageBox::Retry | QMessageBox::Ignore,
     QMessageBox::Abort, QMessageBox::Abort},
    {MessageButtons::yesNo, QMessageBox::Yes | QMessageBox::No, QMessageBox::Yes, QMessageBox::No},
    {MessageButtons::yesNoCancel, QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel, QMessageBox::Yes,
     QMessageBox::Cancel},
};

QMessageBox::Icon IconOf(MessageIcon icon) {
  switch (icon) {
    case MessageIcon::information:
      return QMessageBox::Information;
    case MessageIcon::critical:
      return QMessageBox::Critical;
    case MessageIcon::question:
      return QMessageBox::Question;
    case MessageIcon::warning:
      break;
  }
  return QMessageBox::Warning;
}

// The order is Abort, Retry, Ignore, even on systems that would put the refusing button last.
void PutFirst(QMessageBox& box, Button first) {
  auto* const row = qobject_cast<QBoxLayout*>(box.findChild<QDialogButtonBox*>()->layout());
  QAbstractButton* const button = box.button(first);
  if (row == nullptr || button == nullptr) return;
  int place = 0;
  while (row->itemAt(place)->widget() == nullptr) ++place;  // the stretch that aligns them
  QWidget* const before = row->itemAt(place)->widget();
  if (before == button) return;
  row->removeWidget(button);
  row->insertWidget(place, button);
  QWidget::setTabOrder(button, before);
}

}  // namespace

int WidthOfTitle(const QWidget& window) {
  constexpr int besideTitle = 140;  // icon and buttons of the window frame
  return window.fontMetrics().horizontalAdvance(window.windowTitle()) + besideTitle;
}

MessageAnswer ShowMessageBox(QWidget* parent, const Message& message) {
  const ButtonSet& set = *std::ranges::find(kButtonSets, message.buttons, &ButtonSet::kind);
  QMessageBox box(IconOf(message.icon), ToQt(message.title), LinesToQt(message.text), set.buttons, parent);
  box.setTextFormat(Qt::PlainText);
  box.setDefaultButton(set.first);
  box.setEscapeButton(set.escape);
  for (const Answer& answer : kAnswers) {
    QAbstractButton* const button = box.button(answer.button);
    if (button == nullptr) continue;
    button->setText(ToQt(answer.text));
    if (message.preselected == answer.answer) box.setDefaultButton(answer.button);
  }
  if (message.buttons == MessageButtons::abortRetryIgnore) PutFirst(box, QMessageBox::Abort);
  // The box has a fixed size: only an item in its layout can make it wider.
  if (auto* const grid = qobject_cast<QGridLayout*>(box.layout())) {
    grid->addItem(new QSpacerItem(WidthOfTitle(box), 0), grid->rowCount(), 0, 1, grid->columnCount());
  }
  int pressed = RunModal(box);
  // The box is closed without a button when the application ends.
  if (!set.buttons.testFlag(static_cast<Button>(pressed))) pressed = set.escape;
  return std::ranges::find(kAnswers, pressed, [](const Answer& answer) { return int{answer.button}; })->answer;
}

}  // namespace quiverion
