#pragma once

class QApplication;

namespace quiverion {

/// Prepares what all windows share: name and icon of the application, German texts of the widgets, German numbers.
void PrepareApplication(QApplication& application);

}  // namespace quiverion
