#include "search/ranking/listing/hits.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/index_test.h"

namespace kestan::search {
namespace {

std::string Joined(const std::vector<EngineHit>& hits) {
  std::string text;
  for (const EngineHit& hit : hits) text += std::to_string(hit.percent) + hit.name + " ";
  return text;
}

class HitsInTest : public kestan_tests::IndexTest {
 protected:
  ResultSet Documents(const char* word) { return {engine_, engine_.QueryWord(word)}; }

  // The same as the engine lists it.
  std::string Listed(const char* word) {
    std::string text;
    for (const char each : std::string(engine_.QueryResults(Documents(word).id()))) {
      if (each != ' ') text += each == '\n' ? ' ' : each;
    }
    return text;
  }
};

TEST_F(HitsInTest, HitsAreTheDocumentsInOrderOfCodes) {
  engine_.AddDocumentWords("b", "cat");
  engine_.AddDocumentWords("a", "cat cat cat");
  engine_.AddDocumentWords("c", "dog");
  const std::vector<EngineHit> hits = HitsIn(Documents("cat"));
  EXPECT_EQ(Joined(hits), "33b 100a ");
  EXPECT_EQ(hits[0].code, 1u);
  EXPECT_EQ(hits[1].code, 2u);
}

TEST_F(HitsInTest, RemovedDocumentsAreNoHitsAndSetNoScale) {
  engine_.AddDocumentWords("one", "cat cat cat cat");
  engine_.AddDocumentWords("two", "cat cat");
  engine_.AddDocumentWords("three", "cat");
  engine_.RemoveDocumentWords("one");
  EXPECT_EQ(Joined(HitsIn(Documents("cat"))), "100two 50three ");
}

TEST_F(HitsInTest, PercentagesAreThoseOfTheEngine) {
  for (int count = 1; count <= 300; ++count) {
    std::string text;
    for (int i = 0; i < count; ++i) text += "cat ";
    engine_.AddDocumentWords(("n" + std::to_string(count)).c_str(), text.c_str());
    if (count % 50 != 0) continue;
    EXPECT_EQ(Joined(HitsIn(Documents("cat"))), Listed("cat")) << count;
  }
}

TEST_F(HitsInTest, SetWithoutDocumentsHasNoHits) {
  engine_.AddDocumentWords("one", "cat");
  EXPECT_TRUE(HitsIn(Documents("dog")).empty());
}

std::string Sorted(HitOrder order, std::vector<EngineHit> hits) {
  Sort(order, &hits);
  return Joined(hits);
}

const std::vector<EngineHit> kHits{{50, "c", 1}, {100, "b", 2}, {50, "a", 3}, {0, "d", 4}};

TEST(HitOrderTest, ByScoreEqualsKeepTheOrderOfCodes) {
  EXPECT_EQ(Sorted(HitOrder::kScore, kHits), "100b 50c 50a 0d ");
  EXPECT_EQ(Sorted(HitOrder::kBest, kHits), "100b 50c 50a 0d ");
}

TEST(HitOrderTest, ByNameGoesByBytes) {
  EXPECT_EQ(Sorted(HitOrder::kName, {{1, "b", 1}, {2, "B", 2}, {3, "a", 3}}), "2B 3a 1b ");
}

TEST(HitOrderTest, ByCodeDoesNotDependOnWhatCameBefore) {
  std::vector<EngineHit> hits = kHits;
  Sort(HitOrder::kName, &hits);
  EXPECT_EQ(Sorted(HitOrder::kCode, hits), Joined(kHits));
}

}  // namespace
}  // namespace kestan::search
