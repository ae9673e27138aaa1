// SPDX-License-Identifier: GPL-3.0-or-later
// A small index folder, and all that its readers say of it.
#ifndef KESTAN_TESTS_FAULTS_SEARCH_ASKED_INDEX_H_
#define KESTAN_TESTS_FAULTS_SEARCH_ASKED_INDEX_H_

#include <kestan/search.h>

#include <new>
#include <string>
#include <vector>

namespace kestan_faults {

// Calls `work`, and again if it runs out of memory: for what a test does itself while one
// allocation fails.
template <typename Work>
auto TryTwice(const Work& work) -> decltype(work()) {
  try {
    return work();
  } catch (const std::bad_alloc&) {
    return work();
  }
}

// Makes an index in `folder`: two segments, the first with edits. Throws std::runtime_error if that
// fails.
void MakeIndex(const std::string& folder);

// Changes it: replaces a document of the first segment, removes one, renames one, adds one, and
// commits. Goes on after errors.
//   Returns  the first error.
kestan::search::Status ChangeIndex(kestan::search::IndexWriter* writer);

// Opens it with a writer of one thread.
kestan::search::Result<kestan::search::IndexWriter> OpenWriter(const std::string& folder);

// Asks a reader everything, a new reader for each question.
//   Returns  an answer a question, as text; "kDamaged" or "kVersion" for one that was refused with
//            one line, and what is wrong with it for any other.
std::vector<std::string> Ask(const std::string& folder);

bool IsRefused(const std::string& answer);

// Returns "kDamaged", "kVersion" for such an error with one line, else "wrong: " and the error.
std::string RefusalOf(const kestan::search::Status& status);

}  // namespace kestan_faults

#endif  // KESTAN_TESTS_FAULTS_SEARCH_ASKED_INDEX_H_
