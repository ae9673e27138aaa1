#include "search/vocabulary/vocabulary.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace kestan::search {
namespace {

std::string Joined(const std::vector<FuzzyMatch>& found) {
  std::string text;
  for (const FuzzyMatch& match : found) text += match.word + " ";
  return text;
}

const Vocabulary kWords({"layer", "layers", "lay", "Lay", "bayer", "player", "x", "Bayer"});

TEST(VocabularyTest, PrefixInLowerCaseFindsWordsInLowerCase) {
  EXPECT_EQ(Joined(kWords.WithPrefix("lay")), "lay layer layers ");
  EXPECT_EQ(Joined(kWords.WithPrefix("layers")), "layers ");
  EXPECT_EQ(Joined(kWords.WithPrefix("layersx")), "");
}

TEST(VocabularyTest, PrefixWithACapitalIsExact) {
  EXPECT_EQ(Joined(kWords.WithPrefix("Lay")), "Lay ");
  EXPECT_EQ(Joined(kWords.WithPrefix("LAY")), "");
}

TEST(VocabularyTest, FuzzyMatchesAreWithinTheEdits) {
  EXPECT_EQ(Joined(kWords.WithinEdits("layer", 1)), "bayer layer layers player ");
  EXPECT_EQ(Joined(kWords.WithinEdits("layer", 2)), "bayer lay layer layers player ");
  EXPECT_EQ(Joined(kWords.WithinEdits("Layer", 1)), "Bayer bayer layer ");
}

TEST(VocabularyTest, NoWordsFindNothing) {
  EXPECT_EQ(Joined(Vocabulary({}).WithPrefix("a")), "");
  EXPECT_EQ(Joined(Vocabulary({}).WithinEdits("a", 2)), "");
}

}  // namespace
}  // namespace kestan::search
