// SPDX-License-Identifier: GPL-3.0-or-later
// What the tests of repairs share.
#ifndef KESTAN_TESTS_MAINTENANCE_REPAIR_REPAIR_TEST_H_
#define KESTAN_TESTS_MAINTENANCE_REPAIR_REPAIR_TEST_H_

#include <gtest/gtest.h>
#include <kestan/maintenance.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "tests/maintenance/index_files.h"
#include "tests/maintenance/maintenance_test.h"

namespace kestan_maintenance {

using kestan_tests::Dump;
using kestan_tests::Records;
using kestan_tests::Units;

// Gives each test a folder, an index in it to be repaired, and what the repair made of it and said.
class RepairTest : public testing::Test {
 protected:
  int Repair() {
    lines_.clear();
    return kestan::RepairIndex(
        path_.c_str(), new_path_.c_str(),
        [this](std::string_view line) { lines_.emplace_back(line); }, &result_);
  }

  // Repairs an index of these records.
  //   Returns  the new one, which must pass the check.
  Records Repaired(const Records& records) {
    std::filesystem::remove(path_);
    std::filesystem::remove(new_path_);
    kestan_tests::Plant(path_, records);
    EXPECT_EQ(Repair(), 0);
    ExpectValid();
    return Dump(new_path_);
  }

  void ExpectValid() { EXPECT_EQ(kestan_tests::FaultsOf(new_path_), kestan_tests::Lines()); }

  bool Says(const std::string& line) const {
    return std::find(lines_.begin(), lines_.end(), line) != lines_.end();
  }

  // The lines about documents.
  std::vector<std::string> Documents() const {
    std::vector<std::string> documents;
    for (const std::string& line : lines_) {
      if (line.substr(0, 6) != "note: ") documents.push_back(line);
    }
    return documents;
  }

  using Lines = std::vector<std::string>;

  // Two documents, "a" of the words "cat sat" and "b" of "cat".
  static Records Good() {
    return {{"g-code", Units({2})},
            {"g-opts", Units({0, 0})},
            {"d-a", Units({7, 0, 1, 0})},
            {"c-" + Units({1}), "a"},
            {"d-b", Units({8, 0, 2, 0})},
            {"c-" + Units({2}), "b"},
            {"cat", Units({1, 1, 1, 2, 1, 1})},
            {"sat", Units({1, 1, 2})}};
  }

  kestan_tests::TempDir folder_;
  const std::string path_ = folder_ / "index";
  const std::string new_path_ = folder_ / "new";
  kestan::RepairResult result_;
  Lines lines_;
};

}  // namespace kestan_maintenance

#endif  // KESTAN_TESTS_MAINTENANCE_REPAIR_REPAIR_TEST_H_
