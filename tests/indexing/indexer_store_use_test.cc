// SPDX-License-Identifier: GPL-3.0-or-later
// What the calls of kestan/indexing/ cost in the file, and what they write at once.
#include <algorithm>
#include <climits>
#include <cstdint>
#include <ctime>
#include <limits>
#include <string>
#include <vector>

#include "tests/indexing/planting.h"
#include "tests/support/colliding_words.h"
#include "tests/support/gdbm_calls.h"

namespace kestan_tests {
namespace {

class StoreUseTest : public IndexTest {
 protected:
  // Runs `action` and returns how often it called `function` with `key`.
  template <typename Action>
  static long CallsOf(const std::string& function, const std::string& key, Action action) {
    const GdbmWatch watch;
    action();
    return std::count_if(watch.Calls().begin(), watch.Calls().end(), [&](const GdbmCall& call) {
      return call.function == function && call.key == key;
    });
  }

  // Runs `action` and returns what it changed in the file, in that order.
  template <typename Action>
  static std::vector<std::string> ChangesBy(Action action) {
    const GdbmWatch watch;
    action();
    std::vector<std::string> changes;
    for (const GdbmCall& call : watch.Calls()) {
      const bool is_change = call.function == "store" || call.function == "delete";
      if (is_change) changes.push_back(call.function + " " + call.key);
    }
    return changes;
  }
};

using Changes = std::vector<std::string>;

TEST_F(StoreUseTest, AdditionWritesCounterWordsNameAndDocumentInThisOrder) {
  EXPECT_EQ(
      ChangesBy([&] { engine_.AddDocumentWords("one", "dog cat"); }),
      (Changes{"store g-code", "store cat", "store dog", "store " + NameKey(1), "store d-one"}));
}

TEST_F(StoreUseTest, AdditionRemovesTheEarlierVersionFirst) {
  PlantAndReopen(Document("one", 1) + Records{{"g-code", Units({1})}});
  EXPECT_EQ(ChangesBy([&] { engine_.AddDocumentWords("one", "cat"); }),
            (Changes{"store g-deleted", "delete " + NameKey(1), "delete d-one", "store cat",
                     "store " + NameKey(2), "store d-one"}));
}

TEST_F(StoreUseTest, RenamingDeletesTheOldRecordBeforeItStoresTheNew) {
  PlantAndReopen(Document("old", 7));
  EXPECT_EQ(ChangesBy([&] { engine_.MoveDocumentWords("old", "new"); }),
            (Changes{"delete d-old", "store d-new"}));
}

// A list that was not cached stays changed, and the flush writes it once more.
TEST_F(StoreUseTest, ShrinkingStoresTheFirstReusableCodesAtOnce) {
  const Records removed = {{"cat", EncodedPosting(2, {1})}, {"g-deleted", Units({2})}};
  const auto shrink = [&] { engine_.ShrinkIndex(); };
  PlantAndReopen(removed);
  EXPECT_EQ(ChangesBy(shrink),
            (Changes{"delete g-deleted", "store g-avail", "store cat", "store g-avail"}));
  PlantAndReopen(removed + Records{{"g-avail", ""}});
  EXPECT_EQ(ChangesBy(shrink), (Changes{"delete g-deleted", "store g-avail", "store cat"}));
}

TEST_F(StoreUseTest, ShrinkingStoresFurtherReusableCodesAtTheFlush) {
  PlantAndReopen(
      {{"cat", EncodedPosting(2, {1})}, {"g-avail", Units({3})}, {"g-deleted", Units({2})}});
  EXPECT_EQ(ChangesBy([&] { engine_.ShrinkIndex(); }),
            (Changes{"delete g-deleted", "store cat", "store g-avail"}));
}

// Returns the processor time, in ticks, that an index takes for one document of `words`, twice: the
// better of three trials.
std::clock_t TimeToIndex(const std::vector<std::string>& words) {
  const TempDir folder;
  const std::string text = Joined(words);
  std::clock_t best = std::numeric_limits<std::clock_t>::max();
  for (const char* name : {"a", "b", "c"}) {
    Kestan engine;
    engine.OpenIndex((folder / name).c_str(), 1);
    const std::clock_t start = std::clock();
    engine.AddDocumentWords("one", text.c_str());
    engine.AddDocumentWords("two", text.c_str());
    best = std::min(best, std::clock() - start);
  }
  return best;
}

// With a hash that everybody can compute, these would take some 20 times as long.
TEST(TimeOfIndexingTest, WordsOfOnePlainHashTakeTheTimeOfOthers) {
  constexpr std::size_t kWords = 15000;
  EXPECT_LT(TimeToIndex(WordsOfOnePlainHash(kWords)), 4 * TimeToIndex(UnrelatedWords(kWords)));
}

TEST_F(StoreUseTest, KnownWordIsFetchedOnceForADocument) {
  PlantAndReopen({{"cat", EncodedPosting(1, {1})}, {"g-code", Units({1})}});
  const auto add = [&] { engine_.AddDocumentWords("one", "cat cat dog cat"); };
  EXPECT_EQ(CallsOf("fetch", "cat", add), 1);
}

TEST_F(StoreUseTest, KnownWordIsStoredOnceForManyDocuments) {
  PlantAndReopen({{"cat", EncodedPosting(1, {1})}, {"g-code", Units({1})}});
  const auto add_and_flush = [&] {
    for (const char* name : {"one", "two", "three"}) engine_.AddDocumentWords(name, "cat");
    engine_.FlushIndex();
  };
  EXPECT_EQ(CallsOf("store", "cat", add_and_flush), 1);
}

TEST_F(StoreUseTest, NewWordIsStoredAtOnceAndAgainAtTheFlush) {
  const auto add = [&] { engine_.AddDocumentWords("one", "cat"); };
  EXPECT_EQ(CallsOf("store", "cat", add), 1);
  EXPECT_EQ(CallsOf("store", "cat", [&] { engine_.FlushIndex(); }), 1);
}

TEST_F(StoreUseTest, FirstCounterIsStoredAtOnceAndNotAgain) {
  const auto add = [&] { engine_.AddDocumentWords("one", ""); };
  EXPECT_EQ(CallsOf("store", "g-code", add), 1);
  EXPECT_EQ(CallsOf("store", "g-code", [&] { engine_.FlushIndex(); }), 0);
}

TEST_F(StoreUseTest, RenamedDocumentReachesTheFileAtOnceAndItsNameAtTheFlush) {
  PlantAndReopen(Document("old", 7));
  const auto move = [&] { engine_.MoveDocumentWords("old", "new"); };
  EXPECT_EQ(CallsOf("store", "d-new", move), 1);
  EXPECT_EQ(CallsOf("store", NameKey(7), [&] { engine_.FlushIndex(); }), 1);
}

TEST_F(StoreUseTest, FirstRemovedCodeIsStoredAtOnceAndTheOthersAtTheFlush) {
  PlantAndReopen(Document("a", 4) + Document("b", 2) + Document("c", 7));
  const auto remove = [&](const char* name) {
    return CallsOf("store", "g-deleted", [&] { engine_.RemoveDocumentWords(name); });
  };
  EXPECT_EQ(remove("a"), 1);
  EXPECT_EQ(remove("b"), 0);
  EXPECT_EQ(remove("c"), 0);
  EXPECT_EQ(CallsOf("store", "g-deleted", [&] { engine_.FlushIndex(); }), 1);
}

TEST_F(StoreUseTest, RemovalDeletesBothRecordsAtOnce) {
  PlantAndReopen(Document("a", 4));
  const GdbmWatch watch;
  engine_.RemoveDocumentWords("a");
  EXPECT_EQ(watch.Count("delete"), 2U);
}

TEST_F(StoreUseTest, ShrinkingStoresOnlyTheWordsThatChanged) {
  PlantAndReopen({{"cat", EncodedPosting(1, {1}) + EncodedPosting(2, {1})},
                  {"dog", EncodedPosting(1, {1})},
                  {"g-deleted", Units({2})}});
  const GdbmWatch watch;
  engine_.ShrinkIndex();
  const std::vector<std::string> lines = watch.Lines();
  EXPECT_EQ(std::count(lines.begin(), lines.end(), "store cat"), 1);
  EXPECT_EQ(std::count(lines.begin(), lines.end(), "store dog"), 0);
  EXPECT_EQ(watch.Count("reorganize"), 1U);
}

TEST_F(StoreUseTest, ListOfReusableCodesThatIsInTheFileIsStoredOnlyAtTheFlush) {
  PlantAndReopen({{"g-avail", Units({3})}, {"g-deleted", Units({2})}});
  EXPECT_EQ(CallsOf("store", "g-avail", [&] { engine_.ShrinkIndex(); }), 1);
}

TEST_F(StoreUseTest, ShrinkingWithoutRemovedCodesDoesNotWalk) {
  PlantAndReopen({{"cat", EncodedPosting(1, {1})}});
  const GdbmWatch watch;
  EXPECT_EQ(engine_.ShrinkIndex(), 0);
  EXPECT_EQ(watch.Count("firstkey"), 0U);
  EXPECT_EQ(watch.Count("store"), 0U);
  EXPECT_EQ(watch.Count("reorganize"), 1U);
}

TEST_F(StoreUseTest, ResultOfTheCompactionIsNotReported) {
  GdbmWatch watch;
  watch.Fail("reorganize", 1, GDBM_REORGANIZE_FAILED);
  EXPECT_EQ(StandardErrorOf([&] { EXPECT_EQ(engine_.ShrinkIndex(), 0); }), "");
}

#if UINTPTR_MAX > 0xffffffff
// Memory of that size is only to be had where addresses are wide; hardly any of it is touched.
TEST_F(StoreUseTest, PostingRecordAsLargeAsGdbmStoresTakesNoMorePostings) {
  PlantAndReopen({{"cat", EncodedPosting(1, {1})}, {"g-code", Units({1})}});
  const auto add = [&] { EXPECT_STREQ(engine_.AddDocumentWords("one", "cat dog"), "dog\n"); };
  {
    GdbmWatch watch;
    watch.Inflate("cat", INT_MAX - 1);
    EXPECT_EQ(StandardErrorOf(add), "Kestan: Posting record of 'cat' is full -- entry left out\n");
  }
  const Records stored = Stored();
  EXPECT_EQ(stored.at("cat"), EncodedPosting(1, {1}));
  EXPECT_EQ(stored.at("dog"), EncodedPosting(2, {2}));
}
#endif

}  // namespace
}  // namespace kestan_tests
