#include "dialogs/widgets/find_bar.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

namespace quiverion {
namespace {

constexpr int kLargeText = 4000000;  // characters; a longer one is not searched at each key

}  // namespace

FindBar::FindBar(QWidget* parent) : QWidget(parent), typed_(new QLineEdit(this)), notFound_(new QLabel(this)) {
  auto* const layout = new QHBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  auto* const label = new QLabel(QStringLiteral("S&uchen:"), this);
  label->setObjectName("lblFind");
  label->setBuddy(typed_);
  typed_->setObjectName("txtFind");
  typed_->setAccessibleName(QStringLiteral("Suchen"));
  notFound_->setObjectName("lblNotFound");
  notFound_->setText(QStringLiteral("nicht gefunden"));
  QSizePolicy keepsPlace = notFound_->sizePolicy();
  keepsPlace.setRetainSizeWhenHidden(true);
  notFound_->setSizePolicy(keepsPlace);
  notFound_->hide();
  layout->addWidget(label);
  layout->addWidget(typed_, 1);
  layout->addWidget(notFound_);
  const auto addButton = [&](const QString& text, const char* name, const QString& toolTip, void (FindBar::*action)()) {
    auto* const button = new QPushButton(text, this);
    button->setObjectName(name);
    button->setToolTip(toolTip);
    button->setAutoDefault(false);
    layout->addWidget(button);
    connect(button, &QPushButton::clicked, this, action);
  };
  addButton(QStringLiteral("&Vorige"), "cmdFindPrevious", QStringLiteral("Umschalt+F3"), &FindBar::FindPrevious);
  addButton(QStringLiteral("&Nächste"), "cmdFindNext", QStringLiteral("F3"), &FindBar::FindNext);
  connect(typed_, &QLineEdit::textEdited, this, &FindBar::FindTyped);
  hide();
}

void FindBar::Open() {
  const QString selected = text_->textCursor().selectedText();
  if (!selected.isEmpty() && !selected.contains(QChar::ParagraphSeparator)) typed_->setText(selected);
  show();
  typed_->setFocus();
  typed_->selectAll();
}

void FindBar::FindNext() {
  Find({});
}

void FindBar::FindPrevious() {
  Find(QTextDocument::FindBackward);
}

void FindBar::Find(QTextDocument::FindFlags flags) {
  if (typed_->text().isEmpty()) return Open();
  QTextDocument* const document = text_->document();
  QTextCursor found = document->find(typed_->text(), text_->textCursor(), flags);
  if (found.isNull()) {
    QTextCursor other(document);
    if (flags.testFlag(QTextDocument::FindBackward)) other.movePosition(QTextCursor::End);
    found = document->find(typed_->text(), other, flags);
  }
  Show(found);
}

// While typing, the place found so far may still be the right one.
void FindBar::FindTyped() {
  notFound_->hide();
  if (typed_->text().isEmpty() || text_->document()->characterCount() > kLargeText) return;
  QTextCursor begin = text_->textCursor();
  begin.setPosition(begin.selectionStart());
  text_->setTextCursor(begin);
  Find({});
}

void FindBar::Show(const QTextCursor& found) {
  notFound_->setVisible(found.isNull());
  if (found.isNull()) return;
  text_->setTextCursor(found);
  text_->centerCursor();
}

void FindBar::keyPressEvent(QKeyEvent* event) {
  const bool shift = event->modifiers().testFlag(Qt::ShiftModifier);
  switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:  // would press the default button of the window
      return shift ? FindPrevious() : FindNext();
    case Qt::Key_Escape:
      hide();
      return text_->setFocus();
    default:
      QWidget::keyPressEvent(event);
  }
}

}  // namespace quiverion
