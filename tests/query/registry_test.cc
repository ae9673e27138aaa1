// SPDX-License-Identifier: GPL-3.0-or-later
// Result ids and what they keep alive, of kestan/query/registry.h.
#include <unistd.h>

#include <climits>
#include <cstdlib>
#include <memory>

#include "tests/query/query_test.h"
#include "tests/support/heap.h"

namespace kestan_tests {
namespace {

constexpr std::size_t kManyBytes = std::size_t{1} << 20;

constexpr int kKept = 42;
constexpr int kReleased = 43;

// How much memory must be in use when everything else of the process has ended; 0: nobody asks.
std::size_t bytes_to_keep = 0;

void MeasureAtTheEnd() {
  if (bytes_to_keep != 0) _exit(HeapBytes() >= bytes_to_keep ? kKept : kReleased);
}

// What is registered before any other object is made runs after all of them are destroyed.
__attribute__((constructor(101))) void RegisterTheMeasurement() { std::atexit(MeasureAtTheEnd); }

class RegistryTest : public QueryTest {
 protected:
  void SetUp() override {
    QueryTest::SetUp();
    PlantAndReopen(Document("one", 1) +
                   Records{{"cat", EncodedPosting(1, {1})}, {"g-code", Units({1})}});
  }
};

TEST_F(RegistryTest, IdsStartAt1AndGrowByOne) {
  EXPECT_EQ(Word("cat"), 1);
  EXPECT_EQ(Word("cat"), 2);
  EXPECT_EQ(And(1, 2, 0), 3);
  EXPECT_EQ(Or(1, 2), 4);
  EXPECT_EQ(Not(1), 5);
}

TEST_F(RegistryTest, FreedIdIsNotUsedAgain) {
  EXPECT_EQ(Word("cat"), 1);
  engine_.FreeQueryResult(1);
  EXPECT_EQ(Word("cat"), 2);
  EXPECT_EQ(kestan::Results().Find(1), nullptr);
}

TEST_F(RegistryTest, FailuresTakeNoId) {
  EXPECT_EQ(Word("dog"), -1);
  EXPECT_EQ(And(1, 2, 0), -1);
  EXPECT_EQ(Or(1, 2), -1);
  EXPECT_EQ(Word("cat"), 1);
}

TEST_F(RegistryTest, EmptySetTakesAnId) {
  EXPECT_EQ(Not(Word("cat")), 2);
  EXPECT_EQ(HitsOf(2), Hits{});
  EXPECT_EQ(And(1, 2, 0), 3);
  EXPECT_EQ(HitsOf(3), Hits{});
}

TEST_F(RegistryTest, SecondFreeDoesNothing) {
  Word("cat");
  Word("cat");
  engine_.FreeQueryResult(1);
  engine_.FreeQueryResult(1);
  EXPECT_EQ(HitsOf(2), (Hits{{1, 1, {1}}}));
}

TEST_F(RegistryTest, UnknownIdsAreFreedSilently) {
  Word("cat");
  const auto free_unknown = [&] {
    for (int id : {-1, 0, 2, 1000, INT_MAX, INT_MIN}) engine_.FreeQueryResult(id);
  };
  EXPECT_EQ(StandardErrorOf(free_unknown), "");
  EXPECT_EQ(HitsOf(1), (Hits{{1, 1, {1}}}));
}

TEST_F(RegistryTest, OperandsStayAsTheyAre) {
  PlantAndReopen({{"dog", EncodedPosting(1, {2}) + EncodedPosting(3, {9})}});
  const int cat = Word("cat"), dog = Word("dog");
  const Hits cat_before = HitsOf(cat), dog_before = HitsOf(dog);
  And(cat, dog, 1);
  Or(cat, dog);
  Not(dog);
  engine_.QueryResults(dog);
  EXPECT_EQ(HitsOf(cat), cat_before);
  EXPECT_EQ(HitsOf(dog), dog_before);
}

TEST_F(RegistryTest, ResultOutlivesItsOperands) {
  Word("cat");
  And(1, 1, 0);
  engine_.FreeQueryResult(1);
  EXPECT_EQ(Listing(2), "100 one\n");
}

TEST_F(RegistryTest, SetsOutliveTheOpenIndex) {
  Word("cat");
  engine_.CloseIndex();
  EXPECT_EQ(And(1, 1, 0), 2);
  ASSERT_EQ(engine_.OpenIndex(path_.c_str(), 0), 0);
  EXPECT_EQ(Listing(2), "100 one\n");
}

// The second engine is never destroyed: two destructors would release one scratch buffer twice.
TEST_F(RegistryTest, EnginesShareIdsAndSets) {
  static Kestan* const second = new Kestan;
  const std::string other_path = folder_ / "other";
  Plant(other_path, {{"dog", EncodedPosting(1, {2})}});
  ASSERT_EQ(second->OpenIndex(other_path.c_str(), 1), 0);
  EXPECT_EQ(engine_.QueryWord("cat"), 1);
  EXPECT_EQ(second->QueryWord("dog"), 2);
  EXPECT_EQ(second->QueryAnd(1, 2, 1), 3);
  EXPECT_EQ(Listing(3), "100 one\n");
  second->FreeQueryResult(1);
  engine_.FreeQueryResult(2);
  EXPECT_EQ(engine_.QueryOr(1, 2), -1);
  second->CloseIndex();
}

TEST_F(RegistryTest, SetsOutliveTheEngineThatMadeThem) {
  const std::string other_path = folder_ / "other";
  Plant(other_path, {{"dog", EncodedPosting(1, {2})}});
  auto other = std::make_unique<Kestan>();
  ASSERT_EQ(other->OpenIndex(other_path.c_str(), 1), 0);
  EXPECT_EQ(other->QueryWord("dog"), 1);
  EXPECT_EQ(Word("cat"), 2);
  other.reset();
  EXPECT_EQ(HitsOf(1), (Hits{{1, 1, {2}}}));
  EXPECT_EQ(And(1, 2, 0), 3);
  EXPECT_EQ(Listing(3), "100 one\n");
  engine_.FreeQueryResult(1);
}

// A word with so many positions that the memory in use shows whether its sets are there.
class RegistryMemoryTest : public QueryTest {
 protected:
  void SetUp() override {
    QueryTest::SetUp();
    std::string record;
    for (unsigned code = 1; code <= 20; ++code) record += EncodedPosting(code, Numbers(60000, 7));
    PlantAndReopen({{"cat", record}});
    engine_.FreeQueryResult(engine_.QueryWord("cat"));  // the record itself is cached from now on
  }
};

TEST_F(RegistryMemoryTest, AFreedSetLeavesNothing) {
  const std::size_t before = HeapBytes();
  const int word = engine_.QueryWord("cat");
  const int both = engine_.QueryOr(word, word);
  EXPECT_GT(HeapBytes(), before + 2 * kManyBytes);
  engine_.FreeQueryResult(word);
  engine_.FreeQueryResult(both);
  EXPECT_LT(HeapBytes(), before + kManyBytes / 16);
}

// A host that is ending need not wait until every set is taken apart.
TEST_F(RegistryMemoryTest, SetsThatNobodyFreedStayWhenTheProcessEnds) {
  const auto end_with_sets = [&] {
    const std::size_t before = HeapBytes();
    for (int i = 0; i < 4; ++i) engine_.QueryWord("cat");
    bytes_to_keep = before + (HeapBytes() - before) / 2;
    std::exit(0);
  };
  EXPECT_EXIT(end_with_sets(), testing::ExitedWithCode(kKept), "");
}

}  // namespace
}  // namespace kestan_tests
