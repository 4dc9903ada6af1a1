#include "dialogs/widgets/wrapped_label.h"

#include <QEvent>

namespace quiverion {

void WrappedLabel::resizeEvent(QResizeEvent* event) {
  QLabel::resizeEvent(event);
  KeepHeight();
}

void WrappedLabel::changeEvent(QEvent* event) {
  QLabel::changeEvent(event);
  if (event->type() == QEvent::FontChange) KeepHeight();
}

}  // namespace quiverion
