// SPDX-License-Identifier: GPL-3.0-or-later
// A writer that changes an index under a watch of its system calls, in a process of its own.
#ifndef KESTAN_TESTS_FAULTS_SEARCH_INTERRUPTED_WRITER_H_
#define KESTAN_TESTS_FAULTS_SEARCH_INTERRUPTED_WRITER_H_

#include <memory>
#include <string>
#include <vector>

#include "tests/faults/child.h"
#include "tests/faults/system_call_watch.h"
#include "tests/search/index/read_index.h"

namespace kestan_faults {

// The index before and after what the writer does: a commit that is followed by a merge, and a
// compaction. Its files are copied for each trial.
class InterruptedWriter {
 public:
  // Makes the index in a new folder below `folder`.
  explicit InterruptedWriter(const std::string& folder);

  const kestan_tests::ReadDocuments& before() const { return before_; }
  const kestan_tests::ReadDocuments& after() const { return after_; }

  // Makes a copy of the index for the next trial, as Run() does.
  void CopyIndex() const;

  // Does the work on the copy, in this process. See Run().
  void Work(Transcript* transcript) const;

  // The same; after an error, sets `*is_over`, rolls back and adds the document "later".
  void WorkAndRecover(bool* is_over, Transcript* transcript) const;

  // Returns the functions that the writer calls, one for each call, in their order.
  std::vector<Function> Calls() const;

  // Has the writer do its work. The transcript says "committed" and "compacted" where that is done,
  // or "refused" with the error.
  Outcome Run(const CallRule& rule) const;

  // The same; after an error, `*is_over` is set, the writer rolls back and adds the document
  // "later". The transcript says "later" when that is committed.
  Outcome RunAndRecover(const CallRule& rule, const std::shared_ptr<bool>& is_over) const;

  // Checks what a run has left: one of the states, which is `after()` if `is_committed`, and
  // nothing that no manifest names once a writer has opened it.
  //   Returns  whether it is the state after the commit.
  bool Check(bool is_committed, bool with_later) const;

 private:
  const std::string original_;
  const std::string work_;
  kestan_tests::ReadDocuments before_;
  kestan_tests::ReadDocuments after_;
};

}  // namespace kestan_faults

#endif  // KESTAN_TESTS_FAULTS_SEARCH_INTERRUPTED_WRITER_H_
