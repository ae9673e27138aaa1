#include "search/vocabulary/suggestions.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace kestan::search {
namespace {

const Vocabulary kWords({"layer", "layers", "lay", "Lay", "bayer", "player", "x", "Bayer"});

std::size_t Twice(const std::string&) { return 2; }

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
  const Vocabulary words({"ab", "abc", "abcd", "abcde"});
  EXPECT_EQ(Suggestions(words, "ax", Twice), std::vector<std::string>{});
  EXPECT_EQ(Suggestions(words, "abx", Twice), (std::vector<std::string>{"ab", "abc"}));
  EXPECT_EQ(Suggestions(words, "xyabc", Twice), std::vector<std::string>{"abc"});
}

TEST(SuggestionsTest, WordsWithoutDocumentsAreNotSuggested) {
  const auto none = [](const std::string&) -> std::size_t { return 0; };
  EXPECT_EQ(Suggestions(kWords, "layerz", none), std::vector<std::string>{});
}

TEST(SuggestionsTest, SingleLettersAreNotSuggested) {
  EXPECT_EQ(Suggestions(Vocabulary({"a", "abc"}), "abx", Twice), std::vector<std::string>{"abc"});
}

}  // namespace
}  // namespace kestan::search
