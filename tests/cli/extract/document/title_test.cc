// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/extract/document/title.h"

#include <gtest/gtest.h>

#include <string>

namespace kestan_cli {
namespace {

std::string TitleOf(const std::string& markdown) {
  return std::string(SplitAtTitle(markdown, TitleRule::kMarkdown).title);
}

TEST(TitleTest, FirstLineThatIsNotBlankIsTheTitle) {
  const TitledText titled = SplitAtTitle("\n \nOne\nTwo\n");
  EXPECT_EQ(titled.title, "One");
  EXPECT_EQ(titled.rest, "\nTwo\n");
}

TEST(TitleTest, MarkdownHeadingIsTheTitle) {
  EXPECT_EQ(TitleOf("badge\n\n# The title\ntext"), "The title");
  EXPECT_EQ(TitleOf("### Third level ###\n"), "Third level");
  EXPECT_EQ(TitleOf("# C#\n"), "C#");
}

TEST(TitleTest, RestBeginsAfterTheHeading) {
  EXPECT_EQ(SplitAtTitle("badge\n# T\nrest\n", TitleRule::kMarkdown).rest, "rest\n");
  EXPECT_EQ(SplitAtTitle("T\n===\nrest\n", TitleRule::kMarkdown).rest, "rest\n");
}

TEST(TitleTest, HashesWithoutABlankOrTooManyAreNoHeading) {
  EXPECT_EQ(TitleOf("#hash\n####### seven\n# Yes"), "Yes");
  EXPECT_EQ(TitleOf("#\n# Yes"), "Yes");
}

TEST(TitleTest, UnderlinedLineIsAHeading) {
  EXPECT_EQ(TitleOf("The title\n=====\ntext"), "The title");
  EXPECT_EQ(TitleOf("\nOther\n--\n"), "Other");
  EXPECT_EQ(TitleOf("text\n-\n# Yes"), "Yes");
  EXPECT_EQ(TitleOf("\n---\n# Yes"), "Yes");
}

TEST(TitleTest, CodeHasNoHeadings) {
  EXPECT_EQ(TitleOf("```\n# comment\n```\n# Yes"), "Yes");
  EXPECT_EQ(TitleOf("~~~sh\n# comment\n~~~\n# Yes"), "Yes");
}

TEST(TitleTest, FieldsBeforeTheTextNameTheTitle) {
  EXPECT_EQ(TitleOf("---\nauthor: x\ntitle: \"Named\"\n---\n# Heading"), "Named");
  EXPECT_EQ(SplitAtTitle("---\ntitle: T\n---\nrest", TitleRule::kMarkdown).rest, "rest");
}

TEST(TitleTest, FieldsAreNoHeading) {
  EXPECT_EQ(TitleOf("---\nauthor: x\n---\n# Heading"), "Heading");
}

TEST(TitleTest, MarkdownWithoutAHeadingHasItsFirstLine) {
  EXPECT_EQ(TitleOf("\nJust text\nmore"), "Just text");
  EXPECT_EQ(TitleOf("---\nnot closed"), "---");
  EXPECT_EQ(TitleOf(""), "");
}

}  // namespace
}  // namespace kestan_cli
