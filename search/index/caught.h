// SPDX-License-Identifier: GPL-3.0-or-later
// Exceptions end where the library does.
#ifndef KESTAN_SEARCH_INDEX_CAUGHT_H_
#define KESTAN_SEARCH_INDEX_CAUGHT_H_

#include <kestan/search/status.h>

#include <exception>
#include <new>
#include <string>
#include <system_error>

namespace kestan::search {

// Returns what an exception says as an error about `file`. Needs no memory: without any, the error
// is kOutOfMemory and names no file.
inline Status StatusOfException(const std::exception& error, const std::string& file) noexcept {
  try {
    if (const auto* const system = dynamic_cast<const std::system_error*>(&error)) {
      return Status::OfSystem(StatusCode::kSystem, system->code().value(), error.what(), file);
    }
    if (dynamic_cast<const std::bad_alloc*>(&error) == nullptr) {
      return {StatusCode::kSystem, error.what(), file};
    }
    return {StatusCode::kOutOfMemory, "out of memory", file};
  } catch (const std::exception&) {
    return {StatusCode::kOutOfMemory, "out of memory"};  // short enough to need no memory
  }
}

// The same for what a host threw that is no std::exception.
inline Status StatusOfThrown(const std::string& file) noexcept {
  try {
    return {StatusCode::kSystem, "a function of the host threw what is no std::exception", file};
  } catch (const std::exception& error) {
    return StatusOfException(error, file);
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
  } catch (...) {
    return StatusOfThrown(file);
  }
}

// Calls `progress`, a function of the host's that may be null.
//   Returns  whether to go on; not if it throws, so that no work is torn in the middle.
template <typename Progress, typename... Arguments>
bool GoesOn(const Progress& progress, const Arguments&... arguments) noexcept {
  try {
    return !progress || progress(arguments...);
  } catch (...) {
    return false;
  }
}

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_INDEX_CAUGHT_H_
