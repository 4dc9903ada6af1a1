#pragma once

#include <QTimer>
#include <QWidget>
#include <optional>

#include "picture/readout.h"
#include "picture/shown_field.h"

namespace quiverion {

/// The picture of a field in a window, with mouse and wheel: the wheel zooms about the mouse, dragging moves, a band
/// drawn with Shift is zoomed into, a line drawn with Ctrl gives a profile, a click on a name of the legend is passed
/// on.
class FieldView : public QWidget {
  Q_OBJECT

 public:
  explicit FieldView(QWidget* parent = nullptr);

  /// Shows a field. It must outlive the view, or the next call. The part that is shown stays if the field covers the
  /// same area as the one before.
  void ShowField(ShownField& field, const PictureChoices& choices);

  /// Shows another field left of a line that can be dragged; null ends that. Both must have the same choices; the other
  /// field must outlive the view, or the next call of this or of ShowField.
  void ShowLeftOfLine(ShownField* other);

  /// A word in the corner of the plot, such as which of two fields this is; empty for none.
  void ShowTag(const QString& tag, const QString& tagLeftOfLine = {});

  /// The part that is shown; everything if none. Emits nothing.
  void SetView(const std::optional<Extent>& view);
  const std::optional<Extent>& View() const { return view_; }

  /// Shows lines of text in place of a picture.
  void ShowMessage(const QString& text);

  /// Shows the whole field.
  void Fit();

  /// Points that are marked, at most two, with a line between them.
  void MarkPoints(const std::vector<GridPoint>& points);

  /// The picture as it is shown, on light paper, for files and printers.
  Picture PictureForPaper();

  bool HasField() const { return field_ != nullptr; }

 signals:
  void PointHovered(std::optional<GridPoint> point);
  void PointClicked(GridPoint point);
  void LineDrawn(Point from, Point to);  ///< positions in mm
  void LegendClicked(StatusKind kind);
  void ViewChanged();  ///< somebody has zoomed or moved

 protected:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void changeEvent(QEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void leaveEvent(QEvent* event) override;

 private:
  enum class Drag { none, undecided, move, band, line, wipe };

  PictureChoices ChoicesForSize() const;
  void Recompose(bool quick);
  void RecomposeMoving();
  void ChangeView(const Extent& view);
  void EndBand();
  Point At(const QMouseEvent& event) const;
  void PaintMarks(QPainter& painter) const;
  void PaintTags(QPainter& painter) const;
  void PaintOther(QPainter& painter);
  double WipeX() const;
  bool IsOnLine(Point at) const;

  ShownField* field_ = nullptr;
  PictureChoices choices_;
  Extent whole_;  // of the field
  std::optional<Extent> view_;
  Composition composition_;
  QImage image_;
  bool isPainted_ = false;  // the image is that of the composition
  ShownField* other_ = nullptr;
  QImage otherImage_;
  double wipe_ = 0.5;  // place of the line, as a share of the plot
  QString tag_, otherTag_;
  QString message_;
  std::vector<GridPoint> marked_;
  QTimer still_;  // runs while something moves
  Drag drag_ = Drag::none;
  Point pressed_, now_;
  Extent pressedExtent_;
};

}  // namespace quiverion
