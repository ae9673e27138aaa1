#include "search/vocabulary/vocabulary.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <map>
#include <string>
#include <vector>

namespace kestan::search {
namespace {

std::string Joined(const std::vector<Similar>& found) {
  std::string text;
  for (const Similar& similar : found) text += similar.word + " ";
  return text;
}

const Vocabulary kWords("layer\nlayers\nlay\nLay\nbayer\nplayer\nx\nBayer\n");

std::size_t Twice(const std::string&) { return 2; }

TEST(EditsBetweenTest, CountsEachKindOfEdit) {
  EXPECT_EQ(EditsBetween("layer", "layer", 2), 0);
  EXPECT_EQ(EditsBetween("layer", "player", 2), 1);
  EXPECT_EQ(EditsBetween("layer", "laye", 2), 1);
  EXPECT_EQ(EditsBetween("layer", "later", 2), 1);
  EXPECT_EQ(EditsBetween("layer", "alyer", 2), 1);
  EXPECT_EQ(EditsBetween("layer", "lyare", 2), 2);
  EXPECT_EQ(EditsBetween("", "ab", 2), 2);
}

TEST(EditsBetweenTest, StopsBeyondTheLimit) {
  EXPECT_EQ(EditsBetween("layer", "wings", 2), 3);
  EXPECT_EQ(EditsBetween("layer", "la", 2), 3);
  EXPECT_EQ(EditsBetween("layer", "la", 3), 3);
  EXPECT_EQ(EditsBetween("a", "b", 0), 1);
}

// The textbook's table, whole.
int SlowEdits(const std::string& left, const std::string& right) {
  std::vector<std::vector<int>> table(left.size() + 1, std::vector<int>(right.size() + 1));
  for (std::size_t i = 0; i <= left.size(); ++i) {
    for (std::size_t j = 0; j <= right.size(); ++j) {
      if (i == 0 || j == 0) {
        table[i][j] = static_cast<int>(i + j);
        continue;
      }
      const int replaced = table[i - 1][j - 1] + (left[i - 1] == right[j - 1] ? 0 : 1);
      table[i][j] = std::min({replaced, table[i - 1][j] + 1, table[i][j - 1] + 1});
      if (i > 1 && j > 1 && left[i - 1] == right[j - 2] && left[i - 2] == right[j - 1]) {
        table[i][j] = std::min(table[i][j], table[i - 2][j - 2] + 1);
      }
    }
  }
  return table[left.size()][right.size()];
}

RC_GTEST_PROP(EditsBetweenTest, AgreesWithTheWholeTable, ()) {
  const auto word = rc::gen::container<std::string>(rc::gen::element('a', 'b', 'c'));
  const std::string left = *word;
  const std::string right = *word;
  for (int limit = 0; limit < 4; ++limit) {
    RC_ASSERT(EditsBetween(left, right, limit) == std::min(SlowEdits(left, right), limit + 1));
  }
}

TEST(VocabularyTest, PrefixInSmallLettersFindsWordsInSmallLetters) {
  EXPECT_EQ(Joined(kWords.WithPrefix("lay")), "lay layer layers ");
  EXPECT_EQ(Joined(kWords.WithPrefix("layers")), "layers ");
  EXPECT_EQ(Joined(kWords.WithPrefix("layersx")), "");
}

TEST(VocabularyTest, PrefixWithACapitalIsExact) {
  EXPECT_EQ(Joined(kWords.WithPrefix("Lay")), "Lay ");
  EXPECT_EQ(Joined(kWords.WithPrefix("LAY")), "");
}

TEST(VocabularyTest, SimilarWordsAreWithinTheEdits) {
  EXPECT_EQ(Joined(kWords.WithinEdits("layer", 1)), "bayer layer layers player ");
  EXPECT_EQ(Joined(kWords.WithinEdits("layer", 2)), "bayer lay layer layers player ");
  EXPECT_EQ(Joined(kWords.WithinEdits("Layer", 1)), "Bayer bayer layer ");
}

TEST(VocabularyTest, NoWordsFindNothing) {
  EXPECT_EQ(Joined(Vocabulary("").WithPrefix("a")), "");
  EXPECT_EQ(Joined(Vocabulary("\n\n").WithinEdits("a", 2)), "");
}

TEST(VocabularyTest, LastLineMayLackItsEnd) {
  EXPECT_EQ(Joined(Vocabulary("ab\nac").WithPrefix("a")), "ab ac ");
}

TEST(KeepClosestTest, KeepsAllUpToTheLimit) {
  std::vector<Similar> found = kWords.WithPrefix("lay");
  KeepClosest(
      3,
      [](const std::string&) -> std::size_t {
        ADD_FAILURE();
        return 0;
      },
      &found);
  EXPECT_EQ(found.size(), 3u);
}

TEST(KeepClosestTest, FewerEditsGoBeforeMoreDocuments) {
  std::map<std::string, std::size_t> documents{{"near", 1}, {"often", 9}, {"seldom", 2}};
  std::vector<Similar> found{{"often", 2, 0}, {"seldom", 2, 0}, {"near", 1, 0}};
  KeepClosest(
      2, [&](const std::string& word) { return documents[word]; }, &found);
  EXPECT_EQ(Joined(found), "near often ");
}

TEST(SuggestionsTest, ClosestComeFirstThenTheMostFrequent) {
  const auto documents = [](const std::string& word) -> std::size_t {
    return word == "player" ? 5 : 1;
  };
  EXPECT_EQ(Suggestions(kWords, "layyer", documents),
            (std::vector<std::string>{"layer", "player", "bayer"}));
}

TEST(SuggestionsTest, CapitalsAreNoMistakes) {
  EXPECT_EQ(Suggestions(kWords, "LAYER", Twice).front(), "layer");
}

TEST(SuggestionsTest, ShortWordsMayHoldFewerMistakes) {
  const Vocabulary words("ab\nabc\nabcd\nabcde\n");
  EXPECT_EQ(Suggestions(words, "ax", Twice), std::vector<std::string>{});
  EXPECT_EQ(Suggestions(words, "abx", Twice), (std::vector<std::string>{"ab", "abc"}));
  EXPECT_EQ(Suggestions(words, "xyabc", Twice), std::vector<std::string>{"abc"});
}

TEST(SuggestionsTest, WordsWithoutDocumentsAreNotSuggested) {
  const auto none = [](const std::string&) -> std::size_t { return 0; };
  EXPECT_EQ(Suggestions(kWords, "layerz", none), std::vector<std::string>{});
}

TEST(SuggestionsTest, SingleLettersAreNotSuggested) {
  EXPECT_EQ(Suggestions(Vocabulary("a\nabc\n"), "abx", Twice), std::vector<std::string>{"abc"});
}

}  // namespace
}  // namespace kestan::search
