#include "app/forecast_button.h"

#include <QPainter>
#include <QStyleOptionFocusRect>

#include "dialogs/widgets/qt_text.h"
#include "dialogs/widgets/severity_colours.h"
#include "dialogs/widgets/tool_tip.h"

namespace quiverion {
namespace {

constexpr int kMargin = 4;  // pixels at each side

}  // namespace

ForecastButton::ForecastButton(QWidget* parent) : QAbstractButton(parent) {
  setFocusPolicy(Qt::TabFocus);
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
  ShowFindings({});
}

void ForecastButton::ShowFindings(const std::vector<PlanFinding>& findings) {
  parts_.clear();
  isPending_ = false;
  QStringList texts;
  for (const PlanFinding& finding : findings) {
    parts_.push_back({ToQt(finding.text).simplified(), finding.severity});
    texts.append(parts_.back().text);
  }
  setText(texts.join(QStringLiteral(", ")));
  setAccessibleName(QStringLiteral("Was Start tun würde: ") + text());
  setToolTip(ToolTipOf(texts));
  setEnabled(!findings.empty());
  setCursor(findings.empty() ? Qt::ArrowCursor : Qt::PointingHandCursor);
  update();
}

void ForecastButton::ShowPending() {
  ShowFindings({});
  isPending_ = true;
  parts_.push_back({QStringLiteral("wird geprüft ..."), Severity::note});
  setText(parts_.back().text);
  setAccessibleName(text());
}

QSize ForecastButton::sizeHint() const {
  return {40 * fontMetrics().averageCharWidth(), fontMetrics().lineSpacing() + kMargin};
}

QSize ForecastButton::minimumSizeHint() const {
  return {0, sizeHint().height()};
}

void ForecastButton::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  QFont letters = font();
  letters.setUnderline(underMouse() && isEnabled());
  painter.setFont(letters);
  const QString separator = QStringLiteral("  ·  ");
  int left = kMargin;
  for (std::size_t k = 0; k < parts_.size(); ++k) {
    const int room = width() - kMargin - left;
    const QString text =
        fontMetrics().elidedText((k == 0 ? QString() : separator) + parts_[k].text, Qt::ElideRight, room);
    if (text.isEmpty()) break;
    painter.setPen(isPending_ ? palette().color(QPalette::Disabled, QPalette::WindowText)
                              : SeverityColour(parts_[k].severity, palette()));
    painter.drawText(QRect(left, 0, room, height()), Qt::AlignVCenter | Qt::AlignLeft | Qt::TextSingleLine, text);
    left += fontMetrics().horizontalAdvance(text);
  }
  if (!hasFocus()) return;
  QStyleOptionFocusRect focus;
  focus.initFrom(this);
  focus.rect = rect();
  style()->drawPrimitive(QStyle::PE_FrameFocusRect, &focus, &painter, this);
}

void ForecastButton::enterEvent(QEnterEvent* event) {
  QAbstractButton::enterEvent(event);
  update();
}

void ForecastButton::leaveEvent(QEvent* event) {
  QAbstractButton::leaveEvent(event);
  update();
}

}  // namespace quiverion
