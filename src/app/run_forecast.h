#pragma once

#include <QObject>
#include <QTimer>
#include <functional>
#include <memory>

#include "app/forecast_button.h"
#include "app/newest_task.h"
#include "dialogs/run_plan_model.h"

class QLabel;
class QStatusBar;

namespace quiverion {

/// What Start would take, and the files of the list.
struct ForecastInput {
  PlanRequest request;
  std::size_t listed = 0;
};

/// The part of the status bar that says which files are selected and what Start would do with them. It is computed in a
/// thread of its own, which reads names and collections.
class RunForecast : public QObject {
  Q_OBJECT

 public:
  /// `input` is asked after each change. All must outlive the object.
  RunForecast(FileSystem& files, QStatusBar& bar, std::function<ForecastInput()> input);

  /// Selection, macro or files have changed.
  void Refresh();

  /// Until Resume, nothing is computed and no file is open.
  void Stop();
  void Resume();

 signals:
  /// The list behind the findings is wanted, and known.
  void Wanted(const std::shared_ptr<const PlannedRun>& forecast);

 public slots:
  /// Emits Wanted, at once or when the forecast is known.
  void Show();

 private:
  void Begin();
  void Finish(std::uint64_t number, std::shared_ptr<const PlannedRun> forecast);

  FileSystem& files_;
  std::function<ForecastInput()> input_;
  QLabel& selection_;
  ForecastButton& findings_;
  QTimer begin_, pending_;
  std::uint64_t number_ = 0;                    // of the computation whose result counts
  std::shared_ptr<const PlannedRun> forecast_;  // null while it is not known
  bool isWanted_ = false;
  bool isStopped_ = false;
  NewestTask task_;
};

}  // namespace quiverion
