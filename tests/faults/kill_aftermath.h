// SPDX-License-Identifier: GPL-3.0-or-later
// What is left of an index after something ended badly.
#ifndef KESTAN_TESTS_FAULTS_KILL_AFTERMATH_H_
#define KESTAN_TESTS_FAULTS_KILL_AFTERMATH_H_

#include <set>
#include <string>
#include <vector>

#include "tests/faults/child.h"

namespace kestan_faults {

using Names = std::set<std::string>;

// A query and the documents that must answer it.
struct Question {
  std::string word;
  std::string other;     // empty: the query asks for `word` alone
  char operation = ' ';  // '&': and, '|': or, '~': and, next to each other
  Names answer;
};

// Documents that must be in an index, and queries about them. Other documents may be in it too.
struct Reference {
  Names documents;
  std::vector<Question> questions;
};

// The documents of the scripted session that it changes no more once it has flushed them.
Reference SessionReference();

// How an index compares with a reference.
struct Comparison {
  long missing = -1;  // documents of the reference that are not listed
  long wrong = -1;    // questions with another answer; both -1: the index does not open

  bool IsOpen() const { return missing >= 0; }
  bool IsWhole() const { return missing == 0 && wrong == 0; }
};

struct Aftermath {
  Outcome outcome;              // of the process that looked
  long error = 0;               // gdbm's number for why the index does not open
  bool needs_recovery = false;  // it opens, but gdbm refuses to read it
  Comparison found;             // as it was left
  Comparison later;             // after more documents were added to it and flushed
  Comparison repaired;          // where it was not whole: after gdbm recovered it
};

// Examines the index in a process of its own.
Aftermath Examine(const std::string& index, const Reference& reference);

}  // namespace kestan_faults

#endif  // KESTAN_TESTS_FAULTS_KILL_AFTERMATH_H_
