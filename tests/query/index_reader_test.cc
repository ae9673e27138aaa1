// SPDX-License-Identifier: GPL-3.0-or-later
// What a reader says of the index that an engine has open.
#include <kestan/query/index_reader.h>

#include <kestan/results.h>

#include "tests/query/query_test.h"

namespace kestan_tests {
namespace {

using Strings = std::vector<std::string>;

class IndexReaderTest : public QueryTest {
 protected:
  Strings Documents() {
    Strings names;
    EXPECT_EQ(reader_.ForEachDocument([&](std::string_view name) {
      names.emplace_back(name);
      return true;
    }),
              kestan::StoreError::kNone);
    std::sort(names.begin(), names.end());
    return names;
  }

  Numbers RemovedCodes() {
    Numbers codes;
    reader_.ForEachRemovedCode([&](kestan::Code code) {
      codes.push_back(code);
      return true;
    });
    return codes;
  }

  // Each word and how many documents hold it.
  std::map<std::string, std::size_t> Words() {
    std::map<std::string, std::size_t> words;
    EXPECT_EQ(reader_.ForEachWord([&](std::string_view word, const kestan::WordPostings& postings) {
      words[std::string(word)] = postings.CountDocuments();
      return true;
    }),
              kestan::StoreError::kNone);
    return words;
  }

  Strings CommonWords(kestan::FrequencyRange range) {
    Strings words;
    EXPECT_EQ(reader_.ForEachCommonWord(range,
                                        [&](std::string_view word, std::size_t) {
                                          words.emplace_back(word);
                                          return true;
                                        }),
              kestan::StoreError::kNone);
    std::sort(words.begin(), words.end());
    return words;
  }

