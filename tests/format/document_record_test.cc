// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/format/document_record.h>

#include <string>

#include "tests/format/plain_records.h"
#include "tests/support/counted.h"
#include "tests/support/index_test.h"

namespace kestan_tests {
namespace {

TEST(DocumentRecordTest, IsTheTimestampAndTheCodeInFourBytesEach) {
  EXPECT_EQ(Text(kestan::EncodeDocument(0x04030201, 0xfeff)),
            std::string("\x01\x02\x03\x04\xff\xfe\x00\x00", 8));
}

TEST(DocumentRecordTest, GivesBackWhatItHolds) {
  const auto bytes = kestan::EncodeDocument(4294967295u, 65535);
  EXPECT_EQ(kestan::DocumentTimestamp(kestan::AsDatum(bytes)), 4294967295u);
  EXPECT_EQ(kestan::DocumentCode(kestan::AsDatum(bytes)), 65535);
}

TEST(DocumentRecordTest, TheCodeIsTheUnitAtByteFour) {
  const DBDatumPtr record = Counted(Units({0, 0, 258, 65535}));
  EXPECT_EQ(kestan::DocumentCode(*record.ptr), 258);
}

TEST(DocumentRecordTest, OfDamagedRecordsLacksTheMissingBytes) {
  ForEachDamage(Text(kestan::EncodeDocument(0x04030201, 0x0605)), [](const std::string& bytes) {
    const DBDatumPtr record = Counted(bytes);
    ASSERT_EQ(kestan::DocumentTimestamp(*record.ptr), PlainNumber(bytes, 0, 4));
    ASSERT_EQ(kestan::DocumentCode(*record.ptr), PlainNumber(bytes, 4, 2));
  });
}

TEST(DocumentRecordTest, ATimestampIsSetInPlace) {
  const DBDatumPtr record = Counted(Units({1, 2, 258, 9}) + "more");
  kestan::SetDocumentTimestamp(record.ptr, 0x04030201);
  EXPECT_EQ(Bytes(*record.ptr), "\x01\x02\x03\x04" + Units({258, 9}) + "more");
  EXPECT_FALSE(record.ptr->dirty);
}

TEST(DocumentRecordTest, ATimestampGrowsAShorterRecordWithZeros) {
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

TEST(NameKeyTest, IsThePrefixAndTheCodeZerosIncluded) {
  EXPECT_EQ(Text(kestan::NameKey(1)), std::string("c-\1\0", 4));
  EXPECT_EQ(Text(kestan::NameKey(256)), std::string("c-\0\1", 4));
  EXPECT_EQ(Text(kestan::NameKey(0)), std::string("c-\0\0", 4));
  EXPECT_EQ(Text(kestan::NameKey(65535)), "c-\xff\xff");
}

}  // namespace
}  // namespace kestan_tests
