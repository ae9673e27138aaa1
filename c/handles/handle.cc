// SPDX-License-Identifier: GPL-3.0-or-later
#include "c/handles/handle.h"

#include <iterator>

#include <string_view>

namespace kestan::c {
namespace {

int CodeOf(const Status& status) {
  switch (status.code()) {
    case StatusCode::kOk:
      return KESTAN_OK;
    case StatusCode::kNotFound:
      return KESTAN_ENOTFOUND;
    case StatusCode::kAlreadyExists:
      return KESTAN_EEXISTS;
    case StatusCode::kInvalidArgument:
      return KESTAN_EINVALID;
    case StatusCode::kInvalidQuery:
      return KESTAN_EQUERY;
    case StatusCode::kBusy:
      return KESTAN_EBUSY;
    case StatusCode::kDamaged:
      return KESTAN_EDAMAGED;
    case StatusCode::kVersion:
      return KESTAN_EVERSION;
    case StatusCode::kSystem:
      return KESTAN_ESYSTEM;
    case StatusCode::kOutOfMemory:
      return KESTAN_ENOMEM;
    case StatusCode::kInterrupted:
      return KESTAN_EINTERRUPTED;
    case StatusCode::kForked:
      return KESTAN_EFORKED;
  }
  return KESTAN_ESYSTEM;
}

// Whether the thread-local objects of this thread are gone.
thread_local bool is_thread_over = false;

struct ThisThread {
  ~ThisThread() {
    is_thread_over = true;
    if (token != nullptr) token->is_over.store(true, std::memory_order_release);
  }

  std::shared_ptr<ThreadToken> token;  // null: it has had no error
};

thread_local ThisThread this_thread;

}  // namespace

Error::Error(Status status) : status_(std::move(status)) {
  view_.code = CodeOf(status_);
  view_.system_error = status_.system_error();
  view_.column = status_.column() ? static_cast<std::int64_t>(*status_.column()) : -1;
  view_.message = status_.message().c_str();
  view_.message_length = status_.message().size();
  view_.file = status_.file().c_str();
  view_.file_length = status_.file().size();
}

int Handle::Return(Status status) noexcept {
  const int code = CodeOf(status);
  if (code == KESTAN_OK) return code;
  if (is_thread_over) return code;
  std::shared_ptr<ThreadToken>& thread = this_thread.token;
  const std::lock_guard<std::mutex> lock(mutex_);
  try {
    if (thread == nullptr) thread = std::make_shared<ThreadToken>();
    for (auto error = errors_.begin(); error != errors_.end();) {
      const bool is_over = error->first->is_over.load(std::memory_order_acquire);
      error = is_over ? errors_.erase(error) : std::next(error);
    }
    errors_[thread] = std::make_unique<Error>(std::move(status));
  } catch (const std::bad_alloc&) {
    errors_.erase(thread);
  }
  return code;
}

const kestan_error* Handle::last_error() const noexcept {
  if (is_thread_over || this_thread.token == nullptr) return nullptr;
  const std::lock_guard<std::mutex> lock(mutex_);
  const auto found = errors_.find(this_thread.token);
  return found == errors_.end() ? nullptr : found->second->view();
}

}  // namespace kestan::c

namespace {

constexpr std::string_view kForked =
    "it was opened by the process that forked this one; open the index again";

// Of every handle of a parent process, whose own errors may be locked for ever.
constexpr kestan_error kForkedError = {
    KESTAN_EFORKED, 0, -1, kForked.data(), kForked.size(), "", 0,
};

}  // namespace

int kestan_last_error(const kestan_error** out, const void* handle) {
  const auto live = kestan::c::FindHandle(handle);
  if (live == nullptr) return KESTAN_EHANDLE;
  if (out == nullptr) return KESTAN_EINVALID;
  *out = live->is_of_parent() ? &kForkedError : live->last_error();
  return KESTAN_OK;
}
