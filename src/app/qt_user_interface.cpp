#include "app/qt_user_interface.h"

#include <QApplication>

#include "dialogs/widgets/message_box.h"

namespace quiverion {
namespace {

constexpr qint64 kBetweenEvents = 1000000;  // ns

}  // namespace

MessageAnswer QtUserInterface::Ask(const Message& box) {
  if (progressWindow_) progressWindow_->Show(progress_);
  QWidget* parent = QApplication::activeModalWidget();  // never the help, which may be moved over the box
  if (parent == nullptr && progressWindow_) parent = progressWindow_.get();
  if (parent == nullptr && window_.Widget().isVisible()) parent = &window_.Widget();
  return ShowMessageBox(parent, box);
}

void QtUserInterface::Begin() {
  throttle_ = RepaintThrottle();
  time_.start();
}

bool QtUserInterface::PaintingIsDue(std::string_view step) {
  return throttle_.IsDue(step, static_cast<double>(time_.elapsed()) / 1000.0);
}

void QtUserInterface::RunStarted(const RunProgress& progress) {
  Begin();
  progress_ = progress;
  progressWindow_ = std::make_unique<frmShowProgress>(*this);
  progressWindow_->Show(progress);
  window_.Widget().hide();
  progressWindow_->show();
}

void QtUserInterface::ShowProgress(const RunProgress& progress) {
  progress_ = progress;
  if (PaintingIsDue(progress.event)) progressWindow_->Show(progress);
}

void QtUserInterface::RunEnded() {
  progressWindow_.reset();
}

void QtUserInterface::ComputationStarted() {
  Begin();
  eventsDue_ = 0;
  window_.ComputationStarted();
}

void QtUserInterface::ShowComputation(std::int64_t done, std::int64_t total) {
  if (PaintingIsDue("Statistik")) window_.ShowComputation(done, total);
}

void QtUserInterface::ComputationEnded() {
  window_.ComputationEnded();
}

bool QtUserInterface::Yield() {
  // Processing events takes as long as adding a small field to the sums.
  const qint64 now = time_.nsecsElapsed();
  if (!progressWindow_ && now < eventsDue_) return false;
  QCoreApplication::processEvents();
  eventsDue_ = now + kBetweenEvents;
  if (window_.IsQuitting()) return true;
  return progressWindow_ && progressWindow_->AbortRequested();
}

}  // namespace quiverion
