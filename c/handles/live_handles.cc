// SPDX-License-Identifier: GPL-3.0-or-later
#include "c/handles/live_handles.h"

#include <pthread.h>

#include <array>
#include <atomic>
#include <cstddef>
#include <map>
#include <mutex>
#include <new>
#include <utility>

#include "c/handles/handle.h"

namespace kestan::c {
namespace {

// Nodes go from one table to the other without an allocation.
struct LiveHandles {
  std::mutex mutex;
  std::map<const void*, std::shared_ptr<Handle>> handles;
  std::map<const void*, std::shared_ptr<Handle>> of_parent;  // that the child has freed
};

std::atomic<unsigned> fork_count{0};

// It outlives whatever frees its handles when the process ends.
LiveHandles& Live() noexcept {
  alignas(LiveHandles) static std::array<std::byte, sizeof(LiveHandles)> memory;
  static auto* const live = new (memory.data()) LiveHandles;
  return *live;
}

// The lock is held while the process forks, so that the child finds the table whole. It is one that
// a child may release: a lock for readers and writers knows the thread that has it, by a number
// that another one has in the child.
void BeforeFork() { Live().mutex.lock(); }

void InParent() { Live().mutex.unlock(); }

void InChild() {
  ++fork_count;
  Live().mutex.unlock();
}

// From the first handle on, forks are counted.
void CountForks() {
  static const bool is_counting = [] {
    if (pthread_atfork(BeforeFork, InParent, InChild) != 0) throw std::bad_alloc();
    return true;
  }();
  static_cast<void>(is_counting);
}

}  // namespace

void AddHandle(std::shared_ptr<Handle> handle) {
  CountForks();
  LiveHandles& live = Live();
  const std::lock_guard<std::mutex> lock(live.mutex);
  const void* const address = handle.get();
  live.handles.emplace(address, std::move(handle));
}

void RemoveHandle(const void* address) noexcept {
  LiveHandles& live = Live();
  std::shared_ptr<Handle> removed;  // destroyed after the lock is released
  const std::lock_guard<std::mutex> lock(live.mutex);
  auto node = live.handles.extract(address);
  if (node.empty()) return;
  if (node.mapped()->is_of_parent()) {
    live.of_parent.insert(std::move(node));
  } else {
    removed = std::move(node.mapped());
  }
}

std::shared_ptr<Handle> FindHandle(const void* address) noexcept {
  LiveHandles& live = Live();
  const std::lock_guard<std::mutex> lock(live.mutex);
  const auto found = live.handles.find(address);
  return found == live.handles.end() ? nullptr : found->second;
}

unsigned ForkCount() noexcept { return fork_count; }

}  // namespace kestan::c
