// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/matching/vocabulary.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/search/matching/plain_segments.h"

namespace kestan::search {
namespace {

using kestan_tests::Plain;
using kestan_tests::PlainSegments;
using Words = std::vector<std::string>;

class SnapshotVocabularyTest : public testing::Test {
 protected:
  SnapshotVocabularyTest() {
    auto removed = Plain("3", "cat ghost");
    removed.is_removed = true;
    segments_.Add({Plain("1", "cat car Dog"), Plain("2", "cat flow"), removed});
    segments_.Add({Plain("4", "cat cart flaw"), Plain("5", "flaw")});
  }

  std::uint64_t Documents(const std::string& term) {
    const auto documents = LivingDocumentsWith(segments_.snapshot(), term);
    EXPECT_TRUE(documents.ok());
    return *documents;
  }

  Words Terms(const std::string& prefix, std::size_t limit = 100) {
    Words terms;
    const Status status = ForEachTerm(segments_.snapshot(), prefix, [&](std::string_view term) {
      terms.emplace_back(term);
      return terms.size() < limit;
    });
    EXPECT_TRUE(status.ok());
    return terms;
  }

  Words Suggested(const std::string& word) {
    const auto suggestions = SuggestionsFor(segments_.snapshot(), word);
    EXPECT_TRUE(suggestions.ok());
    return *suggestions;
  }

  PlainSegments segments_;
};

TEST_F(SnapshotVocabularyTest, LivingDocumentsOfAllSegmentsCount) {
  EXPECT_EQ(Documents("cat"), 3u);
  EXPECT_EQ(Documents("ghost"), 0u);
  EXPECT_EQ(Documents("zebra"), 0u);
  EXPECT_EQ(Documents("Dog"), 1u);
  EXPECT_EQ(Documents("dog"), 1u);
}

TEST_F(SnapshotVocabularyTest, TermsOfAllSegmentsComeOnceAndInOrder) {
  EXPECT_EQ(Terms(""), (Words{"Dog", "car", "cart", "cat", "dog", "flaw", "flow", "ghost"}));
  EXPECT_EQ(Terms("ca"), (Words{"car", "cart", "cat"}));
  EXPECT_EQ(Terms("cat"), Words{"cat"});
  EXPECT_EQ(Terms("zebra"), Words{});
}

TEST_F(SnapshotVocabularyTest, TermsStopWhenTheVisitorHasEnough) {
  EXPECT_EQ(Terms("ca", 2), (Words{"car", "cart"}));
}

TEST_F(SnapshotVocabularyTest, ManyTermsAreReadInParts) {
  std::string text;
  Words expected;
  for (char a = 'a'; a <= 'z'; ++a) {
    for (char b = 'a'; b <= 'z'; ++b) {
      expected.push_back(std::string("x") + a + b);
      text += expected.back() + " ";
    }
  }
  segments_.Add({Plain("6", text)});
  segments_.Add({Plain("7", text)});
  EXPECT_EQ(Terms("x", 1000), expected);
}

TEST_F(SnapshotVocabularyTest, ClosestWordsAreSuggestedThoseOfManyDocumentsFirst) {
  EXPECT_EQ(Suggested("caz"), (Words{"cat", "car"}));
  EXPECT_EQ(Suggested("Flww"), (Words{"flaw", "flow"}));
  EXPECT_EQ(Suggested("carts"), (Words{"cart", "cat", "car"}));
}

TEST_F(SnapshotVocabularyTest, WordsOfRemovedDocumentsAreNotSuggested) {
  EXPECT_EQ(Suggested("ghosts"), Words{});
}

TEST_F(SnapshotVocabularyTest, ShortWordsHaveNoMistakes) { EXPECT_EQ(Suggested("ca"), Words{}); }

}  // namespace
}  // namespace kestan::search
