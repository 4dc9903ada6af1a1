#include "dialogs/exchange/background_tasks.h"

#include <utility>

namespace quiverion {

BackgroundTasks::BackgroundTasks() : thread_([this] { Loop(); }) {}

BackgroundTasks::~BackgroundTasks() {
  {
    const std::scoped_lock lock(mutex_);
    tasks_.clear();
    isEnding_ = isCancelled_ = true;
  }
  changed_.notify_all();
  thread_.join();
}

void BackgroundTasks::Add(Task task) {
  const std::scoped_lock lock(mutex_);
  tasks_.push_back(std::move(task));
  changed_.notify_all();
}

void BackgroundTasks::Cancel() {
  const std::scoped_lock lock(mutex_);
  tasks_.clear();
  isCancelled_ = true;
}

void BackgroundTasks::React(Reaction reaction) {
  QMetaObject::invokeMethod(this, std::move(reaction), Qt::QueuedConnection);
}

void BackgroundTasks::Loop() {
  for (;;) {
    Task task;
    {
      std::unique_lock lock(mutex_);
      changed_.wait(lock, [this] { return isEnding_ || !tasks_.empty(); });
      if (isEnding_) return;
      task = std::move(tasks_.front());
      tasks_.pop_front();
      isCancelled_ = false;
    }
    if (Reaction reaction = task()) React(std::move(reaction));
  }
}

}  // namespace quiverion
