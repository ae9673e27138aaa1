// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/format/option_flags.h>

#include <string>

#include "tests/format/plain_records.h"
#include "tests/support/counted.h"
#include "tests/support/index_test.h"

namespace kestan_tests {
namespace {

TEST(OptionFlagsTest, IsFourLittleEndianBytes) {
  EXPECT_EQ(Text(kestan::EncodeOptions(0xfe030201)), "\x01\x02\x03\xfe");
}

TEST(OptionFlagsTest, OfDamagedRecordsLacksTheMissingBytes) {
  ForEachDamage("\x01\x02\x03\xfe", [](const std::string& record) {
    ASSERT_EQ(kestan::DecodeOptions(*Counted(record).ptr), PlainNumber(record, 0, 4));
  });
}

}  // namespace
}  // namespace kestan_tests
