// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/text/analyzer/characters.h"

#include <gtest/gtest.h>
#include <unicode/uchar.h>

#include "search/text/analyzer/folding.h"
#include "search/text/icu.h"

namespace kestan::search {
namespace {

TEST(CharactersTest, HaveTheClassOfTheirScript) {
  EXPECT_EQ(ClassOf(U'é'), CharacterClass::kLetter);
  EXPECT_EQ(ClassOf(U'ж'), CharacterClass::kLetter);
  EXPECT_EQ(ClassOf(U'한'), CharacterClass::kLetter);
  EXPECT_EQ(ClassOf(U'٣'), CharacterClass::kLetter);
  EXPECT_EQ(ClassOf(U'北'), CharacterClass::kPaired);
  EXPECT_EQ(ClassOf(U'々'), CharacterClass::kPaired);
  EXPECT_EQ(ClassOf(U'ー'), CharacterClass::kPaired);
  EXPECT_EQ(ClassOf(U'ｶ'), CharacterClass::kPaired);
  EXPECT_EQ(ClassOf(U'ไ'), CharacterClass::kUnspaced);
  EXPECT_EQ(ClassOf(0xe34), CharacterClass::kUnspaced);  // a vowel of Thai
  EXPECT_EQ(ClassOf(0x301), CharacterClass::kMark);
  EXPECT_EQ(ClassOf(0xad), CharacterClass::kMark);
  EXPECT_EQ(ClassOf(U'×'), CharacterClass::kOther);
  EXPECT_EQ(ClassOf(U'，'), CharacterClass::kOther);
  EXPECT_EQ(ClassOf(0x200b), CharacterClass::kOther);
  EXPECT_EQ(ClassOf(0x2bc), CharacterClass::kOther);
  EXPECT_EQ(ClassOf(0x1f600), CharacterClass::kOther);
}

// What is known without ICU is what ICU says.
TEST(CharactersTest, AreLettersWhereIcuHasThemSo) {
  for (char32_t code = 0x80; code < 0x20000; ++code) {
    const std::uint32_t category = U_MASK(LoadedIcu().u_charType(static_cast<UChar32>(code)));
    const CharacterClass found = ClassOf(code);
    const bool is_letter = (category & (U_GC_L_MASK | U_GC_N_MASK)) != 0;
    const bool has_letters = found == CharacterClass::kLetter || found == CharacterClass::kPaired;
    const bool is_special = (code >= 0x2b9 && code <= 0x2bf) || code == 0xff9e || code == 0xff9f;
    if (is_special) continue;
    if (is_letter) {
      ASSERT_TRUE(has_letters || found == CharacterClass::kUnspaced) << std::uint32_t{code};
    } else {
      ASSERT_FALSE(has_letters) << std::uint32_t{code};
    }
  }
}

TEST(CharactersTest, CommonPairedOnesFoldToThemselves) {
  for (char32_t code = 0x80; code < 0x10000; ++code) {
    if (!IsCommonPaired(code)) continue;
    ASSERT_EQ(ClassOf(code), CharacterClass::kPaired);
    ASSERT_EQ(Folded(std::u16string(1, static_cast<char16_t>(code))), std::u32string(1, code));
  }
}

}  // namespace
}  // namespace kestan::search
