// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/index/inverting/inverter_pool.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <exception>
#include <iterator>
#include <mutex>
#include <new>
#include <thread>
#include <utility>

namespace kestan::search {
namespace {

using Task = std::function<Status(SegmentMaker& maker)>;

constexpr std::size_t kMostWaiting = 2;
constexpr std::chrono::milliseconds kProgressInterval{50};

Status Run(const Task& task, SegmentMaker& maker) {
  try {
    return task(maker);
  } catch (const std::bad_alloc&) {
    return {StatusCode::kOutOfMemory, "out of memory"};
  } catch (const std::exception& error) {
    return {StatusCode::kSystem, error.what()};
  }
}

}  // namespace

// A thread with a queue of what it is to do.
class InverterPool::Worker {
 public:
  explicit Worker(SegmentMaker::Settings settings)
      : maker_(std::move(settings)), thread_([this] { RunTasks(); }) {}

  ~Worker() {
    Stop();
    End();
  }

  // Puts `task` into the queue; waits while that is full.
  //   Returns  the first error so far: the task is then not run.
  Status Post(Task task) {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this] { return tasks_.size() < kMostWaiting || !status_.ok(); });
    if (status_.ok()) tasks_.push_back(std::move(task));
    changed_.notify_all();
    return status_;
  }

  // Takes what waits out of the queue, and any later task too.
  void Stop() {
    const std::lock_guard lock(mutex_);
    if (status_.ok()) status_ = Status(StatusCode::kInterrupted, "interrupted");
    tasks_.clear();
    changed_.notify_all();
  }

  // Returns whether all is done, after waiting for that a little.
  bool WaitUntilIdle() {
    std::unique_lock lock(mutex_);
    return changed_.wait_for(lock, kProgressInterval,
                             [this] { return tasks_.empty() && !is_busy_; });
  }

  // Ends the thread when the queue is empty.
  void End() {
    {
      const std::lock_guard lock(mutex_);
      is_ending_ = true;
      changed_.notify_all();
    }
    if (thread_.joinable()) thread_.join();
  }

  // After End().
  const Status& status() const { return status_; }
  std::vector<WrittenSegment> TakeWritten() { return maker_.TakeWritten(); }

 private:
  void RunTasks() {
    std::unique_lock lock(mutex_);
    for (;;) {
      changed_.wait(lock, [this] { return !tasks_.empty() || is_ending_; });
      if (tasks_.empty()) return;
      Task task = std::move(tasks_.front());
      tasks_.pop_front();
      is_busy_ = true;
      changed_.notify_all();
      lock.unlock();
      Status status = Run(task, maker_);
      task = nullptr;
      lock.lock();
      is_busy_ = false;
      if (status_.ok() && !status.ok()) status_ = std::move(status);
      if (!status_.ok()) tasks_.clear();
      changed_.notify_all();
    }
  }

  SegmentMaker maker_;  // used by the thread alone until it has ended
  std::mutex mutex_;
  std::condition_variable changed_;
  std::deque<Task> tasks_;
  bool is_busy_ = false;
  bool is_ending_ = false;
  Status status_;
  std::thread thread_;
};

InverterPool::InverterPool(Settings settings)
    : settings_(std::move(settings)), workers_(settings_.threads) {}

InverterPool::~InverterPool() = default;

InverterPool::Worker& InverterPool::WorkerOf(unsigned thread) {
  std::unique_ptr<Worker>& worker = workers_[thread];
  if (worker == nullptr) {
    SegmentMaker::Settings settings;
    settings.folder = settings_.folder;
    settings.with_positions = settings_.with_positions;
    settings.memory = settings_.thread_memory;
    settings.first_number = settings_.first_number + thread;
    settings.number_step = settings_.threads;
    settings.written_bytes = &written_bytes_;
    worker = std::make_unique<Worker>(std::move(settings));
  }
  return *worker;
}

Status InverterPool::Add(std::vector<PendingDocument> documents, unsigned thread) {
  // A task must be one that can be copied.
  auto shared = std::make_shared<std::vector<PendingDocument>>(std::move(documents));
  return WorkerOf(thread).Post(
      [shared](SegmentMaker& maker) { return maker.Add(std::move(*shared)); });
}

Status InverterPool::Change(PendingChange change, unsigned thread) {
  return WorkerOf(thread).Post([change = std::move(change)](SegmentMaker& maker) {
    maker.Change(change);
    return Status();
  });
}

Result<std::vector<WrittenSegment>> InverterPool::Finish(
    const std::function<bool(std::uint64_t written_bytes)>& goes_on) {
  for (const auto& worker : workers_) {
    if (worker == nullptr) continue;
    // The error, if there is one, is returned below.
    static_cast<void>(worker->Post([](SegmentMaker& maker) { return maker.Flush(); }));
  }
  for (const auto& worker : workers_) {
    while (worker != nullptr && !worker->WaitUntilIdle()) {
      if (goes_on(written_bytes_)) continue;
      for (const auto& each : workers_) {
        if (each != nullptr) each->Stop();
      }
    }
  }
  std::vector<WrittenSegment> written;
  for (const auto& worker : workers_) {
    if (worker == nullptr) continue;
    worker->End();
    if (!worker->status().ok()) return worker->status();
    std::vector<WrittenSegment> segments = worker->TakeWritten();
    std::move(segments.begin(), segments.end(), std::back_inserter(written));
  }
  if (!goes_on(written_bytes_)) return Status(StatusCode::kInterrupted, "interrupted");
  std::sort(written.begin(), written.end(), [](const auto& left, const auto& right) {
    return left.info.number < right.info.number;
  });
  return written;
}

}  // namespace kestan::search
