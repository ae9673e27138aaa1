// How often the walk of kestan/query/stats.cc flushes the store.
#include "tests/query/query_test.h"
#include "tests/support/gdbm_calls.h"

namespace kestan_tests {
namespace {

class FlushCadence : public IndexTest {
 protected:
  // Opens an index of `count` records, of which `count` - 2 are words without documents.
  void PlantRecords(int count) {
    Records records = {{"g-code", Units({1})}};
    for (int i = 2; i < count; ++i) records["word" + std::to_string(i)] = "";
    PlantAndReopen(records);
  }

  // Runs `walk` and returns after how many records each flush came.
  template <typename Walk>
  static Numbers FlushesOf(Walk walk) {
    const GdbmWatch watch;
    walk();
    Numbers flushes;
    unsigned records = 0;
    for (const GdbmCall& call : watch.Calls()) {
      if (call.function == "firstkey" || call.function == "nextkey") ++records;
      if (call.function == "sync") flushes.push_back(records);
    }
    return flushes;
  }

  Numbers OfDocuments() {
    return FlushesOf([&] { engine_.ListDocuments(); });
  }

  Numbers OfWords() {
    return FlushesOf([&] { engine_.CommonWords(0, 1); });
  }
};

TEST_F(FlushCadence, WalkOver250RecordsFlushesTwice) {
  PlantRecords(250);
  EXPECT_EQ(OfDocuments(), (Numbers{101, 202}));
  EXPECT_EQ(OfWords(), (Numbers{101, 202}));
}

TEST_F(FlushCadence, FirstFlushComesAfterThe101stRecord) {
  PlantRecords(100);
  EXPECT_EQ(OfDocuments(), Numbers{});
  EXPECT_EQ(OfWords(), Numbers{});
  PlantRecords(101);
  EXPECT_EQ(OfDocuments(), Numbers{101});
  EXPECT_EQ(OfWords(), Numbers{101});
}

TEST_F(FlushCadence, EachFurtherFlushComesAfter101More) {
  PlantRecords(302);
  EXPECT_EQ(OfWords(), (Numbers{101, 202}));
  PlantRecords(303);
  EXPECT_EQ(OfWords(), (Numbers{101, 202, 303}));
}

TEST_F(FlushCadence, IndexWithoutCounterIsNotWalked) {
  EXPECT_EQ(OfWords(), Numbers{});
  const GdbmWatch watch;
  engine_.ListDocuments();
  EXPECT_EQ(watch.Count("firstkey"), 0U);
}

}  // namespace
}  // namespace kestan_tests
