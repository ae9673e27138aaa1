// SPDX-License-Identifier: GPL-3.0-or-later
// Kestan::ShrinkIndex of kestan/indexing/shrink.cc: what it purges, keeps and gives back.
#include "tests/indexing/planting.h"

namespace kestan_tests {
namespace {

class ShrinkIndexTest : public IndexTest {
 protected:
  // Plants `records`, shrinks, and returns what is stored then, except for the option flags.
  Records Shrunk(const Records& records) {
    PlantAndReopen(records);
    EXPECT_EQ(StandardErrorOf([&] { EXPECT_EQ(engine_.ShrinkIndex(), 0); }), "");
    Records stored = Stored();
    stored.erase("g-opts");
    return stored;
  }

  // Shrinks an index where the codes 2 and 5 are removed, and returns the record of "apple".
  std::string Apple(const std::string& postings, const std::string& options = kPositions) {
    return Shrunk({{"apple", postings}, {"g-deleted", Units({2, 5})}, {"g-opts", options}})
        .at("apple");
  }
};

TEST_F(ShrinkIndexTest, PurgesThePostingsOfRemovedCodes) {
  const std::string kept_first = EncodedPosting(1, {4}), kept_last = EncodedPosting(7, {300});
  EXPECT_EQ(Apple(kept_first + EncodedPosting(2, {1, 2}) + EncodedPosting(5, {9}) + kept_last),
            kept_first + kept_last);
}

TEST_F(ShrinkIndexTest, PurgesBareCodesWherePositionsAreNotKept) {
  EXPECT_EQ(Apple(Units({1, 2, 5, 7}), kNoPositions), Units({1, 7}));
}

TEST_F(ShrinkIndexTest, PurgesTheFirstAndTheLastPosting) {
  EXPECT_EQ(Apple(EncodedPosting(5, {1}) + EncodedPosting(1, {2, 5}) + EncodedPosting(2, {})),
            EncodedPosting(1, {2, 5}));
}

TEST_F(ShrinkIndexTest, PurgesEveryPostingOfACode) {
  EXPECT_EQ(Apple(EncodedPosting(2, {1}) + EncodedPosting(1, {1}) + EncodedPosting(2, {3})),
            EncodedPosting(1, {1}));
}

TEST_F(ShrinkIndexTest, PositionsThatEqualRemovedCodesStay) {
  EXPECT_EQ(Apple(EncodedPosting(1, {2, 5}) + EncodedPosting(2, {5}) + EncodedPosting(4, {5, 2})),
            EncodedPosting(1, {2, 5}) + EncodedPosting(4, {5, 2}));
}

TEST_F(ShrinkIndexTest, RecordThatLosesEverythingStaysEmpty) {
  EXPECT_EQ(Apple(EncodedPosting(2, {1}) + EncodedPosting(5, {1, 2})), "");
}

TEST_F(ShrinkIndexTest, RecordWithoutRemovedCodesStaysAsItIs) {
  EXPECT_EQ(Apple(EncodedPosting(9, {1}) + EncodedPosting(3, {1, 2})),
            EncodedPosting(9, {1}) + EncodedPosting(3, {1, 2}));
  EXPECT_EQ(Apple(""), "");
}

TEST_F(ShrinkIndexTest, OtherOptionFlagsKeepPositions) {
  EXPECT_EQ(Apple(EncodedPosting(1, {2}) + EncodedPosting(2, {1}), Units({4, 0})),
            EncodedPosting(1, {2}));
}

TEST_F(ShrinkIndexTest, OneByteWordsKeepRemovedCodes) {
  const std::string postings = EncodedPosting(2, {1}) + EncodedPosting(3, {1});
  const Records stored = Shrunk({{"a", postings}, {"ab", postings}, {"g-deleted", Units({2})}});
  EXPECT_EQ(stored.at("a"), postings);
  EXPECT_EQ(stored.at("ab"), EncodedPosting(3, {1}));
}

TEST_F(ShrinkIndexTest, KeysWithADashInSecondPlaceAreNotPurged) {
  const std::string postings = EncodedPosting(2, {1}) + EncodedPosting(3, {1});
  const Records stored = Shrunk({{"x-", postings},
                                 {"x-y", postings},
                                 {"--", postings},
                                 {"xy-", postings},
                                 {"-x", postings},
                                 {"g-deleted", Units({2})}});
  for (const char* key : {"x-", "x-y", "--"}) EXPECT_EQ(stored.at(key), postings) << key;
  for (const char* key : {"xy-", "-x"}) EXPECT_EQ(stored.at(key), EncodedPosting(3, {1})) << key;
}

TEST_F(ShrinkIndexTest, ReusedCodeFindsItsNewDocumentThroughAOneByteWord) {
  engine_.AddDocumentWords("old", "a bc");
  engine_.RemoveDocumentWords("old");
  engine_.ShrinkIndex();
  engine_.AddDocumentWords("new", "other");
  EXPECT_EQ(Listing(engine_.QueryWord("a")), "100 new\n");
  EXPECT_EQ(Listing(engine_.QueryWord("bc")), "");
}

TEST_F(ShrinkIndexTest, AppendsRemovedCodesToTheReusableOnes) {
  const Records stored = Shrunk({{"g-avail", Units({3})}, {"g-deleted", Units({8, 6})}});
  EXPECT_EQ(stored, (Records{{"g-avail", Units({3, 8, 6})}}));
}

TEST_F(ShrinkIndexTest, NextDocumentsTakeTheCodesFromTheEnd) {
  PlantAndReopen({{"g-avail", Units({3})}, {"g-deleted", Units({8, 6})}, {"g-code", Units({8})}});
  engine_.ShrinkIndex();
  for (const char* name : {"first", "second", "third"}) engine_.AddDocumentWords(name, "");
  const Records stored = Stored();
  EXPECT_EQ(stored.at(NameKey(6)), "first");
  EXPECT_EQ(stored.at(NameKey(8)), "second");
  EXPECT_EQ(stored.at(NameKey(3)), "third");
}

TEST_F(ShrinkIndexTest, CreatesTheListOfReusableCodes) {
  EXPECT_EQ(Shrunk({{"g-deleted", Units({8})}}), (Records{{"g-avail", Units({8})}}));
}

TEST_F(ShrinkIndexTest, FillsAnEmptyListOfReusableCodes) {
  EXPECT_EQ(Shrunk({{"g-deleted", Units({8})}, {"g-avail", ""}}),
            (Records{{"g-avail", Units({8})}}));
}

TEST_F(ShrinkIndexTest, CodesTakenBeforeAreNotGivenTwice) {
  PlantAndReopen({{"g-avail", Units({3})}, {"g-code", Units({3})}});
  engine_.AddDocumentWords("one", "");
  engine_.RemoveDocumentWords("one");
  engine_.ShrinkIndex();
  EXPECT_EQ(Stored().at("g-avail"), Units({3}));
}

TEST_F(ShrinkIndexTest, DuplicatesAreKept) {
  EXPECT_EQ(Shrunk({{"g-avail", Units({6})}, {"g-deleted", Units({6, 6})}}).at("g-avail"),
            Units({6, 6, 6}));
}

TEST_F(ShrinkIndexTest, WithoutRemovedCodesChangesNoRecord) {
  const Records records = {{"apple", EncodedPosting(2, {1}) + "odd"}, {"g-avail", Units({2})}};
  EXPECT_EQ(Shrunk(records), records);
}

TEST_F(ShrinkIndexTest, SecondTimeChangesNothing) {
  const Records once = Shrunk({{"apple", EncodedPosting(2, {1})}, {"g-deleted", Units({2})}});
  EXPECT_EQ(Shrunk({}), once);
}

TEST_F(ShrinkIndexTest, EmptyListOfRemovedCodesGoesToo) {
  EXPECT_EQ(Shrunk({{"g-deleted", ""}, {"apple", EncodedPosting(1, {1})}}),
            (Records{{"g-avail", ""}, {"apple", EncodedPosting(1, {1})}}));
}

TEST_F(ShrinkIndexTest, OneMoreLookPastTheListPurgesNothingLive) {
  std::string postings;
  for (unsigned code = 1; code < 600; ++code) postings += EncodedPosting(code, {});
  const std::string live = postings.substr(4);
  EXPECT_EQ(Shrunk({{"apple", postings}, {"g-deleted", Units({1})}}).at("apple"), live);
}

TEST_F(ShrinkIndexTest, NoLivePostingGoesWithAnEmptyList) {
  std::string codes;
  for (unsigned code = 1; code < 65536; ++code) codes += Units({code});
  const Records stored = Shrunk({{"apple", codes}, {"g-deleted", ""}, {"g-opts", kNoPositions}});
  EXPECT_EQ(stored.at("apple"), codes);
}

TEST_F(ShrinkIndexTest, RemovedCodesVanishFromQueries) {
  engine_.AddDocumentWords("one", "cat");
  engine_.AddDocumentWords("two", "cat");
  engine_.RemoveDocumentWords("one");
  engine_.ShrinkIndex();
  EXPECT_EQ(Listing(engine_.QueryWord("cat")), "100 two\n");
  EXPECT_EQ(Stored().at("cat"), EncodedPosting(2, {1}));
}

TEST_F(ShrinkIndexTest, ReclaimsTheSpaceInTheFile) {
  for (int i = 0; i < 100; ++i) {
    engine_.DBPutTitle(std::to_string(i).c_str(), std::string(10000, 't').c_str());
  }
  for (int i = 0; i < 100; ++i) engine_.DBDelTitle(std::to_string(i).c_str());
  engine_.FlushIndex();
  const auto before = std::filesystem::file_size(path_);
  EXPECT_EQ(engine_.ShrinkIndex(), 0);
  EXPECT_LT(std::filesystem::file_size(path_), before / 2);
}

TEST_F(ShrinkIndexTest, WithoutAnIndexIsMinus1) {
  engine_.CloseIndex();
  EXPECT_EQ(StandardErrorOf([&] { EXPECT_EQ(engine_.ShrinkIndex(), -1); }),
            "Kestan: Call to database::get without an open database\n"
            "Kestan: Call to database::shrink without an open database\n");
}

}  // namespace
}  // namespace kestan_tests
