// SPDX-License-Identifier: GPL-3.0-or-later
#include "c/handles/live_handles.h"

#include <pthread.h>

#include <atomic>
#include <mutex>
#include <shared_mutex>
#include <unordered_map>

#include "c/handles/handle.h"

namespace kestan::c {
namespace {

struct LiveHandles {
  std::shared_mutex mutex;
  std::unordered_map<const void*, Handle*> handles;
};

std::atomic<unsigned> fork_count{0};

LiveHandles& Live();

// The lock is held while the process forks, so that the child finds it free and the table whole.
void BeforeFork() { Live().mutex.lock(); }

void InParent() { Live().mutex.unlock(); }

void InChild() {
  ++fork_count;
  Live().mutex.unlock();
}

// It outlives whatever frees its handles when the process ends.
LiveHandles& Live() {
  static LiveHandles* const live = [] {
    pthread_atfork(BeforeFork, InParent, InChild);
    return new LiveHandles;
  }();
  return *live;
}

}  // namespace

void AddHandle(Handle* handle) {
  LiveHandles& live = Live();
  const std::unique_lock<std::shared_mutex> lock(live.mutex);
  live.handles.emplace(handle, handle);
}

bool RemoveHandle(const void* handle) noexcept {
  LiveHandles& live = Live();
  const std::unique_lock<std::shared_mutex> lock(live.mutex);
  return live.handles.erase(handle) > 0;
}

Handle* FindHandle(const void* address) noexcept {
  LiveHandles& live = Live();
  const std::shared_lock<std::shared_mutex> lock(live.mutex);
  const auto found = live.handles.find(address);
  return found == live.handles.end() ? nullptr : found->second;
}

unsigned ForkCount() noexcept { return fork_count; }

}  // namespace kestan::c
