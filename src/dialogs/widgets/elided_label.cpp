#include "dialogs/widgets/elided_label.h"

#include <QHelpEvent>
#include <QPainter>
#include <QStyle>
#include <QToolTip>

namespace quiverion {

QSize ElidedLabel::minimumSizeHint() const {
  return {0, fontMetrics().lineSpacing() * static_cast<int>(text().count(u'\n') + 1) + 2};
}

QSize ElidedLabel::sizeHint() const {
  return minimumSizeHint();
}

QString ElidedLabel::Shown() const {
  QStringList lines = text().split(u'\n');
  for (QString& line : lines) line = fontMetrics().elidedText(line, Qt::ElideMiddle, contentsRect().width());
  return lines.join(u'\n');
}

void ElidedLabel::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  style()->drawItemText(&painter, contentsRect(), static_cast<int>(Qt::AlignVCenter | Qt::AlignLeft), palette(),
                        isEnabled(), Shown(), foregroundRole());
}

bool ElidedLabel::event(QEvent* event) {
  if (event->type() != QEvent::ToolTip) return QLabel::event(event);
  const QString whole = text();
  if (Shown() == whole) return false;
  // Never as rich text, even if a file name looks like it.
  QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(), whole.toHtmlEscaped(), this);
  return true;
}

}  // namespace quiverion
