// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/app/command.h"

#include <gtest/gtest.h>

#include "cli/console/message.h"

namespace kestan_cli {
namespace {

TEST(ValuesTest, LastValueCountsAndAllAreKeptInOrder) {
  Values values;
  EXPECT_FALSE(values.Has("--limit"));
  EXPECT_EQ(values.Text("--limit", "none"), "none");
  values.Add("--limit", "1");
  values.Add("--limit", "2");
  EXPECT_TRUE(values.Has("--limit"));
  EXPECT_EQ(values.Text("--limit"), "2");
  EXPECT_EQ(values.All("--limit"), (Arguments{"1", "2"}));
  EXPECT_EQ(values.All("--other"), Arguments());
}

TEST(ValuesTest, NumbersAreAcceptedUpToBothLimits) {
  for (const char* text : {"3", "9"}) {
    Values values;
    values.Add("N", text);
    EXPECT_EQ(std::to_string(values.Number("N", 0, 3, 9)), text);
  }
  for (const char* text : {"2", "10", "", "5x", " 5", "99999999999999999999"}) {
    Values values;
    values.Add("N", text);
    EXPECT_THROW(values.Number("N", 0, 3, 9), CommandError) << text;
  }
  EXPECT_EQ(Values().Number("N", -1, 3, 9), -1);
}

TEST(CommandTest, UsageShowsHowManyArgumentsThereMayBe) {
  using Count = Positional::Count;
  const Command command{"try it",
                        "",
                        {{"A", ""},
                         {"B", "", Count::kOptional},
                         {"C", "", Count::kAny},
                         {"D", "", Count::kOneOrMore}},
                        {},
                        "",
                        {},
                        nullptr};
  EXPECT_EQ(UsageOf(command), "kestan try it A [B] [C...] D...");
}

TEST(CommandTest, OptionsAreNamedByTheirLongNames) {
  const Option option{"-o,--order", "ORDER", "how to sort", {"best", "name"}};
  EXPECT_EQ(LongName(option), "--order");
  EXPECT_EQ(DescriptionOf(option), "how to sort: best, name");
  EXPECT_EQ(DescriptionOf(QuietOption()), QuietOption().purpose);
}

TEST(CommandTest, JsonPrevailsOverQuiet) {
  Values values;
  EXPECT_EQ(ReportFormatOf(values), ReportFormat::kText);
  values.Add("--quiet", "");
  EXPECT_EQ(ReportFormatOf(values), ReportFormat::kNone);
  values.Add("--json", "");
  EXPECT_EQ(ReportFormatOf(values), ReportFormat::kJson);
}

}  // namespace
}  // namespace kestan_cli
