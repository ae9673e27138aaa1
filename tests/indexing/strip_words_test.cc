// SPDX-License-Identifier: GPL-3.0-or-later
// Kestan::StripWords of kestan/indexing/strip.cc.
#include <kestan/kestan.h>

#include "tests/indexing/strip_block.h"

namespace kestan_tests {
namespace {

// Strips the words of `stop_text` and `stop_list` from `text`, which gets no spare bytes.
Stripped Words(std::string_view text, const char* stop_text,
               std::vector<const char*> stop_list = {}) {
  stop_list.push_back(nullptr);
  return StripInPlace(text, 0, [&](char* buffer, unsigned length) {
    return Kestan::StripWords(buffer, length, stop_text, stop_list.data());
  });
}

std::string Letters(std::size_t count) { return std::string(count, 'x'); }

TEST(StripWordsTest, EmptyTextWritesNothing) {
  EXPECT_EQ(Words("", "the").length, 0);
  EXPECT_EQ(Words("", "").length, 0);
}

TEST(StripWordsTest, DropsStopWordsAndShortWordsAndKeepsTheSeparators) {
  const Stripped result = Words("The cat and a dog", "the,and");
  EXPECT_EQ(result.length, 10);
  EXPECT_EQ(result.text, " cat   dog");
  EXPECT_EQ(result.buffer, std::string(" cat   dog\0 a dog", 17));
}

TEST(StripWordsTest, TextThatStaysAsItIsGetsNoTerminator) {
  const Stripped result = Words("cat dog", "the");
  EXPECT_EQ(result.length, 7);
  EXPECT_EQ(result.buffer, "cat dog");
}

TEST(StripWordsTest, LookupIgnoresCaseOnBothSides) {
  EXPECT_EQ(Words("THE The the cat", "tHe").text, "   cat");
  EXPECT_EQ(Words("Dog dOG cat", "the", {"DOG"}).text, "  cat");
}

TEST(StripWordsTest, WordsOfTwoLettersGoAndOfThreeStay) {
  EXPECT_EQ(Words("a ab abc", "the").text, "  abc");
  EXPECT_EQ(Words("I'm a'b'c", "the").text, " abc");
}

TEST(StripWordsTest, AnyNonLetterSeparatesStopWords) {
  const char* const stop_text = "one,two three\nfour5six'ten;end";
  EXPECT_EQ(Words("one two three four six ten end cat", stop_text).text, "       cat");
  EXPECT_EQ(Words("sixten fourfive", stop_text).text, "sixten fourfive");
}

TEST(StripWordsTest, StopTextMayBeginAndEndWithSeparators) {
  EXPECT_EQ(Words("the cat and", " ,the. and ").text, " cat ");
}

TEST(StripWordsTest, StopTextWithoutAnyWordStillDropsShortWordsAndTheList) {
  EXPECT_EQ(Words("a dog cat", " ", {"dog"}).text, "  cat");
}

TEST(StripWordsTest, EmptyStopTextDropsNothing) {
  const Stripped result = Words("a The don't dog", "", {"the", "dog", "a"});
  EXPECT_EQ(result.length, 14);
  EXPECT_EQ(result.text, "a The dont dog");
  EXPECT_EQ(result.buffer, std::string("a The dont dog\0", 15));
}

TEST(StripWordsTest, ListedWordsAreTakenAsTheyAre) {
  EXPECT_EQ(Words("cat dog cow", "the", {"cat", "cow"}).text, " dog ");
  EXPECT_EQ(Words("cat dog", "the", {"cat dog", "cat,"}).text, "cat dog");
}

TEST(StripWordsTest, ListedWordWithAnApostropheMatchesNoWord) {
  EXPECT_EQ(Words("don't", "the", {"don't"}).text, "dont");
  EXPECT_EQ(Words("don't", "the", {"dont"}).text, "");
}

TEST(StripWordsTest, ListEndsAtItsFirstNull) {
  EXPECT_EQ(Words("cat dog", "the", {"cat", nullptr, "dog"}).text, " dog");
}

TEST(StripWordsTest, WordsAreCutAfter64Letters) {
  EXPECT_EQ(Words(Letters(64), "").text, Letters(64));
  EXPECT_EQ(Words(Letters(65), "").text, Letters(64));
  EXPECT_EQ(Words(Letters(70) + " cat", "the").text, Letters(64) + " cat");
}

TEST(StripWordsTest, WordOf64LettersEndsBeforeAnApostrophe) {
  EXPECT_EQ(Words(Letters(64) + "'abc", "").text, Letters(64) + "'abc");
  EXPECT_EQ(Words(Letters(63) + "'abc", "").text, Letters(63) + "a");
  EXPECT_EQ(Words(Letters(63) + "'", "").text, Letters(63));
}

TEST(StripWordsTest, CutWordIsLookedUpAsItWasCut) {
  EXPECT_EQ(Words(Letters(70) + ".", Letters(64).c_str()).text, ".");
  EXPECT_EQ(Words(Letters(70) + ".", Letters(70).c_str()).text, Letters(64) + ".");
}

TEST(StripWordsTest, SeparatorsBetweenWordsStayWithTheirApostrophes) {
  EXPECT_EQ(Words("the 'cat' sat", "the").text, " 'cat sat");
  EXPECT_EQ(Words("cat, '12' dog\n", "the").text, "cat, '12' dog\n");
}

TEST(StripWordsTest, ApostrophesAtTheStartOfTheTextGo) {
  EXPECT_EQ(Words("''' cat", "").text, " cat");
  EXPECT_EQ(Words("'cat", "the").text, "cat");
}

TEST(StripWordsTest, LeadingSeparatorsStay) { EXPECT_EQ(Words(".\ncat", "the").text, ".\ncat"); }

TEST(StripWordsTest, DroppedOnlyWordLeavesATerminator) {
  const Stripped result = Words("the", "the");
  EXPECT_EQ(result.length, 0);
  EXPECT_EQ(result.buffer, std::string("\0he", 3));
}

TEST(StripWordsTest, BytesAboveTheLettersSeparateAndStay) {
  EXPECT_EQ(Words("na\xc3\xafve cat", "the").text, "\xc3\xaf cat");
  EXPECT_EQ(Words("abc\xff"
                  "abc",
                  "the")
                .text,
            "abc\xff"
            "abc");
  EXPECT_EQ(Words(std::string_view("cat\0the\0dog", 11), "the").text, std::string("cat\0\0dog", 8));
}

TEST(StripWordsTest, BytesPastTheLengthAreLeftAlone) {
  const char* const no_list[] = {nullptr};
  char text[] = "cat dogs";
  EXPECT_EQ(Kestan::StripWords(text, 7, "the", no_list), 7);
  EXPECT_STREQ(text, "cat dogs");
}

}  // namespace
}  // namespace kestan_tests
