#include "search/ranking/listing/relevance.h"

#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "search/ranking/bm25.h"

namespace kestan::search {
namespace {

std::optional<std::uint64_t> Unknown(const std::string&) { return std::nullopt; }

using Documents = std::vector<TermFrequency>;

// The document whose name is the letter `name`. Codes come in order of names.
TermFrequency Document(char name, std::uint32_t tf = 1) { return {static_cast<Code>(name), tf}; }

std::vector<EngineHit> HitsNamed(const std::string& names) {
  std::vector<EngineHit> hits;
  for (const char name : names) hits.push_back({0, std::string(1, name), static_cast<Code>(name)});
  return hits;
}

RankedClause Clause(const Documents& documents, std::size_t times = 1) {
  return {[documents] { return documents; }, times};
}

// Ranks `names`, one letter each, and writes them with their percentages.
std::string Ranked(const std::string& names, const std::vector<Documents>& found,
                   std::uint64_t documents, const SizeOf& size_of = Unknown) {
  std::vector<EngineHit> hits = HitsNamed(names);
  std::vector<RankedClause> clauses;
  for (const Documents& each : found) clauses.push_back(Clause(each));
  SortByRelevance(clauses, documents, size_of, &hits);
  std::string text;
  for (const EngineHit& hit : hits) text += hit.name + std::to_string(hit.percent) + " ";
  return text;
}

std::string Percent(double share) { return std::to_string(std::lround(100 * share)); }

TEST(RelevanceTest, RareWordsCountMore) {
  const double often = Idf(2, 10);
  const double seldom = Idf(1, 10);
  EXPECT_EQ(Ranked("abc", {{Document('a'), Document('b')}, {Document('c')}}, 10),
            "c100 a" + Percent(often / seldom) + " b" + Percent(often / seldom) + " ");
}

TEST(RelevanceTest, ClausesAddUp) {
  EXPECT_EQ(Ranked("abc", {{Document('a'), Document('b')}, {Document('b'), Document('c')}}, 10),
            "b100 a50 c50 ");
}

TEST(RelevanceTest, RepetitionCountsLessAndLess) {
  const auto weight = [](double times) { return times * 2.8 / (times + 1.8); };
  EXPECT_EQ(
      Ranked("abc", {{Document('a', 1), Document('b', 2), Document('c', 4)}}, 10),
      "c100 b" + Percent(weight(2) / weight(4)) + " a" + Percent(weight(1) / weight(4)) + " ");
}

TEST(RelevanceTest, ShortDocumentsGoBeforeLongOnes) {
  const std::map<std::string, std::uint64_t> sizes{{"a", 300}, {"b", 100}};
  const auto size_of = [&](const std::string& name) { return std::optional(sizes.at(name)); };
  const auto weight = [](double size) { return 2.8 / (1 + 1.8 * (0.25 + 0.75 * size)); };
  EXPECT_EQ(Ranked("ab", {{Document('a'), Document('b')}}, 10, size_of),
            "b100 a" + Percent(weight(1.5) / weight(0.5)) + " ");
}

TEST(RelevanceTest, UnknownSizeIsTheMean) {
  const auto size_of = [](const std::string& name) -> std::optional<std::uint64_t> {
    if (name == "b") return std::nullopt;
    return name == "a" ? 100 : 300;
  };
  EXPECT_EQ(
      Ranked("abc", {{Document('a'), Document('b'), Document('c')}}, 10, size_of).substr(0, 6),
      "a100 b");
}

TEST(RelevanceTest, SizesOfZeroChangeNothing) {
  const auto size_of = [](const std::string&) { return std::optional<std::uint64_t>(0); };
  EXPECT_EQ(Ranked("ab", {{Document('a'), Document('b')}}, 10, size_of), "a100 b100 ");
}

TEST(RelevanceTest, OnlyTheFirstAreMeasured) {
  std::vector<EngineHit> hits;
  Documents found;
  for (std::size_t i = 1; i <= kMeasuredHits + 5; ++i) {
    hits.push_back({0, std::to_string(i), static_cast<Code>(i)});
    found.push_back({static_cast<Code>(i), 1});
  }
  std::size_t measured = 0;
  const auto size_of = [&](const std::string&) {
    ++measured;
    return std::optional<std::uint64_t>(1);
  };
  SortByRelevance({Clause(found)}, 5000, size_of, &hits);
  EXPECT_EQ(measured, kMeasuredHits);
  EXPECT_EQ(hits.back().name, std::to_string(kMeasuredHits + 5));
}

TEST(RelevanceTest, AClauseOfSeveralEqualOnesCountsEachTime) {
  const auto ranked = [](const std::vector<RankedClause>& clauses) {
    std::vector<EngineHit> hits = HitsNamed("ab");
    SortByRelevance(clauses, 10, Unknown, &hits);
    return hits.front().name + std::to_string(hits.back().percent);
  };
  const Documents in_a{Document('a')};
  const Documents in_b{Document('b')};
  EXPECT_EQ(ranked({Clause(in_a), Clause(in_b, 2)}), "b50");
  EXPECT_EQ(ranked({Clause(in_a), Clause(in_b), Clause(in_b)}), "b50");
}

TEST(RelevanceTest, HitsOfNoClauseComeLast) {
  EXPECT_EQ(Ranked("ab", {{Document('b')}}, 10), "b100 a0 ");
}

TEST(RelevanceTest, DocumentsThatAreNoHitsAreLeftOut) {
  EXPECT_EQ(Ranked("a", {{Document('a'), Document('z')}}, 10), "a100 ");
}

TEST(RelevanceTest, NoOccurrenceCountsAsOne) {
  EXPECT_EQ(Ranked("ab", {{Document('a', 0), Document('b', 1)}}, 10), "a100 b100 ");
  EXPECT_EQ(Ranked("ab", {{Document('a', 0), Document('b', 2)}}, 10).substr(0, 6), "b100 a");
}

TEST(RelevanceTest, EachOccurrenceCountsHoweverManyAnotherDocumentHas) {
  const std::string ranked =
      Ranked("abc", {{Document('a', 1), Document('b', 3), Document('c', 60000)}}, 10);
  const auto weight = [](double times) { return times * 2.8 / (times + 1.8); };
  EXPECT_EQ(ranked, "c100 b" + Percent(weight(3) / weight(60000)) + " a" +
                        Percent(weight(1) / weight(60000)) + " ");
}

TEST(RelevanceTest, NoHitsAndNoClausesAreNoError) {
  EXPECT_EQ(Ranked("", {{Document('a')}}, 10), "");
  EXPECT_EQ(Ranked("ab", {}, 10), "a0 b0 ");
  EXPECT_EQ(Ranked("a", {{}, {Document('a')}}, 0), "a100 ");
}

}  // namespace
}  // namespace kestan::search
