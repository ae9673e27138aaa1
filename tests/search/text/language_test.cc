// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/text/language.h"

#include <gtest/gtest.h>

namespace kestan::search {
namespace {

TEST(LanguageTest, IsFoundByNameAndByCode) {
  ASSERT_NE(FindLanguage("german"), nullptr);
  EXPECT_EQ(FindLanguage("german"), FindLanguage("de"));
  EXPECT_EQ(FindLanguage("german")->name, "german");
  EXPECT_EQ(FindLanguage(""), nullptr);
  EXPECT_EQ(FindLanguage("Deutsch"), nullptr);
  EXPECT_EQ(FindLanguage("none"), nullptr);
}

TEST(LanguageTest, AnIndexWithoutTheNameOfOneIsInEnglish) {
  EXPECT_EQ(LanguageOfProperty(""), FindLanguage("english"));
  EXPECT_EQ(LanguageOfProperty("finnish"), FindLanguage("fi"));
  EXPECT_EQ(LanguageOfProperty("none"), nullptr);
  EXPECT_EQ(LanguageOfProperty("klingon"), nullptr);
}

TEST(LanguageTest, NamesAreSeparatedByCommas) {
  EXPECT_EQ(LanguageNames().substr(0, 26), "arabic, armenian, basque, ");
  EXPECT_EQ(LanguageNames().substr(LanguageNames().size() - 9), ", yiddish");
}

TEST(ScriptTest, IsThatOfTheFirstCharacter) {
  EXPECT_EQ(ScriptOf("word"), Script::kLatin);
  EXPECT_EQ(ScriptOf("486s"), Script::kLatin);
  EXPECT_EQ(ScriptOf("þing"), Script::kLatin);
  EXPECT_EQ(ScriptOf("λογος"), Script::kGreek);
  EXPECT_EQ(ScriptOf("слово"), Script::kCyrillic);
  EXPECT_EQ(ScriptOf("բառ"), Script::kArmenian);
  EXPECT_EQ(ScriptOf("וואָרט"), Script::kHebrew);
  EXPECT_EQ(ScriptOf("كلمة"), Script::kArabic);
  EXPECT_EQ(ScriptOf("शब्द"), Script::kDevanagari);
  EXPECT_EQ(ScriptOf("சொல்"), Script::kTamil);
  EXPECT_EQ(ScriptOf("言葉"), Script::kOther);
}

TEST(ScriptTest, NoTextAndHalfACharacterHaveOne) {
  EXPECT_EQ(ScriptOf(""), Script::kOther);
  for (int byte = 0x80; byte < 0x100; ++byte) {
    const std::string cut(1, static_cast<char>(byte));
    EXPECT_NO_FATAL_FAILURE(ScriptOf(cut));
  }
  EXPECT_EQ(ScriptOf("\xff"), Script::kOther);
}

}  // namespace
}  // namespace kestan::search
