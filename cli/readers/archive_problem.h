// SPDX-License-Identifier: GPL-3.0-or-later
// What libarchive says when it cannot go on.
#ifndef KESTAN_CLI_READERS_ARCHIVE_PROBLEM_H_
#define KESTAN_CLI_READERS_ARCHIVE_PROBLEM_H_

#include <archive.h>

#include <cerrno>
#include <cstdio>
#include <memory>

#include "cli/readers/readers.h"

namespace kestan_cli {

struct FreeArchive {
  void operator()(archive* opened) const { archive_read_free(opened); }
};
using OwnedArchive = std::unique_ptr<archive, FreeArchive>;

inline ReadStatus Refuse(const char* reason, ReadProblem* problem) {
  std::snprintf(&problem->text[0], sizeof problem->text, "%s", reason);
  return ReadStatus::kUnread;
}

inline ReadStatus StatusOfError(archive* opened, ReadProblem* problem) {
  if (archive_errno(opened) == ENOMEM) return ReadStatus::kNoMemory;
  const char* const reason = archive_error_string(opened);
  return Refuse(reason != nullptr ? reason : "broken", problem);
}

}  // namespace kestan_cli

#endif  // KESTAN_CLI_READERS_ARCHIVE_PROBLEM_H_
