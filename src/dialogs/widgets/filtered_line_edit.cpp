#include "dialogs/widgets/filtered_line_edit.h"

#include <QClipboard>
#include <QFocusEvent>
#include <QGuiApplication>
#include <QValidator>
#include <algorithm>

#include "dialogs/widgets/qt_text.h"

namespace quiverion {
namespace {

std::u16string_view View(QStringView text) {
  return {text.utf16(), static_cast<std::size_t>(text.size())};
}

}  // namespace

// Sees every change of the text, including drops and input methods, and removes what the rule refuses. Typed and pasted
// text has been filtered before, because a change that is corrected here cannot be undone.
class FilteredLineEdit::Filter : public QValidator {
 public:
  explicit Filter(FilteredLineEdit& box) : QValidator(&box), box_(box) {}

  // The inserted text ends at the caret. The text after it is old, and so is the common beginning of both texts.
  State validate(QString& text, int& caret) const override {
    if (text == box_.held_) return Acceptable;
    const QStringView right = QStringView(text).mid(caret);
    const qsizetype limit = std::min<qsizetype>(caret, box_.held_.size() - right.size());
    qsizetype kept = 0;
    while (kept < limit && text[kept] == box_.held_[kept]) ++kept;
    const QStringView left = QStringView(text).left(kept);
    const QStringView typed = QStringView(text).mid(kept, caret - kept);
    const std::u16string accepted = FilterKeys(box_.rule_, View(left), View(typed), View(right));
    if (accepted.empty() && !typed.isEmpty()) return Invalid;  // nothing is left: the box undoes the change
    const QString filtered = left.toString() + QString::fromStdU16String(accepted) + right.toString();
    caret = static_cast<int>(kept + static_cast<qsizetype>(accepted.size()));
    text = filtered;
    box_.held_ = filtered;
    return Acceptable;
  }

 private:
  FilteredLineEdit& box_;
};

FilteredLineEdit::FilteredLineEdit(QWidget* parent) : QLineEdit(parent) {
  setValidator(new Filter(*this));
}

void FilteredLineEdit::ShowText(const std::string& text) {
  held_ = ToQt(text);
  setText(held_);
  updateGeometry();
}

std::string FilteredLineEdit::Text() const {
  return FromQt(text());
}

QSize FilteredLineEdit::minimumSizeHint() const {
  const qsizetype usual = rule_ == KeyRule::digits ? 4 : 7, most = 16;
  const QSize least = QLineEdit::minimumSizeHint();  // room for one letter
  const int digits = static_cast<int>(std::clamp(text().size(), usual, most));
  return {least.width() + digits * fontMetrics().horizontalAdvance(u'0'), least.height()};
}

void FilteredLineEdit::InsertFiltered(const QString& typed) {
  const QStringView whole(text());
  const bool selected = hasSelectedText();
  const QStringView left = whole.left(selected ? selectionStart() : cursorPosition());
  const QStringView right = whole.mid(selected ? selectionEnd() : cursorPosition());
  const std::u16string accepted = FilterKeys(rule_, View(left), View(typed), View(right));
  if (!accepted.empty()) insert(QString::fromStdU16String(accepted));
}

void FilteredLineEdit::keyPressEvent(QKeyEvent* event) {
  if (event->matches(QKeySequence::Paste)) return InsertFiltered(QGuiApplication::clipboard()->text());
  const bool typed = !event->text().isEmpty() && event->text().front().isPrint() &&
                     (event->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier)) == 0;
  typed ? InsertFiltered(event->text()) : QLineEdit::keyPressEvent(event);
}

void FilteredLineEdit::focusInEvent(QFocusEvent* event) {
  QLineEdit::focusInEvent(event);
  selectAll();
  selectAll_ = event->reason() == Qt::MouseFocusReason;
}

void FilteredLineEdit::mouseReleaseEvent(QMouseEvent* event) {
  QLineEdit::mouseReleaseEvent(event);
  if (selectAll_ && !hasSelectedText()) selectAll();
  selectAll_ = false;
}

}  // namespace quiverion
