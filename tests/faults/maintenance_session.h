// SPDX-License-Identifier: GPL-3.0-or-later
// A session that looks after index files: one is checked, measured, read document by document and
// dumped, its dump is loaded, and a damaged one is repaired. The tests here make something fail in
// it at each point in turn.
#ifndef KESTAN_TESTS_FAULTS_MAINTENANCE_SESSION_H_
#define KESTAN_TESTS_FAULTS_MAINTENANCE_SESSION_H_

#include <memory>
#include <string>
#include <vector>

#include "tests/faults/child.h"
#include "tests/support/index_test.h"

namespace kestan_faults {

// Files for sessions, and what a session makes of them in which nothing fails.
class MaintenanceFiles {
 public:
  MaintenanceFiles();

  // Runs a session, which takes no memory but that of the library. A step that reports success also
  // notes what it gave, so that half of a thing does not pass for the whole.
  void Run(Transcript* transcript) const;

  // Expects of a session that came to its end that each of its steps either failed and said so, or
  // gave what it gives when nothing fails; and that it has left no file open, no new index where a
  // repair failed, and a whole one where it did not.
  void Check(const std::string& transcript) const;

  // Removes what a session has made.
  void Clean() const;

 private:
  void ReadIndex(Transcript* transcript) const;
  void LoadDump(Transcript* transcript) const;
  void Repair(Transcript* transcript) const;

  const kestan_tests::TempDir folder_;
  const std::string index_ = folder_ / "index";
  const std::string damaged_ = folder_ / "damaged";
  const std::string loaded_ = folder_ / "loaded";
  const std::string repaired_ = folder_ / "repaired";
  std::vector<std::string> dump_;
  std::string undisturbed_;
  kestan_tests::Records loaded_records_;
  kestan_tests::Records repaired_records_;
};

}  // namespace kestan_faults

#endif  // KESTAN_TESTS_FAULTS_MAINTENANCE_SESSION_H_
