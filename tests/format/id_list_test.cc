// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/format/id_list.h>

#include <string>
#include <vector>

#include "tests/format/plain_records.h"
#include "tests/support/counted.h"
#include "tests/support/index_test.h"

namespace kestan_tests {
namespace {

TEST(CodeListTest, IsReadByIndex) {
  const DBDatumPtr list = Counted(Units({5, 9, 65535}));
  EXPECT_EQ(kestan::CountCodes(*list.ptr), 3u);
  EXPECT_EQ(kestan::CodeAt(*list.ptr, 0), 5);
  EXPECT_EQ(kestan::CodeAt(*list.ptr, 2), 65535);
  EXPECT_EQ(kestan::CountCodes(DBDatum()), 0u);
}

TEST(CodeListTest, OfDamagedRecordsHasTheWholeUnits) {
  ForEachDamage(Units({5, 9, 65535}), [](const std::string& record) {
    const DBDatumPtr list = Counted(record);
    const std::vector<unsigned> units = UnitsOf(record);
    kestan::CodeSet expected;
    ASSERT_EQ(kestan::CountCodes(*list.ptr), units.size());
    for (std::size_t i = 0; i < units.size(); ++i) {
      ASSERT_EQ(kestan::CodeAt(*list.ptr, i), units[i]);
      expected.set(units[i]);
    }
    kestan::CodeSet codes;
    kestan::CollectCodes(*list.ptr, &codes);
    ASSERT_EQ(codes, expected);
  });
}

TEST(CodeListTest, IsCollectedIntoWhatASetHasAlready) {
  kestan::CodeSet codes;
  codes.set(3);
  const DBDatumPtr list = Counted(Units({0, 9, 9}));
  kestan::CollectCodes(*list.ptr, &codes);
  EXPECT_EQ(codes.count(), 3u);
  EXPECT_TRUE(codes[0] && codes[3] && codes[9]);
}

TEST(CodeListTest, TakesACodeAtTheEnd) {
  const DBDatumPtr list = Counted("");
  kestan::AppendCode(list.ptr, 5);
  kestan::AppendCode(list.ptr, 258);
  EXPECT_EQ(Bytes(*list.ptr), Units({5, 258}));
  EXPECT_FALSE(list.ptr->dirty);
}

TEST(CodeListTest, OverwritesAnOddLastByte) {
  const DBDatumPtr list = Counted(Units({5}) + "x");
  kestan::AppendCode(list.ptr, 9);
  EXPECT_EQ(Bytes(*list.ptr), Units({5, 9}));
  const DBDatumPtr half = Counted("x");
  kestan::AppendCode(half.ptr, 9);
  EXPECT_EQ(Bytes(*half.ptr), Units({9}));
}

TEST(CodeListTest, TakesAllCodesOfAnother) {
  const DBDatumPtr list = Counted(Units({5}) + "x");
  const DBDatumPtr more = Counted(Units({9, 7}) + "y");
  kestan::AppendCodes(list.ptr, *more.ptr);
  EXPECT_EQ(Bytes(*list.ptr), Units({5, 9, 7}));
  EXPECT_EQ(Bytes(*more.ptr), Units({9, 7}) + "y");
}

TEST(CodeListTest, TakesNothingOfAnEmptyOne) {
  const DBDatumPtr list = Counted(Units({5}));
  kestan::AppendCodes(list.ptr, DBDatum());
  EXPECT_EQ(Bytes(*list.ptr), Units({5}));
  const DBDatumPtr empty = Counted("");
  kestan::AppendCodes(empty.ptr, DBDatum());
  EXPECT_EQ(empty.ptr->size, 0u);
}

TEST(CodeListTest, GivesItsLastCodeFirst) {
  const DBDatumPtr list = Counted(Units({5, 9}));
  EXPECT_EQ(kestan::TakeLastCode(list.ptr), 9);
  EXPECT_EQ(Bytes(*list.ptr), Units({5}));
  EXPECT_EQ(kestan::TakeLastCode(list.ptr), 5);
  EXPECT_EQ(list.ptr->size, 0u);
}

TEST(CodeListTest, LosesItsOddByteWithItsLastCode) {
  const DBDatumPtr list = Counted(Units({5, 9}) + "x");
  EXPECT_EQ(kestan::TakeLastCode(list.ptr), 9);
  EXPECT_EQ(Bytes(*list.ptr), Units({5}));
}

TEST(CodeTest, IsOneUnit) {
  EXPECT_EQ(Text(kestan::EncodeCode(1)), Units({1}));
  EXPECT_EQ(Text(kestan::EncodeCode(0xfeff)), "\xff\xfe");
}

TEST(CodeCounterTest, OfDamagedRecordsLacksTheMissingBytes) {
  ForEachDamage(Units({0x0201}), [](const std::string& record) {
    ASSERT_EQ(kestan::DecodeCounter(*Counted(record).ptr), PlainNumber(record, 0, 2));
  });
}

TEST(CodeCounterTest, IsSetInPlace) {
  const DBDatumPtr record = Counted(Units({1}) + "more");
  const char* const buffer = record.ptr->data;
  kestan::SetCounter(record.ptr, 258);
  EXPECT_EQ(record.ptr->data, buffer);
  EXPECT_EQ(Bytes(*record.ptr), Units({258}) + "more");
  EXPECT_FALSE(record.ptr->dirty);
}

TEST(CodeCounterTest, GrowsAShorterRecord) {
  for (const char* bytes : {"", "x"}) {
    const DBDatumPtr record = Counted(bytes);
    kestan::SetCounter(record.ptr, 258);
    EXPECT_EQ(Bytes(*record.ptr), Units({258}));
  }
}

}  // namespace
}  // namespace kestan_tests
