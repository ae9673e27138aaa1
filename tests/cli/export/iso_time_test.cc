// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/export/iso_time.h"

#include <gtest/gtest.h>

namespace kestan_cli {
namespace {

TEST(IsoTimeTest, KnowsTheCalendar) {
  EXPECT_EQ(IsoTime(0), "1970-01-01T00:00:00Z");
  EXPECT_EQ(IsoTime(86399), "1970-01-01T23:59:59Z");
  EXPECT_EQ(IsoTime(951782400), "2000-02-29T00:00:00Z");
  EXPECT_EQ(IsoTime(1078099199), "2004-02-29T23:59:59Z");
  EXPECT_EQ(IsoTime(1230768000 - 1), "2008-12-31T23:59:59Z");
  EXPECT_EQ(IsoTime(2147483648), "2038-01-19T03:14:08Z");
  EXPECT_EQ(IsoTime(4107542400), "2100-03-01T00:00:00Z");
  EXPECT_EQ(IsoTime(4294967295), "2106-02-07T06:28:15Z");
}

}  // namespace
}  // namespace kestan_cli
