// SPDX-License-Identifier: GPL-3.0-or-later
// The handles that a host has: made, and not freed yet.
#ifndef KESTAN_C_HANDLES_LIVE_HANDLES_H_
#define KESTAN_C_HANDLES_LIVE_HANDLES_H_

namespace kestan::c {

class Handle;

// Any number of threads may call these functions at once.

// Takes note of `handle`.
//   Throws  std::bad_alloc.
void AddHandle(Handle* handle);

// Forgets `handle`, which need not be one.
//   Returns  whether it was one.
bool RemoveHandle(const void* handle) noexcept;

// Returns the handle at this address; null if there is none.
Handle* FindHandle(const void* address) noexcept;

// Returns how many times the process, or those that it comes from, has been a child of fork() since
// the first handle was made.
unsigned ForkCount() noexcept;

}  // namespace kestan::c

#endif  // KESTAN_C_HANDLES_LIVE_HANDLES_H_
