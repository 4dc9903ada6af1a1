#pragma once

#include <QObject>

namespace quiverion {

/// For the destructor of a window: its controls live longer than its members, and some tell a last change when they
/// lose the focus.
inline void DisconnectChildren(QObject& window) {
  for (QObject* const child : window.findChildren<QObject*>()) child->disconnect(&window);
}

}  // namespace quiverion
