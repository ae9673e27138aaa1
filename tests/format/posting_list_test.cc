// SPDX-License-Identifier: GPL-3.0-or-later
// Reading, adding and purging postings, and dropping positions. Each reader meets every truncation
// of a good record and every changed byte, in memory that ends with the record.
#include <kestan/format/posting_list.h>

#include <climits>
#include <functional>
#include <string>
#include <vector>

#include "tests/format/plain_postings.h"
#include "tests/support/counted.h"
#include "tests/support/index_test.h"

namespace kestan_tests {
namespace {

using PositionVector = std::vector<kestan::Position>;

const std::string kGood = Units({7, 2, 10, 20, 9, 0, 300, 3, 1, 65535, 1, 65535, 1, 5});

// Calls `check` with the good record cut at each byte and with each of its bytes changed.
void ForEachDamageOfGood(const std::function<void(const std::string&)>& check) {
  for (std::size_t size = 0; size <= kGood.size(); ++size) check(kGood.substr(0, size));
  for (std::size_t at = 0; at < kGood.size(); ++at) {
    for (int byte = 0; byte < 256; ++byte) {
      std::string changed = kGood;
      changed[at] = static_cast<char>(byte);
      check(changed);
    }
  }
}

// Walks a record with the library's reader.
std::vector<PlainPosting> ReadPostings(const std::string& record, bool with_positions) {
  const DBDatumPtr datum = Counted(record);
  const std::vector<unsigned> units = UnitsOf(record);
  kestan::PostingReader reader(*datum.ptr, with_positions);
  kestan::Posting posting{};
  std::vector<PlainPosting> postings;
  while (reader.Next(&posting)) {
    const auto first = units.begin() + static_cast<std::ptrdiff_t>(posting.first_unit);
    const auto end = first + static_cast<std::ptrdiff_t>(posting.units);
    postings.push_back({{first, end}, posting.code, {end - posting.positions, end}});
  }
  return postings;
}

// The record of the postings that `keeps` is true for.
std::string Joined(const std::vector<PlainPosting>& postings,
                   const std::function<bool(const PlainPosting&)>& keeps) {
  std::string record;
  for (const PlainPosting& posting : postings) {
    if (!keeps(posting)) continue;
    for (unsigned unit : posting.units) record += Units({unit});
  }
  return record;
}

TEST(PostingReaderTest, FindsEachPostingWithItsPositions) {
  const std::vector<PlainPosting> postings = ReadPostings(kGood, true);
  ASSERT_EQ(postings.size(), 4u);
  EXPECT_EQ(postings[0].code, 7u);
  EXPECT_EQ(postings[0].positions, (std::vector<unsigned>{10, 20}));
  EXPECT_EQ(postings[1].code, 9u);
  EXPECT_TRUE(postings[1].positions.empty());
  EXPECT_EQ(postings[2].positions, (std::vector<unsigned>{1, 65535, 1}));
  EXPECT_EQ(postings[3].code, 65535u);
}

TEST(PostingReaderTest, WithoutPositionsEachUnitIsACode) {
  const std::vector<PlainPosting> postings = ReadPostings(Units({7, 2, 65535}), false);
  ASSERT_EQ(postings.size(), 3u);
  EXPECT_EQ(postings[2].code, 65535u);
  EXPECT_TRUE(postings[2].positions.empty());
}

TEST(PostingReaderTest, AnEmptyRecordHasNoPosting) {
  EXPECT_TRUE(ReadPostings("", true).empty());
  EXPECT_TRUE(ReadPostings("", false).empty());
  const DBDatum none;
  kestan::Posting posting{1, 2, 3, 4};
  EXPECT_FALSE(kestan::PostingReader(none, true).Next(&posting));
  EXPECT_EQ(posting.code, 3);
}

TEST(PostingReaderTest, ACountPastTheEndIsReducedToWhatIsThere) {
  EXPECT_EQ(ReadPostings(Units({7, 3, 10, 20}), true)[0].positions,
            (std::vector<unsigned>{10, 20}));
  EXPECT_EQ(ReadPostings(Units({7, 2, 10, 20}), true)[0].positions,
            (std::vector<unsigned>{10, 20}));
  EXPECT_TRUE(ReadPostings(Units({7, 65535}), true)[0].positions.empty());
}

TEST(PostingReaderTest, ACodeWithoutACountHasNoPositions) {
  const std::vector<PlainPosting> postings = ReadPostings(Units({7, 1, 10, 9}), true);
  ASSERT_EQ(postings.size(), 2u);
  EXPECT_EQ(postings[1].code, 9u);
  EXPECT_TRUE(postings[1].positions.empty());
}

TEST(PostingReaderTest, StaysWithinDamagedRecords) {
  ForEachDamageOfGood([](const std::string& record) {
    ASSERT_EQ(ReadPostings(record, true), PlainPostings(record, true));
    ASSERT_EQ(ReadPostings(record, false), PlainPostings(record, false));
  });
}

TEST(PostingListTest, AreCounted) {
  EXPECT_EQ(kestan::CountPostings(Datum(kGood), true), 4u);
  EXPECT_EQ(kestan::CountPostings(Datum(kGood), false), 14u);
  EXPECT_EQ(kestan::CountPostings(DBDatum(), true), 0u);
  EXPECT_EQ(kestan::CountPostings(DBDatum(), false), 0u);
}

TEST(PostingListTest, OfDamagedRecordsAreCountedAsTheReaderFindsThem) {
  ForEachDamageOfGood([](const std::string& record) {
    const DBDatumPtr datum = Counted(record);
    for (bool with_positions : {true, false}) {
      ASSERT_EQ(kestan::CountPostings(*datum.ptr, with_positions),
                PlainPostings(record, with_positions).size());
    }
  });
}

bool Append(DBDatum* record, kestan::Code code, const PositionVector& positions) {
  const kestan::Positions borrowed{positions.data(), positions.size()};
  return kestan::AppendPosting(record, code, &borrowed);
}

TEST(PostingListTest, AreAddedAtTheEnd) {
  const DBDatumPtr record = Counted(Units({7, 1, 10}));
  EXPECT_TRUE(Append(record.ptr, 3, {1, 65535}));
  EXPECT_EQ(Bytes(*record.ptr), Units({7, 1, 10, 3, 2, 1, 65535}));
  EXPECT_FALSE(record.ptr->dirty);
}

TEST(PostingListTest, AreAddedToAnEmptyRecord) {
  const DBDatumPtr record = Counted("");
  EXPECT_TRUE(Append(record.ptr, 65535, {}));
  EXPECT_EQ(Bytes(*record.ptr), Units({65535, 0}));
}

TEST(PostingListTest, AddedOneByOneMakeTheRecordThatAPlainListMakes) {
  const DBDatumPtr record = Counted("");
  std::string plain;
  for (unsigned code = 1; code < 2000; ++code) {
    EXPECT_TRUE(Append(record.ptr, static_cast<kestan::Code>(code), {9, 10}));
    plain += Units({code, 2, 9, 10});
    ASSERT_EQ(Bytes(*record.ptr), plain);
  }
}

TEST(PostingListTest, WithoutPositionsAreTheCodeAlone) {
  const DBDatumPtr record = Counted(Units({7}));
  EXPECT_TRUE(kestan::AppendPosting(record.ptr, 258, nullptr));
  EXPECT_EQ(Bytes(*record.ptr), Units({7, 258}));
}

TEST(PostingListTest, HoldAtMost65535Positions) {
  const DBDatumPtr full = Counted("");
  const DBDatumPtr over = Counted("");
  EXPECT_TRUE(Append(full.ptr, 1, PositionVector(65535, 4)));
  EXPECT_TRUE(Append(over.ptr, 1, PositionVector(65536, 4)));
  EXPECT_EQ(full.ptr->size, 2u + 2u + 2u * 65535u);
  EXPECT_EQ(Bytes(*over.ptr), Bytes(*full.ptr));
  EXPECT_EQ(Bytes(*full.ptr).substr(0, 6), Units({1, 65535, 4}));
}

TEST(PostingListTest, WouldNotGrowARecordPastWhatGdbmStores) {
  DBDatum record;  // refused before any byte is looked at
  record.size = INT_MAX - 1;
  EXPECT_FALSE(kestan::AppendPosting(&record, 1, nullptr));
  record.size = INT_MAX - 5;
  EXPECT_FALSE(Append(&record, 1, {1}));
  EXPECT_EQ(record.size, static_cast<std::uint32_t>(INT_MAX - 5));
  EXPECT_EQ(record.data, nullptr);
}

#if UINTPTR_MAX > 0xffffffff
// Memory of that size is only to be had where addresses are wide; hardly any of it is touched.
TEST(PostingListTest, GrowARecordUpToWhatGdbmStores) {
  const DBDatumPtr record = Counted("");
  record.ptr->size = INT_MAX - 2;
  EXPECT_TRUE(kestan::AppendPosting(record.ptr, 0x0201, nullptr));
  ASSERT_EQ(record.ptr->size, static_cast<std::uint32_t>(INT_MAX));
  EXPECT_EQ(std::string(record.ptr->data + INT_MAX - 2, 2), "\x01\x02");
}
#endif

TEST(PostingListTest, WithoutTheirPositionsAreCodes) {
  const DBDatumPtr record = Counted(kGood);
  const char* const buffer = record.ptr->data;
  kestan::DropPositions(record.ptr);
  EXPECT_EQ(Bytes(*record.ptr), Units({7, 9, 300, 65535}));
  EXPECT_EQ(record.ptr->data, buffer);
  EXPECT_FALSE(record.ptr->dirty);
}

TEST(PostingListTest, OfDamagedRecordsLoseTheirPositionsToo) {
  ForEachDamageOfGood([](const std::string& record) {
    const DBDatumPtr datum = Counted(record);
    kestan::DropPositions(datum.ptr);
    std::string codes;
    for (const PlainPosting& posting : PlainPostings(record, true)) codes += Units({posting.code});
    ASSERT_EQ(Bytes(*datum.ptr), codes);
  });
}

// The codes to purge in the tests below.
kestan::CodeSet Purged(std::initializer_list<kestan::Code> codes) {
  kestan::CodeSet set;
  for (kestan::Code code : codes) set.set(code);
  return set;
}

std::string Purge(const std::string& record, std::initializer_list<kestan::Code> codes,
                  bool with_positions = true) {
  const DBDatumPtr datum = Counted(record);
  kestan::PurgePostings(datum.ptr, Purged(codes), with_positions);
  return Bytes(*datum.ptr);
}

TEST(PostingListTest, OfPurgedCodesAreTakenOut) {
  EXPECT_EQ(Purge(kGood, {7}), kGood.substr(8));
  EXPECT_EQ(Purge(kGood, {9}), kGood.substr(0, 8) + kGood.substr(12));
  EXPECT_EQ(Purge(kGood, {65535}), kGood.substr(0, 22));
  EXPECT_EQ(Purge(kGood, {7, 9, 300, 65535}), "");
  EXPECT_EQ(Purge(Units({7, 9, 7, 3}), {7}, false), Units({9, 3}));
}

TEST(PostingListTest, OfOtherCodesStay) {
  const DBDatumPtr record = Counted(kGood + "x");
  EXPECT_FALSE(kestan::PurgePostings(record.ptr, Purged({1, 2, 10, 20}), true));
  EXPECT_EQ(Bytes(*record.ptr), kGood + "x");
  EXPECT_FALSE(record.ptr->dirty);
}

TEST(PostingListTest, PurgingReturnsWhetherThereWereAny) {
  const DBDatumPtr record = Counted(kGood);
  EXPECT_TRUE(kestan::PurgePostings(record.ptr, Purged({9}), true));
  EXPECT_FALSE(kestan::PurgePostings(record.ptr, Purged({9}), true));
  const DBDatumPtr empty = Counted("");
  EXPECT_FALSE(kestan::PurgePostings(empty.ptr, Purged({9}), true));
}

TEST(PostingListTest, OfDamagedRecordsArePurgedUnitByUnitThatIsThere) {
  const auto keeps = [](const PlainPosting& posting) {
    return posting.code != 7 && posting.code != 300;
  };
  ForEachDamageOfGood([&](const std::string& record) {
    for (bool with_positions : {true, false}) {
      const std::vector<PlainPosting> postings = PlainPostings(record, with_positions);
      const std::string kept = Joined(postings, keeps);
      const bool any = kept.size() < record.size() / 2 * 2;
      ASSERT_EQ(Purge(record, {7, 300}, with_positions), any ? kept : record);
    }
  });
}

}  // namespace
}  // namespace kestan_tests
