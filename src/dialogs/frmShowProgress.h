#pragma once

#include <QDialog>
#include <memory>

#include "messages/user_interface.h"

namespace Ui {
class frmShowProgress;
}

namespace quiverion {

/// How far a run is. Closing it asks whether the run is to be aborted.
class frmShowProgress : public QDialog {
  Q_OBJECT

 public:
  /// `messages` must outlive the window.
  explicit frmShowProgress(UserInterface& messages);
  ~frmShowProgress() override;

  void Show(const RunProgress& progress);

  /// True once the user has closed the window and confirmed it.
  bool AbortRequested() const { return abortRequested_; }

  void reject() override;  // Escape is closing

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  UserInterface& messages_;
  std::unique_ptr<Ui::frmShowProgress> ui_;
  std::int32_t filesDone_ = 0;  // as the caption shows it
  bool asking_ = false;
  bool abortRequested_ = false;
};

/// The caption of the window behind a file: a minimised one shows the progress in the task bar.
std::string ProgressCaption(bool minimised, std::int32_t filesDone, std::int32_t fileCount);

}  // namespace quiverion