  kestan::IndexReader& reader_ = kestan::ReaderOf(engine_);
};

TEST_F(IndexReaderTest, NewIndexHasNoDocumentsAndAllCodesFree) {
  const auto counts = reader_.CountDocuments();
  EXPECT_FALSE(counts.had_documents);
  EXPECT_EQ(counts.documents, 0u);
  EXPECT_EQ(counts.free_codes, 65535u);
  EXPECT_TRUE(reader_.KeepsPositions());
}

TEST_F(IndexReaderTest, CountsFollowEveryChange) {
  for (const char* name : {"one", "two", "three"}) engine_.AddDocumentWords(name, "cat");
  engine_.RemoveDocumentWords("one");
  auto counts = reader_.CountDocuments();
  EXPECT_TRUE(counts.had_documents);
  EXPECT_EQ(counts.documents, 2u);
  EXPECT_EQ(counts.highest_code, 3u);
  EXPECT_EQ(counts.removed_codes, 1u);
  EXPECT_EQ(counts.free_codes, 65532u);
  engine_.ShrinkIndex();
  counts = reader_.CountDocuments();
  EXPECT_EQ(counts.documents, 2u);
  EXPECT_EQ(counts.removed_codes, 0u);
  EXPECT_EQ(counts.reusable_codes, 1u);
  EXPECT_EQ(counts.free_codes, 65533u);
}

TEST_F(IndexReaderTest, CountsOfAContradictoryIndexDoNotGoBelow0) {
  PlantAndReopen({{"g-code", Units({1})}, {"g-avail", Units({1, 2, 3})}});
  EXPECT_EQ(reader_.CountDocuments().documents, 0u);
}

TEST_F(IndexReaderTest, OptionFlag1MeansNoPositions) {
  DropPositions();
  EXPECT_FALSE(reader_.KeepsPositions());
  EXPECT_EQ(reader_.OptionFlags(), 1u);
}

TEST_F(IndexReaderTest, NamesAndCodesLeadToEachOther) {
  engine_.AddDocumentWords("one", "cat");
  engine_.AddDocumentWords("two", "cat");
  EXPECT_EQ(reader_.CodeOf("two"), 2);
  EXPECT_EQ(reader_.NameOf(2), "two");
  EXPECT_EQ(reader_.CodeOf("three"), 0);
  EXPECT_EQ(reader_.NameOf(3).data(), nullptr);
  EXPECT_EQ(reader_.TimestampOf("two"), engine_.DocumentTimestamp("two"));
  EXPECT_NE(reader_.TimestampOf("two"), 0u);
}

TEST_F(IndexReaderTest, RenamedDocumentHasItsNewNameAtOnce) {
  engine_.AddDocumentWords("one", "cat");
  EXPECT_EQ(reader_.NameOf(1), "one");
  engine_.MoveDocumentWords("one", "two");
  EXPECT_EQ(reader_.NameOf(1), "two");
}

TEST_F(IndexReaderTest, NameTooLongForTheTableIsWhole) {
  const std::string name(5000, 'x');
  engine_.AddDocumentWords(name.c_str(), "cat");
  EXPECT_EQ(reader_.NameOf(1), name);
  EXPECT_EQ(reader_.NameOf(1), name);
}

TEST_F(IndexReaderTest, IndexOpenedLaterAnswersForItself) {
  const std::string long_name(5000, 'x');
  for (const std::string& name : {std::string("one"), long_name}) {
    engine_.CloseIndex();
    std::filesystem::remove(path_);
    ASSERT_EQ(engine_.OpenIndex(path_.c_str(), 1), 0);
    engine_.AddDocumentWords(name.c_str(), "cat");
    EXPECT_EQ(reader_.NameOf(1), name);
    EXPECT_FALSE(reader_.IsRemoved(1));
    engine_.RemoveDocumentWords(name.c_str());
    EXPECT_TRUE(reader_.IsRemoved(1));
  }
}

TEST_F(IndexReaderTest, RemovedDocumentIsRemovedUntilTheShrink) {
  engine_.AddDocumentWords("one", "cat");
  engine_.AddDocumentWords("two", "cat");
  EXPECT_FALSE(reader_.IsRemoved(1));
  engine_.RemoveDocumentWords("one");
  EXPECT_TRUE(reader_.IsRemoved(1));
  EXPECT_FALSE(reader_.IsRemoved(2));
  engine_.RemoveDocumentWords("two");
  EXPECT_TRUE(reader_.IsRemoved(2));
  engine_.ShrinkIndex();
  EXPECT_FALSE(reader_.IsRemoved(1));
}

TEST_F(IndexReaderTest, RemovedCodesComeInAscendingOrderUntilTheShrink) {
  for (const char* name : {"one", "two", "three", "four"}) engine_.AddDocumentWords(name, "cat");
  EXPECT_EQ(RemovedCodes(), Numbers());
  for (const char* name : {"four", "one", "three"}) engine_.RemoveDocumentWords(name);
  EXPECT_EQ(RemovedCodes(), Numbers({1, 3, 4}));
  engine_.ShrinkIndex();
  EXPECT_EQ(RemovedCodes(), Numbers());
}

TEST_F(IndexReaderTest, CodeListedTwiceAsRemovedComesOnceAndTheHighestComesToo) {
  PlantAndReopen({{"g-deleted", Units({65535, 7, 65535})}});
  EXPECT_EQ(RemovedCodes(), Numbers({7, 65535}));
}

TEST_F(IndexReaderTest, WalkOverRemovedCodesEndsWhereTheVisitorSaysSo) {
  PlantAndReopen({{"g-deleted", Units({1, 2, 3})}});
  Numbers visited;
  reader_.ForEachRemovedCode([&](kestan::Code code) {
    visited.push_back(code);
    return code < 2;
  });
  EXPECT_EQ(visited, Numbers({1, 2}));
}

TEST_F(IndexReaderTest, SideRecordsAreThoseOfTheEngine) {
  engine_.DBPutTitle("one", "a title");
  engine_.DBPutSummary("one", "a summary");
  engine_.DBPutUser("one", "");
  EXPECT_EQ(Bytes(*reader_.FindSideRecord(kestan::SideRecord::kTitle, "one").ptr), "a title");
  EXPECT_EQ(Bytes(*reader_.FindSideRecord(kestan::SideRecord::kSummary, "one").ptr), "a summary");
  EXPECT_EQ(Bytes(*reader_.FindSideRecord(kestan::SideRecord::kUser, "one").ptr), "");
  EXPECT_EQ(reader_.FindSideRecord(kestan::SideRecord::kTitle, "two").ptr, nullptr);
}

TEST_F(IndexReaderTest, DocumentsAreThoseOfListDocuments) {
  for (const char* name : {"one", "two", "three"}) engine_.AddDocumentWords(name, "cat");
  engine_.RemoveDocumentWords("two");
  EXPECT_EQ(Documents(), Strings({"one", "three"}));
}

TEST_F(IndexReaderTest, WordsHaveTheirFrequencies) {
  engine_.AddDocumentWords("one", "cat dog");
  engine_.AddDocumentWords("two", "cat");
  EXPECT_EQ(Words(), (std::map<std::string, std::size_t>{{"cat", 2}, {"dog", 1}}));
  EXPECT_EQ(reader_.DocumentFrequency("cat"), 2u);
  EXPECT_EQ(reader_.DocumentFrequency("bird"), 0u);
}

TEST_F(IndexReaderTest, WordsThatAreNotInTheFileYetAreVisited) {
  std::string text;
  for (int i = 0; i < 50'000; ++i) text += "often ";
  engine_.AddDocumentWords("large.txt", text.c_str());  // more bytes than the file has
  EXPECT_EQ(Words(), (std::map<std::string, std::size_t>{{"often", 1}}));
}

TEST_F(IndexReaderTest, CommonWordsAreThoseOfTheListing) {
  engine_.AddDocumentWords("one", "cat dog");
  engine_.AddDocumentWords("two", "cat bird");
  engine_.AddDocumentWords("three", "cat dog");
  engine_.RemoveDocumentWords("three");  // counts until the shrink
  const std::vector<kestan::FrequencyRange> ranges{{1, -1},  {2, 3},       {3, 3},       {0.5, -1},
                                                   {0, 0.4}, {0.34, 0.67}, {2.9999, -1}, {4, -1}};
  for (const auto range : ranges) {
    std::string lines;
    EXPECT_EQ(reader_.ForEachCommonWord(range,
                                        [&](std::string_view word, std::size_t documents) {
                                          EXPECT_EQ(documents, reader_.DocumentFrequency(word));
                                          lines += std::string(word) + "\n";
                                          return true;
                                        }),
              kestan::StoreError::kNone);
    EXPECT_EQ(lines, engine_.CommonWords(range.low, range.high)) << range.low << " " << range.high;
  }
}

TEST_F(IndexReaderTest, CommonWordsFollowReusableCodes) {
  for (const char* name : {"one", "two", "three", "four"}) engine_.AddDocumentWords(name, "cat");
  engine_.AddDocumentWords("five", "dog");
  engine_.RemoveDocumentWords("one");
  engine_.RemoveDocumentWords("two");
  engine_.RemoveDocumentWords("three");
  engine_.ShrinkIndex();
  // Half of two documents, not of five.
  EXPECT_EQ(CommonWords({0.5, 0.5}), Strings({"cat", "dog"}));
}

TEST_F(IndexReaderTest, IndexThatNeverHadADocumentHasNoCommonWords) {
  PlantAndReopen({{"cat", Units({1, 1, 2})}});
  EXPECT_EQ(CommonWords({0, -1}), Strings());
  EXPECT_EQ(Words().size(), 1u);
}

TEST_F(IndexReaderTest, CommonWordIsOneValueWhateverItsBytes) {
  const std::string odd("a\nb\0c", 5);
  PlantAndReopen({{"g-code", Units({1})}, {odd, Units({1, 1, 2})}});
  EXPECT_EQ(CommonWords({1, -1}), Strings({odd}));
}

TEST_F(IndexReaderTest, WalkOverCommonWordsEndsWhereTheVisitorSaysSo) {
  engine_.AddDocumentWords("one", "cat dog bird");
  int visits = 0;
  EXPECT_EQ(reader_.ForEachCommonWord({1, -1},
                                      [&](std::string_view, std::size_t) {
                                        ++visits;
                                        return false;
                                      }),
            kestan::StoreError::kNone);
  EXPECT_EQ(visits, 1);
}

TEST_F(IndexReaderTest, ListedWordsAreThoseOfTheNamedList) {
  engine_.DBPutWords("colours", "red reddish blue");
  engine_.DBPutWords("none", "");
  Strings words;
  const auto add = [&](std::string_view word) { words.emplace_back(word); };
  EXPECT_TRUE(reader_.ForEachListedWord("colours", add));
  EXPECT_EQ(words, Strings({"red", "reddish", "blue"}));
  EXPECT_TRUE(reader_.ForEachListedWord("none", add));
  EXPECT_FALSE(reader_.ForEachListedWord("shapes", add));
  EXPECT_EQ(words.size(), 3u);
}

TEST_F(IndexReaderTest, WalksEndWhereTheVisitorSaysSo) {
  engine_.AddDocumentWords("one", "cat dog bird");
  int visits = 0;
  EXPECT_EQ(reader_.ForEachWord([&](std::string_view, const kestan::WordPostings&) {
    ++visits;
    return false;
  }),
            kestan::StoreError::kNone);
  EXPECT_EQ(visits, 1);
}

TEST_F(IndexReaderTest, ChangesThatWaitAreSeen) {
  engine_.AddDocumentWords("one", "cat cat");
  const auto postings = reader_.FindWord("cat");
  kestan::WordPostings::Cursor cursor(postings);
  ASSERT_TRUE(cursor.Next());
  EXPECT_EQ(cursor.code(), 1);
  EXPECT_EQ(cursor.positions().size(), 2u);
}

TEST_F(IndexReaderTest, ClosedIndexMakesTheStoreComplain) {
  engine_.CloseIndex();
  EXPECT_EQ(StandardErrorOf([&] { EXPECT_EQ(reader_.CodeOf("one"), 0); }),
            "Kestan: Call to database::get without an open database\n");
}

}  // namespace
}  // namespace kestan_tests
