#include "app/newest_task.h"

#include <utility>

namespace quiverion {

NewestTask::NewestTask() : thread_([this] { Loop(); }) {}

NewestTask::~NewestTask() {
  {
    const std::lock_guard lock(mutex_);
    isEnding_ = true;
    next_ = nullptr;
    ++newest_;
  }
  changed_.notify_all();
  thread_.join();
}

void NewestTask::Run(Task task) {
  {
    const std::lock_guard lock(mutex_);
    next_ = std::move(task);
    ++newest_;
  }
  changed_.notify_all();
}

void NewestTask::Stop() {
  std::unique_lock lock(mutex_);
  next_ = nullptr;
  ++newest_;
  changed_.wait(lock, [this] { return !isRunning_; });
}

void NewestTask::Loop() {
  std::unique_lock lock(mutex_);
  while (true) {
    changed_.wait(lock, [this] { return next_ || isEnding_; });
    if (isEnding_) return;
    const Task task = std::exchange(next_, nullptr);
    const std::uint64_t number = newest_;
    isRunning_ = true;
    lock.unlock();
    task([this, number] { return newest_ != number; });
    lock.lock();
    isRunning_ = false;
    changed_.notify_all();
  }
}

}  // namespace quiverion
