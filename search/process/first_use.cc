// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/process/first_use.h"

#include <pthread.h>

#include <mutex>

namespace kestan::search {
namespace {

// A recursive one could not be released in a child, whose thread has another number.
std::mutex mutex;
thread_local unsigned holds_of_thread = 0;

// In a child, the lock is in the hands of the thread that forked, as it was before.
void Acquire() {
  if (holds_of_thread++ == 0) mutex.lock();
}

void Release() {
  if (--holds_of_thread == 0) mutex.unlock();
}

// If there is no memory for it, forks are not held off.
[[maybe_unused]] const int registered = pthread_atfork(Acquire, Release, Release);

}  // namespace

MakingHold::MakingHold() noexcept { Acquire(); }

MakingHold::~MakingHold() { Release(); }

}  // namespace kestan::search
