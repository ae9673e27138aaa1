// Code arrays, the code counter, document records, name keys and option flags.
#include <array>
#include <string>

#include <kestan/format/records.h>
#include "tests/format/records_test.h"
#include "tests/support/counted.h"
#include "tests/support/index_test.h"

namespace kestan_tests {
namespace {

template <std::size_t kBytes>
std::string Text(const std::array<char, kBytes>& bytes) {
  return std::string(bytes.data(), kBytes);
}

// Reads `count` bytes at `offset` as a little-endian number; bytes that are missing count as 0.
std::uint32_t PlainNumber(const std::string& record, std::size_t offset, std::size_t count) {
  std::uint32_t number = 0;
  for (std::size_t i = count; i-- > 0;) {
    const std::size_t at = offset + i;
    number = number * 256 + (at < record.size() ? static_cast<unsigned char>(record[at]) : 0);
  }
  return number;
}

// Calls `check` with `good` cut at each byte, with more bytes behind it and with each byte changed.
template <typename Check>
void ForEachDamage(const std::string& good, Check check) {
  for (std::size_t size = 0; size <= good.size(); ++size) check(good.substr(0, size));
  check(good + "more");
  for (std::size_t at = 0; at < good.size(); ++at) {
    for (int byte = 0; byte < 256; ++byte) {
      std::string changed = good;
      changed[at] = static_cast<char>(byte);
      check(changed);
    }
  }
}

TEST(CodeArray, IsReadByIndex) {
  const DBDatumPtr array = Counted(Units({5, 9, 65535}));
  EXPECT_EQ(kestan::CountCodes(*array.ptr), 3u);
  EXPECT_EQ(kestan::CodeAt(*array.ptr, 0), 5);
  EXPECT_EQ(kestan::CodeAt(*array.ptr, 2), 65535);
  EXPECT_EQ(kestan::CountCodes(DBDatum()), 0u);
}

TEST(CodeArray, OfDamagedRecordsHasTheWholeUnits) {
  ForEachDamage(Units({5, 9, 65535}), [](const std::string& record) {
    const DBDatumPtr array = Counted(record);
    const std::vector<unsigned> units = UnitsOf(record);
    kestan::CodeSet expected;
    ASSERT_EQ(kestan::CountCodes(*array.ptr), units.size());
    for (std::size_t i = 0; i < units.size(); ++i) {
      ASSERT_EQ(kestan::CodeAt(*array.ptr, i), units[i]);
      expected.set(units[i]);
    }
    kestan::CodeSet codes;
    kestan::CollectCodes(*array.ptr, &codes);
    ASSERT_EQ(codes, expected);
  });
}

TEST(CodeArray, IsCollectedIntoWhatASetHasAlready) {
  kestan::CodeSet codes;
  codes.set(3);
  const DBDatumPtr array = Counted(Units({0, 9, 9}));
  kestan::CollectCodes(*array.ptr, &codes);
  EXPECT_EQ(codes.count(), 3u);
  EXPECT_TRUE(codes[0] && codes[3] && codes[9]);
}

TEST(CodeArray, TakesACodeAtTheEnd) {
  const DBDatumPtr array = Counted("");
  kestan::AppendCode(array.ptr, 5);
  kestan::AppendCode(array.ptr, 258);
  EXPECT_EQ(Bytes(*array.ptr), Units({5, 258}));
  EXPECT_FALSE(array.ptr->dirty);
}

TEST(CodeArray, OverwritesAnOddLastByte) {
  const DBDatumPtr array = Counted(Units({5}) + "x");
  kestan::AppendCode(array.ptr, 9);
  EXPECT_EQ(Bytes(*array.ptr), Units({5, 9}));
  const DBDatumPtr half = Counted("x");
  kestan::AppendCode(half.ptr, 9);
  EXPECT_EQ(Bytes(*half.ptr), Units({9}));
}

TEST(CodeArray, TakesAllCodesOfAnother) {
  const DBDatumPtr array = Counted(Units({5}) + "x");
  const DBDatumPtr more = Counted(Units({9, 7}) + "y");
  kestan::AppendCodes(array.ptr, *more.ptr);
  EXPECT_EQ(Bytes(*array.ptr), Units({5, 9, 7}));
  EXPECT_EQ(Bytes(*more.ptr), Units({9, 7}) + "y");
}

TEST(CodeArray, TakesNothingOfAnEmptyOne) {
  const DBDatumPtr array = Counted(Units({5}));
  kestan::AppendCodes(array.ptr, DBDatum());
  EXPECT_EQ(Bytes(*array.ptr), Units({5}));
  const DBDatumPtr empty = Counted("");
  kestan::AppendCodes(empty.ptr, DBDatum());
  EXPECT_EQ(empty.ptr->size, 0u);
}

TEST(CodeArray, GivesItsLastCodeFirst) {
  const DBDatumPtr array = Counted(Units({5, 9}));
  EXPECT_EQ(kestan::TakeLastCode(array.ptr), 9);
  EXPECT_EQ(Bytes(*array.ptr), Units({5}));
  EXPECT_EQ(kestan::TakeLastCode(array.ptr), 5);
  EXPECT_EQ(array.ptr->size, 0u);
}

TEST(CodeArray, LosesItsOddByteWithItsLastCode) {
  const DBDatumPtr array = Counted(Units({5, 9}) + "x");
  EXPECT_EQ(kestan::TakeLastCode(array.ptr), 9);
  EXPECT_EQ(Bytes(*array.ptr), Units({5}));
}

TEST(Code, IsOneUnit) {
  EXPECT_EQ(Text(kestan::EncodeCode(1)), Units({1}));
  EXPECT_EQ(Text(kestan::EncodeCode(0xfeff)), "\xff\xfe");
}

TEST(CodeCounter, OfDamagedRecordsLacksTheMissingBytes) {
  ForEachDamage(Units({0x0201}), [](const std::string& record) {
    ASSERT_EQ(kestan::DecodeCounter(*Counted(record).ptr), PlainNumber(record, 0, 2));
  });
}

TEST(CodeCounter, IsSetInPlace) {
  const DBDatumPtr record = Counted(Units({1}) + "more");
  const char* const buffer = record.ptr->data;
  kestan::SetCounter(record.ptr, 258);
  EXPECT_EQ(record.ptr->data, buffer);
  EXPECT_EQ(Bytes(*record.ptr), Units({258}) + "more");
  EXPECT_FALSE(record.ptr->dirty);
}

TEST(CodeCounter, GrowsAShorterRecord) {
  for (const char* bytes : {"", "x"}) {
    const DBDatumPtr record = Counted(bytes);
    kestan::SetCounter(record.ptr, 258);
    EXPECT_EQ(Bytes(*record.ptr), Units({258}));
  }
}

TEST(DocumentRecord, IsTheTimestampAndTheCodeInFourBytesEach) {
  EXPECT_EQ(Text(kestan::EncodeDocument(0x04030201, 0xfeff)),
            std::string("\x01\x02\x03\x04\xff\xfe\x00\x00", 8));
}

TEST(DocumentRecord, GivesBackWhatItHolds) {
  const auto bytes = kestan::EncodeDocument(4294967295u, 65535);
  EXPECT_EQ(kestan::DocumentTimestamp(kestan::AsDatum(bytes)), 4294967295u);
  EXPECT_EQ(kestan::DocumentCode(kestan::AsDatum(bytes)), 65535);
}

TEST(DocumentRecord, TheCodeIsTheUnitAtByteFour) {
  const DBDatumPtr record = Counted(Units({0, 0, 258, 65535}));
  EXPECT_EQ(kestan::DocumentCode(*record.ptr), 258);
}

TEST(DocumentRecord, OfDamagedRecordsLacksTheMissingBytes) {
  ForEachDamage(Text(kestan::EncodeDocument(0x04030201, 0x0605)), [](const std::string& bytes) {
    const DBDatumPtr record = Counted(bytes);
    ASSERT_EQ(kestan::DocumentTimestamp(*record.ptr), PlainNumber(bytes, 0, 4));
    ASSERT_EQ(kestan::DocumentCode(*record.ptr), PlainNumber(bytes, 4, 2));
  });
}

TEST(DocumentRecord, ATimestampIsSetInPlace) {
  const DBDatumPtr record = Counted(Units({1, 2, 258, 9}) + "more");
  kestan::SetDocumentTimestamp(record.ptr, 0x04030201);
  EXPECT_EQ(Bytes(*record.ptr), "\x01\x02\x03\x04" + Units({258, 9}) + "more");
  EXPECT_FALSE(record.ptr->dirty);
}

TEST(DocumentRecord, ATimestampGrowsAShorterRecordWithZeros) {
  const std::string good = Text(kestan::EncodeDocument(7, 0x0605));
  for (std::size_t size = 0; size < good.size(); ++size) {
    const DBDatumPtr record = Counted(good.substr(0, size));
    kestan::SetDocumentTimestamp(record.ptr, 0x04030201);
    std::string expected = "\x01\x02\x03\x04";
    if (size > 4) expected += good.substr(4, size - 4);
    expected.resize(8);
    EXPECT_EQ(Bytes(*record.ptr), expected) << size;
  }
}

TEST(NameKey, IsThePrefixAndTheCodeZerosIncluded) {
  EXPECT_EQ(Text(kestan::NameKey(1)), std::string("c-\1\0", 4));
  EXPECT_EQ(Text(kestan::NameKey(256)), std::string("c-\0\1", 4));
  EXPECT_EQ(Text(kestan::NameKey(0)), std::string("c-\0\0", 4));
  EXPECT_EQ(Text(kestan::NameKey(65535)), "c-\xff\xff");
}

TEST(OptionsRecord, IsFourLittleEndianBytes) {
  EXPECT_EQ(Text(kestan::EncodeOptions(0xfe030201)), "\x01\x02\x03\xfe");
}

TEST(OptionsRecord, OfDamagedRecordsLacksTheMissingBytes) {
  ForEachDamage("\x01\x02\x03\xfe", [](const std::string& record) {
    ASSERT_EQ(kestan::DecodeOptions(*Counted(record).ptr), PlainNumber(record, 0, 4));
  });
}

TEST(EncodedBytes, AreBorrowed) {
  const auto bytes = kestan::EncodeCode(7);
  const DBDatum datum = kestan::AsDatum(bytes);
  EXPECT_EQ(datum.data, bytes.data());
  EXPECT_EQ(datum.size, 2u);
}

}  // namespace
}  // namespace kestan_tests
