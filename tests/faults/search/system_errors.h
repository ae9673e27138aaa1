// SPDX-License-Identifier: GPL-3.0-or-later
// Which errors a system call may have.
#ifndef KESTAN_TESTS_FAULTS_SEARCH_SYSTEM_ERRORS_H_
#define KESTAN_TESTS_FAULTS_SEARCH_SYSTEM_ERRORS_H_

#include <cerrno>
#include <vector>

#include "tests/faults/system_call_watch.h"

namespace kestan_faults {

constexpr int kShort = -1;  // in place of an error: half of the bytes are moved

inline std::vector<int> ErrorsOf(Function function) {
  switch (function) {
    case Function::kOpen:
      return {EIO, ENOSPC, EINTR, EMFILE};
    case Function::kClose:
      return {EIO, EINTR, ENOSPC};
    case Function::kWrite:
      return {ENOSPC, EIO, EINTR, kShort};
    case Function::kRead:
      return {EIO, EINTR, kShort};
    case Function::kTruncate:
    case Function::kRename:
      return {ENOSPC, EIO};
    case Function::kSync:
      return {EIO, ENOSPC, EINTR};
    case Function::kMap:
      return {ENOMEM};
    case Function::kMakeFolder:
      return {EACCES, ENOSPC, EIO};
    case Function::kListFolder:
      return {EIO, EMFILE};
    case Function::kLookUp:
      return {EACCES, EIO};
    case Function::kStartWriting:
      return {ENOSYS, EIO};
    default:
      return {EIO};
  }
}

inline Ruling RulingOf(int error, const SystemCall& call) {
  return error == kShort ? Ruling{0, (call.bytes + 1) / 2} : Ruling{error};
}

}  // namespace kestan_faults

#endif  // KESTAN_TESTS_FAULTS_SEARCH_SYSTEM_ERRORS_H_
