#include "search/vocabulary/fuzzy_match.h"

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

namespace kestan::search {
namespace {

std::string Joined(const std::vector<FuzzyMatch>& matches) {
  std::string text;
  for (const FuzzyMatch& match : matches) text += match.word + " ";
  return text;
}

TEST(FuzzyMatchTest, KeepsAllUpToTheLimit) {
  std::vector<FuzzyMatch> found{{"lay", 0, 0}, {"layer", 0, 0}, {"layers", 0, 0}};
  KeepClosest(
      3,
      [](const std::string&) -> std::size_t {
        ADD_FAILURE();
        return 0;
      },
      &found);
  EXPECT_EQ(found.size(), 3u);
}

TEST(FuzzyMatchTest, FewerEditsGoBeforeMoreDocuments) {
  std::map<std::string, std::size_t> documents{{"near", 1}, {"often", 9}, {"seldom", 2}};
  std::vector<FuzzyMatch> found{{"often", 2, 0}, {"seldom", 2, 0}, {"near", 1, 0}};
  KeepClosest(
      2, [&](const std::string& word) { return documents[word]; }, &found);
  EXPECT_EQ(Joined(found), "near often ");
}

TEST(FuzzyMatchTest, FewerEditsThenMoreDocumentsThenLesserBytesAreCloser) {
  EXPECT_TRUE(IsCloser({"b", 1, 1}, {"a", 2, 9}));
  EXPECT_TRUE(IsCloser({"b", 1, 2}, {"a", 1, 1}));
  EXPECT_TRUE(IsCloser({"a", 1, 1}, {"b", 1, 1}));
  EXPECT_FALSE(IsCloser({"a", 1, 1}, {"a", 1, 1}));
}

}  // namespace
}  // namespace kestan::search
