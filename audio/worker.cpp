#include "audio/worker.h"

#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>
#include <utility>

namespace halvenor {

struct Worker::Queue {
  std::mutex mutex;
  std::condition_variable changed;
  std::deque<std::function<void()>> tasks; // the first is the one that runs
  bool ending = false;

  void Run();
};

void Worker::Queue::Run() {
  std::unique_lock lock(mutex);
  for (;;) {
    changed.wait(lock, [this] { return !tasks.empty() || ending; });
    if (tasks.empty()) return;
    {
      const std::function<void()> task = std::move(tasks.front());
      lock.unlock();
      task();
    } // what the task owned is given back before the worker counts as idle
    lock.lock();
    tasks.pop_front();
    changed.notify_all();
  }
}

Worker::Worker() : queue_(std::make_shared<Queue>()) {
  std::thread([queue = queue_] { queue->Run(); }).detach();
}

Worker::~Worker() {
  const std::scoped_lock lock(queue_->mutex);
  queue_->ending = true;
  queue_->changed.notify_all();
}

void Worker::Do(std::function<void()> task) {
  const std::scoped_lock lock(queue_->mutex);
  queue_->tasks.push_back(std::move(task));
  queue_->changed.notify_all();
}

void Worker::Finish(std::chrono::milliseconds patience) {
  std::unique_lock lock(queue_->mutex);
  queue_->changed.wait_for(lock, patience, [this] { return queue_->tasks.empty(); });
}

} // namespace halvenor
