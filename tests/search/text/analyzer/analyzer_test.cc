// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/search/analyzer.h>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <kestan/search/text.h>
#include <kestan/tokenizer.h>

#include <unicode/utf16.h>

#include <cstdint>
#include <set>
#include <string>
#include <vector>

#include "search/text/icu.h"
#include "search/text/utf8.h"

namespace kestan::search {
namespace {

std::string Stored(std::string_view utf8) {
  const auto words = Analyzer().Analyze(utf8);
  EXPECT_TRUE(words.ok()) << words.status().ToString();
  return *words;
}

// Returns the words for a person, with a blank between them.
std::string Words(std::string_view utf8) {
  std::string words = *Analyzer::Decode(Stored(utf8));
  if (!words.empty()) words.pop_back();
  return words;
}

std::vector<std::string> Split(const std::string& words) {
  std::vector<std::string> split;
  std::string word;
  for (const char byte : words) {
    if (byte != ' ') {
      word += byte;
      continue;
    }
    split.push_back(word);
    word.clear();
  }
  EXPECT_EQ(word, "");
  return split;
}

// Returns the groups of a query: words with "+" between them, "*" after a prefix.
std::string Groups(std::string_view utf8) {
  const auto groups = Analyzer().AnalyzeQuery(utf8);
  EXPECT_TRUE(groups.ok());
  std::string text;
  for (const WordGroup& group : *groups) {
    if (!text.empty()) text += ' ';
    std::string joined;
    for (const std::string& word : group.words) joined += (joined.empty() ? "" : "|") + word;
    text += *Analyzer::Decode(joined) + (group.last_is_prefix ? "*" : "");
  }
  return text;
}

TEST(AnalyzerTest, WordsAreRunsOfLettersAndDigitsWithoutCapitals) {
  EXPECT_EQ(Words("The IBM 486, an F16; UTF8 (RFC 2616)"), "the ibm 486 an f16 utf8 rfc 2616");
  EXPECT_EQ(Words(""), "");
  EXPECT_EQ(Words(" \n\t.,;"), "");
}

TEST(AnalyzerTest, WhatHangsTogetherGivesItsParts) {
  EXPECT_EQ(Words("covid-19 foo_bar 192.168.0.1 2026-11-20"),
            "covid 19 foo bar 192 168 0 1 2026 11 20");
  EXPECT_EQ(Words("a.b@example.org don't rock’n’roll"), "a b example org don t rock n roll");
}

TEST(AnalyzerTest, MarksOfNamesMakeAnotherWord) {
  EXPECT_EQ(Words("C++ and C#, F#."), "c c++ and c c# f f#");
  EXPECT_EQ(Words("use .NET (.bashrc)"), "use net .net bashrc .bashrc");
  EXPECT_EQ(Words(".gitignore"), "gitignore .gitignore");
  EXPECT_EQ(Words("a.net end.The C+ C+++ C#x 4++ ...and i++"), "a net end the c c c x 4 and i i++");
}

TEST(AnalyzerTest, AccentsOfLatinGreekAndCyrillicGo) {
  EXPECT_EQ(Words("Zürich naïve Ærø Łódź straße İstanbul ısı"),
            "zurich naive aero lodz strasse istanbul isi");
  EXPECT_EQ(Words("Ἀθήνα Ὀδυσσεύς ΟΔΥΣΣΕΥΣ"), "αθηνα οδυσσευσ οδυσσευσ");
  EXPECT_EQ(Words("Привет Ёлка Мо́сква"), "привет елка москва");
  EXPECT_EQ(Words("Йод Їжак Ўсё Ѓакон Ќе"), "йод їжак ўсе ѓакон ќе");
}

TEST(AnalyzerTest, OtherScriptsKeepTheirMarks) {
  EXPECT_EQ(Words("שָׁלוֹם हिन्दी 한국어 العربية"), "שָׁלוֹם हिन्दी 한국어 العربية");
}

TEST(AnalyzerTest, CompatibilityCharactersAreFolded) {
  EXPECT_EQ(Words("ＡＢＣ１２３ ﬁne ½ m² Ⅷ"), "abc123 fine 1 2 m2 viii");
  EXPECT_EQ(Words("co\u00adoperate zero\u200dwidth a\u200bb"), "cooperate zerowidth a b");
}

TEST(AnalyzerTest, ChineseAndJapaneseGivePairsAndTheLastCharacter) {
  EXPECT_EQ(Words("北京"), "北京 京");
  EXPECT_EQ(Words("背景，人工智能。"), "背景 景 人工 工智 智能 能");
  EXPECT_EQ(Words("京"), "京");
  EXPECT_EQ(Words("東京タワーへ"), "東京 京タ タワ ワー ーへ へ");
  EXPECT_EQ(Words("ｶﾞｿﾘﾝ"), Words("ガソリン"));
  EXPECT_EQ(Words("2024年iPhone手机"), "2024 年 iphone 手机 机");
}

TEST(AnalyzerTest, ThaiIsSplitByADictionary) {
  EXPECT_EQ(Words("ภาษาไทยง่าย"), "ภาษา ไทย ง่าย");
  EXPECT_EQ(Words("สวัสดี 2024"), "สวัสดี 2024");
}

TEST(AnalyzerTest, BytesThatAreNoUtf8AreLatin1) {
  EXPECT_EQ(Words("Z\xfcrich caf\xe9"), "zurich cafe");
  EXPECT_EQ(Words("a\xff\xfe"), Words("aÿþ"));
}

TEST(AnalyzerTest, WordsAreCutAfter64Characters) {
  EXPECT_EQ(Words(std::string(64, 'x')), std::string(64, 'x'));
  EXPECT_EQ(Words(std::string(65, 'x') + " y"), std::string(64, 'x') + " y");
  std::string letters;
  for (int i = 0; i < 70; ++i) letters += "ж";
  EXPECT_EQ(Words(letters), letters.substr(0, 128));
  EXPECT_EQ(Words(letters + letters + std::string(70, 'x')), letters.substr(0, 128));
  EXPECT_EQ(Words(std::string(62, 'x') + "++"),
            std::string(62, 'x') + " " + std::string(62, 'x') + "++");
  EXPECT_EQ(Words(std::string(63, 'x') + "++"), std::string(63, 'x'));
  EXPECT_EQ(Words("." + std::string(64, 'x')), std::string(64, 'x'));
}

// Marks without end belong to their letter. Were all of them looked at, this would take minutes.
TEST(AnalyzerTest, MarksWithoutEndTakeNoTime) {
  std::string marks;
  for (int i = 0; i < 200'000; ++i) marks += i % 2 == 0 ? "\u0301" : "\u0323";
  EXPECT_EQ(Words("e" + marks + " x"), "e x");
  EXPECT_EQ(Words("é" + marks + " x"), "e x");
  EXPECT_EQ(Split(Stored("が" + marks)).size(), 1u);
  EXPECT_FALSE(Stored("ก" + marks).empty());
  EXPECT_FALSE(Stored("ק" + marks).empty());
}

TEST(AnalyzerTest, LettersWithoutEndAreCut) {
  std::string letters;
  for (int i = 0; i < 2000; ++i)
    letters += "\xba";  // which continue characters, where there are any
  EXPECT_EQ(Words(letters), std::string(64, 'o'));
}

TEST(AnalyzerTest, WordsOfQueriesHangTogetherOverPunctuation) {
  EXPECT_EQ(Groups("covid-19 e-mail"), "covid|19 e|mail");
  EXPECT_EQ(Groups("C++ .NET don't"), "c|c++ net|.net don|t");
  EXPECT_EQ(Groups("one,two (three);four 1,000"), "one two three four 1|000");
  EXPECT_EQ(Groups("a.b@example.org 192.168.0.1"), "a|b|example|org 192|168|0|1");
  EXPECT_EQ(Groups("hello—world it’s"), "hello world it|s");
}

TEST(AnalyzerTest, ASingleChineseCharacterOfAQueryIsAPrefix) {
  EXPECT_EQ(Groups("北京"), "北京");
  EXPECT_EQ(Groups("人工智能"), "人工|工智|智能");
  EXPECT_EQ(Groups("京 水"), "京* 水*");
  EXPECT_EQ(Groups("手机iPhone"), "手机|机|iphone");
  EXPECT_EQ(Groups("iPhone手"), "iphone|手*");
}

TEST(AnalyzerTest, PlacesOfWordsAreThoseOfTheText) {
  const std::string text = "Ein Zürich: C++ 北京人 .net ภาษาไทย";
  std::vector<std::string> pieces;
  const Status status = Analyzer().ForEachWord(text, [&](const AnalyzedWord& word) {
    pieces.push_back(text.substr(word.start, word.end - word.start));
    return true;
  });
  EXPECT_TRUE(status.ok());
  EXPECT_EQ(pieces, (std::vector<std::string>{"Ein", "Zürich", "C", "C++", "北京", "京人", "人",
                                              "net", ".net", "ภาษา", "ไทย"}));
}

TEST(AnalyzerTest, AVisitorMayStop) {
  for (const char* text : {"one two three", "北京人民", "ภาษาไทยง่าย"}) {
    int words = 0;
    EXPECT_TRUE(
        Analyzer().ForEachWord(text, [&](const AnalyzedWord&) { return ++words < 2; }).ok());
    EXPECT_EQ(words, 2) << text;
  }
}

TEST(AnalyzerTest, OtherTextIsDecodedToItself) {
  EXPECT_EQ(*Analyzer::Decode("hello \"c++\"*"), "hello \"c++\"*");
  EXPECT_EQ(*Analyzer::Decode("zürich 北京 \xff"), "zürich 北京 \xff");
}

// ---- Properties ----

// Texts of many scripts, with punctuation, bytes that are no UTF-8, and what words end with.
rc::Gen<std::string> AnyText() {
  const auto piece = rc::gen::elementOf(std::vector<std::string>{"a",          "B",
                                                                 "z",          "0",
                                                                 "9",          " ",
                                                                 " ",          "-",
                                                                 ".",          "'",
                                                                 "+",          "#",
                                                                 ",",          "\n",
                                                                 "ü",          "e\u0301",
                                                                 "ß",          "\u0130",
                                                                 "и\u0306",    "й",
                                                                 "Ё",          "Ἀ",
                                                                 "北",         "京",
                                                                 "が",         "か\u3099",
                                                                 "ー",         "ภ",
                                                                 "า",          "ษ",
                                                                 "ไ",          "\u00ad",
                                                                 "\u200b",     "½",
                                                                 "\xff",       "\xc3",
                                                                 "한",         "\u1112\u1161\u11ab",
                                                                 "ק",          "ִ",
                                                                 "\U00020000", "\U0001d400",
                                                                 "—",          "’",
                                                                 "\u0345",     "ﬁ"});
  return rc::gen::map(rc::gen::container<std::vector<std::string>>(piece), [](const auto& pieces) {
    std::string text;
    for (const std::string& each : pieces) text += each;
    return text;
  });
}

RC_GTEST_PROP(AnalyzerTest, FoldingOfTheEngineLeavesWordsAsTheyAre, ()) {
  const std::string words = Stored(*AnyText());
  for (const std::string& word : Split(words)) {
    RC_ASSERT(!word.empty());
    for (const char byte : word) RC_ASSERT((static_cast<unsigned char>(byte) & 0x20) != 0);
    RC_ASSERT(word.find_first_of(" \t\n\v\f\r") == std::string::npos);
    RC_ASSERT(word.size() < 2 || word[1] != '-');
  }
  const Tokenizer tokens(words);
  std::set<std::string> distinct;
  for (const std::string& word : Split(words)) distinct.insert(word);
  RC_ASSERT(tokens.words().size() == distinct.size());
}

RC_GTEST_PROP(AnalyzerTest, DecodedWordsAreUtf8OfAtMost64Characters, ()) {
  for (const std::string& word : Split(Stored(*AnyText()))) {
    const std::string utf8 = *Analyzer::Decode(word);
    RC_ASSERT(IsUtf8(utf8));
    std::size_t characters = 0;
    for (const char byte : utf8) characters += ContinuesCharacter(byte) ? 0 : 1;
    RC_ASSERT(characters <= Analyzer::kMaxCharacters);
  }
}

std::string Decomposed(const std::string& utf8) {
  std::u16string text;
  for (std::size_t at = 0; at < utf8.size();) {
    const auto code = static_cast<UChar32>(TakeCode(utf8, &at));
    if (code > 0xffff) text += static_cast<char16_t>(U16_LEAD(code));
    text += static_cast<char16_t>(code > 0xffff ? U16_TRAIL(code) : code);
  }
  std::u16string made(text.size() * 4 + 16, u'\0');
  UErrorCode error = U_ZERO_ERROR;
  const std::int32_t length =
      LoadedIcu().unorm2_normalize(LoadedIcu().unorm2_getNFDInstance(&error), text.data(),
                                   static_cast<std::int32_t>(text.size()), made.data(),
                                   static_cast<std::int32_t>(made.size()), &error);
  EXPECT_TRUE(U_SUCCESS(error));
  std::string decomposed;
  for (std::int32_t at = 0; at < length;) {
    UChar32 code = 0;
    U16_NEXT(made, at, length, code);
    AppendCharacter(static_cast<char32_t>(code), &decomposed);
  }
  return decomposed;
}

TEST(AnalyzerTest, AnIotaBelowIsAnAccentWhereverItIsWritten) {
  EXPECT_EQ(Stored("\u1fb3"), Stored("\u03b1"));
  EXPECT_EQ(Stored("\u0e20\u0345\u05b4"), Stored("\u0e20\u05b4\u0345"));
}

RC_GTEST_PROP(AnalyzerTest, ComposedAndDecomposedTextsHaveTheSameWords, ()) {
  const std::string text = *AnyText();
  RC_PRE(IsUtf8(text));
  RC_ASSERT(Stored(text) == Stored(Decomposed(text)));
}

RC_GTEST_PROP(AnalyzerTest, WordsOfTwoTextsAreThoseOfBothWithABlankBetween, ()) {
  const std::string one = *AnyText();
  const std::string two = *AnyText();
  RC_ASSERT(Stored(one + " " + two) == Stored(one) + Stored(two));
}

RC_GTEST_PROP(AnalyzerTest, VisitedWordsAreThoseOfTheText, ()) {
  const std::string text = *AnyText();
  std::string words;
  std::size_t last_end = 0;
  const Status status = Analyzer().ForEachWord(text, [&](const AnalyzedWord& word) {
    words.append(word.word).append(" ");
    RC_ASSERT(word.start < word.end);
    RC_ASSERT(word.end <= text.size());
    RC_ASSERT(word.end >= last_end);
    last_end = word.end;
    return true;
  });
  RC_ASSERT(status.ok());
  RC_ASSERT(words == Stored(text));
}

RC_GTEST_PROP(AnalyzerTest, EachWordOfAQueryIsOneOfItsText, ()) {
  const std::string text = *AnyText();
  std::set<std::string> words;
  for (const std::string& word : Split(Stored(text))) words.insert(word);
  const auto groups = Analyzer().AnalyzeQuery(text);
  for (const WordGroup& group : *groups) {
    RC_ASSERT(!group.words.empty());
    for (const std::string& word : group.words) RC_ASSERT(words.count(word) == 1);
  }
}

}  // namespace
}  // namespace kestan::search
