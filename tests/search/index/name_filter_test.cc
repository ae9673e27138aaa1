// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/index/name_filter.h"

#include <gtest/gtest.h>

#include <string>

#include "search/files/file_bytes.h"
#include "tests/support/temp_dir.h"

namespace kestan::search {
namespace {

class NameFilterTest : public testing::Test {
 protected:
  static std::string Name(std::size_t number) { return "name/" + std::to_string(number); }

  // A table of the documents 0 to `documents`, not included.
  DocumentTable TableOf(std::size_t documents) {
    DocumentTableWriter writer;
    EXPECT_TRUE(writer.Create(folder_ / "table").ok());
    for (std::size_t i = 0; i < documents; ++i) {
      const std::string name = Name(i);
      DocumentEntry entry;
      entry.name = name;
      writer.Add(entry);
    }
    const auto summary = writer.Finish();
    EXPECT_TRUE(summary.ok());
    return *DocumentTable::Open(*FileBytes::Open(folder_ / "table", summary->bytes));
  }

  const kestan_tests::TempDir folder_;
};

TEST_F(NameFilterTest, EveryNameOfTheTableMayBeThere) {
  const DocumentTable table = TableOf(5000);
  NameFilter filter;
  for (int round = 0; round < 2; ++round) {
    for (std::size_t i = 0; i < 5000; ++i) ASSERT_TRUE(filter.MayHave(table, Name(i))) << i;
  }
}

TEST_F(NameFilterTest, FewForeignNamesMayBeThereOnceItWasAskedOften) {
  const DocumentTable table = TableOf(5000);
  NameFilter filter;
  std::size_t passed = 0;
  for (std::size_t i = 5000; i < 15'000; ++i) passed += filter.MayHave(table, Name(i)) ? 1 : 0;
  EXPECT_GE(passed, 5000 / 16u);  // before it was made
  EXPECT_LT(passed, 5000 / 16u + 200);
}

TEST_F(NameFilterTest, AnEmptyTableHasNoNames) {
  NameFilter filter;
  EXPECT_FALSE(filter.MayHave(TableOf(0), "a"));
}

}  // namespace
}  // namespace kestan::search
