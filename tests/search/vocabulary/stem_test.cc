#include "search/vocabulary/stem.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace kestan::search {
namespace {

void ExpectOneStem(const std::vector<std::string>& words) {
  for (const std::string& word : words) EXPECT_EQ(Stem(word), Stem(words.front())) << word;
}

TEST(StemTest, InflectionsHaveTheStemOfTheirWord) {
  ExpectOneStem({"flow", "flows", "flowed", "flowing"});
  ExpectOneStem({"solve", "solves", "solved", "solving"});
  ExpectOneStem({"study", "studies", "studied", "studying"});
  ExpectOneStem({"fly", "flies"});
  ExpectOneStem({"plan", "plans", "planned", "planning"});
  ExpectOneStem({"need", "needs", "needed", "needing"});
}

TEST(StemTest, DerivedWordsHaveTheStemOfWhatTheyComeFrom) {
  ExpectOneStem({"compute", "computer", "computers", "computation", "computational"});
  ExpectOneStem({"retrieve", "retrieval"});
  ExpectOneStem({"approximate", "approximately", "approximation", "approximations"});
  ExpectOneStem({"relevant", "relevance"});
  ExpectOneStem({"depend", "dependent", "dependence", "dependable"});
  ExpectOneStem({"index", "indexer", "indexing"});
}

TEST(StemTest, DoubledLettersOfTheWordItselfStay) {
  ExpectOneStem({"fall", "falling", "falls"});
  ExpectOneStem({"pass", "passed", "passing"});
  EXPECT_NE(Stem("pass"), Stem("pas"));
}

TEST(StemTest, SomeSBelongsToTheWord) {
  for (const char* word : {"glass", "focus", "analysis"}) EXPECT_EQ(Stem(word), word);
}

TEST(StemTest, ShortWordsAreTheirOwnStems) {
  for (const char* word : {"", "a", "is", "gas", "die"}) EXPECT_EQ(Stem(word), word);
  EXPECT_EQ(Stem("fans"), "fan");
}

TEST(StemTest, EndingsThatWouldLeaveLittleStay) {
  EXPECT_EQ(Stem("thing"), "thing");
  EXPECT_EQ(Stem("water"), "water");
  EXPECT_EQ(Stem("moment"), "moment");
  EXPECT_EQ(Stem("string"), "string");
}

RC_GTEST_PROP(StemTest, EachWordBeginsWithThePrefixOfItsStem, ()) {
  const auto letter = rc::gen::elementOf(std::string("aeiysdngtlmrc"));
  const auto word = *rc::gen::container<std::string>(letter);
  const std::string stem = Stem(word);
  const std::string prefix(StemPrefix(stem));
  RC_ASSERT(word.rfind(prefix, 0) == 0);
  RC_ASSERT(stem.size() >= std::min<std::size_t>(word.size(), 3));
}

}  // namespace
}  // namespace kestan::search
