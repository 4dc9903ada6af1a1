#pragma once

#include <QTimer>
#include <QWidget>
#include <memory>

#include "view/field_view.h"
#include "view/preview/preview_worker.h"

namespace quiverion {

/// How a field is shown together with the one that it is compared with.
enum class ComparisonMode { after, before, blink, wipe, sideBySide, difference };

/// Two states of a field, in one of the modes. They share zoom and scale; the difference has a scale of its own.
class ComparisonView : public QWidget {
  Q_OBJECT

 public:
  explicit ComparisonView(QWidget* parent = nullptr);

  /// Shows fields that were computed; `wishes` are those that they were asked for with.
  void Show(std::shared_ptr<PreviewFields> fields, const ViewWishes& wishes);

  void ShowMessage(const QString& text);
  void SetMode(ComparisonMode mode);
  ComparisonMode Mode() const { return mode_; }
  void Fit();

  /// The view that has the state after the step, or all that there is to see.
  FieldView& MainView() { return *main_; }

  /// What is under the mouse in the states that are shown, a line; empty if nothing.
  QString Readout(GridPoint point) const;

 signals:
  void PointHovered(std::optional<GridPoint> point);
  void LegendClicked(StatusKind kind);

 private:
  void ShowFields();
  void ShowIn(FieldView& view, PreparedField& field, bool ownScale);
  void Follow(FieldView& from, FieldView& to);

  FieldView* main_;   // owned by the widget, like the other
  FieldView* other_;  // beside it, for the state before
  std::shared_ptr<PreviewFields> fields_;
  ViewWishes wishes_;
  ComparisonMode mode_ = ComparisonMode::after;
  QTimer blinker_;
  bool showsBefore_ = false;  // while it blinks
};

}  // namespace quiverion
