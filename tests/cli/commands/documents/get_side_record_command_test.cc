// SPDX-License-Identifier: GPL-3.0-or-later
#include <gtest/gtest.h>

#include <string>

#include "tests/cli/both_kinds_test.h"

namespace kestan_tests {
namespace {

class GetSideRecordCommandTest : public BothKindsTest {
 protected:
  void SetUp() override {
    Document document = Named("a", "words");
    document.title = "The title";
    document.summary = "the summary";
    document.host_data = "one=1";
    AddTo("my.index", {document, Named(Path("d/b"), "words")});
    document.name = Path("d/c");
    AddTo("my.index", {document});
  }
};

INSTANTIATE_TEST_SUITE_P(, GetSideRecordCommandTest, kBothKinds, NameOfKind);

TEST_P(GetSideRecordCommandTest, GetPrintsTheText) {
  EXPECT_EQ(Run({"title", "get", "my.index", "a"}), Success("The title\n"));
  EXPECT_EQ(Run({"summary", "get", "my.index", "a"}), Success("the summary\n"));
  EXPECT_EQ(Run({"user", "get", "my.index", "a"}), Success("one=1\n"));
}

TEST_P(GetSideRecordCommandTest, JsonHasTheText) {
  EXPECT_EQ(Run({"title", "get", "my.index", "a", "--json"}),
            Success("{\"schema\":1,\"name\":\"a\",\"title\":\"The title\"}\n"));
}

TEST_P(GetSideRecordCommandTest, DocumentIsFoundByAnyPathOfItsFile) {
  EXPECT_EQ(Run({"title", "get", "my.index", "d/c"}), Success("The title\n"));
  EXPECT_EQ(Run({"title", "get", "my.index", "./d/../d/c"}), Success("The title\n"));
  EXPECT_EQ(Run({"title", "get", "my.index", "d/c", "--json"}),
            Success("{\"schema\":1,\"name\":\"" + Path("d/c") + "\",\"title\":\"The title\"}\n"));
}

TEST_P(GetSideRecordCommandTest, MissingDocumentsAndTextsAreErrors) {
  EXPECT_EQ(Run({"title", "get", "my.index", "x"}),
            Failure("no document 'x' in index 'my.index'; see kestan list"));
  EXPECT_EQ(Run({"user", "get", "my.index", "d/b"}),
            Failure("document '" + Path("d/b") + "' of index 'my.index' has no user record"));
}

TEST_P(GetSideRecordCommandTest, GroupWithoutACommandIsAnError) {
  for (const char* group : {"title", "summary", "user", "wordlist", "option"}) {
    EXPECT_EQ(Run({group}).status, 2) << group;
    EXPECT_EQ(Run({group, "--help"}).status, 0) << group;
  }
}

}  // namespace
}  // namespace kestan_tests
