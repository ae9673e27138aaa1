// SPDX-License-Identifier: GPL-3.0-or-later
// Kestan::AddDocumentWords of kestan/indexing/indexer.cc: which code a new document gets.
#include "tests/indexing/planting.h"

namespace kestan_tests {
namespace {

class DocumentCodesTest : public IndexTest {
 protected:
  // Adds a document without words.
  const char* Add(const char* name) { return engine_.AddDocumentWords(name, ""); }
};

TEST_F(DocumentCodesTest, AreCountedUpFrom1) {
  for (const char* name : {"one", "two", "three"}) Add(name);
  const Records stored = Stored();
  EXPECT_EQ(stored.at(NameKey(1)), "one");
  EXPECT_EQ(stored.at(NameKey(2)), "two");
  EXPECT_EQ(stored.at(NameKey(3)), "three");
  EXPECT_EQ(stored.at("g-code"), Units({3}));
}

TEST_F(DocumentCodesTest, AreCountedOnInAnIndexThatIsOpenedAgain) {
  Add("one");
  PlantAndReopen({});
  Add("two");
  EXPECT_EQ(Stored().at(NameKey(2)), "two");
}

TEST_F(DocumentCodesTest, AreReusedLastInFirstOut) {
  PlantAndReopen({{"g-avail", Units({5, 9})}, {"g-code", Units({9})}});
  for (const char* name : {"first", "second", "third"}) Add(name);
  const Records stored = Stored();
  EXPECT_EQ(stored.at(NameKey(9)), "first");
  EXPECT_EQ(stored.at(NameKey(5)), "second");
  EXPECT_EQ(stored.at(NameKey(10)), "third");
  EXPECT_EQ(stored.at("g-avail"), "");
  EXPECT_EQ(stored.at("g-code"), Units({10}));
}

TEST_F(DocumentCodesTest, ShortenedListOfReusableCodesIsStored) {
  PlantAndReopen({{"g-avail", Units({5, 9, 300})}, {"g-code", Units({300})}});
  Add("first");
  const Records stored = Stored();
  EXPECT_EQ(stored.at("d-first").substr(4), Units({300, 0}));
  EXPECT_EQ(stored.at("g-avail"), Units({5, 9}));
  EXPECT_EQ(stored.at("g-code"), Units({300}));
}

TEST_F(DocumentCodesTest, ReusableCodeLeavesAMissingCounterMissing) {
  PlantAndReopen({{"g-avail", Units({4})}});
  Add("first");
  const Records stored = Stored();
  EXPECT_EQ(stored.at(NameKey(4)), "first");
  EXPECT_EQ(stored.count("g-code"), 0U);
}

TEST_F(DocumentCodesTest, GoUpTo65535) {
  PlantAndReopen({{"g-code", Units({65534})}});
  EXPECT_EQ(StandardErrorOf([&] { Add("last"); }), "");
  const Records stored = Stored();
  EXPECT_EQ(stored.at(NameKey(65535)), "last");
  EXPECT_EQ(stored.at("g-code"), Units({65535}));
}

TEST_F(DocumentCodesTest, FullIndexTakesNoDocument) {
  PlantAndReopen({{"g-code", Units({65535})}});
  const std::string message = StandardErrorOf([&] {
    const char* const words = engine_.AddDocumentWords("one", "word");
    EXPECT_STREQ(words, "");
    EXPECT_NE(words, Kestan::WordBuf);
  });
  EXPECT_EQ(message, "Kestan: Too many documents (max=65535) -- try shrinking database\n");
  EXPECT_EQ(Kestan::WBSize, 4096U);
  EXPECT_EQ(Stored(), (Records{{"g-code", Units({65535})}, {"g-opts", kPositions}}));
}

TEST_F(DocumentCodesTest, FullIndexLosesTheEarlierVersionAllTheSame) {
  PlantAndReopen(Records{{"g-code", Units({65535})}, {"old", EncodedPosting(7, {1})}} +
                 Document("one", 7));
  StandardErrorOf([&] { engine_.AddDocumentWords("one", "new"); });
  EXPECT_EQ(Stored(), (Records{{"g-code", Units({65535})},
                               {"g-deleted", Units({7})},
                               {"g-opts", kPositions},
                               {"old", EncodedPosting(7, {1})}}));
}

TEST_F(DocumentCodesTest, FullIndexStillReusesCodes) {
  PlantAndReopen({{"g-code", Units({65535})}, {"g-avail", Units({8})}});
  EXPECT_EQ(StandardErrorOf([&] { Add("one"); }), "");
  EXPECT_EQ(Stored().at(NameKey(8)), "one");
}

TEST_F(DocumentCodesTest, CodeZeroEndsTheProcess) {
  PlantAndReopen({{"g-avail", Units({7, 0})}, {"g-code", Units({7})}});
  EXPECT_EXIT(Add("one"), testing::ExitedWithCode(1),
              "^Kestan: Attempted to use code #0 \\(oops!\\)\n$");
}

TEST_F(DocumentCodesTest, ShortCounterIsPaddedAndGrows) {
  PlantAndReopen({{"g-code", "\x05"}});
  Add("one");
  const Records stored = Stored();
  EXPECT_EQ(stored.at(NameKey(6)), "one");
  EXPECT_EQ(stored.at("g-code"), Units({6}));
}

TEST_F(DocumentCodesTest, EmptyCounterIsZero) {
  PlantAndReopen({{"g-code", ""}});
  Add("one");
  const Records stored = Stored();
  EXPECT_EQ(stored.at(NameKey(1)), "one");
  EXPECT_EQ(stored.at("g-code"), Units({1}));
}

TEST_F(DocumentCodesTest, LongCounterKeepsItsOtherBytes) {
  PlantAndReopen({{"g-code", Units({255, 9, 9})}});
  Add("one");
  EXPECT_EQ(Stored().at("g-code"), Units({256, 9, 9}));
}

TEST_F(DocumentCodesTest, OddByteOfTheReusableCodesIsNoCode) {
  PlantAndReopen({{"g-avail", Units({5, 9}) + "x"}, {"g-code", Units({9})}});
  for (const char* name : {"first", "second", "third"}) Add(name);
  const Records stored = Stored();
  EXPECT_EQ(stored.at(NameKey(9)), "first");
  EXPECT_EQ(stored.at(NameKey(5)), "second");
  EXPECT_EQ(stored.at(NameKey(10)), "third");
}

TEST_F(DocumentCodesTest, EachIndexHasItsOwn) {
  PlantAndReopen({{"g-avail", Units({5})}, {"g-code", Units({9})}});
  engine_.CloseIndex();
  const std::string other = folder_ / "other";
  ASSERT_EQ(engine_.OpenIndex(other.c_str(), 1), 0);
  Add("one");
  engine_.CloseIndex();
  EXPECT_EQ(Dump(other).at(NameKey(1)), "one");
}

}  // namespace
}  // namespace kestan_tests
