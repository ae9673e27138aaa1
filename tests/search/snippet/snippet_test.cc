// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/snippet/snippet.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <set>
#include <string>

namespace kestan::search {
namespace {

// A snippet with its matches in brackets.
std::string Cut(const std::string& text, const Terms& terms) {
  std::string cut;
  for (const Fragment& fragment : MakeSnippet(text, terms)) {
    cut += fragment.matches ? "[" + fragment.text + "]" : fragment.text;
  }
  return cut;
}

std::string Filler(std::size_t words) {
  std::string text;
  while (words-- > 0) text += "filler ";
  return text;
}

TEST(SnippetTest, MatchesAreMarked) {
  EXPECT_EQ(Cut("the cat and the dog", {"cat", "dog"}), "the [cat] and the [dog]");
  EXPECT_EQ(Cut("cat", {"cat"}), "[cat]");
}

TEST(SnippetTest, TextWithoutAMatchHasNone) {
  EXPECT_EQ(Cut("concatenate", {"cat"}), "");
  EXPECT_EQ(Cut("", {"cat"}), "");
  EXPECT_EQ(Cut("cat", {}), "");
}

TEST(SnippetTest, WordsAreComparedAsTheyAreIndexed) {
  EXPECT_EQ(Cut("Cat CAT cat", {"cat"}), "[Cat] [CAT] [cat]");
  EXPECT_EQ(Cut("Cat CAT cat", {"Cat"}), "[Cat] CAT cat");
  EXPECT_EQ(Cut("I don't.", {"dont"}), "I [don't].");
  EXPECT_EQ(Cut("in Z\xc3\xbcrich", {"zurich"}), "in [Z\xc3\xbcrich]");
  EXPECT_EQ(Cut("an e-mail", {"e", "mail"}), "an [e]-[mail]");
  EXPECT_EQ(Cut(std::string(70, 'x'), {std::string(64, 'x')}), "[" + std::string(70, 'x') + "]");
}

TEST(SnippetTest, WhiteSpaceAndControlsAreOneBlank) {
  EXPECT_EQ(Cut("  a\n\n\tcat \x1b\x7f z \n", {"cat"}), "a [cat] z");
}

TEST(SnippetTest, LongTextIsCutAtWords) {
  const std::string cut = Cut(Filler(50) + "cat " + Filler(50), {"cat"});
  EXPECT_EQ(cut.substr(0, 10), "...filler ");
  EXPECT_EQ(cut.substr(cut.size() - 10), " filler...");
  EXPECT_NE(cut.find(" [cat] "), std::string::npos);
  EXPECT_LE(cut.size(), kSnippetBytes + 8);
  EXPECT_GE(cut.size(), kSnippetBytes - 16);
}

TEST(SnippetTest, WindowWithTheMostDifferentTermsWins) {
  const std::string cut =
      Cut("cat cat cat " + Filler(50) + "cat near dog " + Filler(50), {"cat", "dog"});
  EXPECT_NE(cut.find("[cat] near [dog]"), std::string::npos) << cut;
}

TEST(SnippetTest, FirstOfEqualsWins) {
  const std::string cut = Cut("one cat " + Filler(50) + "two cat ", {"cat"});
  EXPECT_EQ(cut.substr(0, 9), "one [cat]");
}

TEST(SnippetTest, LongWordsAreReadInChunks) {
  const std::string word(64, 'x');
  EXPECT_EQ(Cut("a " + word + std::string(200, 'y') + " b", {word}),
            "a [" + word + std::string(32, 'y') + "]...");
}

TEST(SnippetTest, FragmentsDoNotEndWithinACharacter) {
  std::string text = "x";  // and Cyrillic without blanks, two bytes a letter
  for (int i = 0; i < 400; ++i) text += "\xd0\xb0";
  const auto snippet = MakeSnippet(text, {"x" + std::string(48, 'a')});
  ASSERT_FALSE(snippet.empty());
  EXPECT_TRUE(snippet.front().matches);
  EXPECT_EQ(snippet.front().text, text.substr(0, 97));
}

RC_GTEST_PROP(SnippetTest, AnyBytesMakeALine, (const std::string& text)) {
  for (const Fragment& fragment : MakeSnippet(text + " cat " + text, {"cat", "a"})) {
    RC_ASSERT(!fragment.text.empty());
    for (const char byte : fragment.text) RC_ASSERT(static_cast<unsigned char>(byte) >= ' ');
  }
}

}  // namespace
}  // namespace kestan::search
