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
