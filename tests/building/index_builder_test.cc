// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/index_builder.h>
#include <kestan/index_file.h>

#include <cerrno>
#include <string>
#include <string_view>

#include "tests/support/files.h"
#include "tests/support/index_test.h"

namespace kestan_tests {
namespace {

using kestan::AppendPosting;
using kestan::Position;
using kestan::RecordPlace;
using kestan::SideRecord;
using kestan::StoreError;

class IndexBuilderTest : public testing::Test {
 protected:
  void SetUp() override { ASSERT_EQ(builder_.Open(path_.c_str(), {0, 20}), StoreError::kNone); }

  bool IsRefused(std::string_view word) { return builder_.AddWord(word, kRecord).offset == 0; }

  // Finishes the file and reads it with plain gdbm calls.
  Records Finished() {
    EXPECT_EQ(builder_.Finish(), StoreError::kNone);
    return Dump(path_);
  }

  // What the file holds at `place`: the key and the value.
  std::pair<std::string, std::string> At(const RecordPlace& place) const {
    const std::string bytes = ReadFile(path_).substr(static_cast<std::size_t>(place.offset));
    return {bytes.substr(0, place.key_bytes), bytes.substr(place.key_bytes, place.value_bytes)};
  }

  const std::string kRecord = Units({1, 1, 1});
  TempDir folder_;
  const std::string path_ = folder_ / "index";
  kestan::IndexBuilder builder_;
};

TEST_F(IndexBuilderTest, WithoutAnythingThereAreOptionFlagsAlone) {
  EXPECT_EQ(Finished(), (Records{{"g-opts", std::string(4, '\0')}}));
}

TEST_F(IndexBuilderTest, DocumentHasARecordByNameAndOneByCode) {
  builder_.AddDocument(1, "a.txt", 0x65536a00);
  const Records expected{{"c-" + Units({1}), "a.txt"},
                         {"d-a.txt", Units({0x6a00, 0x6553, 1, 0})},
                         {"g-code", Units({1})},
                         {"g-opts", Units({0, 0})}};
  EXPECT_EQ(Finished(), expected);
}

TEST_F(IndexBuilderTest, CounterIsTheHighestCodeInWhateverOrderTheyCome) {
  builder_.AddDocument(2, "b", 1);
  builder_.AddDocument(3, "c", 1);
  builder_.AddDocument(1, "a", 1);
  EXPECT_EQ(Finished()["g-code"], Units({3}));
}

TEST_F(IndexBuilderTest, AsManyDocumentsAsThereAreCodes) {
  for (unsigned code = 1; code <= kestan::kMaxCode; ++code) {
    builder_.AddDocument(static_cast<kestan::Code>(code), std::to_string(code), code);
  }
  ASSERT_EQ(builder_.Finish(), StoreError::kNone);
  kestan::IndexFile file;
  ASSERT_EQ(file.Open(path_.c_str()), StoreError::kNone);
  EXPECT_EQ(file.CountDocuments().documents, 65535u);
  EXPECT_EQ(file.NameOf(65535), "65535");
  EXPECT_EQ(file.CodeOf("40000"), 40000);
  EXPECT_EQ(file.TimestampOf("77"), 77u);
}

TEST_F(IndexBuilderTest, SideRecordsMayBeOfAnyNameAndEmpty) {
  builder_.AddSideRecord(SideRecord::kTitle, "x", "Title");
  builder_.AddSideRecord(SideRecord::kSummary, "x", "");
  builder_.AddSideRecord(SideRecord::kUser, "", "text");
  Records records = Finished();
  EXPECT_EQ(records["t-x"], "Title");
  EXPECT_EQ(records.count("s-x"), 1u);
  EXPECT_EQ(records["u-"], "text");
  EXPECT_EQ(records.size(), 4u);
}

TEST_F(IndexBuilderTest, WordsThatAreKeysOfOtherRecordsAreRefused) {
  builder_.AddDocument(1, "day", 1);
  builder_.AddDocument(0x6261, "", 1);
  builder_.AddSideRecord(SideRecord::kTitle, "shirt", "T");
  builder_.AddSideRecord(SideRecord::kSummary, "ome", "S");
  builder_.AddSideRecord(SideRecord::kUser, "turn", "U");
  for (const char* word : {"d-day", "c-ab", "d-", "t-shirt", "s-ome", "u-turn", "g-code", "g-avail",
                           "g-deleted", "g-opts"}) {
    EXPECT_TRUE(IsRefused(word)) << word;
  }
  Records records = Finished();
  EXPECT_EQ(records["d-day"], Units({1, 0, 1, 0}));
  EXPECT_EQ(records["c-ab"], "");
  EXPECT_EQ(records["t-shirt"], "T");
  EXPECT_EQ(records["s-ome"], "S");
  EXPECT_EQ(records["u-turn"], "U");
  EXPECT_EQ(records["g-code"], Units({0x6261}));
  EXPECT_EQ(records.count("g-avail"), 0u);
  EXPECT_EQ(records.count("g-deleted"), 0u);
}

TEST_F(IndexBuilderTest, WordsThatOnlyLookLikeSuchKeysAreAdded) {
  builder_.AddDocument(1, "day", 1);
  builder_.AddSideRecord(SideRecord::kTitle, "shirt", "T");
  const std::vector<std::string> words = {"d-days",  "d-da",    "t-day", "t-Shirt",
                                          "s-shirt", "g-codes", "c-ab",  "w-",
                                          "day",     "G-code",  "-",     "gcode"};
  for (const std::string& word : words) EXPECT_FALSE(IsRefused(word)) << word;
  Records records = Finished();
  for (const std::string& word : words) EXPECT_EQ(records[word], kRecord) << word;
}

TEST_F(IndexBuilderTest, WhatIsNoWordIsRefused) {
  builder_.AddDocument(1, "a", 1);
  for (const std::string& word :
       {std::string(), std::string("two words"), std::string("line\n"), std::string("a\0b", 3)}) {
    EXPECT_TRUE(IsRefused(word)) << word;
  }
  EXPECT_EQ(Finished().size(), 4u);
}

TEST_F(IndexBuilderTest, WordMayBeOfAnyLength) {
  builder_.AddDocument(1, "a", 1);
  const std::string word(200'000, 'w');
  EXPECT_FALSE(IsRefused(word));
  EXPECT_FALSE(IsRefused(word + "w"));
  Records records = Finished();
  EXPECT_EQ(records[word], kRecord);
  EXPECT_EQ(records[word + "w"], kRecord);
}

TEST_F(IndexBuilderTest, PlacesNameTheKeyAndTheValueAfterIt) {
  builder_.AddDocument(1, "a", 1);
  const RecordPlace title = builder_.AddSideRecord(SideRecord::kTitle, "a", "Title");
  const RecordPlace hello = builder_.AddWord("hello", kRecord);
  const RecordPlace empty = builder_.AddWord("nobody", "");
  EXPECT_EQ(title.key_bytes, 3u);
  EXPECT_EQ(hello.value_bytes, 6u);
  ASSERT_EQ(builder_.Finish(), StoreError::kNone);
  EXPECT_EQ(At(title), std::make_pair(std::string("t-a"), std::string("Title")));
  EXPECT_EQ(At(hello), std::make_pair(std::string("hello"), kRecord));
  EXPECT_EQ(At(empty), std::make_pair(std::string("nobody"), std::string()));
}

TEST_F(IndexBuilderTest, NameOrWordThatComesTwiceIsAnError) {
  builder_.AddDocument(1, "a", 1);
  builder_.AddDocument(2, "a", 1);
  EXPECT_EQ(builder_.Finish(), StoreError::kUnknown);
  kestan::IndexBuilder other;
  ASSERT_EQ(other.Open((folder_ / "other").c_str(), {}), StoreError::kNone);
  other.AddWord("word", kRecord);
  other.AddWord("word", kRecord);
  EXPECT_EQ(other.Finish(), StoreError::kUnknown);
}

TEST_F(IndexBuilderTest, SideRecordAfterAWordOfItsKeyIsAnError) {
  EXPECT_FALSE(IsRefused("t-shirt"));
  builder_.AddSideRecord(SideRecord::kTitle, "shirt", "T");
  EXPECT_EQ(builder_.Finish(), StoreError::kUnknown);
}

TEST_F(IndexBuilderTest, FileThatExistsIsLeftAlone) {
  WriteFile(folder_ / "other", "text");
  kestan::IndexBuilder other;
  errno = 0;
  EXPECT_EQ(other.Open((folder_ / "other").c_str(), {}), StoreError::kFileOpen);
  EXPECT_EQ(errno, EEXIST);
  EXPECT_EQ(ReadFile(folder_ / "other"), "text");
}

TEST_F(IndexBuilderTest, HasOneFileAtATimeAndCanMakeAnother) {
  EXPECT_EQ(builder_.Open((folder_ / "other").c_str(), {}), StoreError::kNotOpen);
  builder_.AddDocument(1, "a", 1);
  EXPECT_EQ(Finished().size(), 4u);
  EXPECT_EQ(builder_.Finish(), StoreError::kNotOpen);
  EXPECT_EQ(builder_.AddWord("late", kRecord).offset, 0u);
  ASSERT_EQ(builder_.Open((folder_ / "other").c_str(), {}), StoreError::kNone);
  EXPECT_EQ(builder_.Finish(), StoreError::kNone);
  EXPECT_EQ(Dump(folder_ / "other").size(), 1u);
}

TEST_F(IndexBuilderTest, AnUnfinishedFileIsNotAValidOne) {
  {
    kestan::IndexBuilder builder;
    ASSERT_EQ(builder.Open((folder_ / "other").c_str(), {}), StoreError::kNone);
    builder.AddWord("word", std::string(3 << 20, 'x'));
  }
  Kestan engine;
  EXPECT_EQ(engine.OpenIndex((folder_ / "other").c_str(), 0), -1);
}

TEST(AppendPostingTest, AddsCodeCountAndPositions) {
  std::string record = Units({1, 0});
  const std::vector<Position> positions = {1, 258, 65535};
  AppendPosting(7, kestan::Positions{positions.data(), positions.size()}, &record);
  EXPECT_EQ(record, Units({1, 0, 7, 3, 1, 258, 65535}));
  AppendPosting(8, kestan::EncodedPositions(record.data() + 8, 2), &record);
  EXPECT_EQ(record, Units({1, 0, 7, 3, 1, 258, 65535, 8, 2, 1, 258}));
}

TEST(AppendPostingTest, WithoutPositionsAddsTheCode) {
  std::string record;
  AppendPosting(65535, &record);
  AppendPosting(258, &record);
  EXPECT_EQ(record, Units({65535, 258}));
}

TEST(AppendPostingTest, KeepsTheFirst65535Positions) {
  const std::vector<Position> positions(65536, 4);
  const std::string encoded(std::size_t{2} * 65536, '\4');
  std::string full;
  AppendPosting(1, kestan::Positions{positions.data(), 65535}, &full);
  EXPECT_EQ(full.size(), 2u + 2u + 2u * 65535u);
  std::string over;
  AppendPosting(1, kestan::Positions{positions.data(), 65536}, &over);
  EXPECT_EQ(over, full);
  std::string copied;
  AppendPosting(1, kestan::EncodedPositions(encoded.data(), 65536), &copied);
  EXPECT_EQ(copied.size(), full.size());
  EXPECT_EQ(copied.substr(0, 6), Units({1, 65535, 0x0404}));
}

TEST(AppendPostingTest, AddsADocumentWithoutPositions) {
  std::string record;
  AppendPosting(1, kestan::Positions{nullptr, 0}, &record);
  AppendPosting(2, kestan::EncodedPositions(), &record);
  EXPECT_EQ(record, Units({1, 0, 2, 0}));
}

}  // namespace
}  // namespace kestan_tests
