// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/snippet/term_matches.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

namespace kestan::search {
namespace {

// The matches in `text`, each as text=term.
std::string Found(const std::string& text, const Terms& terms) {
  std::string found;
  for (const TermMatch& match : FindTerms(text, terms)) {
    found +=
        text.substr(match.start, match.end - match.start) + "=" + std::string(match.term) + " ";
  }
  return found;
}

TEST(TermMatchesTest, WordsAreComparedAsTheyStandThenInLowerCase) {
  EXPECT_EQ(Found("Cat CAT cat dog", {"cat", "Cat"}), "Cat=Cat CAT=cat cat=cat ");
  EXPECT_EQ(Found("concatenate", {"cat"}), "");
}

TEST(TermMatchesTest, WordsAreWrittenAsTheyAreIndexed) {
  EXPECT_EQ(Found("isn't Z\u00fcrich", {"isnt", "zurich"}), "isn't=isnt Z\u00fcrich=zurich ");
}

TEST(TermMatchesTest, ApostropheAtTheEndIsNoPartOfAWord) {
  EXPECT_EQ(Found("'cat' cats'", {"cat", "cats"}), "cat=cat cats=cats ");
}

TEST(TermMatchesTest, OneWordOfATextMayBeSeveralIndexedOnes) {
  EXPECT_EQ(Found("\u5317\u4eac", {"jing"}), "\u5317\u4eac=jing ");
}

TEST(TermMatchesTest, LongWordsMatchByTheirFirst64Letters) {
  const std::string indexed(64, 'x');
  EXPECT_EQ(Found(indexed + "y", {indexed}), indexed + "y=" + indexed + " ");
  EXPECT_EQ(Found(std::string(63, 'x') + "y", {indexed}), "");
}

}  // namespace
}  // namespace kestan::search
