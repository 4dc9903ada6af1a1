#pragma once

#include <QElapsedTimer>
#include <memory>
#include <optional>

#include "app/main_window.h"
#include "dialogs/frmShowProgress.h"
#include "dialogs/repaint_throttle.h"
#include "messages/user_interface.h"

namespace quiverion {

/// The user interface of the core with windows: message boxes over the active window, the progress window instead of
/// the main window during a run, the progress bar of the main window during a computation.
class QtUserInterface : public UserInterface {
 public:
  /// The window must outlive the object.
  explicit QtUserInterface(MainWindow& window) : window_(window) {}

  MessageAnswer Ask(const Message& box) override;
  void RunStarted(const RunProgress& progress) override;
  void ShowProgress(const RunProgress& progress) override;
  void RunEnded() override;
  void ComputationStarted() override;
  void ShowComputation(std::int64_t done, std::int64_t total) override;
  void ComputationEnded() override;
  bool Yield() override;

 private:
  void Begin();
  bool PaintingIsDue(std::string_view step);

  MainWindow& window_;
  std::unique_ptr<frmShowProgress> progressWindow_;  // during a run
  RunProgress progress_;                             // the last one, shown or not
  RepaintThrottle throttle_;
  QElapsedTimer time_;
  qint64 eventsDue_ = 0;  // ns of `time_`: when a computation next processes events
};

}  // namespace quiverion
