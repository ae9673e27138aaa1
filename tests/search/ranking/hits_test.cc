#include "search/ranking/hits.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace kestan::search {
namespace {

std::string Sorted(HitOrder order, const std::string& listing) {
  std::vector<Hit> hits = HitsIn(listing);
  Sort(order, &hits);
  std::string text;
  for (const Hit& hit : hits) text += std::to_string(hit.percent) + hit.name + " ";
  return text;
}

const std::string kListing = "50 c\n100 b\n50 a\n0 d\n";

TEST(HitsTest, LinesAreParsed) {
  const auto hits = HitsIn("100 a b\n7 \n");
  ASSERT_EQ(hits.size(), 2u);
  EXPECT_EQ(hits[0].percent, 100);
  EXPECT_EQ(hits[0].name, "a b");
  EXPECT_EQ(hits[1].name, "");
  EXPECT_EQ(hits[1].place, 1u);
}

TEST(HitsTest, EmptyListingHasNoHits) {
  EXPECT_TRUE(HitsIn("").empty());
  EXPECT_EQ(CountLines(""), 0u);
  EXPECT_EQ(CountLines(kListing), 4u);
}

TEST(HitsTest, ByScoreEqualsKeepTheOrderOfCodes) {
  EXPECT_EQ(Sorted(HitOrder::kScore, kListing), "100b 50c 50a 0d ");
  EXPECT_EQ(Sorted(HitOrder::kBest, kListing), "100b 50c 50a 0d ");
}

TEST(HitsTest, ByNameGoesByBytes) {
  EXPECT_EQ(Sorted(HitOrder::kName, "1 b\n2 B\n3 a\n"), "2B 3a 1b ");
}

TEST(HitsTest, ByCodeIsAsListedWhateverCameBefore) {
  std::vector<Hit> hits = HitsIn(kListing);
  Sort(HitOrder::kName, &hits);
  Sort(HitOrder::kCode, &hits);
  EXPECT_EQ(hits.front().name, "c");
  EXPECT_EQ(hits.back().name, "d");
}

}  // namespace
}  // namespace kestan::search
