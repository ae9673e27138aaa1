// SPDX-License-Identifier: GPL-3.0-or-later
// Values that a process makes when it first needs them: FirstUse.
#ifndef KESTAN_SEARCH_PROCESS_FIRST_USE_H_
#define KESTAN_SEARCH_PROCESS_FIRST_USE_H_

#include <atomic>
#include <memory>

namespace kestan::search {

// Holds off other threads that make something, and fork(), while it lives: in a child of fork(),
// what another thread of the parent was making would stay half made, and its lock locked for ever.
// One may be made while the thread has others.
class MakingHold {
 public:
  MakingHold() noexcept;
  MakingHold(const MakingHold&) = delete;
  MakingHold& operator=(const MakingHold&) = delete;
  ~MakingHold();
};

// A value that is made once, by the first thread that asks for it, and never destroyed. Any number
// of threads may use it. For variables of static storage.
template <typename T>
class FirstUse {
 public:
  // Returns the value, which `make` returns. What `make` throws is thrown, and the next call tries
  // again.
  template <typename Make>
  const T& Get(const Make& make) {
    const T* value = value_.load(std::memory_order_acquire);
    if (value != nullptr) return *value;
    const MakingHold hold;
    value = value_.load(std::memory_order_relaxed);
    if (value != nullptr) return *value;
    value = std::unique_ptr<const T>(new T(make())).release();
    value_.store(value, std::memory_order_release);
    return *value;
  }

 private:
  std::atomic<const T*> value_{nullptr};
};

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_PROCESS_FIRST_USE_H_
