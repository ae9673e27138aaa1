// SPDX-License-Identifier: GPL-3.0-or-later
// What the tests of the maintenance parts share: a small valid index to damage, and what a check
// says.
#ifndef KESTAN_TESTS_MAINTENANCE_MAINTENANCE_TEST_H_
#define KESTAN_TESTS_MAINTENANCE_MAINTENANCE_TEST_H_

#include <kestan/maintenance.h>

#include <set>
#include <string>

#include "tests/support/index_test.h"

namespace kestan_tests {

// Lines in no particular order, for those of words come in the file's.
using Lines = std::multiset<std::string>;

struct Checked {
  Lines lines;
  kestan::CheckResult result;
};

// Checks the index at `path`, opened for reading only or for writing too.
inline Checked Check(const std::string& path, int writer = 0) {
  Checked checked;
  Database store;
  EXPECT_EQ(store.Open(path.c_str(), writer), 0);
  checked.result =
      kestan::CheckIndex(store, [&](std::string_view line) { checked.lines.emplace(line); });
  EXPECT_EQ(checked.result.faults + checked.result.notes, checked.lines.size());
  return checked;
}

// Returns whether the line is about words that damage has taken from documents, or about old
// postings of words that no shrink purges. Neither is what a repair makes wrong.
inline bool IsAboutMissingWords(std::string_view line) {
  for (const char* what :
       {": words missing", ": some positions have several words",
        ": words of one letter, or with a hyphen, contradict", ": entries of free codes",
        ": entries of a code listed before", ": the case-folded form "}) {
    if (line.find(what) != std::string_view::npos) return true;
  }
  return false;
}

// Returns the lines about faults that are not about missing words.
inline Lines FaultsOf(const std::string& path) {
  Lines faults;
  Database store;
  EXPECT_EQ(store.Open(path.c_str(), 0), 0);
  const auto check = kestan::CheckIndex(store, [&](std::string_view line) {
    const bool is_note = line.find(": note: ") != std::string_view::npos;
    if (!is_note && !IsAboutMissingWords(line)) faults.emplace(line);
  });
  EXPECT_EQ(check.file_error, kestan::StoreError::kNone);
  return faults;
}

// Two documents: "a", code 1, of the words "cat dog", and "b", code 2, of the word "cat".
inline Records ValidRecords() {
  using namespace std::string_literals;
  return {{"cat", Units({1, 1, 1, 2, 1, 1})},
          {"dog", Units({1, 1, 2})},
          {"c-\1\0"s, "a"},
          {"c-\2\0"s, "b"},
          {"d-a", Units({9, 9, 1, 0})},
          {"d-b", Units({9, 9, 2, 0})},
          {"g-code", Units({2})},
          {"g-opts", Units({0, 0})}};
}

// Returns the valid records with those of `changes` in the place of others or besides them.
inline Records With(const Records& changes) {
  Records records = changes;
  records.merge(ValidRecords());
  return records;
}

inline Records Without(const std::string& key) {
  Records records = ValidRecords();
  EXPECT_EQ(records.erase(key), 1u);
  return records;
}

// Checks an index that holds `records`.
inline Checked CheckRecords(const Records& records) {
  const TempDir folder;
  Plant(folder / "index", records);
  return Check(folder / "index");
}

inline Lines LinesOf(const Records& records) { return CheckRecords(records).lines; }

}  // namespace kestan_tests

#endif  // KESTAN_TESTS_MAINTENANCE_MAINTENANCE_TEST_H_
