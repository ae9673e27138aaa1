// SPDX-License-Identifier: GPL-3.0-or-later
// What is wrong with word lists, and how they are repaired.
#include <kestan/maintenance/salvage/word_list_salvage.h>

#include <gtest/gtest.h>

#include <initializer_list>
#include <string>

namespace kestan_maintenance {
namespace {

using namespace std::string_literals;

struct Word {
  int shared;  // how many bytes of the word before it claims
  std::string rest;
};

std::string List(std::initializer_list<Word> words) {
  std::string list;
  for (const Word& word : words) list += static_cast<char>(0x80 + word.shared) + word.rest;
  return list;
}

kestan::WordListFaults FaultsOf(std::string_view list) {
  return kestan::ReadWordList(list, nullptr);
}

// Returns the repaired list, in which another reading must find no fault.
std::string Repaired(std::string_view list) {
  kestan::String repaired = "left from before";
  kestan::ReadWordList(list, &repaired);
  EXPECT_FALSE(FaultsOf(repaired).IsAny());
  return std::string(repaired);
}

TEST(ReadWordListTest, AListWithoutFaultsStaysAsItIs) {
  for (const std::string& list :
       {List({}), List({{0, ""}}), List({{0, "cat"}, {2, "r"}, {3, "s"}})}) {
    EXPECT_FALSE(FaultsOf(list).IsAny()) << list;
    EXPECT_EQ(Repaired(list), list);
  }
}

TEST(ReadWordListTest, AListThatDoesNotBeginWithAWordGetsOne) {
  EXPECT_TRUE(FaultsOf("cat").lacks_first_word);
  EXPECT_EQ(Repaired("cat"), List({{0, "cat"}}));
  EXPECT_TRUE(FaultsOf("\xc3\xa9").lacks_first_word);
  EXPECT_EQ(Repaired("\xc3\xa9"), List({{0, "\xc3\xa9"}}));
}

TEST(ReadWordListTest, AWordThatClaimsTooMuchSharesAllOfTheWordBefore) {
  const std::string one = List({{0, "cat"}, {4, "s"}});
  EXPECT_EQ(FaultsOf(one).shared_too_much, 1U);
  EXPECT_EQ(Repaired(one), List({{0, "cat"}, {3, "s"}}));
  const std::string every = List({{1, "cat"}, {5, "s"}, {5, "y"}});
  EXPECT_EQ(FaultsOf(every).shared_too_much, 3U);
  EXPECT_EQ(Repaired(every), List({{0, "cat"}, {3, "s"}, {4, "y"}}));
}

TEST(ReadWordListTest, BytesOfCharactersAboveAsciiAreNotClaims) {
  const std::string list =
      List({{0, "caf\xc3\xa9"}, {5, "s"}, {0, "\xe2\x82\xac"}, {0, "\xf0\x9f\x90\x88"}});
  EXPECT_FALSE(FaultsOf(list).IsAny());
  EXPECT_TRUE(FaultsOf(list).has_high_bytes);
  EXPECT_EQ(Repaired(list), list);
}

TEST(ReadWordListTest, ABytePastTheEndOfACharacterIsAClaim) {
  EXPECT_EQ(FaultsOf("\x80\xc3\xa9\xa9").shared_too_much, 1U);
  EXPECT_EQ(FaultsOf("\x80\xe2\x82\xac\xac").shared_too_much, 1U);
  EXPECT_EQ(FaultsOf("\x80\xf0\x9f\x90\x88\x88").shared_too_much, 1U);
}

TEST(ReadWordListTest, ALongWordMayBeSharedByMoreThan64Bytes) {
  const std::string list = List({{0, std::string(70, 'a')}, {70, "b"}});
  EXPECT_FALSE(FaultsOf(list).IsAny());
  EXPECT_FALSE(FaultsOf(list).has_high_bytes);
}

TEST(ReadWordListTest, NulsAreLeftOut) {
  EXPECT_EQ(Repaired(List({{0, "c\0a\0t"s}})), List({{0, "cat"}}));
  EXPECT_EQ(Repaired(List({{0, "c\0t"s}, {3, "s"}})), List({{0, "ct"}, {2, "s"}}));
}

}  // namespace
}  // namespace kestan_maintenance
