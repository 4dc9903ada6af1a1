#pragma once

#include <QLabel>

namespace quiverion {

/// A label that shows of each line too long for it the beginning and the end, and the whole text as tooltip. Its text has
/// no say in the width of the window.
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
