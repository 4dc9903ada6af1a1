#pragma once

#include <QWidget>
#include <cstdint>

namespace quiverion {

/// What the user interface of the core needs of the main window.
class MainWindow {
 public:
  virtual ~MainWindow() = default;

  /// The window that message boxes stand over and that a run hides.
  virtual QWidget& Widget() = 0;

  /// A statistic is computed: Start and Abbrechen give way to the progress bar.
  virtual void ComputationStarted() = 0;
  virtual void ShowComputation(std::int64_t done, std::int64_t total) = 0;
  virtual void ComputationEnded() = 0;

  /// True once the window is closed for good: a run or computation in progress must end.
  virtual bool IsQuitting() const = 0;
};

}  // namespace quiverion
