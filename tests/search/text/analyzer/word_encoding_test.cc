// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/text/analyzer/word_encoding.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

#include "search/text/utf8.h"

namespace kestan::search {
namespace {

constexpr char32_t kLast = 0x109b7f;

bool IsSurrogate(char32_t code) { return code >= 0xd800 && code < 0xe000; }

TEST(WordEncodingTest, EachCharacterIsReadAsItWasStored) {
  for (char32_t code = 1; code <= kLast; ++code) {
    if (IsSurrogate(code)) continue;
    std::string word;
    AppendStored(code, &word);
    char32_t read = 0;
    ASSERT_EQ(ReadStored(word, &read), word.size()) << static_cast<unsigned>(code);
    ASSERT_EQ(read, code);
  }
}

TEST(WordEncodingTest, EachByteBeyondAsciiHasBit5) {
  for (char32_t code = 0x80; code <= kLast; ++code) {
    std::string word;
    AppendStored(code, &word);
    for (const char byte : word) {
      ASSERT_GE(static_cast<unsigned char>(byte), 0xa0);
      ASSERT_NE(static_cast<unsigned char>(byte) & 0x20, 0);
    }
  }
}

TEST(WordEncodingTest, FormsAreAsLongAsTheirRangesSay) {
  const auto bytes_of = [](char32_t code) {
    std::string word;
    AppendStored(code, &word);
    return word.size();
  };
  EXPECT_EQ(bytes_of('a'), 1u);
  EXPECT_EQ(bytes_of(0x370), 2u);
  EXPECT_EQ(bytes_of(0x66f), 2u);
  EXPECT_EQ(bytes_of(0x80), 3u);
  EXPECT_EQ(bytes_of(0x36f), 3u);
  EXPECT_EQ(bytes_of(0x670), 3u);
  EXPECT_EQ(bytes_of(0x1b7f), 3u);
  EXPECT_EQ(bytes_of(0x1b80), 4u);
  EXPECT_EQ(bytes_of(0x9b7f), 4u);
  EXPECT_EQ(bytes_of(0x9b80), 5u);
  EXPECT_EQ(bytes_of(kLast), 5u);
}

// As docs/indexing.md says.
TEST(WordEncodingTest, TheExamplesOfTheDocumentationHold) {
  EXPECT_EQ(StoredCharacters("привет"), "\xe6\xaf\xe6\xb0\xe6\xa8\xe6\xa2\xe6\xa5\xe6\xb2");
  EXPECT_EQ(StoredCharacters("北京"), "\xfe\xad\xbc\xb7\xfe\xac\xb9\xac");
}

// Of two words, one begins with the other exactly where its bytes do: no character is stored as the
// beginning of another one.
TEST(WordEncodingTest, NoCharacterIsTheBeginningOfAnother) {
  std::set<std::string> stored;
  for (char32_t code = 0x80; code <= 0xffff; ++code) {
    std::string word;
    AppendStored(code, &word);
    stored.insert(word);
  }
  const std::string* before = nullptr;
  for (const std::string& word : stored) {
    if (before != nullptr) {
      ASSERT_NE(word.compare(0, before->size(), *before), 0);
    }
    before = &word;
  }
}

TEST(WordEncodingTest, WhatIsNotStoredStaysAsItIs) {
  EXPECT_EQ(DecodedWords("zürich Ünal 北京 \U0001f600"), "zürich Ünal 北京 \U0001f600");
  EXPECT_EQ(DecodedWords("\xe0"), "\xe0");  // cut short
  EXPECT_EQ(DecodedWords("\xe0 \xa0"), "\xe0 \xa0");
  EXPECT_EQ(DecodedWords("\xa0\xe0"), "\xa0\xe0");
  EXPECT_EQ(DecodedWords("\xff\xbf\xbf\xbf\xbf"), "\U00109b7f");
  EXPECT_EQ(DecodedWords("\xe0\xa0x"), "\u0370x");
}

TEST(WordEncodingTest, NoSurrogateIsDecoded) {
  std::string word;
  AppendStored(0xd800, &word);
  EXPECT_EQ(DecodedWords(word), word);
}

TEST(WordEncodingTest, CharactersAreCounted) {
  EXPECT_EQ(CountCharacters("word"), 4u);
  EXPECT_EQ(CountCharacters(StoredCharacters("привет")), 6u);
  EXPECT_EQ(CountCharacters(StoredCharacters("北京x")), 3u);
  EXPECT_EQ(CountCharacters("\x80\x81"), 2u);
  EXPECT_EQ(CharactersOf(StoredCharacters("й1")), U"й1");
}

}  // namespace
}  // namespace kestan::search
