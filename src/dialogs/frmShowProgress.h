#pragma once

#include <QDialog>
#include <QElapsedTimer>
#include <memory>

#include "messages/user_interface.h"

namespace Ui {
class frmShowProgress;
}

namespace quiverion {

/// Shows the progress of a run. Closing it asks whether to abort the run.
class frmShowProgress : public QDialog {
  Q_OBJECT

 public:
  /// `messages` must outlive the window.
  explicit frmShowProgress(UserInterface& messages);
  ~frmShowProgress() override;

  void Show(const RunProgress& progress);

  /// True once the user has closed the window and confirmed the question.
  bool AbortRequested() const { return abortRequested_; }

  void reject() override;  // Escape closes the window

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  UserInterface& messages_;
  std::unique_ptr<Ui::frmShowProgress> ui_;
  std::int32_t filesDone_ = 0;  // as the caption shows it
  QElapsedTimer time_;          // since the window was created
  bool asking_ = false;
  bool abortRequested_ = false;
};

/// The caption after a file: it shows the progress in the task bar when the window is minimised.
std::string ProgressCaption(bool minimised, std::int32_t filesDone, std::int32_t fileCount);

/// The line below the labels: the time left after `seconds`, and the number of files with errors. Empty before the
/// first file is done.
std::string RemainingText(const RunProgress& progress, double seconds);

}  // namespace quiverion
