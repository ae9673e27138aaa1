// SPDX-License-Identifier: GPL-3.0-or-later
// Exceptions end where the library does.
#ifndef KESTAN_SEARCH_INDEX_CAUGHT_H_
#define KESTAN_SEARCH_INDEX_CAUGHT_H_

#include <kestan/search/status.h>

#include <exception>
#include <new>
#include <string>

namespace kestan::search {

// Returns what an exception says as an error about `file`. Needs no memory: without any, the error
// is kOutOfMemory and names no file.
inline Status StatusOfException(const std::exception& error, const std::string& file) noexcept {
  try {
    if (dynamic_cast<const std::bad_alloc*>(&error) == nullptr) {
      return {StatusCode::kSystem, error.what(), file};
    }
    return {StatusCode::kOutOfMemory, "out of memory", file};
  } catch (const std::exception&) {
    return {StatusCode::kOutOfMemory, "out of memory"};  // short enough to need no memory
  }
}

// Calls `work`, which returns a Status or a Result, and makes an exception an error like any other:
// a lack of memory, a thread that the system refuses, data that ICU does not have.
template <typename Work>
auto Caught(const std::string& file, const Work& work) -> decltype(work()) {
  try {
    return work();
  } catch (const std::exception& error) {
    return StatusOfException(error, file);
  }
}

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_INDEX_CAUGHT_H_
