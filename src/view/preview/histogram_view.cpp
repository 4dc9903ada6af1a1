#include "view/preview/histogram_view.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <algorithm>
#include <cmath>

#include "dialogs/widgets/dark_palette.h"
#include "dialogs/widgets/qt_text.h"
#include "picture/scales.h"
#include "platform/text/numbers.h"

namespace quiverion {
namespace {

constexpr int kBins = 120;
constexpr double kGrip = 6.0;  // pixels from a line
const QColor kRejected(0xD5, 0x5E, 0x00);
const QColor kKept(0x56, 0xB4, 0xE9);

QString ShareText(std::int64_t count, std::int64_t total) {
  const double percent = total > 0 ? 100.0 * static_cast<double>(count) / static_cast<double>(total) : 0.0;
  return QString("%1 von %2 (%3 %)").arg(count).arg(total).arg(ToQt(NumberText(percent, 3)));
}

bool IsRejected(const CriterionReport& criterion, double value) {
  const std::vector<SearchLimit>& limits = criterion.limits;
  if (limits.size() == 1) return value > limits[0].value;
  const bool isInside = limits[0].value < value && value < limits[1].value;
  return criterion.rejectsBetween ? isInside : value < limits[0].value || value > limits[1].value;
}

}  // namespace

QString TogetherText(const SearchReport& report) {
  if (!report.error.empty()) return "Die Suche schlägt fehl: " + ToQt(report.error);
  if (report.criteria.empty()) return QStringLiteral("Keine Bedingung ist markiert: Die Suche verwirft nichts.");
  QString text = "Zusammen verworfen: " + ShareText(report.rejected, report.tested);
  if (report.criteria.size() > 1) text += report.anyOf ? ", eine Bedingung genügt" : ", alle müssen zutreffen";
  return text;
}

HistogramView::HistogramView(QWidget* parent) : QWidget(parent) {
  setMouseTracking(true);
  setFocusPolicy(Qt::StrongFocus);
}

void HistogramView::Show(const SearchReport& report) {
  report_ = report;
  // While a line is dragged the scale stays, or it would run away from the mouse.
  const bool keepsScale = dragged_ && histograms_.size() == report.criteria.size();
  std::vector<Histogram> histograms;
  for (std::size_t k = 0; k < report.criteria.size(); ++k) {
    if (keepsScale && k == dragged_->criterion) {
      histograms.push_back(histograms_[k]);
    } else {
      histograms.push_back(HistogramOf(report.criteria[k], kBins));
    }
  }
  histograms_ = std::move(histograms);
  const auto handles = Handles();
  if (focused_ && std::ranges::find(handles, *focused_) == handles.end()) focused_.reset();
  if (!focused_ && !handles.empty()) focused_ = handles.front();
  updateGeometry();
  update();
}

QSize HistogramView::sizeHint() const {
  const int line = fontMetrics().lineSpacing();
  return {40 * line, static_cast<int>(std::max<std::size_t>(report_.criteria.size(), 1)) * 7 * line};
}

QSize HistogramView::minimumSizeHint() const {
  const int line = fontMetrics().lineSpacing();
  return {15 * line, static_cast<int>(std::max<std::size_t>(report_.criteria.size(), 1)) * 5 * line};
}

QRectF HistogramView::PlotOf(std::size_t criterion) const {
  const double line = fontMetrics().lineSpacing();
  const double share =
      static_cast<double>(height()) / static_cast<double>(std::max<std::size_t>(histograms_.size(), 1));
  const double top = share * static_cast<double>(criterion);
  return {line, top + 1.3 * line, width() - 2.0 * line, std::max(share - 2.6 * line, 4.0)};
}

double HistogramView::PlaceOf(std::size_t criterion, double value) const {
  const Histogram& histogram = histograms_[criterion];
  const QRectF plot = PlotOf(criterion);
  return plot.left() + (value - histogram.from) / (histogram.to - histogram.from) * plot.width();
}

std::vector<HistogramView::Handle> HistogramView::Handles() const {
  std::vector<Handle> handles;
  for (std::size_t k = 0; k < report_.criteria.size(); ++k) {
    for (std::size_t limit = 0; limit < report_.criteria[k].limits.size(); ++limit) handles.push_back({k, limit});
  }
  return handles;
}

std::optional<HistogramView::Handle> HistogramView::HandleAt(QPointF at) const {
  std::optional<Handle> nearest;
  double distance = kGrip;
  for (const Handle& handle : Handles()) {
    const QRectF plot = PlotOf(handle.criterion);
    if (at.y() < plot.top() - fontMetrics().lineSpacing() || at.y() > plot.bottom()) continue;
    const double value = report_.criteria[handle.criterion].limits[handle.limit].value;
    const double apart = std::fabs(at.x() - PlaceOf(handle.criterion, value));
    if (apart > distance) continue;
    distance = apart;
    nearest = handle;
  }
  return nearest;
}

void HistogramView::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  painter.fillRect(rect(), palette().base());
  for (std::size_t k = 0; k < histograms_.size(); ++k) {
    PaintCriterion(painter, k);
    PaintLimits(painter, k);
  }
  if (!hasFocus()) return;
  painter.setPen(palette().color(QPalette::Highlight));
  painter.drawRect(rect().adjusted(0, 0, -1, -1));
}

