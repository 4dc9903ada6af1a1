#pragma once

#include <QObject>
#include <atomic>
#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>

namespace quiverion {

/// Runs tasks one after the other in a thread of its own, so that the windows stay alive.
class BackgroundTasks : public QObject {
 public:
  /// What is left to do in the thread of the windows; may be empty.
  using Reaction = std::function<void()>;
  using Task = std::function<Reaction()>;

  BackgroundTasks();

  /// Cancels, and waits for the task that is running. Its reaction is not called.
  ~BackgroundTasks() override;

  /// A task must not throw, and must not use anything that the windows change.
  void Add(Task task);

  /// Drops the tasks that have not begun, and makes IsCancelled true for the one that is running. Reactions of tasks
  /// that have ended are still called.
  void Cancel();

  /// For a task: whether its result is no longer wanted.
  bool IsCancelled() const { return isCancelled_; }

  /// Calls `reaction` in the thread of the windows, in the order of the calls.
  void React(Reaction reaction);

 private:
  void Loop();

  std::mutex mutex_;
  std::condition_variable changed_;
  std::deque<Task> tasks_;
  std::atomic<bool> isCancelled_ = false;
  bool isEnding_ = false;
  std::thread thread_;
};

}  // namespace quiverion
