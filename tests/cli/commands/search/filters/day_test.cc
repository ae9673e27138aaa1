// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/commands/search/filters/day.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace kestan_cli {
namespace {

constexpr std::int64_t kDay = 86'400;
constexpr std::time_t kNow = 1'709'251'200 + 3'600;  // 2024-03-01, 01:00 UTC

class StartOfDayTest : public testing::Test {
 protected:
  StartOfDayTest() { SetZone("UTC"); }
  ~StartOfDayTest() override { SetZone("UTC"); }

  static void SetZone(const char* zone) {
    setenv("TZ", zone, 1);
    tzset();
  }
};

TEST_F(StartOfDayTest, YearsAndMonthsBeginWithTheirFirstDay) {
  EXPECT_EQ(StartOfDay("1970-01-02", kNow), kDay);
  EXPECT_EQ(StartOfDay("2024-03-01", kNow), 1'709'251'200);
  EXPECT_EQ(StartOfDay("2024-03", kNow), 1'709'251'200);
  EXPECT_EQ(StartOfDay("2024", kNow), 1'704'067'200);
}

TEST_F(StartOfDayTest, TodayAndYesterdayAreSeenFromNow) {
  EXPECT_EQ(StartOfDay("today", kNow), 1'709'251'200);
  EXPECT_EQ(StartOfDay("yesterday", kNow), 1'709'251'200 - kDay);  // 29 February
}

TEST_F(StartOfDayTest, DaysAreThoseOfTheUsersClock) {
  SetZone("UTC-2");  // two hours ahead
  EXPECT_EQ(StartOfDay("2024-03-01", kNow), 1'709'251'200 - 7'200);
  SetZone("UTC+2");
  EXPECT_EQ(StartOfDay("today", kNow), 1'709'251'200 + 7'200 - kDay);
}

TEST_F(StartOfDayTest, LeapDaysAreDaysOfLeapYearsOnly) {
  EXPECT_TRUE(StartOfDay("2024-02-29", kNow));
  EXPECT_TRUE(StartOfDay("2000-02-29", kNow));
  EXPECT_FALSE(StartOfDay("2023-02-29", kNow));
  EXPECT_FALSE(StartOfDay("1900-02-29", kNow));
}

TEST_F(StartOfDayTest, FarYearsAreInOrder) {
  EXPECT_EQ(StartOfDay("1900-01-01", kNow), -2'208'988'800);
  EXPECT_EQ(StartOfDay("2200-01-01", kNow), 7'258'118'400);
  EXPECT_EQ(StartOfDay("0001-01-01", kNow), -62'135'596'800);
  EXPECT_EQ(StartOfDay("9999-12-31", kNow), 253'402'214'400);
}

TEST_F(StartOfDayTest, AnythingElseIsNoDay) {
  for (const char* const text :
       {"", "24", "02024", "2024-", "2024-3", "2024-13", "2024-00", "2024-04-31", "2024-04-00",
        "2024-04-1", "2024-04-011", "2024/04/01", "2024-04-01T10", "Today", "tomorrow", "-024",
        "2024-+1", "20 4"}) {
    EXPECT_FALSE(StartOfDay(text, kNow)) << text;
  }
}

}  // namespace
}  // namespace kestan_cli
