// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/commands/search/search_report.h"

#include <gtest/gtest.h>

namespace kestan_cli {
namespace {

ShownHit Hit(int percent, const std::string& path, const std::string& title) {
  ShownHit shown;
  shown.hit.percent = percent;
  shown.hit.name = "/stored/" + path;
  shown.hit.title = title;
  shown.path = path;
  return shown;
}

ShownHit HitWithSnippet() {
  ShownHit shown = Hit(42, "d/a", "The title");
  shown.snippet = {{"the ", false}, {"cat", true}, {" sat", false}};
  return shown;
}

TEST(SearchReportTest, PlainLineIsPercentAndName) { EXPECT_EQ(PlainLine(7, "a b"), "7 a b\n"); }

TEST(SearchReportTest, RichLinesHaveTitleAndSnippet) {
  EXPECT_EQ(RichLines(HitWithSnippet(), false), "42 d/a\n    The title\n    the [cat] sat\n");
}

TEST(SearchReportTest, MissingTitleAndSnippetTakeNoLine) {
  EXPECT_EQ(RichLines(Hit(42, "a", ""), false), "42 a\n");
}

TEST(SearchReportTest, SenderStandsBeforeTheTitle) {
  ShownHit hit = Hit(1, "a", "Re: wing");
  hit.from = "Ann Other <ann@example.org>";
  EXPECT_EQ(RichLines(hit, false), "1 a\n    Ann Other  Re: wing\n");
  EXPECT_EQ(RichLines(hit, true),
            "\x1b[2m1\x1b[0m \x1b[36ma\x1b[0m\n    \x1b[36mAnn Other\x1b[0m  Re: wing\n");
}

TEST(SearchReportTest, SenderWithoutANameIsAnAddress) {
  ShownHit hit = Hit(1, "a", "");
  for (const char* const from : {"<ann@example.org>", "ann@example.org", " <ann@example.org> x"}) {
    hit.from = from;
    EXPECT_EQ(RichLines(hit, false), "1 a\n    ann@example.org\n") << from;
  }
  hit.from = "Ann <";
  EXPECT_EQ(RichLines(hit, false), "1 a\n    Ann <\n");
}

TEST(SearchReportTest, LongSenderLeavesRoomForTheTitle) {
  ShownHit hit = Hit(1, "a", "Re: " + std::string(60, 'w'));
  hit.from = std::string(60, 'a') + "\x1b";
  hit.date = 43'200;  // noon in Greenwich
  EXPECT_EQ(RichLines(hit, false, 64),
            "1 a\n    1970-01-01  aaaaaaaaaaaaa...  Re: wwwwwwwwwwwwwwwwwwwwwww...\n");
  for (std::size_t columns = 20; columns < 30; ++columns) {
    const std::string line = RichLines(hit, false, columns).substr(4);
    EXPECT_LE(line.find('\n'), columns) << line;
    EXPECT_NE(line[line.find('\n') - 1], ' ') << line;
  }
}

TEST(SearchReportTest, ColoursEndAfterTheirText) {
  EXPECT_EQ(RichLines(HitWithSnippet(), true),
            "\x1b[2m42\x1b[0m \x1b[36md/a\x1b[0m\n    The title\n"
            "    the \x1b[1;31mcat\x1b[0m sat\n");
}

TEST(SearchReportTest, ControlCharactersInNamesAreEscaped) {
  EXPECT_EQ(RichLines(Hit(1, "a\x1b[2J", "t\a"), false), "1 a\\x1b[2J\n    t\\x07\n");
}

TEST(SearchReportTest, ExplanationIsATree) {
  const kestan::search::Explanation tree{
      "AND", "", 1, 5, {{"cat", "", 2, 3, {}}, {"dog*", "2 words", 1, 4, {}}}};
  const std::vector<std::string> lines{"AND: 1 document, 5 us", "  cat: 2 documents, 3 us",
                                       "  dog* (2 words): 1 document, 4 us"};
  EXPECT_EQ(ExplanationLines(tree), lines);
}

}  // namespace
}  // namespace kestan_cli
