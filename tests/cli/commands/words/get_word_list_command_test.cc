// SPDX-License-Identifier: GPL-3.0-or-later
#include <gtest/gtest.h>

#include <string>

#include "tests/cli/both_kinds_test.h"

namespace kestan_tests {
namespace {

class GetWordListCommandTest : public BothKindsTest {
 protected:
  void SetUp() override {
    Add("a", "cat\n");
    if (IsFolder()) {
      auto writer = kestan::search::IndexWriter::Open(Path("my.index"));
      ASSERT_TRUE(writer.ok());
      writer->SetProperty("wordlist:l", "red\nblue\n");
      ASSERT_TRUE(writer->Commit().ok());
      return;
    }
    Kestan engine;
    ASSERT_EQ(engine.OpenIndex(Path("my.index").c_str(), 1), 0);
    ASSERT_EQ(engine.DBPutWords("l", "red blue"), 0);
    engine.AddDocumentWords("b", "w-boson");
  }
};

INSTANTIATE_TEST_SUITE_P(, GetWordListCommandTest, kBothKinds, NameOfKind);

TEST_P(GetWordListCommandTest, JsonHasTheWords) {
  EXPECT_EQ(Run({"wordlist", "get", "my.index", "l", "--json"}),
            Success("{\"schema\":1,\"list\":\"l\",\"words\":[\"red\",\"blue\"]}\n"));
}

TEST_P(GetWordListCommandTest, TextHasOneWordALine) {
  EXPECT_EQ(Run({"wordlist", "get", "my.index", "l"}), Success("red\nblue\n"));
}

TEST_P(GetWordListCommandTest, UnknownListIsAnError) {
  for (const std::string list : {"none", "", "boson"}) {
    EXPECT_EQ(Run({"wordlist", "get", "my.index", list}),
              Failure("no word list '" + list + "' in index 'my.index'"));
  }
}

}  // namespace
}  // namespace kestan_tests
