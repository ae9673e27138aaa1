// SPDX-License-Identifier: GPL-3.0-or-later
// What all handles have in common, and the way of every call from C into C++ and back.
#ifndef KESTAN_C_HANDLES_HANDLE_H_
#define KESTAN_C_HANDLES_HANDLE_H_

#include <kestan/c.h>
#include <kestan/search/status.h>

#include <atomic>
#include <exception>
#include <map>
#include <memory>
#include <mutex>
#include <new>
#include <string>
#include <utility>

#include "c/handles/live_handles.h"

namespace kestan::c {

using search::Status;
using search::StatusCode;

// A Status as C sees it. It stays where it is: the view points into it.
class Error {
 public:
  explicit Error(Status status);
  Error(const Error&) = delete;
  Error& operator=(const Error&) = delete;

  const kestan_error* view() const { return &view_; }

 private:
  const Status status_;
  kestan_error view_;
};

// Stands for a thread, whose identifier would be that of a later one too.
struct ThreadToken {
  std::atomic<bool> is_over{false};
};

// The base of the types that a host has pointers to. Each thread has its own last error, so that
// threads which share a handle do not overwrite each other's.
class Handle {
 public:
  Handle() : fork_count_(ForkCount()) {}
  Handle(const Handle&) = delete;
  Handle& operator=(const Handle&) = delete;
  virtual ~Handle() = default;

  // Keeps `status` as the last error of this thread unless it is a success. Where there is no
  // memory for it, there is no last error.
  //   Returns  its code for C.
  int Return(Status status) noexcept;

  // Returns the last error of this thread; null if there was none.
  const kestan_error* last_error() const noexcept;

  // Returns whether the handle was made before the process was forked from its parent.
  bool is_of_parent() const noexcept { return fork_count_ != ForkCount(); }

 private:
  const unsigned fork_count_;
  mutable std::mutex mutex_;
  std::map<std::shared_ptr<ThreadToken>, std::unique_ptr<Error>> errors_;  // by thread
};

// Returns the live handle of the type H at this address; null if there is none.
template <typename H>
std::shared_ptr<H> Find(const H* handle) noexcept {
  return std::dynamic_pointer_cast<H>(FindHandle(handle));
}

// Runs `call`, which returns a code, for `handle`; what it throws becomes the handle's last error.
template <typename Call>
int Guarded(Handle* handle, Call call) noexcept {
  try {
    return call();
  } catch (const std::bad_alloc&) {
    return handle->Return(Status(StatusCode::kOutOfMemory, "memory ran out"));
  } catch (const std::exception& error) {
    return handle->Return(Status(StatusCode::kSystem, error.what()));
  }
}

// The same with the live handle as an argument of `call`. It lives on until the call has ended,
// even if a callback or another thread frees it.
template <typename H, typename Call>
int Use(const H* handle, Call call) noexcept {
  const std::shared_ptr<H> live = Find(handle);
  if (live == nullptr) return KESTAN_EHANDLE;
  if (live->is_of_parent()) return KESTAN_EFORKED;
  return Guarded(live.get(), [&] { return call(*live); });
}

// Hands `handle` to the host, which owns it from now on.
//   Throws  std::bad_alloc.
template <typename H>
int HandOver(std::unique_ptr<H> handle, H** out) {
  H* const address = handle.get();
  AddHandle(std::move(handle));
  *out = address;
  return KESTAN_OK;
}

// Makes a handle of the type H, and `open`s it, which returns a Status: the host gets the handle
// after an error too, for its message.
template <typename H, typename Open>
int HandOverOpened(H** out, Open open) noexcept {
  if (out == nullptr) return KESTAN_EINVALID;
  *out = nullptr;
  try {
    auto owned = std::make_unique<H>();
    H* const handle = owned.get();
    HandOver(std::move(owned), out);
    return Guarded(handle, [&] { return handle->Return(open(*handle)); });
  } catch (const std::bad_alloc&) {
    return KESTAN_ENOMEM;
  }
}

// Frees `handle` if it is one, as soon as no call uses it.
template <typename H>
void Free(H* handle) noexcept {
  if (Find(handle) != nullptr) RemoveHandle(handle);
}

inline Status Invalid(std::string message) {
  return {StatusCode::kInvalidArgument, std::move(message)};
}

}  // namespace kestan::c

#endif  // KESTAN_C_HANDLES_HANDLE_H_
