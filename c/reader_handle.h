// SPDX-License-Identifier: GPL-3.0-or-later
// Readers, and what they share with all that they have made.
#ifndef KESTAN_C_READER_HANDLE_H_
#define KESTAN_C_READER_HANDLE_H_

#include <kestan/c.h>
#include <kestan/search/index_reader.h>

#include <memory>
#include <mutex>
#include <optional>
#include <shared_mutex>
#include <utility>

#include "c/handles/handle.h"

namespace kestan::c {

// A reader that is open. Searches hold `mutex` together, and a refresh by itself. Each takes its
// turn before: or a refresh would wait for as long as any thread searches. A search inside of a
// callback does not, as the refresh may wait for the search that called it.
struct OpenReader {
  explicit OpenReader(search::IndexReader opened) : index(std::move(opened)) {}

  search::IndexReader index;
  std::mutex turn;
  std::shared_mutex mutex;
};

// Marks that this thread runs a callback of a search in `reader` with `document`, until the mark is
// destroyed. A callback that used the reader could wait for the search that called it.
class CallbackMark {
 public:
  CallbackMark(const OpenReader* reader, const kestan_filtered* document) noexcept;
  CallbackMark(const CallbackMark&) = delete;
  CallbackMark& operator=(const CallbackMark&) = delete;
  ~CallbackMark();

  // Returns whether this thread runs a callback of a search in `reader`.
  static bool IsSet(const OpenReader* reader) noexcept;

  // Returns whether this thread runs any callback.
  static bool IsAnySet() noexcept;

  // Returns whether this thread runs a callback with `document`.
  static bool HasDocument(const kestan_filtered* document) noexcept;

 private:
  const OpenReader* const reader_;
  const kestan_filtered* const document_;
  const CallbackMark* const outer_;
};

}  // namespace kestan::c

struct kestan_reader final : kestan::c::Handle {
  std::shared_ptr<kestan::c::OpenReader> reader;  // null if it could not be opened
};

namespace kestan::c {

// Runs `call`, which takes an IndexReader and returns a code, for `handle` with the snapshot of
// `reader`, which stays as it is meanwhile.
template <typename Call>
int UseSnapshot(Handle* handle, OpenReader* reader, Call call) {
  if (reader == nullptr) return handle->Return(Invalid("the reader could not be opened"));
  if (CallbackMark::IsSet(reader)) {
    return handle->Return(Invalid("a filter cannot use the reader that it filters for"));
  }
  std::unique_lock<std::mutex> turn(reader->turn, std::defer_lock);
  if (!CallbackMark::IsAnySet()) turn.lock();
  const std::shared_lock<std::shared_mutex> lock(reader->mutex);
  if (turn.owns_lock()) turn.unlock();
  return call(reader->index);
}

// The same for a reader's handle, with `out` for the result, which must not be null. `call` takes
// the live handle and the IndexReader.
template <typename Out, typename Call>
int Ask(Out* out, const kestan_reader* handle, Call call) noexcept {
  return Use(handle, [&](kestan_reader& live) {
    if (out == nullptr) return live.Return(Invalid("the output is null"));
    return UseSnapshot(&live, live.reader.get(),
                       [&](const search::IndexReader& index) { return call(live, index); });
  });
}

// The same for a handle as the result, which is null after an error.
template <typename Out, typename Call>
int AskForHandle(Out** out, const kestan_reader* handle, Call call) noexcept {
  if (out != nullptr) *out = nullptr;
  return Ask(out, handle, call);
}

}  // namespace kestan::c

#endif  // KESTAN_C_READER_HANDLE_H_
