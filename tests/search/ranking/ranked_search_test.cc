// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/ranking/ranked_search.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "search/query/query_parser.h"
#include "tests/search/matching/plain_segments.h"

namespace kestan::search {
namespace {

using kestan_tests::DocumentOfWords;
using kestan_tests::Plain;
using kestan_tests::PlainSegments;

Query Parsed(const std::string& text) {
  return *ParseQuery(text, DefaultOperator::kAnd, QuotesMean::kPhrase);
}

RankedDocuments Ranked(const std::string& text, const Snapshot& snapshot,
                       const SearchOptions& options = {}) {
  auto ranked = RankedSearch(Parsed(text), snapshot, options);
  EXPECT_TRUE(ranked.ok());
  return *ranked;
}

// The names of the hits, the best first.
std::string Names(const std::string& text, const PlainSegments& segments,
                  const SearchOptions& options = {}) {
  std::string names;
  for (const RankedDocument& document : Ranked(text, segments.snapshot(), options).best) {
    names += segments.snapshot().segments[document.id.segment]->NameOf(document.id.code);
  }
  return names;
}

TEST(RankedSearchTest, MoreOccurrencesAndShorterDocumentsComeFirst) {
  PlainSegments segments;
  segments.Add({Plain("a", "x y y y"), Plain("b", "x x y y"), Plain("c", "x")});
  EXPECT_EQ(Names("x", segments), "cba");
}

TEST(RankedSearchTest, RareWordsCountMore) {
  PlainSegments segments;
  segments.Add({Plain("a", "common other"), Plain("b", "common rare"), Plain("c", "common other")});
  EXPECT_EQ(Names("other OR rare", segments), "bac");
}

// Two words of four documents make up for one of a single document, but not in a long query.
TEST(RankedSearchTest, RareWordsCountStillMoreInLongQuestions) {
  PlainSegments segments;
  std::vector<DocumentOfWords> documents = {Plain("r", "rare z"), Plain("c", "p q")};
  for (int i = 0; i < 18; ++i) {
    documents.push_back(Plain("~" + std::to_string(i), i < 3 ? "p z" : i < 6 ? "q z" : "z z"));
  }
  segments.Add(documents);
  SearchOptions options;
  options.proximity_bonus = 0;
  options.opening_bonus = 0;
  options.limit = 1;
  std::string query = "rare OR p OR q";
  EXPECT_EQ(Names(query, segments, options), "c");
  for (char first = 'a'; first <= 'z'; ++first) {
    for (const char* const rest : {"xx", "yy", "zz"}) query += std::string(" OR ") + first + rest;
  }
  EXPECT_EQ(Names(query, segments, options), "r");
}

TEST(RankedSearchTest, EqualScoresAreInOrderOfNamesWhateverTheirSegments) {
  PlainSegments segments;
  segments.Add({Plain("d", "x"), Plain("b", "x")});
  auto renamed = Plain("z", "x");
  renamed.new_name = "a";
  segments.Add({Plain("c", "x"), renamed});
  EXPECT_EQ(Names("x", segments), "abcd");
  SearchOptions options;
  options.limit = 2;
  EXPECT_EQ(Names("x", segments, options), "ab");
}

TEST(RankedSearchTest, LimitCutsHitsAndNotTheTotal) {
  PlainSegments segments;
  segments.Add({Plain("a", "x"), Plain("b", "x x"), Plain("c", "y")});
  SearchOptions options;
  options.limit = 1;
  const RankedDocuments ranked = Ranked("x", segments.snapshot(), options);
  EXPECT_EQ(ranked.total, 2u);
  EXPECT_EQ(ranked.best.size(), 1u);
}

TEST(RankedSearchTest, NearWordsComeFirst) {
  PlainSegments segments;
  segments.Add({Plain("a", "x z z y"), Plain("b", "z y x z"), Plain("c", "y z x z")});
  EXPECT_EQ(Names("x y", segments), "bca");
  SearchOptions options;
  options.proximity_bonus = 0;
  EXPECT_EQ(Names("x y", segments, options), "abc");
}

TEST(RankedSearchTest, BonusIsThatOfTheNearestPair) {
  PlainSegments segments;
  segments.Add({Plain("a", "x z y"), Plain("b", "z z z")});
  SearchOptions without;
  without.proximity_bonus = 0;
  SearchOptions with;
  with.proximity_bonus = 2;
  const double bonus = Ranked("x y", segments.snapshot(), with).best[0].score -
                       Ranked("x y", segments.snapshot(), without).best[0].score;
  EXPECT_NEAR(bonus, 2 * std::log(1 + 1.5 / 1.5) / 4, 1e-12);
}

TEST(RankedSearchTest, BonusMayLiftADocumentIntoTheBest) {
  PlainSegments segments;
  segments.Add({Plain("a", "x x x z z y"), Plain("b", "z z z z x y"), Plain("c", "z")});
  SearchOptions options;
  options.limit = 1;
  options.proximity_bonus = 0;
  EXPECT_EQ(Names("x y", segments, options), "a");
  options.proximity_bonus = 10;
  EXPECT_EQ(Names("x y", segments, options), "b");
}

TEST(RankedSearchTest, WordsThatOpenADocumentCountMore) {
  const auto at = [](const std::string& name, int place) {
    std::string text;
    for (int i = 1; i <= 20; ++i) text += i == place ? "x " : i == 20 ? "y " : "z ";
    return Plain(name, text);
  };
  PlainSegments segments;
  segments.Add({at("a", 16), at("b", 1), at("c", 15), Plain("d", "z")});
  SearchOptions options;
  options.proximity_bonus = 0;
  const auto best = Ranked("x OR y", segments.snapshot(), options).best;
  EXPECT_EQ(Names("x OR y", segments, options), "bca");
  EXPECT_EQ(best[0].score, best[1].score);
  const double idf = std::log(1 + (4 - 3 + 0.5) / (3 + 0.5));
  EXPECT_NEAR(best[1].score - best[2].score, options.opening_bonus * idf, 1e-12);
  options.opening_bonus = 0;
  EXPECT_EQ(Names("x OR y", segments, options), "abc");
}

TEST(RankedSearchTest, AWordByItselfCountsMoreWhereItOpensADocumentUnlessAllWordsAreAskedFor) {
  std::string late;
  for (int i = 0; i < 15; ++i) late += "z ";
  PlainSegments segments;
  segments.Add({Plain("a", late + "x"), Plain("b", "x " + late), Plain("c", "z")});
  SearchOptions options;
  EXPECT_EQ(Names("x", segments, options), "ba");
  options.words = WordsMean::kAll;
  EXPECT_EQ(Names("x", segments, options), "ab");
}

TEST(RankedSearchTest, AWordByItselfCountsMostWhereItIsTheFirst) {
  PlainSegments segments;
  segments.Add({Plain("a", "z z x"), Plain("b", "z x z"), Plain("c", "x z z"), Plain("d", "z")});
  EXPECT_EQ(Names("x", segments, {}), "cba");
}

// All bonuses of these are the greatest there are, so that only names tell them apart.
TEST(RankedSearchTest, BonusesOfEqualDocumentsLoseNoneOfThemToRounding) {
  const std::string words = "t u v w x";
  for (std::size_t others = 0; others < 60; ++others) {
    std::vector<DocumentOfWords> documents;
    for (char name = 'z'; name >= 'a'; --name) documents.push_back(Plain({name}, words));
    for (std::size_t i = 0; i < others; ++i) {
      documents.push_back(Plain("~" + std::to_string(i), words.substr(i % 5 * 2, 1) + " other"));
    }
    PlainSegments segments;
    segments.Add(documents);
    SearchOptions options;
    options.limit = 3;
    EXPECT_EQ(Names(words, segments, options), "abc") << others;
  }
}

// Each way to score does the same: all documents at once, or those alone that may be the best.
TEST(RankedSearchTest, TheBestAreTheFirstOfAll) {
  std::mt19937 random(5);
  for (std::size_t i = 0; i < 30; ++i) {
    std::vector<DocumentOfWords> documents;
    for (int j = 0; j < 200; ++j) {
      std::string text;
      const std::size_t words = 1 + random() % 40;
      for (std::size_t k = 0; k < words; ++k)
        text += {"abcdefgz"[random() % (2 + random() % 7)], ' '};
      documents.push_back(
          Plain("d" + std::to_string(random() % 1000) + "." + std::to_string(j), text));
    }
    PlainSegments segments;
    segments.Add(documents);
    for (const std::string query :
         {"a b", "c OR d OR z", "a OR b OR c OR d", "e f g", "a OR g", "\"a b\" OR c"}) {
      SearchOptions options;
      options.limit = 0;
      const auto all = Ranked(query, segments.snapshot(), options).best;
      options.limit = static_cast<std::size_t>(1 + i % 12);
      const auto best = Ranked(query, segments.snapshot(), options).best;
      ASSERT_EQ(best.size(), std::min(all.size(), options.limit));
      for (std::size_t j = 0; j < best.size(); ++j) {
        EXPECT_EQ(best[j].id.code, all[j].id.code) << query;
        EXPECT_EQ(best[j].score, all[j].score) << query;
      }
    }
  }
}

TEST(RankedSearchTest, MatchedTermsAreSortedAndThoseOutsideNot) {
  PlainSegments segments;
  auto removed = Plain("c", "cab x");
  removed.is_removed = true;
  segments.Add({Plain("a", "cat car x"), removed});
  segments.Add({Plain("b", "cart x y")});
  const RankedDocuments ranked = Ranked("x ca* -y zebra~1", segments.snapshot());
  EXPECT_EQ(ranked.terms, (std::vector<std::string>{"car", "cart", "cat", "x"}));
}

TEST(RankedSearchTest, NotAloneFindsTheRestWithoutScores) {
  PlainSegments segments;
  segments.Add({Plain("b", "x"), Plain("a", "x"), Plain("c", "y")});
  EXPECT_EQ(Names("-y", segments), "ab");
  EXPECT_EQ(Ranked("-y", segments.snapshot()).best[0].score, 0);
}

TEST(RankedSearchTest, OptionsOutOfRangeStillGiveScores) {
  PlainSegments segments;
  segments.Add({Plain("a", "x y"), Plain("b", "x x y y y"), Plain("c", "z")});
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const double infinite = std::numeric_limits<double>::infinity();
  for (const double value : {nan, infinite, -infinite, -1.0, 1e300}) {
    const SearchOptions options{10, WordsMean::kBest, value, value, value};
    for (const RankedDocument& document : Ranked("x y", segments.snapshot(), options).best) {
      EXPECT_TRUE(std::isfinite(document.score)) << value;
      EXPECT_GE(document.score, 0) << value;
    }
  }
}

TEST(RankedSearchTest, EmptySnapshotHasNoHits) {
  EXPECT_EQ(Ranked("x -y", Snapshot()).total, 0u);
  EXPECT_EQ(*CountMatches(Parsed("x"), Snapshot()), 0u);
}

TEST(RankedSearchTest, DamageIsAnError) {
  PlainSegments segments;
  segments.Add({Plain("a", "cat")});
  segments.AddRecords(2, {{"cat", 2, std::string("\x01\x00\x01\x00", 4)}});
  const auto ranked = RankedSearch(Parsed("cat"), segments.snapshot(), {});
  EXPECT_EQ(ranked.status().code(), StatusCode::kDamaged);
  const auto count = CountMatches(Parsed("cat OR dog"), segments.snapshot());
  EXPECT_EQ(count.status().code(), StatusCode::kDamaged);
}

// Documents enough for threads, which many pairs of words stand in.
std::vector<DocumentOfWords> ManyDocuments() {
  std::vector<DocumentOfWords> documents;
  for (std::size_t i = 0; i < 120'000; ++i) {
    std::string text = i % 2 == 0 ? "x y" : "y z x";
    for (std::size_t k = 0; k < i % 7; ++k) text += " x";
    documents.push_back(Plain(std::to_string(i * 7919 % 120'000), text));
  }
  return documents;
}

void AddInPartsOf(std::size_t size, const std::vector<DocumentOfWords>& documents,
                  PlainSegments* segments) {
  for (std::size_t i = 0; i < documents.size(); i += size) {
    const auto begin = documents.begin() + static_cast<std::ptrdiff_t>(i);
    const auto end = begin + static_cast<std::ptrdiff_t>(std::min(size, documents.size() - i));
    segments->Add({begin, end});
  }
}

// Without a limit, nearness is found for all documents at once, else for each of the best.
TEST(RankedSearchTest, LimitChangesNoScore) {
  PlainSegments segments;
  AddInPartsOf(30'000, ManyDocuments(), &segments);
  for (const std::string text : {"x y", "x OR z", "z OR y OR missing", "x z -zebra"}) {
    SearchOptions options;
    options.limit = 0;
    const RankedDocuments all = Ranked(text, segments.snapshot(), options);
    options.limit = 10'000;
    const RankedDocuments best = Ranked(text, segments.snapshot(), options);
    ASSERT_EQ(best.best.size(), options.limit);
    for (std::size_t i = 0; i < options.limit; ++i) {
      ASSERT_EQ(best.best[i].score, all.best[i].score) << text << i;
      ASSERT_EQ(best.best[i].id.code, all.best[i].id.code) << text << i;
    }
  }
}

TEST(RankedSearchTest, ThreadsChangeNoAnswer) {
  const std::vector<DocumentOfWords> documents = ManyDocuments();
  PlainSegments two;
  PlainSegments six;
  AddInPartsOf(60'000, documents, &two);
  AddInPartsOf(20'000, documents, &six);
  for (const std::string text : {"x", "x y", "\"y x\" OR z", "-z"}) {
    SearchOptions options;
    options.limit = 300;
    const RankedDocuments expected = Ranked(text, two.snapshot(), options);
    const RankedDocuments found = Ranked(text, six.snapshot(), options);
    EXPECT_EQ(found.total, expected.total);
    EXPECT_EQ(Names(text, six, options), Names(text, two, options));
    for (std::size_t i = 0; i < 300; ++i) {
      ASSERT_EQ(found.best[i].score, expected.best[i].score) << text << i;
    }
    EXPECT_EQ(*CountMatches(Parsed(text), six.snapshot()), expected.total);
  }
}

}  // namespace
}  // namespace kestan::search
