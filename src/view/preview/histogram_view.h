#pragma once

#include <QWidget>
#include <optional>
#include <vector>

#include "preview/search_report.h"

namespace quiverion {

/// What the search for faulty vectors compares: a histogram for each selected criterion, with its limits as lines that
/// can be dragged, or moved with the arrow keys. What would be rejected has another colour. Counts are drawn on a
/// logarithmic scale, so that single outliers can be seen.
class HistogramView : public QWidget {
  Q_OBJECT

 public:
  explicit HistogramView(QWidget* parent = nullptr);

  void Show(const SearchReport& report);

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override;

 signals:
  /// Somebody moves a limit: the parameter's key and its new text.
  void LimitMoved(const QString& key, const QString& text);

  /// The mouse button or the key that moved it was released.
  void LimitReleased();

 protected:
  void paintEvent(QPaintEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void keyReleaseEvent(QKeyEvent* event) override;

 private:
  struct Handle {
    std::size_t criterion, limit;
    bool operator==(const Handle&) const = default;
  };

  QRectF PlotOf(std::size_t criterion) const;
  double PlaceOf(std::size_t criterion, double value) const;
  std::optional<Handle> HandleAt(QPointF at) const;
  std::vector<Handle> Handles() const;
  void PaintCriterion(QPainter& painter, std::size_t criterion) const;
  void PaintLimits(QPainter& painter, std::size_t criterion) const;
  void Move(Handle handle, double value);
  void Focus(std::optional<Handle> handle);

  SearchReport report_;
  std::vector<Histogram> histograms_;
  std::optional<Handle> dragged_;
  std::optional<Handle> focused_;  // what the arrow keys move
};

/// The sentence about all criteria together.
QString TogetherText(const SearchReport& report);

}  // namespace quiverion
