// SPDX-License-Identifier: GPL-3.0-or-later
#include <gtest/gtest.h>

#include <string>

#include "tests/cli/both_kinds_test.h"

namespace kestan_tests {
namespace {

class ListCommandTest : public BothKindsTest {};

INSTANTIATE_TEST_SUITE_P(, ListCommandTest, kBothKinds, NameOfKind);

TEST_P(ListCommandTest, NamesAreInOrderOfBytes) {
  for (const char* name : {"b", "a/z", "B", "a.txt"}) Add(name, "cat\n");
  EXPECT_EQ(Run({"list", "my.index"}), Success("B\na.txt\na/z\nb\n"));
}

TEST_P(ListCommandTest, IndexWithoutDocumentsHasAnEmptyList) {
  MakeEmpty();
  EXPECT_EQ(Run({"list", "my.index"}), Success(""));
}

TEST_P(ListCommandTest, RemovedDocumentsAreLeftOut) {
  Add("a", "cat\n");
  Add("b", "cat\n");
  Remove("a");
  EXPECT_EQ(Run({"list", "my.index"}), Success("b\n"));
}

TEST_P(ListCommandTest, NullEndsNamesWithNuls) {
  Add("a", "cat\n");
  Add("b", "cat\n");
  EXPECT_EQ(Run({"list", "-0", "my.index"}), Success(std::string("a\0b\0", 4)));
}

TEST_P(ListCommandTest, JsonHasTitles) {
  Document document = Named("a", "words");
  document.title = "A title";
  document.summary = "and more";
  AddTo("my.index", {document});
  const std::string out = Run({"list", "--json", "my.index"}).out;
  EXPECT_EQ(out.substr(0, 45), "{\"schema\":1,\"documents\":[{\"name\":\"a\",\"time\":1");
  EXPECT_NE(out.find("\"title\":\"A title\",\"summary\":\"and more\""), std::string::npos) << out;
}

TEST_P(ListCommandTest, NamesThatAreNotUtf8StayValidJson) {
  Add("caf\xe9", "cat\n");
  EXPECT_NE(Run({"list", "--json", "my.index"}).out.find("caf\xef\xbf\xbd"), std::string::npos);
}

TEST_P(ListCommandTest, PathsBelowTheWorkingDirectoryAreShownAsTheyOpenFromThere) {
  Add(Path("d/a"), "cat");
  Add("/zzz/b", "cat");
  EXPECT_EQ(Run({"list", "my.index"}), Success("d/a\n/zzz/b\n"));
  EXPECT_EQ(Run({"list", "-0", "my.index"}), Success(std::string("d/a\0/zzz/b\0", 11)));
  const std::string json = Run({"list", "--json", "my.index"}).out;
  EXPECT_NE(json.find("\"name\":\"" + Path("d/a") + "\""), std::string::npos) << json;
}

TEST_P(ListCommandTest, MissingIndexIsAnError) {
  EXPECT_EQ(Run({"list", "none"}),
            Failure("cannot open index 'none': no such file or folder; kestan index makes one"));
}

// Other hosts may name a document so.
TEST_P(ListCommandTest, NameWithALineFeedIsOneName) {
  Add("a\nb", "cat");
  const std::string out = Run({"list", "--json", "my.index"}).out;
  EXPECT_NE(out.find("\"documents\":[{\"name\":\"a\\nb\",\"time\":1"), std::string::npos) << out;
}

}  // namespace
}  // namespace kestan_tests
