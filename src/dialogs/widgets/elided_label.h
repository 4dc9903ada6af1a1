#pragma once

#include <QLabel>

namespace quiverion {

/// A label that shows the beginning and the end of lines that are too long, and the whole text as a tooltip. Its text
/// does not affect the width of the window.
class ElidedLabel : public QLabel {
  Q_OBJECT

 public:
  using QLabel::QLabel;

  QSize minimumSizeHint() const override;
  QSize sizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;
  bool event(QEvent* event) override;

 private:
  QString Shown() const;
};

}  // namespace quiverion
