// SPDX-License-Identifier: GPL-3.0-or-later
#include <gtest/gtest.h>

#include <string>

#include "tests/cli/both_kinds_test.h"

namespace kestan_tests {
namespace {

class GetOptionCommandTest : public BothKindsTest {
 protected:
  // Keeps the flag 8 in an index with or without positions.
  void KeepFlag() {
    if (IsFolder()) {
      auto writer = kestan::search::IndexWriter::Open(Path("my.index"));
      ASSERT_TRUE(writer.ok());
      writer->SetProperty("option-flags", "8");
      ASSERT_TRUE(writer->Commit().ok());
      return;
    }
    Kestan engine;
    ASSERT_EQ(engine.OpenIndex(Path("my.index").c_str(), 1), 0);
    ASSERT_EQ(engine.SetOptionFlag(8), 0);
    ASSERT_EQ(engine.PutOptions(), 0);
  }
};

INSTANTIATE_TEST_SUITE_P(, GetOptionCommandTest, kBothKinds, NameOfKind);

TEST_P(GetOptionCommandTest, FlagsAreASum) {
  MakeEmpty();
  EXPECT_EQ(Run({"option", "get", "my.index"}), Success("0\n"));
  KeepFlag();
  EXPECT_EQ(Run({"option", "get", "my.index"}), Success("8\n"));
}

TEST_P(GetOptionCommandTest, IndexWithoutPositionsHasTheFirstFlag) {
  MakeEmpty(false);
  EXPECT_EQ(Run({"option", "get", "my.index"}), Success("1\n"));
  KeepFlag();
  EXPECT_EQ(Run({"option", "get", "my.index"}), Success("9\n"));
  EXPECT_EQ(Run({"option", "get", "my.index", "--json"}),
            Success("{\"schema\":1,\"flags\":9,\"positions_kept\":false}\n"));
}

}  // namespace
}  // namespace kestan_tests
