#include "dialogs/message_box.h"

#include <QMessageBox>
#include <QPushButton>
#include <algorithm>
#include <iterator>

#include "dialogs/qt_text.h"

namespace quiverion {
namespace {

using Button = QMessageBox::StandardButton;

constexpr std::pair<MessageAnswer, Button> kAnswers[] = {
    {MessageAnswer::ok, QMessageBox::Ok},         {MessageAnswer::retry, QMessageBox::Retry},
    {MessageAnswer::cancel, QMessageBox::Cancel}, {MessageAnswer::abort, QMessageBox::Abort},
    {MessageAnswer::ignore, QMessageBox::Ignore}, {MessageAnswer::yes, QMessageBox::Yes},
    {MessageAnswer::no, QMessageBox::No},
};

struct ButtonSet {
  MessageButtons kind;
  QMessageBox::StandardButtons buttons;
  Button first;   // what Enter presses where nothing else is said
  Button escape;  // what closing the box means
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

Button ButtonOf(MessageAnswer answer) {
  return std::ranges::find(kAnswers, answer, [](const auto& pair) { return pair.first; })->second;
}

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

}  // namespace

MessageAnswer ShowMessageBox(QWidget* parent, const Message& message) {
  const ButtonSet& set = *std::ranges::find(kButtonSets, message.buttons, &ButtonSet::kind);
  QMessageBox box(IconOf(message.icon), ToQt(message.title), LinesToQt(message.text), set.buttons, parent);
  box.setTextFormat(Qt::PlainText);
  if (QAbstractButton* const abort = box.button(QMessageBox::Abort)) abort->setText(QStringLiteral("Abbrechen"));
  box.setDefaultButton(message.preselected ? ButtonOf(*message.preselected) : set.first);
  box.setEscapeButton(set.escape);
  const int pressed = box.exec();
  const auto answer = std::ranges::find(kAnswers, pressed, [](const auto& pair) { return int{pair.second}; });
  if (answer != std::end(kAnswers) && set.buttons.testFlag(answer->second)) return answer->first;
  return std::ranges::find(kAnswers, set.escape, [](const auto& pair) { return pair.second; })->first;
}

}  // namespace quiverion
