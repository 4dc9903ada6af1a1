#pragma once

class QApplication;

namespace quiverion {

/// What every window needs of the application: its name and icon, German texts of the widgets, German numbers.
void PrepareApplication(QApplication& application);

}  // namespace quiverion
