#include "search/ranking/relevance.h"

#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace kestan::search {
namespace {

std::optional<std::uint64_t> Unknown(const std::string&) { return std::nullopt; }

// Ranks `names`, one letter each, and writes them with their percentages.
std::string Ranked(const std::string& names, const std::vector<std::string>& parts,
                   std::uint64_t documents, const SizeOf& size_of = Unknown) {
  std::vector<Hit> hits;
  for (const char name : names) hits.push_back({0, std::string(1, name), hits.size()});
  std::vector<RankedPart> ranked;
  for (const std::string& part : parts) ranked.push_back({[&part] { return part; }, 1});
  SortByRelevance(ranked, documents, size_of, &hits);
  std::string text;
  for (const Hit& hit : hits) text += hit.name + std::to_string(hit.percent) + " ";
  return text;
}

double Rarity(double found, double documents) {
  return std::log(1 + (documents - found + 0.5) / (found + 0.5));
}

std::string Percent(double share) { return std::to_string(std::lround(100 * share)); }

TEST(RelevanceTest, RareWordsCountMore) {
  const double often = Rarity(2, 10);
  const double seldom = Rarity(1, 10);
  EXPECT_EQ(Ranked("abc", {"100 a\n100 b\n", "100 c\n"}, 10),
            "c100 a" + Percent(often / seldom) + " b" + Percent(often / seldom) + " ");
}

TEST(RelevanceTest, PartsAddUp) {
  EXPECT_EQ(Ranked("abc", {"100 a\n100 b\n", "100 b\n100 c\n"}, 10), "b100 a50 c50 ");
}

TEST(RelevanceTest, RepetitionCountsLessAndLess) {
  // 4 times, twice and once, as the least percentage tells.
  const auto weight = [](double times) { return times * 2.6 / (times + 1.6); };
  EXPECT_EQ(
      Ranked("abc", {"25 a\n50 b\n100 c\n"}, 10),
      "c100 b" + Percent(weight(2) / weight(4)) + " a" + Percent(weight(1) / weight(4)) + " ");
}

TEST(RelevanceTest, ShortDocumentsGoBeforeLongOnes) {
  const std::map<std::string, std::uint64_t> sizes{{"a", 300}, {"b", 100}};
  const auto size_of = [&](const std::string& name) { return std::optional(sizes.at(name)); };
  const auto weight = [](double size) { return 2.6 / (1 + 1.6 * (0.25 + 0.75 * size)); };
  EXPECT_EQ(Ranked("ab", {"100 a\n100 b\n"}, 10, size_of),
            "b100 a" + Percent(weight(1.5) / weight(0.5)) + " ");
}

TEST(RelevanceTest, UnknownSizeIsTheMean) {
  const auto size_of = [](const std::string& name) -> std::optional<std::uint64_t> {
    if (name == "b") return std::nullopt;
    return name == "a" ? 100 : 300;
  };
  EXPECT_EQ(Ranked("abc", {"100 a\n100 b\n100 c\n"}, 10, size_of).substr(0, 6), "a100 b");
}

TEST(RelevanceTest, SizesOfZeroChangeNothing) {
  const auto size_of = [](const std::string&) { return std::optional<std::uint64_t>(0); };
  EXPECT_EQ(Ranked("ab", {"100 a\n100 b\n"}, 10, size_of), "a100 b100 ");
}

TEST(RelevanceTest, OnlyTheFirstAreMeasured) {
  std::vector<Hit> hits(kMeasuredHits + 5);
  std::string listing;
  for (std::size_t i = 0; i < hits.size(); ++i) {
    hits[i].name = std::to_string(i);
    listing += "100 " + hits[i].name + "\n";
  }
  std::size_t measured = 0;
  SortByRelevance(
      {{[&] { return listing; }, 1}}, 5000,
      [&](const std::string&) {
        ++measured;
        return std::optional<std::uint64_t>(1);
      },
      &hits);
  EXPECT_EQ(measured, kMeasuredHits);
  EXPECT_EQ(hits.back().name, std::to_string(kMeasuredHits + 4));
}

TEST(RelevanceTest, APartOfSeveralEqualOnesCountsEachTime) {
  const auto ranked = [](std::vector<RankedPart> parts) {
    std::vector<Hit> hits{{0, "a", 0}, {0, "b", 1}};
    SortByRelevance(parts, 10, Unknown, &hits);
    return hits.front().name + std::to_string(hits.back().percent);
  };
  const auto in_a = [] { return std::string("100 a\n"); };
  const auto in_b = [] { return std::string("100 b\n"); };
  EXPECT_EQ(ranked({{in_a, 1}, {in_b, 2}}), "b50");
  EXPECT_EQ(ranked({{in_a, 1}, {in_b, 1}, {in_b, 1}}), "b50");
}

TEST(RelevanceTest, HitsOfNoPartComeLast) { EXPECT_EQ(Ranked("ab", {"100 b\n"}, 10), "b100 a0 "); }

TEST(RelevanceTest, ListedDocumentsThatAreNoHitsAreLeftOut) {
  EXPECT_EQ(Ranked("a", {"100 a\n100 z\n"}, 10), "a100 ");
}

TEST(RelevanceTest, PercentageOfZeroIsOneOccurrence) {
  EXPECT_EQ(Ranked("ab", {"0 a\n100 b\n"}, 10).substr(0, 6), "b100 a");
}

TEST(RelevanceTest, NoHitsAndNoPartsAreNoError) {
  EXPECT_EQ(Ranked("", {"100 a\n"}, 10), "");
  EXPECT_EQ(Ranked("ab", {}, 10), "a0 b0 ");
  EXPECT_EQ(Ranked("a", {"", "100 a\n"}, 0), "a100 ");
}

}  // namespace
}  // namespace kestan::search
