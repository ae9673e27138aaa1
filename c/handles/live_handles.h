// SPDX-License-Identifier: GPL-3.0-or-later
// The handles that a host has: made, and not freed yet.
#ifndef KESTAN_C_HANDLES_LIVE_HANDLES_H_
#define KESTAN_C_HANDLES_LIVE_HANDLES_H_

#include <memory>

namespace kestan::c {

class Handle;

// Any number of threads may call these functions at once.

// Keeps `handle` until it is removed.
//   Throws  std::bad_alloc.
void AddHandle(std::shared_ptr<Handle> handle);

// Forgets the handle at this address, if there is one. It is destroyed when no call uses it. In a
// child of fork() a handle of the parent is never destroyed: what it holds, and locks that other
// threads of the parent had, are not the child's.
void RemoveHandle(const void* address) noexcept;

// Returns the handle at this address; null if there is none.
std::shared_ptr<Handle> FindHandle(const void* address) noexcept;

// Returns how many times the process, or those that it comes from, has been a child of fork() since
// the first handle was made.
unsigned ForkCount() noexcept;

}  // namespace kestan::c

#endif  // KESTAN_C_HANDLES_LIVE_HANDLES_H_
