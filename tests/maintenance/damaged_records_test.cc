// SPDX-License-Identifier: GPL-3.0-or-later
// Records of any length and content: a check reads no byte outside them and says what it finds in
// lines that are lines, and the statistics count every record. With sanitizers, this is where a
// read outside shows.
#include <kestan/maintenance.h>

#include <algorithm>
#include <string>

#include "tests/hostile/record_damage.h"
#include "tests/maintenance/maintenance_test.h"

namespace kestan_tests {
namespace {

using namespace std::string_literals;

// A record of every kind.
Records EveryKind() {
  return With({{"x", Units({2, 1, 2, 3, 1, 1})},
               {"d-", Units({9, 9, 3, 0})},
               {"c-\3\0"s, ""},
               {"t-a", "A"},
               {"s-a", "B"},
               {"u-", "c"},
               {"w-list",
                "\x80"
                "red\x83"
                "dish"},
               {"q-x", "1"},
               {"g-avail", Units({4, 6})},
               {"g-deleted", Units({5})},
               {"g-code", Units({6})}});
}

bool IsLine(const std::string& line) {
  return line.find(": ") != std::string::npos &&
         std::all_of(line.begin(), line.end(),
                     [](char byte) { return byte >= ' ' && byte <= '~'; });
}

// Returns the bytes of all records.
std::uint64_t BytesIn(const Records& records) {
  std::uint64_t bytes = 0;
  for (const auto& [key, value] : records) bytes += key.size() + value.size();
  return bytes;
}

void ExpectHandled(const Records& records) {
  const TempDir folder;
  Plant(folder / "index", records);
  for (const std::string& line : Check(folder / "index").lines) EXPECT_TRUE(IsLine(line)) << line;
  Database store;
  ASSERT_EQ(store.Open((folder / "index").c_str(), 0), 0);
  const kestan::IndexStatistics statistics = kestan::ReadStatistics(store);
  EXPECT_EQ(statistics.record_bytes, BytesIn(records));
  EXPECT_EQ(statistics.file_error, kestan::StoreError::kNone);
}

// Replaces the value of `key` by each damaged form of it.
void DamageValue(const std::string& key) {
  Records records = EveryKind();
  const std::string good = records.at(key);
  for (const std::string& form : kestan_hostile::DamagedForms(good)) {
    records[key] = form;
    ExpectHandled(records);
  }
}

TEST(DamagedRecordsTest, WereValidBefore) {
  EXPECT_EQ(LinesOf(EveryKind()), Lines({"q-x: note: no record of the engine has such a key"}));
}

TEST(DamagedRecordsTest, PostingRecords) { DamageValue("cat"); }
TEST(DamagedRecordsTest, PostingRecordsOfOneByteWords) { DamageValue("x"); }
TEST(DamagedRecordsTest, DocumentRecords) { DamageValue("d-a"); }
TEST(DamagedRecordsTest, DocumentRecordsOfTheEmptyName) { DamageValue("d-"); }
TEST(DamagedRecordsTest, NameRecords) { DamageValue("c-\1\0"s); }
TEST(DamagedRecordsTest, Titles) { DamageValue("t-a"); }
TEST(DamagedRecordsTest, UserRecordsOfTheEmptyName) { DamageValue("u-"); }
TEST(DamagedRecordsTest, WordLists) { DamageValue("w-list"); }
TEST(DamagedRecordsTest, UnknownRecords) { DamageValue("q-x"); }
TEST(DamagedRecordsTest, ReusableCodes) { DamageValue("g-avail"); }
TEST(DamagedRecordsTest, RemovedCodes) { DamageValue("g-deleted"); }
TEST(DamagedRecordsTest, Counters) { DamageValue("g-code"); }
TEST(DamagedRecordsTest, OptionFlags) { DamageValue("g-opts"); }

TEST(DamagedRecordsTest, Keys) {
  for (const auto& [key, value] : EveryKind()) {
    for (const std::string& form : kestan_hostile::DamagedForms(key)) {
      Records records = EveryKind();
      records.erase(key);
      records[form] = value;
      ExpectHandled(records);
    }
  }
}

}  // namespace
}  // namespace kestan_tests
