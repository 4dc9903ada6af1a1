#include "dialogs/widgets/icons.h"

#include <QtGlobal>

// Outside of any namespace, where the macro has to stand.
void UseIcons() {
  Q_INIT_RESOURCE(icons);
}
