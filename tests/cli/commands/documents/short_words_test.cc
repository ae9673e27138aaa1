// Words of one letter, whose postings a shrink of the library's keeps when their document goes.
#include <gtest/gtest.h>
#include <kestan/kestan.h>

#include <functional>
#include <string>

#include "tests/cli/command_test.h"

namespace kestan_tests {
namespace {

class ShortWordsTest : public CommandTest {
 protected:
  // Does `what` with the index as another program would, through the library.
  void Elsewhere(const std::function<void(Kestan&)>& what) {
    Kestan engine;
    ASSERT_EQ(engine.OpenIndex(Path("my.index").c_str(), 1), 0);
    what(engine);
  }

  void ShrinkElsewhere() {
    Elsewhere([](Kestan& engine) { engine.ShrinkIndex(); });
  }

  void Do(const std::vector<std::string>& arguments) {
    const Outcome outcome = Run(arguments);
    ASSERT_EQ(outcome.status, 0) << outcome;
  }

  Outcome Search(const std::string& query) { return Run({"search", "my.index", query}); }

  // Expects that each of `words` finds nothing but the document "new".
  void ExpectOnlyNew(const std::string& words) {
    for (const char word : words) EXPECT_EQ(Search({word}), Success("100 new\n")) << word;
  }

  // Expects that no word of `words` finds anything, and that the index is without faults.
  void ExpectNone(const std::string& words) {
    for (const char word : words) EXPECT_EQ(Search({word}).out, "") << word;
    EXPECT_EQ(Run({"check", "my.index"}).status, 0);
  }
};

const Outcome kNone{1, "", ""};

TEST_F(ShortWordsTest, AreNotFoundInTheDocumentThatTakesOverACode) {
  Add("old", "vitamin c and vitamin D, plan B\n");
  Do({"remove", "my.index", "old"});
  Do({"shrink", "my.index"});
  Add("new", "a fish\n");
  ASSERT_EQ(Dump(Path("my.index")).at("g-code"), Units({1}));  // so the code is the same
  ExpectNone("cdDbB");
  ExpectOnlyNew("a");
  EXPECT_EQ(Search("vitamin"), kNone);
}

TEST_F(ShortWordsTest, AreNotFoundAfterAShrinkByAnotherProgram) {
  Add("old", "vitamin c and x\n");
  Elsewhere([](Kestan& engine) {
    engine.RemoveDocumentWords("old");
    engine.ShrinkIndex();
  });
  Add("new", "x fish\n");
  ExpectNone("c");
  ExpectOnlyNew("x");
}

TEST_F(ShortWordsTest, OfRemovedDocumentsDoNotLowerPercentages) {
  Add("old", "c c c c\n");
  Add("new", "c\n");
  Add("other", "c c and cat\n");
  Elsewhere([](Kestan& engine) {
    engine.RemoveDocumentWords("old");
    engine.ShrinkIndex();
  });
  EXPECT_EQ(Search("c"), Success("100 other\n50 new\n"));
  EXPECT_EQ(Search("c OR dog"), Success("100 other\n50 new\n"));
  EXPECT_EQ(Search("\"c and\""), Success("100 other\n"));
}

TEST_F(ShortWordsTest, OfEarlierVersionsAreNotFoundAfterAShrink) {
  Add("a", "vitamin c\n");
  Add("a", "vitamin d instead\n");
  ShrinkElsewhere();
  Add("new", "a fish\n");
  ExpectNone("c");
  ExpectOnlyNew("a");
}

TEST_F(ShortWordsTest, AreReclaimedByAShrink) {
  std::string text;
  for (int i = 0; i < 30000; ++i) text += "c ";
  Add("old", text);
  Add("other", "c\n");
  Do({"remove", "my.index", "old"});
  Do({"shrink", "my.index"});
  EXPECT_LT(IndexBytes().size(), text.size());
}

TEST_F(ShortWordsTest, AreRightWithoutAShrink) {
  Add("old", "vitamin c\n");
  Do({"remove", "my.index", "old"});
  Add("new", "a fish\n");
  ExpectNone("c");
}

TEST_F(ShortWordsTest, AreRightInAChangeInPlace) {
  Add("old", "vitamin c\n");
  Do({"remove", "my.index", "old", "--in-place"});
  Do({"shrink", "my.index", "--in-place"});
  Write("new", "a fish\n");
  Do({"index", "my.index", "new", "--in-place"});
  ExpectNone("c");
  ExpectOnlyNew("a");
}

TEST_F(ShortWordsTest, AreRightWithoutPositions) {
  Add("old", "vitamin c\n");
  Add("other", "c\n");
  Do({"option", "set", "my.index", "1"});
  Elsewhere([](Kestan& engine) {
    engine.RemoveDocumentWords("old");
    engine.ShrinkIndex();
  });
  Add("new", "a fish\n");
  EXPECT_EQ(Search("c"), Success("100 other\n"));
  ExpectOnlyNew("a");
}

TEST_F(ShortWordsTest, OfAnyByteAreNotListedForANewDocument) {
  Add("old", "text\n");
  Elsewhere([](Kestan& engine) {
    engine.AddDocumentWords("bytes", "7 \xe9 \x01 e- \xff- \xc9");
    engine.RemoveDocumentWords("bytes");
    engine.ShrinkIndex();
  });
  Add("new", "everything else\n");
  EXPECT_EQ(Run({"words", "my.index", "--at-least", "1"}).out, "else\neverything\ntext\n");
  EXPECT_EQ(Search("e*"), Success("100 new\n"));
}

TEST_F(ShortWordsTest, AreListedIfMostOfTheirDocumentsAreRemoved) {
  for (const char* name : {"keep", "old", "older"}) Add(name, "c\n");
  Elsewhere([](Kestan& engine) {
    engine.RemoveDocumentWords("old");
    engine.RemoveDocumentWords("older");
    engine.ShrinkIndex();
  });
  EXPECT_EQ(Run({"words", "my.index", "--counts"}), Success("1 c\n"));
  EXPECT_EQ(Search("c*"), Success("100 keep\n"));
}

TEST_F(ShortWordsTest, AreRightInAnIndexThatWasLoadedOrRepaired) {
  Add("old", "vitamin c\n");
  Add("other", "c\n");
  Elsewhere([](Kestan& engine) {
    engine.RemoveDocumentWords("old");
    engine.ShrinkIndex();
  });
  Write("dump", Run({"dump", "my.index"}).out);
  Write("new", "a fish\n");
  Do({"load", "loaded.index", "dump"});
  Do({"repair", "my.index", "repaired.index"});
  for (const char* index : {"loaded.index", "repaired.index"}) {
    Do({"index", index, "new"});
    EXPECT_EQ(Run({"search", index, "c"}), Success("100 other\n")) << index;
    EXPECT_EQ(Run({"search", index, "a"}), Success("100 new\n")) << index;
  }
}

TEST_F(ShortWordsTest, KeepTheirDocumentsThroughAShrink) {
  Add("old", "vitamin c\n");
  Add("new", "c major and c minor\n");
  Do({"remove", "my.index", "old"});
  Do({"shrink", "my.index"});
  ExpectOnlyNew("c");
  EXPECT_EQ(Dump(Path("my.index")).at("c"), Units({2, 2, 1, 4}));
}

TEST_F(ShortWordsTest, WithADamagedRecordPreventChangesThatReuseTheirCodes) {
  Add("old", "vitamin c\n");
  Do({"remove", "my.index", "old"});
  ShrinkElsewhere();
  Plant(Path("my.index"), {{"c", Units({1, 9, 2})}});
  const std::string before = IndexBytes();
  Write("new", "a fish\n");
  const Outcome refused = Failure(
      "cannot change index 'my.index': postings of one-letter words are damaged; see kestan check");
  EXPECT_EQ(Run({"index", "my.index", "new"}), refused);
  EXPECT_EQ(Run({"shrink", "my.index"}), refused);
  EXPECT_EQ(IndexBytes(), before);
}

TEST_F(ShortWordsTest, WithADamagedRecordDoNotPreventOtherChanges) {
  Add("old", "vitamin c\n");
  Add("other", "c\n");
  Plant(Path("my.index"), {{"c", Units({1, 1, 2, 2, 9, 1})}});
  Do({"remove", "my.index", "other"});
  Add("new", "a fish\n");
  EXPECT_EQ(Dump(Path("my.index")).at("c"), Units({1, 1, 2, 2, 9, 1}));
}

}  // namespace
}  // namespace kestan_tests
