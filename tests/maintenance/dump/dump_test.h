// SPDX-License-Identifier: GPL-3.0-or-later
// What the tests of dumps share.
#ifndef KESTAN_TESTS_MAINTENANCE_DUMP_DUMP_TEST_H_
#define KESTAN_TESTS_MAINTENANCE_DUMP_DUMP_TEST_H_

#include <gtest/gtest.h>
#include <kestan/storage/checksum/crc64.h>

#include <cstdio>
#include <filesystem>
#include <string>

#include "tests/maintenance/dump/dump_text.h"
#include "tests/support/index_test.h"

namespace kestan_tests {

// Returns a dump with the lines of `records` and the right last line.
inline std::string WholeDump(const std::string& records, unsigned count) {
  const std::string lines = "kestan-dump 1\n" + records;
  kestan::Crc64 checksum;
  checksum.Add(lines);
  std::string digits(17, '\0');
  std::snprintf(digits.data(), digits.size(), "%016llx",
                static_cast<unsigned long long>(checksum.Value()));
  return lines + "end " + std::to_string(count) + " " + digits.c_str() + "\n";
}

// Gives each test a folder, and files in it that are dumped and loaded.
class DumpTest : public testing::Test {
 protected:
  // Dumps the file `index`, which is only read.
  std::string DumpOf(const std::string& index) const {
    Database store;
    EXPECT_EQ(store.Open(index.c_str(), 0), 0);
    std::string text;
    EXPECT_EQ(DumpInto(store, &text), kestan::StoreError::kNone);
    EXPECT_EQ(store.FileError(), 0);
    return text;
  }

  // Dumps a new file that holds `records`.
  std::string DumpOf(const Records& records) const {
    const std::string path = folder_ / "source";
    std::filesystem::remove(path);
    Plant(path, records);
    return DumpOf(path);
  }

  // Loads `text` into a new file.
  //   Returns  what was complained of.
  std::string Load(std::string_view text) const {
    std::filesystem::remove(target_);
    Database store;
    EXPECT_EQ(store.Open(target_.c_str(), 1), 0);
    return LoadInto(store, text);
  }

  TempDir folder_;
  const std::string target_ = folder_ / "target";
};

}  // namespace kestan_tests

#endif  // KESTAN_TESTS_MAINTENANCE_DUMP_DUMP_TEST_H_
