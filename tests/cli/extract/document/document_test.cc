// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/extract/document/document.h"

#include <gtest/gtest.h>

#include <string>

#include "cli/extract/document/words.h"

namespace kestan_cli {
namespace {

std::string Repeated(std::size_t count, const std::string& text) {
  std::string all;
  while (count-- > 0) all += text;
  return all;
}

TEST(DocumentTest, TitleIsTheFirstLineThatIsNotBlank) {
  const Document document = MakeDocument("\n \t\n  The \t title\r\nBody  text.\n\nMore.\n");
  EXPECT_EQ(document.title, "The title");
  EXPECT_EQ(document.summary, "Body text. More.");
}

TEST(DocumentTest, BlankTextHasNoTitle) {
  const Document document = MakeDocument(" \n\t\n");
  EXPECT_EQ(document.title, "");
  EXPECT_EQ(document.summary, "");
}

TEST(DocumentTest, SingleLineHasNoSummary) {
  const Document document = MakeDocument("Title");
  EXPECT_EQ(document.title, "Title");
  EXPECT_EQ(document.summary, "");
}

TEST(DocumentTest, ATitleFromFurtherDownOpensTheText) {
  const std::string badges = "[build] [license]\n\n# Wind tunnels\nText.\n";
  EXPECT_EQ(MakeDocument(badges, TitleRule::kMarkdown).text, "Wind tunnels\n" + badges);
  const std::string fields = "---\ndate: today\ntitle: Wind tunnels\n---\nText.\n";
  EXPECT_EQ(MakeDocument(fields, TitleRule::kMarkdown).text, "Wind tunnels\n" + fields);
}

TEST(DocumentTest, ATitleThatOpensTheTextIsNotRepeated) {
  for (const std::string text :
       {"\n# Wind tunnels\nText.\n", "Wind tunnels\n===\nText.\n", "Text.\n", ""}) {
    EXPECT_EQ(MakeDocument(text, TitleRule::kMarkdown).text, text);
    EXPECT_EQ(MakeDocument(text).text, text);
  }
}

TEST(DocumentTest, TitleHasAtMost200Bytes) {
  EXPECT_EQ(MakeDocument(std::string(200, 'x')).title, std::string(200, 'x'));
  EXPECT_EQ(MakeDocument(std::string(201, 'x')).title, std::string(200, 'x'));
}

TEST(DocumentTest, SummaryHasAtMost300Bytes) {
  EXPECT_EQ(MakeDocument("t\n" + std::string(300, 'x')).summary, std::string(300, 'x'));
  EXPECT_EQ(MakeDocument("t\n" + std::string(301, 'x')).summary, std::string(300, 'x'));
}

TEST(ExcerptTest, CharactersAreNotCutInTwo) {
  EXPECT_EQ(Excerpt("abc\xc3\xa9", 5), "abc\xc3\xa9");
  EXPECT_EQ(Excerpt("abc\xc3\xa9", 4), "abc");
  EXPECT_EQ(Excerpt("abc\xc3\xa9", 3), "abc");
  EXPECT_EQ(Excerpt("ab\xf0\x9f\x98\x80", 5), "ab");
  EXPECT_EQ(Excerpt("ab\xf0\x9f\x98\x80z", 6), "ab\xf0\x9f\x98\x80");
}

TEST(ExcerptTest, OtherEncodingsAreCutWhereItComes) {
  EXPECT_EQ(Excerpt(Repeated(9, "\x80"), 5), Repeated(5, "\x80"));
  EXPECT_EQ(Excerpt(Repeated(9, "\x80"), 2), Repeated(2, "\x80"));
}

TEST(ExcerptTest, EndsWithoutABlank) {
  EXPECT_EQ(Excerpt("ab cd", 3), "ab");
  EXPECT_EQ(Excerpt("ab  ", 9), "ab");
}

const std::string kEncoded = "M" + std::string(60, 'A') + "\n";

// Returns the words of `text`, of which the index finds those that no stop words are taken from.
std::string WordsOf(const std::string& text, const WordRules& rules = {}) {
  const Document document = MakeDocument(text, TitleRule::kFirstLine, rules);
  EXPECT_TRUE(document.text.empty() || document.words.empty());
  if (!rules.stop_words.empty()) return document.words;
  return WordsIn(document.text);
}

TEST(DocumentTest, WordsLeaveOutLinesOfEncodedDataOnRequest) {
  const std::string text = "first line.\n" + kEncoded + "last.\n";
  EXPECT_EQ(WordsOf(text, {"", true}), "first line last ");
  EXPECT_EQ(WordsOf(text), "first line m" + std::string(60, 'a') + " last ");
}

// So many lines of `width` letters, and a shorter one.
std::string Base64(int lines, std::size_t width) {
  std::string block;
  for (int i = 0; i < lines; ++i) block += std::string(width, 'A') + "\r\n";
  return block + "AAA=\r\n";
}

TEST(DocumentTest, Base64OfMailAndKeysIsEncodedData) {
  for (const std::size_t width : {64U, 72U, 76U}) {
    EXPECT_EQ(WordsOf("first line.\n" + Base64(2, width) + "\nthe end.\n", {"", true}),
              "first line the end ")
        << width;
  }
}

TEST(DocumentTest, LongWordsAreNoEncodedData) {
  for (const std::string& text :
       {Base64(1, 76), Base64(2, 75), std::string(76, 'x') + "\n" + std::string(76, '.') + "\n"}) {
    EXPECT_EQ(WordsOf(text, {"", true}), WordsOf(text)) << text;
  }
}

TEST(DocumentTest, WordsWithAccentsAreIndexedWithout) {
  EXPECT_EQ(WordsOf("one.\ncaf\xc3\xa9 two.\nthree.\n"), "one cafe two three ");
}

TEST(DocumentTest, LinesWithAccentsAreNoEncodedData) {
  EXPECT_EQ(WordsOf("one.\ncaf\xc3\xa9 two.\nthree.\n", {"", true}), "one cafe two three ");
}

// A line of letters beyond ASCII is not encoded data, however wide it is.
TEST(DocumentTest, LinesOfOtherScriptsAreNoEncodedData) {
  std::string line;
  for (int i = 0; i < 24; ++i) line += "\u5317";
  const std::string text = line + "\n" + line + "\n" + kEncoded + "\u043f.\n";
  const Document document = MakeDocument(text, TitleRule::kFirstLine, {"", true});
  EXPECT_EQ(document.text, line + "\n" + line + "\n\n\u043f.\n");
}

TEST(DocumentTest, TitleAndSummaryKeepTheirAccents) {
  const Document document = MakeDocument("Caf\xc3\xa9\nZ\xc3\xbcrich");
  EXPECT_EQ(document.title, "Caf\xc3\xa9");
  EXPECT_EQ(document.summary, "Z\xc3\xbcrich");
}

TEST(DocumentTest, StopWordsAreLeftOutWithShortWords) {
  EXPECT_EQ(WordsOf("The cat is here\n", {"the here", false}), "cat ");
}

TEST(DocumentTest, EmptyTextIsAnEmptyDocument) { EXPECT_EQ(WordsOf(""), ""); }

TEST(DocumentTest, TextIsLeftToTheIndexWhereNoStopWordsAreTakenFromIt) {
  const Document document = MakeDocument("Caf\xc3\xa9\nZ\xc3\xbcrich");
  EXPECT_EQ(document.text, "Caf\xc3\xa9\nZ\xc3\xbcrich");
  EXPECT_EQ(document.words, "");
}

}  // namespace
}  // namespace kestan_cli
