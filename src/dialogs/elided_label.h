#pragma once

#include <QLabel>

namespace quiverion {

/// A label of one line that shows the beginning and the end of a text too long for it, and the whole text as tooltip. Its
/// text has no say in the size of the window.
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