void HistogramView::PaintCriterion(QPainter& painter, std::size_t index) const {
  const CriterionReport& criterion = report_.criteria[index];
  const Histogram& histogram = histograms_[index];
  const QRectF plot = PlotOf(index);
  const double line = fontMetrics().lineSpacing();
  painter.setPen(palette().color(QPalette::Text));
  QString heading = ToQt(criterion.name) + " in " + ToQt(criterion.unit) + ": allein " +
                    ShareText(criterion.rejectedAlone, report_.tested);
  if (criterion.incomparable > 0) heading += QString(", davon %1 ohne Vergleichswert").arg(criterion.incomparable);
  painter.drawText(QRectF(plot.left(), plot.top() - 1.3 * line, plot.width(), line), Qt::AlignLeft | Qt::AlignVCenter,
                   fontMetrics().elidedText(heading, Qt::ElideRight, static_cast<int>(plot.width())));
  const std::int64_t most = std::max<std::int64_t>(*std::ranges::max_element(histogram.bins), 1);
  const double scale = plot.height() / std::log1p(static_cast<double>(most));
  const double width = plot.width() / kBins, step = (histogram.to - histogram.from) / kBins;
  for (std::size_t bin = 0; bin < histogram.bins.size(); ++bin) {
    if (histogram.bins[bin] == 0) continue;
    const double tall = std::log1p(static_cast<double>(histogram.bins[bin])) * scale;
    const double middle = histogram.from + (static_cast<double>(bin) + 0.5) * step;
    painter.fillRect(QRectF(plot.left() + static_cast<double>(bin) * width, plot.bottom() - tall, width, tall),
                     IsRejected(criterion, middle) ? kRejected : kKept);
  }
  painter.drawLine(plot.bottomLeft(), plot.bottomRight());
  const Ticks ticks = TicksBetween(histogram.from, histogram.to, static_cast<int>(plot.width() / (5.0 * line)) + 1);
  for (const double value : ticks.values) {
    const double x = PlaceOf(index, value);
    painter.drawLine(QPointF(x, plot.bottom()), QPointF(x, plot.bottom() + 3));
    painter.drawText(QRectF(x - 3 * line, plot.bottom() + 3, 6 * line, line), Qt::AlignHCenter | Qt::AlignTop,
                     ToQt(TickText(value, ticks.step)));
  }
}

