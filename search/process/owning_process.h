// SPDX-License-Identifier: GPL-3.0-or-later
// What must not be used by a child process.
#ifndef KESTAN_SEARCH_PROCESS_OWNING_PROCESS_H_
#define KESTAN_SEARCH_PROCESS_OWNING_PROCESS_H_

#include <unistd.h>

namespace kestan::search {

// The process that made something. fork() gives the child a copy of it, but none of its threads,
// and files and locks that belong to both.
class OwningProcess {
 public:
  bool IsThisOne() const noexcept { return getpid() == id_; }

 private:
  pid_t id_ = getpid();
};

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_PROCESS_OWNING_PROCESS_H_
