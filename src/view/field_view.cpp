#include "view/field_view.h"

#include <QMouseEvent>
#include <QPainter>
#include <QWheelEvent>
#include <algorithm>
#include <cmath>

#include "dialogs/widgets/dark_palette.h"
#include "view/picture_painter.h"

namespace quiverion {
namespace {

constexpr int kStillAfter = 150;       // ms without a change
constexpr std::size_t kMany = 100000;  // vectors: more are drawn in less detail while something moves
constexpr double kClick = 4.0;         // pixels that a click may move
constexpr double kQuickSpacing = 16.0;
constexpr double kGrip = 6.0;  // pixels from a line that can be dragged

bool IsUsable(const Extent& extent, const Extent& whole) {
  const double scale = extent.Width() / whole.Width();
  return std::isfinite(scale) && scale > 1E-6 && scale < 1E3 && extent.right > extent.left &&
         extent.upper > extent.lower;
}

}  // namespace

FieldView::FieldView(QWidget* parent) : QWidget(parent) {
  setMouseTracking(true);
  setFocusPolicy(Qt::StrongFocus);
  setMinimumSize(160, 120);
  setAttribute(Qt::WA_OpaquePaintEvent);
  still_.setSingleShot(true);
  still_.setInterval(kStillAfter);
  connect(&still_, &QTimer::timeout, this, [this] { Recompose(false); });
}

void FieldView::ShowField(ShownField& field, const PictureChoices& choices) {
  field_ = &field;
  other_ = nullptr;
  choices_ = choices;
  message_.clear();
  const Extent whole = field.Summary(choices.subtractU, choices.subtractV).extent;
  if (whole != whole_) view_.reset();
  whole_ = whole;
  still_.stop();
  Recompose(false);
}

void FieldView::ShowLeftOfLine(ShownField* other) {
  other_ = field_ == nullptr ? nullptr : other;
  Recompose(false);
}

void FieldView::ShowTag(const QString& tag, const QString& tagLeftOfLine) {
  tag_ = tag;
  otherTag_ = tagLeftOfLine;
  update();
}

void FieldView::SetView(const std::optional<Extent>& view) {
  if (view_ == view) return;
  view_ = view;
  RecomposeMoving();
}

void FieldView::ShowMessage(const QString& text) {
  field_ = other_ = nullptr;
  message_ = text;
  still_.stop();
  update();
}

void FieldView::Fit() {
  view_.reset();
  Recompose(false);
  emit ViewChanged();
}

void FieldView::MarkPoints(const std::vector<GridPoint>& points) {
  marked_ = points;
  update();
}

Picture FieldView::PictureForPaper() {
  PictureChoices choices = ChoicesForSize();
  choices.darkPaper = false;
  return field_->Compose(choices).picture;
}

PictureChoices FieldView::ChoicesForSize() const {
  PictureChoices choices = choices_;
  choices.width = width();
  choices.height = height();
  choices.textSize = QFontInfo(font()).pixelSize();
  choices.darkPaper = IsDark(palette());
  choices.view = view_;
  return choices;
}

void FieldView::Recompose(bool quick) {
  if (field_ == nullptr) return update();
  PictureChoices choices = ChoicesForSize();
  if (quick) {
    choices.quick = true;
    choices.spacing = kQuickSpacing;
  }
  composition_ = field_->Compose(choices);
  isPainted_ = false;
  update();
}

// With many vectors in less detail, until nothing has changed for a moment.
void FieldView::RecomposeMoving() {
  const bool many = field_ != nullptr && field_->Field().status.Values().size() > kMany;
  if (many) still_.start();
  Recompose(many);
}

void FieldView::ChangeView(const Extent& view) {
  if (!IsUsable(view, whole_)) return;
  view_ = view;
  RecomposeMoving();
  emit ViewChanged();
}

void FieldView::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  if (field_ == nullptr) {
    painter.fillRect(rect(), palette().base());
    painter.setPen(palette().color(QPalette::Text));
    painter.drawText(rect().adjusted(16, 16, -16, -16), Qt::AlignCenter | Qt::TextWordWrap, message_);
    return;
  }
  if (!isPainted_ || image_.devicePixelRatio() != devicePixelRatioF()) {
    image_ = ImageOf(composition_.picture, devicePixelRatioF());
    image_.setDevicePixelRatio(devicePixelRatioF());
    otherImage_ = {};
    isPainted_ = true;
  }
  painter.drawImage(0, 0, image_);
  if (other_ != nullptr) PaintOther(painter);
  PaintTags(painter);
  PaintMarks(painter);
}

