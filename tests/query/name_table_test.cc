// SPDX-License-Identifier: GPL-3.0-or-later
// Listings show names as they are now, whatever an earlier listing has shown.
#include <kestan/query/name_table.h>

#include <string>

#include "tests/support/index_test.h"

namespace {

class NameTableTest : public kestan_tests::IndexTest {
 protected:
  std::string List(const char* word) { return Listing(engine_.QueryWord(word)); }
};

TEST_F(NameTableTest, ARenamedDocumentIsListedByItsNewName) {
  engine_.AddDocumentWords("a", "word");
  EXPECT_EQ(List("word"), "100 a\n");
  engine_.MoveDocumentWords("a", "a longer name");
  EXPECT_EQ(List("word"), "100 a longer name\n");
  engine_.MoveDocumentWords("a longer name", "b");
  EXPECT_EQ(List("word"), "100 b\n");
}

TEST_F(NameTableTest, ADocumentWithAReusedCodeIsListedByItsOwnName) {
  engine_.AddDocumentWords("old", "word");
  EXPECT_EQ(List("word"), "100 old\n");
  engine_.RemoveDocumentWords("old");
  engine_.ShrinkIndex();
  engine_.AddDocumentWords("new", "word");
  EXPECT_EQ(List("word"), "100 new\n");
}

TEST_F(NameTableTest, ARemovedDocumentHasNoNameEvenWhenNothingListsItAsRemoved) {
  engine_.AddDocumentWords("a", "word");
  EXPECT_EQ(List("word"), "100 a\n");
  engine_.RemoveDocumentWords("a");
  engine_.CloseIndex();
  kestan_tests::Plant(path_, {{"g-deleted", ""}});
  engine_.OpenIndex(path_.c_str(), 1);
  EXPECT_EQ(List("word"), "");
}

TEST_F(NameTableTest, AnotherIndexHasItsOwnNames) {
  engine_.AddDocumentWords("a", "word");
  EXPECT_EQ(List("word"), "100 a\n");
  engine_.CloseIndex();
  ASSERT_EQ(engine_.OpenIndex((folder_ / "other").c_str(), 1), 0);
  engine_.AddDocumentWords("b", "word");
  EXPECT_EQ(List("word"), "100 b\n");
}

TEST_F(NameTableTest, AWordThatLooksLikeANameRecordShowsInTheName) {
  PlantAndReopen({{"g-code", "aa"}});
  engine_.AddDocumentWords("a", "word");  // gets code 0x6162: the name record is "c-ba"
  EXPECT_EQ(List("word"), "100 a\n");
  engine_.AddDocumentWords("b", "c-ba");
  EXPECT_EQ(List("word"), "100 aca\x01");  // the name goes on with a NUL, which ends the text here
}

TEST_F(NameTableTest, NamesAreListedWhetherTheyAreKeptOrTooLongForIt) {
  for (const std::size_t size : {1u, 999u, 1000u, 1001u, 70000u}) {
    engine_.AddDocumentWords(std::string(size, 'n').c_str(), "word");
  }
  std::string expected;
  for (const std::size_t size : {1u, 999u, 1000u, 1001u, 70000u}) {
    expected += "100 " + std::string(size, 'n') + "\n";
  }
  EXPECT_EQ(List("word"), expected);
  EXPECT_EQ(List("word"), expected);
}

TEST_F(NameTableTest, ANameThatTheFileRefusedIsGoneAfterAFlush) {
  engine_.AddDocumentWords("a", "word");
  engine_.CloseIndex();
  ASSERT_EQ(engine_.OpenIndex(path_.c_str(), 0), 0);
  const int all = engine_.QueryWord("word");
  engine_.AddDocumentWords("b", "word");
  const int none = engine_.QueryNegate(all);
  EXPECT_STREQ(engine_.QueryResults(none), "0 b\n");
  engine_.FlushIndex();
  EXPECT_STREQ(engine_.QueryResults(none), "");
  for (const int id : {all, none}) engine_.FreeQueryResult(id);
}

TEST_F(NameTableTest, RenamingAgainAndAgainKeepsListingsRight) {
  engine_.AddDocumentWords("a", "word");
  std::string name = "a";
  for (int i = 0; i < 100; ++i) {
    const std::string next = std::string(990, 'n') + std::to_string(i);
    ASSERT_EQ(engine_.MoveDocumentWords(name.c_str(), next.c_str()), 0);
    name = next;
    ASSERT_EQ(List("word"), "100 " + name + "\n");
  }
}

}  // namespace
