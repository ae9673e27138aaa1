// SPDX-License-Identifier: GPL-3.0-or-later
#include <gdbm.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "tests/support/gdbm_calls.h"
#include "tests/support/index_test.h"

namespace kestan_tests {
namespace {

const std::string kOld = Units({2, 1, 7});   // a posting of a removed document
const std::string kLive = Units({1, 1, 7});  // of one that is there

class ShortWordsTest : public IndexTest {
 protected:
  // An index in which the document "a" has the code 1, and the code 2 is reusable.
  void SetUp() override {
    IndexTest::SetUp();
    engine_.AddDocumentWords("a", "cat");
    engine_.AddDocumentWords("b", "cat");
    engine_.RemoveDocumentWords("b");
    engine_.ShrinkIndex();
  }

  // Purges an index that has `records` too.
  //   Returns  what it holds then, except for the system records.
  Records Purged(const Records& records, int result = 0) {
    PlantAndReopen(records);
    EXPECT_EQ(engine_.PurgeShortWords(), result);
    return Stored();
  }

  std::string Purged(const std::string& key, const std::string& value) {
    return Purged({{key, value}}).at(key);
  }
};

TEST_F(ShortWordsTest, LoseWhatTheySayOfDocumentsThatAreGone) {
  EXPECT_EQ(Purged("c", kLive + kOld), kLive);
  EXPECT_EQ(Purged("c", kOld + kLive), kLive);
  EXPECT_EQ(Purged("c", kOld), "");
  EXPECT_EQ(Purged("c", kLive), kLive);
}

TEST_F(ShortWordsTest, HaveAnyByteAndMayEndInAHyphen) {
  for (int byte = 0; byte < 256; ++byte) {
    const std::string word(1, static_cast<char>(byte));
    EXPECT_EQ(Purged(word, kOld + kLive), kLive) << byte;
    EXPECT_EQ(Purged(word + "-", kOld + kLive), kLive) << byte;
  }
}

TEST_F(ShortWordsTest, AreNoOthers) {
  for (const char* word : {"cc", "-c", "c-c"}) EXPECT_EQ(Purged(word, kOld), kOld) << word;
}

TEST_F(ShortWordsTest, OfRemovedDocumentsGoBeforeAShrink) {
  PlantAndReopen({{"c", kLive}});
  engine_.RemoveDocumentWords("a");
  EXPECT_EQ(engine_.PurgeShortWords(), 0);
  EXPECT_EQ(Stored().at("c"), kLive);
  ASSERT_EQ(engine_.OpenIndex(path_.c_str(), 1), 0);
  EXPECT_EQ(engine_.PurgeShortWords(true), 0);
  EXPECT_EQ(Stored().at("c"), "");
}

TEST_F(ShortWordsTest, OfCodesThatWereNeverHandedOutGo) {
  EXPECT_EQ(Purged("c", Units({3, 1, 7}) + kLive), kLive);
  EXPECT_EQ(Purged("c", Units({0, 1, 7}) + kLive), kLive);
  EXPECT_EQ(Purged("c", Units({65535, 1, 7}) + kLive), kLive);
}

TEST_F(ShortWordsTest, OfADocumentStayWhateverADamagedListSays) {
  EXPECT_EQ(Purged({{"c", kLive}, {"g-avail", Units({1, 2})}}).at("c"), kLive);
  EXPECT_EQ(Purged({{"c", kLive}, {"g-code", Units({0})}}).at("c"), kLive);
}

TEST_F(ShortWordsTest, AreCodesAloneWithoutPositions) {
  engine_.SetOptionFlag(1);
  EXPECT_EQ(Purged("c", Units({2, 1, 2, 1})), Units({1, 1}));
  EXPECT_EQ(Purged("c-", Units({2, 1})), Units({1}));
}

TEST_F(ShortWordsTest, AreNotTakenForTheTextsOfTheEmptyName) {
  for (const char* key : {"t-", "s-", "u-"}) EXPECT_EQ(Purged(key, "a title"), "a title") << key;
  const std::string document = Units({1, 1, 2, 0});
  EXPECT_EQ(Purged("d-", document), document);
}

TEST_F(ShortWordsTest, OfADamagedRecordAreLeftWithAllOthers) {
  for (const std::string& damaged : {kOld + "x", kOld + Units({1, 2, 7}), kOld + Units({1})}) {
    const Records records = Purged({{"b", kOld}, {"c", damaged}, {"d", kOld}}, -2);
    EXPECT_EQ(records.at("b"), kOld);
    EXPECT_EQ(records.at("c"), damaged);
    EXPECT_EQ(records.at("d"), kOld);
  }
}

TEST_F(ShortWordsTest, OfADamagedRecordWithoutReusableCodesAreLeftAlone) {
  const std::string damaged = kLive + Units({1, 2, 7});
  EXPECT_EQ(Purged({{"b", kOld}, {"c", damaged}}).at("b"), "");
  EXPECT_EQ(Dump(path_).at("c"), damaged);
}

TEST_F(ShortWordsTest, OfADamagedRecordThatAShrinkWouldFreeAreLeftAlone) {
  const std::string damaged = kLive + "x";
  PlantAndReopen({{"c", damaged}});
  engine_.RemoveDocumentWords("a");
  EXPECT_EQ(engine_.PurgeShortWords(true), 0);
  EXPECT_EQ(Stored().at("c"), damaged);
}

TEST_F(ShortWordsTest, OfAnyTruncationOfARecordAreServed) {
  const std::string whole = kLive + kOld + kLive;
  for (std::size_t size = 0; size <= whole.size(); ++size) {
    PlantAndReopen({{"c", whole.substr(0, size)}});
    const int result = engine_.PurgeShortWords();
    const std::string purged = Stored().at("c");
    EXPECT_EQ(purged.substr(0, 6), whole.substr(0, std::min<std::size_t>(size, 6))) << size;
    EXPECT_TRUE(result == 0 || purged == whole.substr(0, size)) << size;
  }
}

TEST_F(ShortWordsTest, TakeLittleMemoryHoweverLongTheirRecordsAre) {
  std::string postings;
  for (int i = 0; i < 400000; ++i) postings += kLive;
  Records records;
  for (const char* word : {"a", "b", "c", "d", "e", "f", "g", "h", "i", "j", "k", "l"}) {
    records[word] = postings + kOld;
  }
  PlantAndReopen(records);
  GdbmWatch watch;
  EXPECT_EQ(engine_.PurgeShortWords(), 0);
  EXPECT_GE(watch.Count("sync"), 2u);
  EXPECT_EQ(Stored().at("l"), postings);
}

TEST_F(ShortWordsTest, OfNoIndexCannotBePurged) {
  engine_.CloseIndex();
  int result = 0;
  EXPECT_EQ(StandardErrorOf([&] { result = engine_.PurgeShortWords(); }),
            "Kestan: Call to database::get without an open database\n");
  EXPECT_EQ(result, -1);
}

TEST_F(ShortWordsTest, StayWhereARecordCannotBeRead) {
  bool failed = true;
  for (int nth = 1; failed; ++nth) {
    PlantAndReopen({{"c", kOld}});
    GdbmWatch watch;
    watch.Fail("fetch", nth, GDBM_FILE_READ_ERROR);
    const int result = engine_.PurgeShortWords();
    failed = engine_.FileError() != 0;
    EXPECT_EQ(result, failed ? GDBM_FILE_READ_ERROR : 0) << nth;
    EXPECT_EQ(Stored().at("c"), failed ? kOld : "") << nth;
  }
}

TEST_F(ShortWordsTest, ThatCannotBeWrittenAreAnError) {
  PlantAndReopen({{"c", kOld}});
  ASSERT_EQ(engine_.PurgeShortWords(), 0);
  GdbmWatch watch;
  watch.Fail("store", 1, GDBM_FILE_WRITE_ERROR);
  StandardErrorOf([&] { engine_.FlushIndex(); });
  EXPECT_EQ(engine_.FileError(), GDBM_FILE_WRITE_ERROR);
}

}  // namespace
}  // namespace kestan_tests
