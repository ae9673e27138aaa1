// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/extract/reading.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

namespace kestan_cli {
namespace {

constexpr const char* kPdfHead = "%PDF-1.4";

// Returns the digits for `name` with other rules than its name says.
std::string Digits(const std::string& name, const std::string& head, const std::string& converter,
                   const WordRules& words = {}) {
  const Converters converters({converter});
  return ReadingDigits(name, {head, head}, {converters, {}, 0, words});
}

TEST(FormatTest, ExtensionsStandForFormats) {
  EXPECT_EQ(FormatOf("a.html"), Format::kHtml);
  EXPECT_EQ(FormatOf("d/A.HTM"), Format::kHtml);
  EXPECT_EQ(FormatOf("a.xhtml"), Format::kHtml);
  EXPECT_EQ(FormatOf("a.md"), Format::kMarkdown);
  EXPECT_EQ(FormatOf("a.Markdown"), Format::kMarkdown);
}

TEST(FormatTest, EverythingElseIsText) {
  for (const char* name : {"a", "a.txt", "html", ".html", "a.html/b", "a.html.gz", ""}) {
    EXPECT_EQ(FormatOf(name), Format::kText) << name;
  }
}

std::string DigitsByName(const std::string& name, const std::string& head) {
  return ReadingDigitsByName(name, {head, head});
}

TEST(ReadingTest, DigitsAreSixteenAndStayTheSame) {
  // Indexes keep them.
  EXPECT_EQ(Digits("a.txt", "", "x=cat -u {}", {"", true}), "663470a229a3a834");
  EXPECT_EQ(Digits("a.html", "", "x=cat -u {}", {"", true}), "5aef8787b7c48eb2");
  EXPECT_EQ(Digits("a.x", "", "x=cat -u {}"), "1f69a28d99e6ab04");
}

TEST(ReadingTest, EveryFormatAndConverterHasOtherDigits) {
  const std::set<std::string> digits{
      DigitsByName("a.txt", ""),
      DigitsByName("a.html", ""),
      DigitsByName("a.md", ""),
      DigitsByName("a.pdf", kPdfHead),
      Digits("a.x", "", "x=cat {}"),
      Digits("a.x", "", "x=cat -u {}"),
      Digits("a.txt", "", "x=cat {}", {"stop words", false}),
      Digits("a.txt", "", "x=cat {}", {"other words", false}),
      Digits("a.txt", "", "x=cat {}", {"stop words", true}),
  };
  EXPECT_EQ(digits.size(), 9u);
}

TEST(ReadingTest, ConverterCountsOnlyForFilesOfItsFormat) {
  EXPECT_EQ(DigitsByName("a.pdf", "plain text"), DigitsByName("a", ""));
  EXPECT_EQ(Digits("a.txt", "", "x=cat {}"), DigitsByName("a.txt", ""));
}

TEST(ReadingTest, ReadingByNameHasNoOptionOfTheUsersThatMatters) {
  const Converters given({"x=cat {}", "pdf=cat {}"});
  const ReadingRules rules{given, {}, 0, {}};
  EXPECT_TRUE(IsReadByName("a.txt", {"", ""}, rules));
  EXPECT_TRUE(IsReadByName("a.html", {"", ""}, rules));
  EXPECT_FALSE(IsReadByName("a.x", {"", ""}, rules));
  EXPECT_FALSE(IsReadByName("a.pdf", {kPdfHead, kPdfHead}, rules));
  EXPECT_FALSE(IsReadByName("a.txt", {"", ""}, {Converters::BuiltIn(), {}, 0, {"word", false}}));
  EXPECT_FALSE(IsReadByName("a.txt", {"", ""}, {Converters::BuiltIn(), {}, 0, {"", true}}));
}

}  // namespace
}  // namespace kestan_cli
