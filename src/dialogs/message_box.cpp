#include "dialogs/message_box.h"

#include <QMessageBox>
#include <QPushButton>
#include <span>

#include "dialogs/qt_text.h"

namespace quiverion {
namespace {

using Buttons = std::span<const MessageAnswer>;

// The last one is what closing the box means.
Buttons ButtonsOf(MessageButtons buttons) {
  using enum MessageAnswer;
  static constexpr MessageAnswer kOk[] = {ok}, kOkCancel[] = {ok, cancel}, kRetryCancel[] = {retry, cancel},
                                 kRetryIgnoreAbort[] = {retry, ignore, abort}, kYesNo[] = {yes, no},
                                 kYesNoCancel[] = {yes, no, cancel};
  switch (buttons) {
    case MessageButtons::okCancel:
      return kOkCancel;
    case MessageButtons::retryCancel:
      return kRetryCancel;
    case MessageButtons::abortRetryIgnore:
      return kRetryIgnoreAbort;
    case MessageButtons::yesNo:
      return kYesNo;
    case MessageButtons::yesNoCancel:
      return kYesNoCancel;
    case MessageButtons::ok:
      break;
  }
  return kOk;
}

QMessageBox::StandardButton StandardButton(MessageAnswer answer) {
  switch (answer) {
    case MessageAnswer::ok:
      return QMessageBox::Ok;
    case MessageAnswer::retry:
      return QMessageBox::Retry;
    case MessageAnswer::cancel:
      return QMessageBox::Cancel;
    case MessageAnswer::abort:
      return QMessageBox::Abort;
    case MessageAnswer::ignore:
      return QMessageBox::Ignore;
    case MessageAnswer::yes:
      return QMessageBox::Yes;
    case MessageAnswer::no:
      break;
  }
  return QMessageBox::No;
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
  QMessageBox box(IconOf(message.icon), ToQt(message.title), LinesToQt(message.text), QMessageBox::NoButton, parent);
  box.setTextFormat(Qt::PlainText);
  const Buttons answers = ButtonsOf(message.buttons);
  for (const MessageAnswer answer : answers) box.addButton(StandardButton(answer));
  if (QAbstractButton* const abort = box.button(QMessageBox::Abort)) abort->setText(QStringLiteral("Abbrechen"));
  const MessageAnswer first =
      message.buttons == MessageButtons::abortRetryIgnore ? MessageAnswer::abort : answers.front();
  box.setDefaultButton(StandardButton(message.preselected.value_or(first)));
  box.setEscapeButton(StandardButton(answers.back()));
  const int pressed = box.exec();
  for (const MessageAnswer answer : answers) {
    if (pressed == StandardButton(answer)) return answer;
  }
  return answers.back();
}

}  // namespace quiverion
