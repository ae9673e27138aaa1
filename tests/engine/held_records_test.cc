// SPDX-License-Identifier: GPL-3.0-or-later
// What the engine holds of the store's records when a method has returned: the list of reusable
// codes, and nothing else. A record that it held would stay in memory, and once changed it would be
// written by every flush.
#include "tests/indexing/planting.h"
#include "tests/support/gdbm_calls.h"

namespace kestan_tests {
namespace {

using Lines = std::vector<std::string>;

class HeldRecordsTest : public IndexTest {
 protected:
  void SetUp() override {
    IndexTest::SetUp();
    PlantAndReopen(Document("one", 1) + Document("two", 2) +
                   Records{{"cat", EncodedPosting(1, {1}) + EncodedPosting(2, {1})},
                           {"dog", EncodedPosting(3, {1})},
                           {"g-avail", Units({4})},
                           {"g-code", Units({4})},
                           {"g-deleted", Units({3})},
                           {"s-one", "summary"},
                           {"t-one", "title"},
                           {"u-one", "user"},
                           {"w-one", "\x80word"}});
  }

  // Runs `method` and a flush, which drops what nobody holds, and returns the keys of those records
  // that a walk then need not fetch.
  template <typename Method>
  Lines HeldAfter(Method method) {
    method();
    engine_.FlushIndex();
    const GdbmWatch gdbm;
    engine_.ListDocuments();
    std::map<std::string, int> fetches;
    for (const GdbmCall& call : gdbm.Calls()) fetches[call.key] += call.function == "fetch" ? 1 : 0;
    Lines held;
    for (const GdbmCall& call : gdbm.Calls()) {
      if (call.function == "nextkey" && fetches[call.key] == 0) held.push_back(call.key);
    }
    return held;
  }

  const Lines codes_ = {"g-avail"};
};

TEST_F(HeldRecordsTest, NoneOfSideRecords) {
  EXPECT_EQ(HeldAfter([&] { engine_.DBGetUser("one"); }), codes_);
  EXPECT_EQ(HeldAfter([&] { engine_.DBGetSummary("one"); }), codes_);
  EXPECT_EQ(HeldAfter([&] { engine_.DBGetTitle("one"); }), codes_);
  EXPECT_EQ(HeldAfter([&] { engine_.DBPutTitle("one", "other"); }), codes_);
  EXPECT_EQ(HeldAfter([&] { engine_.DBDelTitle("one"); }), codes_);
  EXPECT_EQ(HeldAfter([&] { engine_.DBPutWords("two", "a b"); }), codes_);
  EXPECT_EQ(HeldAfter([&] { engine_.DBGetWords("one"); }), codes_);
}

TEST_F(HeldRecordsTest, NoneOfTheOptions) {
  EXPECT_EQ(HeldAfter([&] { engine_.GetOptions(); }), codes_);
  EXPECT_EQ(HeldAfter([&] { engine_.SetOptionFlag(2); }), codes_);
  EXPECT_EQ(HeldAfter([&] { engine_.SetOptionFlag(1); }), codes_);
  EXPECT_EQ(HeldAfter([&] { engine_.UnsetOptionFlag(2); }), codes_);
}

TEST_F(HeldRecordsTest, NoneOfDocuments) {
  EXPECT_EQ(HeldAfter([&] { engine_.DocumentTimestamp("one"); }), codes_);
  EXPECT_EQ(HeldAfter([&] { engine_.AddDocumentWords("three", "cat bird"); }), codes_);
  EXPECT_EQ(HeldAfter([&] { engine_.AddDocumentWords("four", "cat Cow"); }), codes_);
  EXPECT_EQ(HeldAfter([&] { engine_.MoveDocumentWords("three", "five"); }), codes_);
  EXPECT_EQ(HeldAfter([&] { engine_.RemoveDocumentWords("five"); }), codes_);
  EXPECT_EQ(HeldAfter([&] { engine_.ShrinkIndex(); }), codes_);
}

TEST_F(HeldRecordsTest, NoneOfQueries) {
  int cat = 0;
  EXPECT_EQ(HeldAfter([&] { cat = engine_.QueryWord("cat"); }), codes_);
  EXPECT_EQ(HeldAfter([&] { engine_.FreeQueryResult(engine_.QueryNegate(cat)); }), codes_);
  EXPECT_EQ(HeldAfter([&] { EXPECT_STREQ(engine_.QueryResults(cat), "100 one\n100 two\n"); }),
            codes_);
  EXPECT_EQ(HeldAfter([&] { engine_.CommonWords(0, -1); }), codes_);
  EXPECT_EQ(HeldAfter([&] { engine_.ListDocuments(); }), codes_);
  EXPECT_EQ(HeldAfter([&] { engine_.CopyIndexTo((folder_ / "copy").c_str()); }), codes_);
  engine_.FreeQueryResult(cat);
}

// Whoever holds a changed record has it written by every flush.
TEST_F(HeldRecordsTest, TheListOfReusableCodesIsWrittenByEveryFlushOnceItHasChanged) {
  engine_.AddDocumentWords("three", "");
  const GdbmWatch gdbm;
  engine_.FlushIndex();
  engine_.FlushIndex();
  EXPECT_EQ(gdbm.Lines(), (Lines{"store g-avail", "sync", "store g-avail", "sync"}));
}

}  // namespace
}  // namespace kestan_tests
