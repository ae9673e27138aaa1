// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/app/roff.h"

#include <gtest/gtest.h>

#include <string>

namespace kestan_cli {
namespace {

const std::string kStart = ".SH DESCRIPTION\n";

TEST(RoffTest, MarkupAndWhatIsShownOtherwiseIsEscaped) {
  EXPECT_EQ(Roff("a -b \\"), "a \\-b \\e");
  EXPECT_EQ(Roff("it's `x~1^`"), "it\\(aqs \\(gax\\(ti1\\(ha\\(ga");
  EXPECT_EQ(Roff(".a\n'b\n.c d.e"), "\\&.a\n\\&\\(aqb\n\\&.c d.e");
}

TEST(RoffTest, OtherScriptsAreWrittenInAscii) {
  EXPECT_EQ(Roff("z\xc3\xbcrich"), "z\\[u00FC]rich");
  EXPECT_EQ(Roff("\xf0\x9f\x98\x80\xff"), "\\[u1F600]\\[uFFFD]");
}

TEST(RoffTest, HeadingsAreSections) {
  EXPECT_EQ(RoffOfMarkdown("# Title\n\nOne\ntwo.\n\n## More of it\n\nThree.\n"),
            kStart + ".PP\nOne two.\n.SH MORE OF IT\n.PP\nThree.\n");
}

TEST(RoffTest, MarkupWithinALineIsConverted) {
  EXPECT_EQ(RoffOfMarkdown("A **bold-\nword**, `-c \\x` and [a page](page.md#part).\n"),
            kStart + ".PP\nA \\fBbold\\- word\\fR, \\fB\\-c \\ex\\fR and a page.\n");
}

TEST(RoffTest, CodeKeepsItsLines) {
  const std::string code = ".PP\n.nf\n.RS 4\n$ a  **b**\n\n\\&.c\n.RE\n.fi\n";
  EXPECT_EQ(RoffOfMarkdown("```console\n$ a  **b**\n\n.c\n```\n"), kStart + code);
  EXPECT_EQ(RoffOfMarkdown("    $ a\n\nText\n"),
            kStart + ".PP\n.nf\n.RS 4\n$ a\n.RE\n.fi\n.PP\nText\n");
  EXPECT_EQ(RoffOfMarkdown("    $ a\n"), kStart + ".PP\n.nf\n.RS 4\n$ a\n.RE\n.fi\n");
}

TEST(RoffTest, RowsOfTablesAreItems) {
  EXPECT_EQ(RoffOfMarkdown("| query | finds |\n|---|---|\n| `a\\|b` | one **or** two |\n| c | |\n"),
            kStart + ".TP\n\\fBa|b\\fR\none \\fBor\\fR two\n.TP\nc\n\n");
}

TEST(RoffTest, ListsHaveBullets) {
  EXPECT_EQ(RoffOfMarkdown("- one\n  more\n- two\n\nText\n"),
            kStart + ".IP \\(bu 2\none   more\n.IP \\(bu 2\ntwo\n.PP\nText\n");
}

TEST(RoffTest, BrokenMarkupIsNoError) {
  for (const char* markdown :
       {"a ` b", "a ** b", "a [b](c", "|", "| a", "```", "", "-", "#", "[]()"}) {
    EXPECT_EQ(RoffOfMarkdown(markdown).rfind(kStart, 0), 0u) << markdown;
  }
}

}  // namespace
}  // namespace kestan_cli
