#include "view/preview/sample_strip.h"

#include <QHelpEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QToolTip>
#include <algorithm>

#include "dialogs/widgets/qt_text.h"
#include "picture/scales.h"

namespace quiverion {
namespace {

const QColor kRejected(0xD5, 0x5E, 0x00);
const QColor kFilled(0x56, 0xB4, 0xE9);
constexpr double kWidest = 28.0;  // pixels of a file

QString PercentText(double share) {
  return ToQt(NumberText(100.0 * share, 3)) + " %";
}

}  // namespace

SampleStrip::SampleStrip(QWidget* parent) : QWidget(parent) {
  setFocusPolicy(Qt::StrongFocus);
  setMinimumHeight(3 * fontMetrics().lineSpacing());
}

void SampleStrip::Show(const std::vector<SampledFile>& files, std::size_t count, const std::vector<std::string>& names,
                       std::size_t current) {
  files_ = files;
  names_.clear();
  for (const SampledFile& file : files) names_.push_back(file.index < names.size() ? names[file.index] : "");
  count_ = std::max(count, files.size());
  current_ = current;
  focused_ = std::min(focused_, count_ == 0 ? 0 : count_ - 1);
  update();
}

QRectF SampleStrip::PlaceOf(std::size_t place) const {
  const double wide = std::min(kWidest, (width() - 2.0) / static_cast<double>(std::max<std::size_t>(count_, 1)));
  return {1.0 + wide * static_cast<double>(place), 1.0, wide, height() - 2.0};
}

std::optional<std::size_t> SampleStrip::FileAt(QPointF at) const {
  for (std::size_t k = 0; k < files_.size(); ++k) {
    if (PlaceOf(k).contains(at)) return k;
  }
  return std::nullopt;
}

void SampleStrip::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  painter.fillRect(rect(), palette().base());
  double most = 0.05;
  for (const SampledFile& file : files_) most = std::max({most, file.RejectedShare(), file.FilledShare()});
  const double sign = fontMetrics().lineSpacing();
  for (std::size_t k = 0; k < count_; ++k) {
    const QRectF place = PlaceOf(k);
    painter.setPen(palette().color(QPalette::Mid));
    painter.drawLine(place.bottomLeft(), place.bottomRight());
    if (k >= files_.size()) continue;
    const SampledFile& file = files_[k];
    if (file.index == current_) painter.fillRect(place, palette().alternateBase());
    const double room = place.height() - sign, half = place.width() / 2.0 - 1.0;
    const double rejected = room * file.RejectedShare() / most, filled = room * file.FilledShare() / most;
    painter.fillRect(QRectF(place.left() + 1.0, place.bottom() - rejected, half, rejected), kRejected);
    painter.fillRect(QRectF(place.left() + 1.0 + half, place.bottom() - filled, half, filled), kFilled);
    const QString mark = file.failed ? "✕" : !file.isKnown ? "?" : file.isOdd ? "!" : "";
    painter.setPen(mark == "?" ? palette().color(QPalette::Text) : kRejected);
    painter.drawText(QRectF(place.left(), place.top(), place.width(), sign), Qt::AlignCenter, mark);
    if (file.index == current_ || (hasFocus() && k == focused_)) {
      painter.setPen(palette().color(hasFocus() && k == focused_ ? QPalette::Highlight : QPalette::Text));
      painter.drawRect(place.adjusted(0, 0, -1, -1));
    }
  }
}

QString SampleStrip::TextOf(const SampledFile& file) const {
  const auto place = static_cast<std::size_t>(&file - files_.data());
  const QString name = ToQt(names_[place]);
  if (file.failed) return name + ": Fehler";
  if (!file.isKnown) return name + ": hängt von den Dateien davor ab";
  return name + ": " + PercentText(file.RejectedShare()) + " verworfen, " + PercentText(file.FilledShare()) +
         " gefüllt" + (file.isOdd ? "  (auffällig)" : "");
}

bool SampleStrip::event(QEvent* event) {
  if (event->type() != QEvent::ToolTip) return QWidget::event(event);
  const auto* const help = static_cast<QHelpEvent*>(event);
  const auto file = FileAt(help->pos());
  if (file) QToolTip::showText(help->globalPos(), TextOf(files_[*file]).toHtmlEscaped(), this);
  return true;
}

void SampleStrip::mousePressEvent(QMouseEvent* event) {
  const auto file = FileAt(event->position());
  if (!file || event->button() != Qt::LeftButton) return event->ignore();
  focused_ = *file;
  update();
  emit Chosen(static_cast<int>(files_[*file].index));
}

void SampleStrip::keyPressEvent(QKeyEvent* event) {
  const int by = event->key() == Qt::Key_Right ? 1 : event->key() == Qt::Key_Left ? -1 : 0;
  const bool opens = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter || event->key() == Qt::Key_Space;
  if (by == 0 && !opens) return QWidget::keyPressEvent(event);
  if (by != 0) {
    const auto last = static_cast<std::ptrdiff_t>(count_) - 1;
    focused_ = static_cast<std::size_t>(
        std::clamp<std::ptrdiff_t>(static_cast<std::ptrdiff_t>(focused_) + by, 0, std::max<std::ptrdiff_t>(last, 0)));
    return update();
  }
  if (focused_ < files_.size()) emit Chosen(static_cast<int>(files_[focused_].index));
}

}  // namespace quiverion
