#pragma once

#include <QLabel>

namespace quiverion {

/// A label that breaks its text into lines and always has the height for them: the least size of a window does not
/// consider that.
class WrappedLabel : public QLabel {
  Q_OBJECT

 public:
  using QLabel::QLabel;

 protected:
  void resizeEvent(QResizeEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  void KeepHeight() { setMinimumHeight(heightForWidth(width())); }
};

}  // namespace quiverion