double FieldView::WipeX() const {
  const Rectangle& plot = composition_.map.plot;
  return plot.left + wipe_ * plot.width;
}

bool FieldView::IsOnLine(Point at) const {
  return other_ != nullptr && composition_.map.plot.Contains(at) && std::fabs(at.x - WipeX()) <= kGrip;
}

void FieldView::PaintOther(QPainter& painter) {
  if (otherImage_.isNull()) {
    PictureChoices choices = ChoicesForSize();
    choices.view = view_.value_or(whole_);
    choices.quick = still_.isActive();
    if (choices.quick) choices.spacing = kQuickSpacing;
    otherImage_ = ImageOf(other_->Compose(choices).picture, devicePixelRatioF());
    otherImage_.setDevicePixelRatio(devicePixelRatioF());
  }
  const Rectangle& plot = composition_.map.plot;
  const double x = WipeX();
  painter.setClipRect(QRectF(plot.left, plot.top, x - plot.left, plot.height));
  painter.drawImage(0, 0, otherImage_);
  painter.setClipping(false);
  painter.setPen(QPen(palette().color(QPalette::Highlight), 2.0));
  painter.drawLine(QPointF(x, plot.top), QPointF(x, plot.top + plot.height));
  painter.setBrush(palette().color(QPalette::Highlight));
  painter.drawEllipse(QPointF(x, plot.top + plot.height / 2.0), kGrip, kGrip);
  painter.setBrush(Qt::NoBrush);
}

void FieldView::PaintTags(QPainter& painter) const {
  const Rectangle& plot = composition_.map.plot;
  const auto paint = [&](const QString& text, double right) {
    if (text.isEmpty()) return;
    const QSizeF size = fontMetrics().size(0, text) + QSizeF(12, 6);
    const QRectF place(right - size.width() - 6, plot.top + 6, size.width(), size.height());
    painter.fillRect(place, palette().color(QPalette::Highlight));
    painter.setPen(palette().color(QPalette::HighlightedText));
    painter.drawText(place, Qt::AlignCenter, text);
  };
  painter.setClipRect(QRectF(plot.left, plot.top, plot.width, plot.height));
  paint(tag_, plot.left + plot.width);
  if (other_ != nullptr) paint(otherTag_, WipeX());
  painter.setClipping(false);
}

void FieldView::PaintMarks(QPainter& painter) const {
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(QPen(palette().color(QPalette::Highlight), 2.0));
  const PlotMap& map = composition_.map;
  const VectorField& field = field_->Field();
  std::vector<QPointF> places;
  for (const auto [i, j] : marked_) {
    if (i > field.columnCount || j > field.rowCount) continue;
    places.emplace_back(map.ToPictureX(field.posX[static_cast<std::size_t>(i - 1)]),
                        map.ToPictureY(field.posY[static_cast<std::size_t>(j - 1)]));
  }
  painter.setClipRect(QRectF(map.plot.left, map.plot.top, map.plot.width, map.plot.height));
  for (const QPointF& place : places) painter.drawEllipse(place, 7.0, 7.0);
  if (places.size() == 2) painter.drawLine(places[0], places[1]);
  painter.setClipping(false);
  if (drag_ == Drag::band) {
    painter.drawRect(QRectF(QPointF(pressed_.x, pressed_.y), QPointF(now_.x, now_.y)).normalized());
  } else if (drag_ == Drag::line) {
    painter.drawLine(QPointF(pressed_.x, pressed_.y), QPointF(now_.x, now_.y));
  }
  if (hasFocus()) {
    painter.setPen(palette().color(QPalette::Highlight));
    painter.drawRect(rect().adjusted(0, 0, -1, -1));
  }
}

void FieldView::resizeEvent(QResizeEvent* /*event*/) {
  RecomposeMoving();
}

