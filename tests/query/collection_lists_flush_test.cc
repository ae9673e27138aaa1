// SPDX-License-Identifier: GPL-3.0-or-later
// How often the walk of kestan/query/collection_lists.cc flushes the store, and what it holds
// meanwhile: a changed record that somebody holds is written by every flush.
#include "tests/query/query_test.h"
#include "tests/support/gdbm_calls.h"

namespace kestan_tests {
namespace {

using Lines = std::vector<std::string>;

class FlushPolicyTest : public IndexTest {
 protected:
  // Opens an index of `count` records, of which `count` - 2 are words without documents.
  void PlantRecords(int count) {
    Records records = {{"g-code", Units({1})}};
    for (int i = 2; i < count; ++i) records["word" + std::to_string(i)] = "";
    PlantAndReopen(records);
  }

  // Runs `walk` and returns after how many records each flush came.
  template <typename Walk>
  static Numbers FlushesOf(Walk walk) {
    const GdbmWatch watch;
    walk();
    Numbers flushes;
    unsigned records = 0;
    for (const GdbmCall& call : watch.Calls()) {
      if (call.function == "firstkey" || call.function == "nextkey") ++records;
      if (call.function == "sync") flushes.push_back(records);
    }
    return flushes;
  }

  Numbers OfDocuments() {
    return FlushesOf([&] { engine_.ListDocuments(); });
  }

  Numbers OfWords() {
    return FlushesOf([&] { engine_.CommonWords(0, 1); });
  }
};

// Counts how often each record is written while one of the walks goes over records that were all
// changed, and in two flushes after it.
class WritesOfAWalkTest : public FlushPolicyTest {
 protected:
  // Has `count` records, and the words among them changed by flag 1.
  void ChangeAll(int count) {
    PlantRecords(count);
    PlantAndReopen({{"g-opts", Units({0, 0})}});
    ASSERT_EQ(engine_.SetOptionFlag(1), 0);
  }

  template <typename Walk>
  std::map<std::string, int> WritesOf(Walk walk) {
    last_keys_.clear();
    const GdbmWatch watch;
    walk();
    engine_.FlushIndex();
    engine_.FlushIndex();
    std::map<std::string, int> writes;
    for (const GdbmCall& call : watch.Calls()) {
      if (call.function == "nextkey") last_keys_.push_back(call.key);
      if (call.function == "store") ++writes[call.key];
    }
    return writes;
  }

  static Lines WrittenTwiceOrMore(const std::map<std::string, int>& writes) {
    Lines keys;
    for (const auto& [key, times] : writes) {
      for (int i = 1; i < times; ++i) keys.push_back(key);
    }
    return keys;
  }

  Lines last_keys_;  // each key that a walk has passed, in its order
};

TEST_F(FlushPolicyTest, WalkOver250RecordsFlushesTwice) {
  PlantRecords(250);
  EXPECT_EQ(OfDocuments(), (Numbers{101, 202}));
  EXPECT_EQ(OfWords(), (Numbers{101, 202}));
}

TEST_F(FlushPolicyTest, FirstFlushComesAfterThe101stRecord) {
  PlantRecords(100);
  EXPECT_EQ(OfDocuments(), Numbers{});
  EXPECT_EQ(OfWords(), Numbers{});
  PlantRecords(101);
  EXPECT_EQ(OfDocuments(), Numbers{101});
  EXPECT_EQ(OfWords(), Numbers{101});
}

TEST_F(FlushPolicyTest, EachFurtherFlushComesAfter101More) {
  PlantRecords(302);
  EXPECT_EQ(OfWords(), (Numbers{101, 202}));
  PlantRecords(303);
  EXPECT_EQ(OfWords(), (Numbers{101, 202, 303}));
}

TEST_F(FlushPolicyTest, IndexWithoutCounterIsNotWalked) {
  EXPECT_EQ(OfWords(), Numbers{});
  const GdbmWatch watch;
  engine_.ListDocuments();
  EXPECT_EQ(watch.Count("firstkey"), 0U);
}

TEST_F(WritesOfAWalkTest, OnlyTheRecordThatAFlushMeetsIsWrittenByTheNextToo) {
  ChangeAll(250);
  const auto by_documents = WritesOf([&] { engine_.ListDocuments(); });
  EXPECT_EQ(by_documents.size(), 248U);
  EXPECT_EQ(WrittenTwiceOrMore(by_documents), Lines{last_keys_.at(100)});
  ChangeAll(250);
  const auto by_words = WritesOf([&] { engine_.CommonWords(0, 1); });
  EXPECT_EQ(by_words.size(), 248U);
  EXPECT_EQ(WrittenTwiceOrMore(by_words), Lines{last_keys_.at(100)});
}

TEST_F(WritesOfAWalkTest, NothingAfterTheWalk) {
  ChangeAll(50);
  const auto by_documents = WritesOf([&] { engine_.ListDocuments(); });
  EXPECT_EQ(by_documents.size(), 48U);
  EXPECT_EQ(WrittenTwiceOrMore(by_documents), Lines{});
  ChangeAll(50);
  const auto by_words = WritesOf([&] { engine_.CommonWords(0, 1); });
  EXPECT_EQ(by_words.size(), 48U);
  EXPECT_EQ(WrittenTwiceOrMore(by_words), Lines{});
}

TEST_F(WritesOfAWalkTest, NoCounterDuringTheWalk) {
  PlantRecords(150);
  engine_.AddDocumentWords("two", "");
  EXPECT_EQ(WritesOf([&] { engine_.CommonWords(0, 1); }),
            (std::map<std::string, int>{{"g-code", 1}}));
  engine_.AddDocumentWords("three", "");
  EXPECT_EQ(WritesOf([&] { engine_.ListDocuments(); }),
            (std::map<std::string, int>{{"g-code", 1}}));
}

}  // namespace
}  // namespace kestan_tests
