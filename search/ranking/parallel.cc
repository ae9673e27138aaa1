// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/ranking/parallel.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <mutex>
#include <thread>
#include <vector>

namespace kestan::search {
namespace {

class Tasks {
 public:
  Tasks(std::size_t count, const std::function<void(std::size_t)>& task)
      : count_(count), task_(task) {}

  void Run() {
    try {
      for (std::size_t i = next_++; i < count_; i = next_++) task_(i);
    } catch (...) {
      next_ = count_;
      const std::lock_guard<std::mutex> lock(mutex_);
      if (failure_ == nullptr) failure_ = std::current_exception();
    }
  }

  void Rethrow() const {
    if (failure_ != nullptr) std::rethrow_exception(failure_);
  }

 private:
  const std::size_t count_;
  const std::function<void(std::size_t)>& task_;
  std::atomic<std::size_t> next_{0};
  std::mutex mutex_;
  std::exception_ptr failure_;
};

}  // namespace

void ParallelFor(std::size_t count, std::size_t threads,
                 const std::function<void(std::size_t)>& task) {
  if (std::min(count, threads) <= 1) {  // without asking the system for its cores
    for (std::size_t i = 0; i < count; ++i) task(i);
    return;
  }
  const std::size_t cores = std::max(1u, std::thread::hardware_concurrency());
  const std::size_t helpers = std::min({count, threads, cores});
  Tasks tasks(count, task);
  std::vector<std::thread> started;
  started.reserve(helpers);
  try {
    while (started.size() + 1 < helpers) started.emplace_back([&tasks] { tasks.Run(); });
  } catch (const std::exception&) {  // no more threads or memory: those that run do it all
  }
  tasks.Run();
  for (std::thread& thread : started) thread.join();
  tasks.Rethrow();
}

}  // namespace kestan::search