void HistogramView::PaintLimits(QPainter& painter, std::size_t index) const {
  const CriterionReport& criterion = report_.criteria[index];
  const QRectF plot = PlotOf(index);
  for (std::size_t limit = 0; limit < criterion.limits.size(); ++limit) {
    const double value = criterion.limits[limit].value;
    const double x = PlaceOf(index, value);
    if (!(x >= plot.left() - 1.0 && x <= plot.right() + 1.0)) continue;
    const bool isFocused = focused_ == Handle{index, limit};
    painter.setPen(QPen(palette().color(isFocused && hasFocus() ? QPalette::Highlight : QPalette::Text), 2.0));
    painter.drawLine(QPointF(x, plot.top()), QPointF(x, plot.bottom()));
    const QString text = ToQt(NumberText(value, 6));
    QRectF label(0, 0, fontMetrics().horizontalAdvance(text) + 8, fontMetrics().lineSpacing());
    label.moveTop(plot.top());
    label.moveLeft(x + label.width() < plot.right() ? x + 2 : x - label.width() - 2);
    painter.fillRect(label, palette().base());
    painter.drawText(label, Qt::AlignCenter, text);
  }
}

void HistogramView::Focus(std::optional<Handle> handle) {
  if (handle) focused_ = handle;
  update();
}

void HistogramView::mousePressEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton) return event->ignore();
  dragged_ = HandleAt(event->position());
  Focus(dragged_);
}

void HistogramView::mouseMoveEvent(QMouseEvent* event) {
  if (!dragged_) {
    setCursor(HandleAt(event->position()) ? Qt::SplitHCursor : Qt::ArrowCursor);
    return;
  }
  const QRectF plot = PlotOf(dragged_->criterion);
  const Histogram& histogram = histograms_[dragged_->criterion];
  const double share = std::clamp((event->position().x() - plot.left()) / plot.width(), 0.0, 1.0);
  Move(*dragged_, histogram.from + share * (histogram.to - histogram.from));
}

void HistogramView::mouseReleaseEvent(QMouseEvent* /*event*/) {
  if (!dragged_) return;
  dragged_.reset();
  Show(SearchReport(report_));
  emit LimitReleased();
}

void HistogramView::keyReleaseEvent(QKeyEvent* event) {
  QWidget::keyReleaseEvent(event);
  if (!event->isAutoRepeat()) emit LimitReleased();
}

// A limit stays on its side of the other one.
void HistogramView::Move(Handle handle, double value) {
  CriterionReport& criterion = report_.criteria[handle.criterion];
  std::vector<SearchLimit>& limits = criterion.limits;
  if (limits.size() == 2) {
    value = handle.limit == 0 ? std::min(value, limits[1].value) : std::max(value, limits[0].value);
  }
  const std::string text = LimitText(criterion, histograms_[handle.criterion], value);
  const double rounded = ReadParameterNumber(text);
  if (rounded == limits[handle.limit].value) return;
  limits[handle.limit].value = rounded;
  update();
  emit LimitMoved(ToQt(limits[handle.limit].key), ToQt(text));
}

void HistogramView::keyPressEvent(QKeyEvent* event) {
  const auto handles = Handles();
  const int by = event->key() == Qt::Key_Right ? 1 : event->key() == Qt::Key_Left ? -1 : 0;
  const int turn = event->key() == Qt::Key_Down ? 1 : event->key() == Qt::Key_Up ? -1 : 0;
  if (!focused_ || (by == 0 && turn == 0)) return QWidget::keyPressEvent(event);
  if (turn != 0) {
    const auto at = std::ranges::find(handles, *focused_) - handles.begin();
    const auto count = static_cast<std::ptrdiff_t>(handles.size());
    return Focus(handles[static_cast<std::size_t>((at + turn + count) % count)]);
  }
  const CriterionReport& criterion = report_.criteria[focused_->criterion];
  const Histogram& histogram = histograms_[focused_->criterion];
  double step = RoundDown125((histogram.to - histogram.from) / 100.0);
  if (criterion.wholeNumbers) step = std::max(step, 1.0);
  Move(*focused_, criterion.limits[focused_->limit].value + by * step);
}

}  // namespace quiverion
