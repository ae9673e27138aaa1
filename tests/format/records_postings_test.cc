// Posting records: reading, adding, dropping positions, purging. Each reader meets every truncation
// of a good record and every changed byte, in memory that ends with the record.
#include <climits>
#include <functional>
#include <string>
#include <vector>

#include <kestan/format/records.h>
#include "tests/format/records_test.h"
#include "tests/support/counted.h"
#include "tests/support/index_test.h"

namespace kestan_tests {
namespace {

using PositionVector = std::vector<kestan::Position>;

const std::string kGood = Units({7, 2, 10, 20, 9, 0, 300, 3, 1, 65535, 1, 65535, 1, 5});

// Calls `check` with the good record cut at each byte and with each of its bytes changed.
void ForEachDamage(const std::function<void(const std::string&)>& check) {
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
std::vector<PlainEntry> Entries(const std::string& record, bool with_positions) {
  const DBDatumPtr datum = Counted(record);
  const std::vector<unsigned> units = UnitsOf(record);
  kestan::PostingReader reader(*datum.ptr, with_positions);
  kestan::Posting entry{};
  std::vector<PlainEntry> entries;
  while (reader.Next(&entry)) {
    const auto first = units.begin() + static_cast<std::ptrdiff_t>(entry.first_unit);
    const auto end = first + static_cast<std::ptrdiff_t>(entry.units);
    entries.push_back({{first, end}, entry.code, {end - entry.positions, end}});
  }
  return entries;
}

// The record of the entries that `keeps` is true for.
std::string Joined(const std::vector<PlainEntry>& entries,
                   const std::function<bool(const PlainEntry&)>& keeps) {
  std::string record;
  for (const PlainEntry& entry : entries) {
    if (!keeps(entry)) continue;
    for (unsigned unit : entry.units) record += Units({unit});
  }
  return record;
}

TEST(PostingReader, FindsEachEntryWithItsPositions) {
  const std::vector<PlainEntry> entries = Entries(kGood, true);
  ASSERT_EQ(entries.size(), 4u);
  EXPECT_EQ(entries[0].code, 7u);
  EXPECT_EQ(entries[0].positions, (std::vector<unsigned>{10, 20}));
  EXPECT_EQ(entries[1].code, 9u);
  EXPECT_TRUE(entries[1].positions.empty());
  EXPECT_EQ(entries[2].positions, (std::vector<unsigned>{1, 65535, 1}));
  EXPECT_EQ(entries[3].code, 65535u);
}

TEST(PostingReader, WithoutPositionsEachUnitIsACode) {
  const std::vector<PlainEntry> entries = Entries(Units({7, 2, 65535}), false);
  ASSERT_EQ(entries.size(), 3u);
  EXPECT_EQ(entries[2].code, 65535u);
  EXPECT_TRUE(entries[2].positions.empty());
}

TEST(PostingReader, AnEmptyRecordHasNoEntry) {
  EXPECT_TRUE(Entries("", true).empty());
  EXPECT_TRUE(Entries("", false).empty());
  const DBDatum none;
  kestan::Posting entry{1, 2, 3, 4};
  EXPECT_FALSE(kestan::PostingReader(none, true).Next(&entry));
  EXPECT_EQ(entry.code, 3);
}

TEST(PostingReader, ACountPastTheEndIsReducedToWhatIsThere) {
  EXPECT_EQ(Entries(Units({7, 3, 10, 20}), true)[0].positions, (std::vector<unsigned>{10, 20}));
  EXPECT_EQ(Entries(Units({7, 2, 10, 20}), true)[0].positions, (std::vector<unsigned>{10, 20}));
  EXPECT_TRUE(Entries(Units({7, 65535}), true)[0].positions.empty());
}

TEST(PostingReader, ACodeWithoutACountHasNoPositions) {
  const std::vector<PlainEntry> entries = Entries(Units({7, 1, 10, 9}), true);
  ASSERT_EQ(entries.size(), 2u);
  EXPECT_EQ(entries[1].code, 9u);
  EXPECT_TRUE(entries[1].positions.empty());
}

TEST(PostingReader, StaysWithinDamagedRecords) {
  ForEachDamage([](const std::string& record) {
    ASSERT_EQ(Entries(record, true), PlainEntries(record, true));
    ASSERT_EQ(Entries(record, false), PlainEntries(record, false));
  });
}

TEST(Postings, AreCounted) {
  EXPECT_EQ(kestan::CountPostings(Datum(kGood), true), 4u);
  EXPECT_EQ(kestan::CountPostings(Datum(kGood), false), 14u);
  EXPECT_EQ(kestan::CountPostings(DBDatum(), true), 0u);
  EXPECT_EQ(kestan::CountPostings(DBDatum(), false), 0u);
}

TEST(Postings, OfDamagedRecordsAreCountedAsTheReaderFindsThem) {
  ForEachDamage([](const std::string& record) {
    const DBDatumPtr datum = Counted(record);
    for (bool with_positions : {true, false}) {
      ASSERT_EQ(kestan::CountPostings(*datum.ptr, with_positions),
                PlainEntries(record, with_positions).size());
    }
  });
}

bool Append(DBDatum* record, kestan::Code code, const PositionVector& positions) {
  const kestan::Positions borrowed{positions.data(), positions.size()};
  return kestan::AppendPosting(record, code, &borrowed);
}

TEST(Postings, AreAddedAtTheEnd) {
  const DBDatumPtr record = Counted(Units({7, 1, 10}));
  EXPECT_TRUE(Append(record.ptr, 3, {1, 65535}));
  EXPECT_EQ(Bytes(*record.ptr), Units({7, 1, 10, 3, 2, 1, 65535}));
  EXPECT_FALSE(record.ptr->dirty);
}

TEST(Postings, AreAddedToAnEmptyRecord) {
  const DBDatumPtr record = Counted("");
  EXPECT_TRUE(Append(record.ptr, 65535, {}));
  EXPECT_EQ(Bytes(*record.ptr), Units({65535, 0}));
}

TEST(Postings, AddedOneByOneMakeTheRecordThatAPlainListMakes) {
  const DBDatumPtr record = Counted("");
  std::string plain;
  for (unsigned code = 1; code < 2000; ++code) {
    EXPECT_TRUE(Append(record.ptr, static_cast<kestan::Code>(code), {9, 10}));
    plain += Units({code, 2, 9, 10});
    ASSERT_EQ(Bytes(*record.ptr), plain);
  }
}

TEST(Postings, WithoutPositionsAreTheCodeAlone) {
  const DBDatumPtr record = Counted(Units({7}));
  EXPECT_TRUE(kestan::AppendPosting(record.ptr, 258, nullptr));
  EXPECT_EQ(Bytes(*record.ptr), Units({7, 258}));
}

TEST(Postings, HoldAtMost65535Positions) {
  const DBDatumPtr full = Counted("");
  const DBDatumPtr over = Counted("");
  EXPECT_TRUE(Append(full.ptr, 1, PositionVector(65535, 4)));
  EXPECT_TRUE(Append(over.ptr, 1, PositionVector(65536, 4)));
  EXPECT_EQ(full.ptr->size, 2u + 2u + 2u * 65535u);
  EXPECT_EQ(Bytes(*over.ptr), Bytes(*full.ptr));
  EXPECT_EQ(Bytes(*full.ptr).substr(0, 6), Units({1, 65535, 4}));
}

TEST(Postings, WouldNotGrowARecordPastWhatGdbmStores) {
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
TEST(Postings, GrowARecordUpToWhatGdbmStores) {
  const DBDatumPtr record = Counted("");
  record.ptr->size = INT_MAX - 2;
  EXPECT_TRUE(kestan::AppendPosting(record.ptr, 0x0201, nullptr));
  ASSERT_EQ(record.ptr->size, static_cast<std::uint32_t>(INT_MAX));
  EXPECT_EQ(std::string(record.ptr->data + INT_MAX - 2, 2), "\x01\x02");
}
#endif

TEST(Postings, WithoutTheirPositionsAreCodes) {
  const DBDatumPtr record = Counted(kGood);
  const char* const buffer = record.ptr->data;
  kestan::DropPositions(record.ptr);
  EXPECT_EQ(Bytes(*record.ptr), Units({7, 9, 300, 65535}));
  EXPECT_EQ(record.ptr->data, buffer);
  EXPECT_FALSE(record.ptr->dirty);
}

TEST(Postings, OfDamagedRecordsLoseTheirPositionsToo) {
  ForEachDamage([](const std::string& record) {
    const DBDatumPtr datum = Counted(record);
    kestan::DropPositions(datum.ptr);
    std::string codes;
    for (const PlainEntry& entry : PlainEntries(record, true)) codes += Units({entry.code});
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

TEST(Postings, OfPurgedCodesAreTakenOut) {
  EXPECT_EQ(Purge(kGood, {7}), kGood.substr(8));
  EXPECT_EQ(Purge(kGood, {9}), kGood.substr(0, 8) + kGood.substr(12));
  EXPECT_EQ(Purge(kGood, {65535}), kGood.substr(0, 22));
  EXPECT_EQ(Purge(kGood, {7, 9, 300, 65535}), "");
  EXPECT_EQ(Purge(Units({7, 9, 7, 3}), {7}, false), Units({9, 3}));
}

TEST(Postings, OfOtherCodesStay) {
  const DBDatumPtr record = Counted(kGood + "x");
  EXPECT_FALSE(kestan::PurgePostings(record.ptr, Purged({1, 2, 10, 20}), true));
  EXPECT_EQ(Bytes(*record.ptr), kGood + "x");
  EXPECT_FALSE(record.ptr->dirty);
}

TEST(Postings, PurgingTellsWhetherThereWereAny) {
  const DBDatumPtr record = Counted(kGood);
  EXPECT_TRUE(kestan::PurgePostings(record.ptr, Purged({9}), true));
  EXPECT_FALSE(kestan::PurgePostings(record.ptr, Purged({9}), true));
  const DBDatumPtr empty = Counted("");
  EXPECT_FALSE(kestan::PurgePostings(empty.ptr, Purged({9}), true));
}

TEST(Postings, OfDamagedRecordsArePurgedUnitByUnitThatIsThere) {
  const auto keeps = [](const PlainEntry& entry) { return entry.code != 7 && entry.code != 300; };
  ForEachDamage([&](const std::string& record) {
    for (bool with_positions : {true, false}) {
      const std::vector<PlainEntry> entries = PlainEntries(record, with_positions);
      const std::string kept = Joined(entries, keeps);
      const bool any = kept.size() < record.size() / 2 * 2;
      ASSERT_EQ(Purge(record, {7, 300}, with_positions), any ? kept : record);
    }
  });
}

}  // namespace
}  // namespace kestan_tests
