// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/query/word_notes.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace kestan::search {
namespace {

using Lines = std::vector<std::string>;

Lines Ignored(const std::string& text, TextRules rules = TextRules::kAnalyzer) {
  return NotesOnIgnoredText(text, rules);
}

TEST(WordNotesTest, TextWithoutLettersAndDigitsIsNamed) {
  EXPECT_EQ(Ignored("\xc2\xa7 law"),
            Lines{"'\xc2\xa7' holds no letters or digits and was ignored"});
  EXPECT_EQ(Ignored("\xc2\xa7 law \xe2\x99\xa5 \xc2\xa7"),
            Lines{"'\xc2\xa7', '\xe2\x99\xa5' hold no letters or digits and were ignored"});
}

TEST(WordNotesTest, NumbersAreNamedWhereAnIndexHasLettersOnly) {
  EXPECT_EQ(Ignored("intel 486"), Lines());
  EXPECT_EQ(Ignored("intel 486", TextRules::kAsciiLetters),
            Lines{"'486' holds no letters and was ignored"});
}

TEST(WordNotesTest, PunctuationIsNotNamed) {
  EXPECT_EQ(Ignored("wing - flow ? !! & ,"), Lines());
  EXPECT_EQ(Ignored("\xc2\xab vol \xc2\xbb \xe2\x80\x94 l\xc3\xa0"), Lines());
}

TEST(WordNotesTest, WordsOfMoreThan64CharactersAreNamedByTheirBeginning) {
  EXPECT_EQ(Ignored(std::string(64, 'x')), Lines());
  EXPECT_EQ(Ignored(std::string(65, 'x')),
            Lines{"'xxxxxxxxxxxxxxxxxxxx...' is too long: its first 64 characters count"});
}

TEST(WordNotesTest, WordThatFitsIsNotNamedForThoseBesideItInQuotes) {
  const std::string word(64, 'x');
  EXPECT_EQ(NotesOnIgnoredText("\"roses " + word + "\"", TextRules::kAnalyzer),
            std::vector<std::string>());
  EXPECT_EQ(NotesOnIgnoredText("\"roses x" + word + "\"", TextRules::kAnalyzer).size(), 1U);
}

TEST(WordNotesTest, CharactersAreCountedAndNotBytes) {
  std::string word;
  for (int i = 0; i < 64; ++i) word += "\xd0\xb6";
  EXPECT_EQ(Ignored(word), Lines());
  EXPECT_EQ(Ignored(word + "\xd0\xb6").size(), 1u);
}

TEST(WordNotesTest, NothingIsSaidOfNothing) {
  EXPECT_EQ(NotesOnOptionalWords({}), Lines());
  EXPECT_EQ(Ignored(""), Lines());
}

TEST(WordNotesTest, OptionalWordsAreNamedWithTheReason) {
  EXPECT_EQ(NotesOnOptionalWords({{"how"}, {}}), Lines{"'how' says little and was not required"});
  EXPECT_EQ(NotesOnOptionalWords({{"how", "do"}, {"linux"}}),
            (Lines{"'how', 'do' say little and were not required",
                   "'linux' is in most documents and was not required"}));
}

TEST(WordNotesTest, TenWordsAreNamedAndTheOthersCounted) {
  const Lines eleven = {"a", "b", "c", "d", "e", "f", "g", "h", "i", "j", "k"};
  EXPECT_EQ(NotesOnOptionalWords({eleven, {}}).front(),
            "'a', 'b', 'c', 'd', 'e', 'f', 'g', 'h', 'i', 'j', 'k' say little and were not"
            " required");
  Lines twelve = eleven;
  twelve.emplace_back("l");
  EXPECT_EQ(NotesOnOptionalWords({twelve, {}}).front(),
            "'a', 'b', 'c', 'd', 'e', 'f', 'g', 'h', 'i', 'j' and 2 more say little and were not"
            " required");
}

}  // namespace
}  // namespace kestan::search
