// SPDX-License-Identifier: GPL-3.0-or-later
// The table of a document's words against a plain map.
#include <kestan/indexing/tokenizer.h>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "tests/support/colliding_words.h"

namespace {

using WordMap = std::map<std::string, std::vector<kestan::Position>>;

WordMap PlainWords(const std::string& text) {
  WordMap words;
  std::istringstream stream(text);
  unsigned count = 0;
  for (std::string word; stream >> word; ++count) {
    const auto position = static_cast<kestan::Position>(count % 65535 + 1);
    std::string folded = word;
    for (char& byte : folded) byte = static_cast<char>(byte | 0x20);
    words[word].push_back(position);
    if (folded != word) words[folded].push_back(position);
  }
  return words;
}

WordMap Words(const std::string& text) {
  const kestan::Tokenizer table(text);
  WordMap words;
  for (const auto& word : table.words()) {
    const std::string bytes(word.bytes);
    EXPECT_EQ(words.count(bytes), 0u) << bytes;
    words[bytes].assign(word.positions.begin(), word.positions.end());
  }
  return words;
}

RC_GTEST_PROP(TokenizerTest, AreThoseOfAPlainMap, ()) {
  const auto text = *rc::gen::container<std::string>(
      rc::gen::element('a', 'b', 'A', 'B', '@', '\x80', ' ', ' ', '\n', '\t', '\v', '\f', '\r'));
  RC_ASSERT(Words(text) == PlainWords(text));
}

TEST(TokenizerTest, OfALongTextAreThoseOfAPlainMap) {
  std::string text;
  for (unsigned i = 0; i < 200000; ++i) {
    text += (i % 3 == 0 ? "Word" : "word") + std::to_string(i * 7919 % 5003) + " ";
  }
  EXPECT_EQ(Words(text), PlainWords(text));
}

TEST(TokenizerTest, OfOneHashAreDistinguished) {
  const auto [one, two] = kestan_tests::PairOfOneHash(kestan::Hasher(), "");
  const std::string text = one + " " + two + " " + one;
  EXPECT_EQ(Words(text), PlainWords(text));
}

TEST(TokenizerTest, OfAnEmptyTextAreNone) {
  EXPECT_TRUE(Words("").empty());
  EXPECT_TRUE(Words(" \n\t").empty());
}

TEST(TokenizerTest, ComeInTheOrderInWhichTheyStandFirst) {
  const kestan::Tokenizer table("Cat dog cat Dog");
  std::vector<std::string> words;
  for (const auto& word : table.words()) words.emplace_back(word.bytes);
  EXPECT_EQ(words, (std::vector<std::string>{"Cat", "cat", "dog", "Dog"}));
  EXPECT_EQ(table.words().size(), 4u);
}

TEST(TokenizerTest, WordsOfTheTextAreCountedWithoutFoldedForms) {
  EXPECT_EQ(kestan::Tokenizer("Cat dog cat Dog").CountWords(), 4u);
  EXPECT_EQ(kestan::Tokenizer("").CountWords(), 0u);
  std::string text;
  for (int i = 0; i < 70'000; ++i) text += "word ";
  EXPECT_EQ(kestan::Tokenizer(text).CountWords(), 70'000u);
}

TEST(TokenizerTest, HaveTheHashOfTheProcess) {
  const kestan::Tokenizer table("Cat");
  const kestan::Hasher hasher;
  for (const auto& word : table.words()) EXPECT_EQ(word.hash, hasher(word.bytes));
}

// Texts of class Kestan end there.
TEST(TokenizerTest, TakeANulForAByteOfAWord) {
  using namespace std::string_literals;
  EXPECT_EQ(Words("a\0b c"s), PlainWords("a\0b c"s));
}

}  // namespace
