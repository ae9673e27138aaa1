// SPDX-License-Identifier: GPL-3.0-or-later
// Results as values, beside the text of QueryResults.
#include <kestan/results.h>

#include <algorithm>
#include <string>

#include "tests/query/query_test.h"

namespace kestan_tests {
namespace {

class ResultsTest : public QueryTest {
 protected:
  // The lines that QueryResults makes, from the values alone.
  std::string Listed(int id) {
    kestan::IndexReader& reader = kestan::ReaderOf(engine_);
    unsigned best = 0;
    for (const kestan::Match match : kestan::MatchesOf(id)) {
      if (!reader.IsRemoved(match.code)) best = std::max<unsigned>(best, match.score);
    }
    const unsigned factor = best != 0 ? 6553600 / best : 65536;
    std::string lines;
    for (const kestan::Match match : kestan::MatchesOf(id)) {
      if (reader.IsRemoved(match.code) || reader.NameOf(match.code).data() == nullptr) continue;
      lines += std::to_string((factor * match.score + 32768) / 65536) + " ";
      lines += std::string(reader.NameOf(match.code)) + "\n";
    }
    return lines;
  }
};

TEST_F(ResultsTest, AddingADocumentCountsNewWords) {
  EXPECT_EQ(kestan::AddWords(engine_, "one", "cat dog cat"), 2u);
  EXPECT_EQ(kestan::AddWords(engine_, "two", "cat Bird"), 2u);  // and in lower case
  EXPECT_STREQ(engine_.WordBuf, "Bird\nbird\n");
  EXPECT_EQ(kestan::AddWords(engine_, "three", "dog"), 0u);
  EXPECT_NE(engine_.DocumentTimestamp("three"), 0u);
}

TEST_F(ResultsTest, DocumentThatIsNotAddedHasNoCount) {
  PlantAndReopen({{"g-code", Units({65535})}});
  EXPECT_EQ(
      StandardErrorOf([&] { EXPECT_EQ(kestan::AddWords(engine_, "one", "cat"), std::nullopt); }),
      "Kestan: Too many documents (max=65535) -- try shrinking database\n");
}

TEST_F(ResultsTest, MatchesComeByCodeWithScoreAndPositions) {
  engine_.AddDocumentWords("one", "cat dog cat");
  engine_.AddDocumentWords("two", "dog cat");
  const kestan::Matches matches = kestan::MatchesOf(Word("cat"));
  ASSERT_EQ(matches.size(), 2u);
  EXPECT_EQ(matches[0].code, 1);
  EXPECT_EQ(matches[0].score, 2);
  EXPECT_EQ(Numbers(matches[0].positions.begin(), matches[0].positions.end()), Numbers({1, 3}));
  EXPECT_EQ(matches[1].code, 2);
  EXPECT_EQ(Numbers(matches[1].positions.begin(), matches[1].positions.end()), Numbers({2}));
}

TEST_F(ResultsTest, UnknownIdHasNoMatches) {
  EXPECT_TRUE(kestan::MatchesOf(-1).empty());
  EXPECT_TRUE(kestan::MatchesOf(4711).empty());
}

TEST_F(ResultsTest, ViewStaysWhileOtherSetsComeAndGo) {
  engine_.AddDocumentWords("one", "cat dog");
  const kestan::Matches matches = kestan::MatchesOf(Word("cat"));
  for (int i = 0; i < 1000; ++i) engine_.FreeQueryResult(engine_.QueryWord("dog"));
  EXPECT_EQ(matches[0].code, 1);
}

TEST_F(ResultsTest, MatchWhosePositionsAreNotKnownHasNone) {
  DropPositions();
  engine_.AddDocumentWords("one", "cat");
  const kestan::Match match = kestan::MatchesOf(Word("cat"))[0];
  EXPECT_EQ(match.positions.count, 0u);
  EXPECT_EQ(match.score, 1);
}

TEST_F(ResultsTest, ValuesMakeTheLinesOfTheText) {
  for (int i = 0; i < 40; ++i) {
    std::string text = "all";
    for (int word = 0; word < i; ++word) text += word % 3 == 0 ? " cat" : " dog";
    engine_.AddDocumentWords(("document " + std::to_string(i)).c_str(), text.c_str());
  }
  engine_.RemoveDocumentWords("document 39");
  engine_.RemoveDocumentWords("document 7");
  const int cat = Word("cat");
  const int dog = Word("dog");
  for (const int id : {cat, dog, And(cat, dog, 0), And(cat, dog, 1), Or(cat, dog), Not(dog)}) {
    EXPECT_EQ(Listed(id), engine_.QueryResults(id));
    EXPECT_NE(Listed(id), "");
  }
}

}  // namespace
}  // namespace kestan_tests
