#include "cli/commands/search_report.h"

#include <gtest/gtest.h>

namespace kestan_cli {
namespace {

const ShownHit kHit{{42, "d/a", 0}, "The title", {{"the ", false}, {"cat", true}, {" sat", false}}};

TEST(SearchReportTest, PlainLineIsPercentAndName) {
  EXPECT_EQ(PlainLine({7, "a b", 0}), "7 a b\n");
}

TEST(SearchReportTest, RichLinesHaveTitleAndSnippet) {
  EXPECT_EQ(RichLines(kHit, false), "42 d/a\n    The title\n    the [cat] sat\n");
}

TEST(SearchReportTest, WhatIsMissingTakesNoLine) {
  EXPECT_EQ(RichLines({{42, "a", 0}, "", {}}, false), "42 a\n");
}

TEST(SearchReportTest, ColoursStandAroundWhatTheyPaint) {
  EXPECT_EQ(RichLines(kHit, true),
            "\x1b[2m42\x1b[0m \x1b[36md/a\x1b[0m\n    The title\n"
            "    the \x1b[1;31mcat\x1b[0m sat\n");
}

TEST(SearchReportTest, NamesCannotSteerATerminal) {
  EXPECT_EQ(RichLines({{1, "a\x1b[2J", 0}, "t\a", {}}, false), "1 a\\x1b[2J\n    t\\x07\n");
}

TEST(SearchReportTest, ExplanationIsATree) {
  const kestan::search::Explanation tree{
      "AND", 1, 5, "", {{"cat", 2, 3, "", {}}, {"dog*", 1, 4, "2 words", {}}}};
  EXPECT_EQ(ExplanationLines(tree),
            "AND: 1 document, 5 us\n"
            "  cat: 2 documents, 3 us\n"
            "  dog* (2 words): 1 document, 4 us\n");
}

}  // namespace
}  // namespace kestan_cli
