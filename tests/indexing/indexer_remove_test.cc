// SPDX-License-Identifier: GPL-3.0-or-later
// Removing and moving documents, and their timestamps, of kestan/indexing/indexer.cc.
#include <ctime>

#include "tests/indexing/planting.h"

namespace kestan_tests {
namespace {

std::uint32_t Now() { return static_cast<std::uint32_t>(std::time(nullptr)); }

constexpr const char* kNoIndex = "Kestan: Call to database::get without an open database\n";

class RemoveDocumentTest : public IndexTest {};

TEST_F(RemoveDocumentTest, TakesAwayTheNameAndListsTheCode) {
  engine_.AddDocumentWords("one", "cat");
  EXPECT_EQ(engine_.RemoveDocumentWords("one"), 0);
  EXPECT_EQ(Stored(), (Records{{"cat", EncodedPosting(1, {1})},
                               {"g-code", Units({1})},
                               {"g-deleted", Units({1})},
                               {"g-opts", kPositions}}));
}

TEST_F(RemoveDocumentTest, UnknownNameIs1AndSilent) {
  EXPECT_EQ(StandardErrorOf([&] { EXPECT_EQ(engine_.RemoveDocumentWords("one"), 1); }), "");
  EXPECT_EQ(Stored(), (Records{{"g-opts", kPositions}}));
}

TEST_F(RemoveDocumentTest, SecondTimeIs1AndListsTheCodeOnce) {
  engine_.AddDocumentWords("one", "cat");
  EXPECT_EQ(engine_.RemoveDocumentWords("one"), 0);
  EXPECT_EQ(engine_.RemoveDocumentWords("one"), 1);
  EXPECT_EQ(Stored().at("g-deleted"), Units({1}));
}

TEST_F(RemoveDocumentTest, CodesAreListedInOrderOfRemoval) {
  PlantAndReopen(Document("a", 4) + Document("b", 2) + Document("c", 7));
  for (const char* name : {"a", "b", "c"}) EXPECT_EQ(engine_.RemoveDocumentWords(name), 0);
  EXPECT_EQ(Stored().at("g-deleted"), Units({4, 2, 7}));
}

TEST_F(RemoveDocumentTest, DuplicateCodesAreNotLookedFor) {
  PlantAndReopen(Records{{"g-deleted", Units({4})}} + Document("a", 4));
  engine_.RemoveDocumentWords("a");
  EXPECT_EQ(Stored().at("g-deleted"), Units({4, 4}));
}

TEST_F(RemoveDocumentTest, LeavesTheWordInQueriesAndOutOfListings) {
  engine_.AddDocumentWords("one", "cat");
  engine_.AddDocumentWords("two", "cat");
  engine_.RemoveDocumentWords("one");
  EXPECT_EQ(engine_.DocumentTimestamp("one"), 0U);
  EXPECT_EQ(Listing(engine_.QueryWord("cat")), "100 two\n");
}

TEST_F(RemoveDocumentTest, CodeIsNotHandedOutBeforeShrinking) {
  engine_.AddDocumentWords("one", "cat");
  engine_.RemoveDocumentWords("one");
  engine_.AddDocumentWords("two", "cat");
  EXPECT_EQ(Stored().at(NameKey(2)), "two");
}

TEST_F(RemoveDocumentTest, SideRecordsStay) {
  engine_.AddDocumentWords("one", "cat");
  engine_.DBPutTitle("one", "title");
  engine_.DBPutSummary("one", "summary");
  engine_.DBPutUser("one", "user");
  engine_.RemoveDocumentWords("one");
  const Records stored = Stored();
  EXPECT_EQ(stored.at("t-one"), "title");
  EXPECT_EQ(stored.at("s-one"), "summary");
  EXPECT_EQ(stored.at("u-one"), "user");
}

TEST_F(RemoveDocumentTest, UpperHalfOfTheStoredCodeIsIgnored) {
  PlantAndReopen({{"d-a", Units({0, 0, 4, 0xffff})}, {NameKey(4), "a"}});
  EXPECT_EQ(engine_.RemoveDocumentWords("a"), 0);
  EXPECT_EQ(Stored(), (Records{{"g-deleted", Units({4})}, {"g-opts", kPositions}}));
}

TEST_F(RemoveDocumentTest, ShortRecordIsPaddedWithZeros) {
  const std::string whole = DocumentRecord(1000, 0x0304);
  for (std::size_t size = 0; size < 8; ++size) {
    const unsigned code = size < 5 ? 0U : size == 5 ? 0x04U : 0x0304U;
    PlantAndReopen({{"d-a", whole.substr(0, size)}, {"g-deleted", ""}});
    EXPECT_EQ(engine_.RemoveDocumentWords("a"), 0);
    EXPECT_EQ(Stored().at("g-deleted"), Units({code})) << size;
  }
}

TEST_F(RemoveDocumentTest, WithoutAnIndexIs1) {
  engine_.CloseIndex();
  EXPECT_EQ(StandardErrorOf([&] { EXPECT_EQ(engine_.RemoveDocumentWords("a"), 1); }), kNoIndex);
}

class MoveDocumentTest : public IndexTest {};

TEST_F(MoveDocumentTest, KeepsTheCodeUnderTheNewName) {
  PlantAndReopen(Document("old", 7) + Records{{"cat", EncodedPosting(7, {1})}});
  EXPECT_EQ(engine_.MoveDocumentWords("old", "new"), 0);
  const Records stored = Stored();
  EXPECT_EQ(stored.count("d-old"), 0U);
  EXPECT_EQ(stored.at("d-new").substr(4), Units({7, 0}));
  EXPECT_EQ(stored.at(NameKey(7)), "new");
  EXPECT_EQ(stored.at("cat"), EncodedPosting(7, {1}));
  EXPECT_EQ(stored.count("g-deleted"), 0U);
}

TEST_F(MoveDocumentTest, RenewsTheTimestamp) {
  PlantAndReopen(Document("old", 7));
  ASSERT_EQ(engine_.DocumentTimestamp("old"), 1000U);
  const std::uint32_t before = Now();
  engine_.MoveDocumentWords("old", "new");
  EXPECT_GE(engine_.DocumentTimestamp("new"), before);
  EXPECT_LE(engine_.DocumentTimestamp("new"), Now());
  EXPECT_EQ(engine_.DocumentTimestamp("old"), 0U);
}

TEST_F(MoveDocumentTest, UnknownNameChangesNothing) {
  PlantAndReopen(Document("one", 7));
  const auto move = [&] { EXPECT_EQ(engine_.MoveDocumentWords("two", "three"), -1); };
  EXPECT_EQ(StandardErrorOf(move), "");
  EXPECT_EQ(Stored(), (Document("one", 7) + Records{{"g-opts", kPositions}}));
}

TEST_F(MoveDocumentTest, LongerAndShorterNamesAreStoredWhole) {
  const std::string long_name(10000, 'n');
  PlantAndReopen(Document("name", 7));
  EXPECT_EQ(engine_.MoveDocumentWords("name", long_name.c_str()), 0);
  engine_.MoveDocumentWords(long_name.c_str(), "n");
  EXPECT_EQ(Stored().at(NameKey(7)), "n");
}

TEST_F(MoveDocumentTest, LongNameIsListedBeforeAndAfterTheFlush) {
  const std::string long_name(10000, 'n');
  engine_.AddDocumentWords("name", "cat");
  engine_.MoveDocumentWords("name", long_name.c_str());
  EXPECT_EQ(Listing(engine_.QueryWord("cat")), "100 " + long_name + "\n");
  engine_.FlushIndex();
  EXPECT_EQ(Listing(engine_.QueryWord("cat")), "100 " + long_name + "\n");
}

TEST_F(MoveDocumentTest, EmptyNameIsANameLikeAnyOther) {
  PlantAndReopen(Document("old", 7));
  EXPECT_EQ(engine_.MoveDocumentWords("old", ""), 0);
  const Records stored = Stored();
  EXPECT_EQ(stored.at(NameKey(7)), "");
  EXPECT_EQ(stored.at("d-").substr(4), Units({7, 0}));
}

TEST_F(MoveDocumentTest, OntoItselfOnlyRenewsTheTimestamp) {
  PlantAndReopen(Document("one", 7));
  EXPECT_EQ(engine_.MoveDocumentWords("one", "one"), 0);
  const Records stored = Stored();
  EXPECT_EQ(stored.at(NameKey(7)), "one");
  EXPECT_EQ(stored.at("d-one").substr(4), Units({7, 0}));
  EXPECT_NE(TimestampOf(stored.at("d-one")), 1000U);
  EXPECT_EQ(stored.size(), 3U);
}

TEST_F(MoveDocumentTest, OntoAnotherDocumentLeavesThatOneHalfThere) {
  PlantAndReopen(Document("a", 1) + Document("b", 2) +
                 Records{{"cat", EncodedPosting(1, {1}) + EncodedPosting(2, {1})}});
  EXPECT_EQ(engine_.MoveDocumentWords("a", "b"), 0);
  EXPECT_EQ(Listing(engine_.QueryWord("cat")), "100 b\n100 b\n");
  const Records stored = Stored();
  EXPECT_EQ(stored.at("d-b").substr(4), Units({1, 0}));
  EXPECT_EQ(stored.at(NameKey(2)), "b");
  EXPECT_EQ(stored.count("g-deleted"), 0U);
}

TEST_F(MoveDocumentTest, MissingNameRecordIsReportedAfterTheMove) {
  PlantAndReopen({{"d-old", DocumentRecord(1000, 65535)}});
  const auto move = [&] { EXPECT_EQ(engine_.MoveDocumentWords("old", "new"), -1); };
  EXPECT_EQ(StandardErrorOf(move), "Kestan: Could not fetch document for code 65535 (oops!)\n");
  const Records stored = Stored();
  EXPECT_EQ(stored.count("d-old"), 0U);
  EXPECT_EQ(stored.at("d-new").substr(4), Units({65535, 0}));
}

TEST_F(MoveDocumentTest, SideRecordsKeepTheOldName) {
  PlantAndReopen(Document("old", 7));
  engine_.DBPutTitle("old", "title");
  engine_.MoveDocumentWords("old", "new");
  EXPECT_STREQ(engine_.DBGetTitle("old"), "title");
  EXPECT_EQ(engine_.DBGetTitle("new"), nullptr);
}

TEST_F(MoveDocumentTest, UpperHalfOfTheStoredCodeIsKept) {
  PlantAndReopen({{"d-a", Units({0, 0, 4, 0x1234})}, {NameKey(4), "a"}});
  EXPECT_EQ(engine_.MoveDocumentWords("a", "b"), 0);
  EXPECT_EQ(Stored().at("d-b").substr(4), Units({4, 0x1234}));
}

TEST_F(MoveDocumentTest, ShortRecordGrowsTo8Bytes) {
  const std::string whole = DocumentRecord(1000, 0x0304);
  for (std::size_t size = 0; size < 8; ++size) {
    const unsigned code = size < 5 ? 0U : size == 5 ? 0x04U : 0x0304U;
    PlantAndReopen({{"d-a", whole.substr(0, size)}, {NameKey(code), "a"}});
    EXPECT_EQ(engine_.MoveDocumentWords("a", "b"), 0);
    EXPECT_EQ(Stored().at("d-b").substr(4), Units({code, 0})) << size;
  }
}

TEST_F(MoveDocumentTest, MovedNameCanBeRemoved) {
  PlantAndReopen(Document("old", 7));
  engine_.MoveDocumentWords("old", "new");
  EXPECT_EQ(engine_.RemoveDocumentWords("old"), 1);
  EXPECT_EQ(engine_.RemoveDocumentWords("new"), 0);
  EXPECT_EQ(Stored(), (Records{{"g-deleted", Units({7})}, {"g-opts", kPositions}}));
}

TEST_F(MoveDocumentTest, WithoutAnIndexIsMinus1) {
  engine_.CloseIndex();
  EXPECT_EQ(StandardErrorOf([&] { EXPECT_EQ(engine_.MoveDocumentWords("a", "b"), -1); }), kNoIndex);
}

class DocumentTimestampTest : public IndexTest {};

TEST_F(DocumentTimestampTest, IsTheTimeOfTheAddition) {
  const std::uint32_t before = Now();
  engine_.AddDocumentWords("one", "");
  EXPECT_GE(engine_.DocumentTimestamp("one"), before);
  EXPECT_LE(engine_.DocumentTimestamp("one"), Now());
}

TEST_F(DocumentTimestampTest, HasAll32Bits) {
  PlantAndReopen(Document("one", 7, 0xfedcba98));
  EXPECT_EQ(engine_.DocumentTimestamp("one"), 0xfedcba98U);
}

TEST_F(DocumentTimestampTest, OfAnUnknownNameIs0AndSilent) {
  EXPECT_EQ(StandardErrorOf([&] { EXPECT_EQ(engine_.DocumentTimestamp("one"), 0U); }), "");
}

TEST_F(DocumentTimestampTest, ShortRecordIsPaddedWithZeros) {
  PlantAndReopen({{"d-one", "\x01\x02\x03"}, {"d-two", ""}});
  EXPECT_EQ(engine_.DocumentTimestamp("one"), 0x030201U);
  EXPECT_EQ(engine_.DocumentTimestamp("two"), 0U);
}

TEST_F(DocumentTimestampTest, WithoutAnIndexIs0) {
  engine_.CloseIndex();
  EXPECT_EQ(StandardErrorOf([&] { EXPECT_EQ(engine_.DocumentTimestamp("one"), 0U); }), kNoIndex);
}

}  // namespace
}  // namespace kestan_tests