void FieldView::changeEvent(QEvent* event) {
  QWidget::changeEvent(event);
  if (event->type() == QEvent::PaletteChange || event->type() == QEvent::FontChange) Recompose(false);
}

Point FieldView::At(const QMouseEvent& event) const {
  return {event.position().x(), event.position().y()};
}

void FieldView::wheelEvent(QWheelEvent* event) {
  const Point at{event->position().x(), event->position().y()};
  if (field_ == nullptr || !composition_.map.plot.Contains(at)) return event->ignore();
  event->accept();
  const double factor = std::pow(1.25, -event->angleDelta().y() / 120.0);
  const Point centre = composition_.map.ToField(at);
  const Extent& shown = composition_.map.extent;
  ChangeView({centre.x + (shown.left - centre.x) * factor, centre.x + (shown.right - centre.x) * factor,
              centre.y + (shown.lower - centre.y) * factor, centre.y + (shown.upper - centre.y) * factor});
}

void FieldView::mousePressEvent(QMouseEvent* event) {
  setFocus();
  if (field_ == nullptr || event->button() != Qt::LeftButton) return event->ignore();
  pressed_ = now_ = At(*event);
  pressedExtent_ = composition_.map.extent;
  drag_ = IsOnLine(pressed_) ? Drag::wipe : Drag::undecided;
}

void FieldView::mouseMoveEvent(QMouseEvent* event) {
  if (field_ == nullptr) return;
  now_ = At(*event);
  if (drag_ == Drag::undecided && std::hypot(now_.x - pressed_.x, now_.y - pressed_.y) > kClick) {
    const bool inPlot = composition_.map.plot.Contains(pressed_);
    drag_ = !inPlot                                            ? Drag::none
            : event->modifiers().testFlag(Qt::ShiftModifier)   ? Drag::band
            : event->modifiers().testFlag(Qt::ControlModifier) ? Drag::line
                                                               : Drag::move;
  }
  if (drag_ == Drag::wipe) {
    const Rectangle& plot = composition_.map.plot;
    wipe_ = std::clamp((now_.x - plot.left) / plot.width, 0.0, 1.0);
    return update();
  }
  if (drag_ == Drag::none) setCursor(IsOnLine(now_) ? Qt::SplitHCursor : Qt::ArrowCursor);
  if (drag_ == Drag::move) {
    const double dx = (pressed_.x - now_.x) / composition_.map.PixelsPerMmX();
    const double dy = (now_.y - pressed_.y) / composition_.map.PixelsPerMmY();
    const Extent& from = pressedExtent_;
    ChangeView({from.left + dx, from.right + dx, from.lower + dy, from.upper + dy});
  } else if (drag_ != Drag::none) {
    update();
  }
  const FieldSummary& summary = field_->Summary(choices_.subtractU, choices_.subtractV);
  emit PointHovered(PointUnder(summary, composition_.map, now_));
}

void FieldView::mouseReleaseEvent(QMouseEvent* event) {
  if (field_ == nullptr || event->button() != Qt::LeftButton) return;
  now_ = At(*event);
  const Drag drag = std::exchange(drag_, Drag::none);
  update();
  if (drag == Drag::band) return EndBand();
  if (drag == Drag::line) {
    emit LineDrawn(composition_.map.ToField(pressed_), composition_.map.ToField(now_));
    return;
  }
  if (drag != Drag::undecided) return;
  for (const LegendPlace& entry : composition_.legend) {
    if (!entry.place.Contains(now_)) continue;
    emit LegendClicked(entry.kind);
    return;
  }
  const FieldSummary& summary = field_->Summary(choices_.subtractU, choices_.subtractV);
  if (const auto point = PointUnder(summary, composition_.map, now_)) emit PointClicked(*point);
}

void FieldView::EndBand() {
  const Point a = composition_.map.ToField(pressed_), b = composition_.map.ToField(now_);
  const Extent band{std::min(a.x, b.x), std::max(a.x, b.x), std::min(a.y, b.y), std::max(a.y, b.y)};
  if (std::fabs(pressed_.x - now_.x) > kClick && std::fabs(pressed_.y - now_.y) > kClick) ChangeView(band);
}

void FieldView::leaveEvent(QEvent* /*event*/) {
  emit PointHovered(std::nullopt);
}

}  // namespace quiverion
