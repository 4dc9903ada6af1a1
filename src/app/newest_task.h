#pragma once

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>
#include <thread>

namespace quiverion {

/// Runs tasks one at a time in a thread of its own. Only the newest one counts: it cancels those before it.
class NewestTask {
 public:
  using IsCancelled = std::function<bool()>;
  using Task = std::function<void(const IsCancelled&)>;

  NewestTask();
  ~NewestTask();
  NewestTask(const NewestTask&) = delete;
  NewestTask& operator=(const NewestTask&) = delete;

  /// The task must not throw. It should ask now and then whether it is cancelled and return if it is.
  void Run(Task task);

  /// Cancels, and returns when nothing runs any more.
  void Stop();

 private:
  void Loop();

  std::mutex mutex_;
  std::condition_variable changed_;
  Task next_;
  std::atomic<std::uint64_t> newest_ = 0;
  bool isRunning_ = false;
  bool isEnding_ = false;
  std::thread thread_;
};

}  // namespace quiverion
