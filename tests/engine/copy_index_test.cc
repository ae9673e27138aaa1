// SPDX-License-Identifier: GPL-3.0-or-later
// Copying an index while it is open.
#include "tests/support/gdbm_calls.h"
#include "tests/support/index_test.h"

namespace kestan_tests {
namespace {

using Lines = std::vector<std::string>;

class CopyIndexTest : public IndexTest {
 protected:
  // Makes an index of `count` records, the option flags among them, and opens it with `mode`.
  void Fill(int count, int mode = 1) {
    Records records = {{"g-opts", std::string(4, '\0')}};
    for (int i = 1; i < count; ++i) records["t-" + std::to_string(i)] = "title";
    engine_.CloseIndex();
    Plant(path_, records);
    ASSERT_EQ(engine_.OpenIndex(path_.c_str(), mode), 0);
  }

  // Returns the stores and flushes of a copy, each run of stores as one line.
  Lines FlushesOf(const GdbmWatch& gdbm) const {
    Lines lines;
    int stored = 0;
    for (const GdbmCall& call : gdbm.Calls()) {
      if (call.function == "store") ++stored;
      if (call.function != "sync") continue;
      if (stored != 0) lines.push_back(std::to_string(stored) + " stored");
      stored = 0;
      lines.emplace_back(call.file == path_ ? "index synced" : "copy synced");
    }
    return lines;
  }

  // Returns the keys that were stored in the file at `path`.
  static Lines StoresIn(const GdbmWatch& gdbm, const std::string& path) {
    Lines keys;
    for (const GdbmCall& call : gdbm.Calls()) {
      if (call.function == "store" && call.file == path) keys.push_back(call.key);
    }
    return keys;
  }

  int Copy() { return engine_.CopyIndexTo(copy_path_.c_str()); }

  const std::string copy_path_ = folder_ / "copy";
};

TEST_F(CopyIndexTest, CopiesEveryRecord) {
  engine_.DBPutTitle("name", "title");
  engine_.AddDocumentWords("name", "some words");
  EXPECT_EQ(StandardErrorOf([&] { EXPECT_EQ(Copy(), 0); }), "");
  const Records copied = Dump(copy_path_);
  EXPECT_EQ(copied.at("some"), Units({1, 1, 1}));
  EXPECT_EQ(copied, Stored());
}

TEST_F(CopyIndexTest, LeavesTheIndexOpenAndAsItWas) {
  engine_.DBPutTitle("name", "title");
  Copy();
  EXPECT_STREQ(engine_.DBGetTitle("name"), "title");
  EXPECT_EQ(engine_.DBPutTitle("name", "new"), 0);
  EXPECT_EQ(Dump(copy_path_).at("t-name"), "title");
}

TEST_F(CopyIndexTest, KeepsRecordsThatTheSourceLacks) {
  Plant(copy_path_, {{"t-old", "kept"}, {"t-name", "replaced"}});
  engine_.DBPutTitle("name", "title");
  EXPECT_EQ(Copy(), 0);
  EXPECT_EQ(Dump(copy_path_),
            (Records{{"g-opts", std::string(4, '\0')}, {"t-name", "title"}, {"t-old", "kept"}}));
}

TEST_F(CopyIndexTest, CopiesChangesThatWaitForAFlush) {
  PlantAndReopen({{"word", Units({7, 2, 10, 20})}});
  engine_.SetOptionFlag(1);
  EXPECT_EQ(Copy(), 0);
  EXPECT_EQ(Dump(copy_path_).at("word"), Units({7}));
}

TEST_F(CopyIndexTest, ChangesThatWaitStillReachTheIndex) {
  PlantAndReopen({{"word", Units({7, 2, 10, 20})}});
  engine_.SetOptionFlag(1);
  GdbmWatch gdbm;
  Copy();
  EXPECT_EQ(StoresIn(gdbm, path_), Lines{});
  EXPECT_EQ(Stored().at("word"), Units({7}));
}

TEST_F(CopyIndexTest, ChangesThatWaitAreStoredInTheCopyOnce) {
  PlantAndReopen({{"word", Units({7, 2, 10, 20})}});
  engine_.SetOptionFlag(1);
  GdbmWatch gdbm;
  Copy();
  EXPECT_EQ(StoresIn(gdbm, copy_path_).size(), 2u);  // the option flags are the other
}

TEST_F(CopyIndexTest, TheIndexKeepsOnlyTheLastRecordsInMemory) {
  Fill(2500);
  Copy();
  GdbmWatch gdbm;
  for (int i = 1; i < 2500; ++i) engine_.DBGetTitle(std::to_string(i).c_str());
  EXPECT_GE(gdbm.Count("fetch"), 1998u);  // 499 since the last flush, and two held across one
}

TEST_F(CopyIndexTest, TheReusableCodesInMemoryAreCopiedAndStillReachTheIndex) {
  PlantAndReopen({{"g-avail", Units({5, 9})}});
  engine_.AddDocumentWords("name", "");
  EXPECT_EQ(Copy(), 0);
  EXPECT_EQ(Dump(copy_path_).at("g-avail"), Units({5}));
  EXPECT_EQ(Stored().at("g-avail"), Units({5}));
}

TEST_F(CopyIndexTest, TwoThousandFiveHundredRecordsFlushTwice) {
  Fill(2500);
  GdbmWatch gdbm;
  EXPECT_EQ(Copy(), 0);
  EXPECT_EQ(FlushesOf(gdbm), (Lines{"1001 stored", "index synced", "copy synced", "1000 stored",
                                    "index synced", "copy synced", "499 stored", "copy synced"}));
  EXPECT_EQ(gdbm.Lines().back(), "close");
}

TEST_F(CopyIndexTest, AThousandRecordsFlushAtTheEndOnly) {
  Fill(1000);
  GdbmWatch gdbm;
  EXPECT_EQ(Copy(), 0);
  EXPECT_EQ(FlushesOf(gdbm), (Lines{"1000 stored", "copy synced"}));
}

TEST_F(CopyIndexTest, AThousandAndOneRecordsFlushOnceBeforeTheEnd) {
  Fill(1001);
  GdbmWatch gdbm;
  EXPECT_EQ(Copy(), 0);
  EXPECT_EQ(FlushesOf(gdbm), (Lines{"1001 stored", "index synced", "copy synced", "copy synced"}));
}

TEST_F(CopyIndexTest, TwoThousandRecordsDoNotFlushASecondTime) {
  Fill(2000);
  GdbmWatch gdbm;
  EXPECT_EQ(Copy(), 0);
  EXPECT_EQ(FlushesOf(gdbm), (Lines{"1001 stored", "index synced", "copy synced",  //
                                    "999 stored", "copy synced"}));
}

TEST_F(CopyIndexTest, ManyRecordsAreAllThere) {
  Fill(2500);
  EXPECT_EQ(Copy(), 0);
  EXPECT_EQ(Dump(copy_path_), Stored());
}

TEST_F(CopyIndexTest, AnIndexOpenForReadingCanBeCopied) {
  Fill(10, 0);
  EXPECT_EQ(Copy(), 0);
  EXPECT_EQ(Dump(copy_path_), Stored());
}

TEST_F(CopyIndexTest, ATargetThatCannotBeOpenedIsNamedWithoutALineBreak) {
  const std::string path = folder_ / "missing/copy";
  const GdbmWatch gdbm;
  const std::string printed =
      StandardErrorOf([&] { EXPECT_EQ(engine_.CopyIndexTo(path.c_str()), -1); });
  EXPECT_EQ(printed, "Kestan: Could not open index file '" + path + "' -- " +
                         gdbm_strerror(GDBM_FILE_OPEN_ERROR));
  EXPECT_EQ(gdbm.Count("store"), 0u);
}

TEST_F(CopyIndexTest, AnIndexIsNotCopiedOntoItself) {
  engine_.DBPutTitle("name", "title");
  const std::string printed =
      StandardErrorOf([&] { EXPECT_EQ(engine_.CopyIndexTo(path_.c_str()), -1); });
  EXPECT_EQ(printed, "Kestan: Could not open index file '" + path_ + "' -- " +
                         gdbm_strerror(GDBM_CANT_BE_WRITER));
  EXPECT_EQ(Stored().at("t-name"), "title");
}

TEST_F(CopyIndexTest, WithoutAnIndexTheCopyIsEmpty) {
  engine_.CloseIndex();
  EXPECT_EQ(StandardErrorOf([&] { EXPECT_EQ(Copy(), 0); }),
            "Kestan: Call to database::first without an open database\n");
  EXPECT_TRUE(Dump(copy_path_).empty());
}

TEST_F(CopyIndexTest, WithoutAnIndexATargetThatExistsKeepsItsRecords) {
  Plant(copy_path_, {{"t-old", "kept"}});
  engine_.CloseIndex();
  StandardErrorOf([&] { EXPECT_EQ(Copy(), 0); });
  EXPECT_EQ(Dump(copy_path_), (Records{{"t-old", "kept"}}));
}

TEST_F(CopyIndexTest, EndsAtARecordThatCannotBeFetched) {
  Fill(10);
  GdbmWatch gdbm;
  gdbm.Fail("fetch", 5, GDBM_FILE_READ_ERROR);
  EXPECT_EQ(StandardErrorOf([&] { EXPECT_EQ(Copy(), 0); }), "");
  const Lines stored = StoresIn(gdbm, copy_path_);
  EXPECT_GE(stored.size(), 4u);
  EXPECT_LE(stored.size(), 5u);  // the flags are read from memory, whether they come early or late
}

TEST_F(CopyIndexTest, GoesOnAfterARecordThatTheTargetRefuses) {
  Fill(10);
  GdbmWatch gdbm;
  gdbm.Fail("store", 3, GDBM_FILE_WRITE_ERROR);
  EXPECT_EQ(StandardErrorOf([&] { EXPECT_EQ(Copy(), 0); }), "");
  EXPECT_EQ(Dump(copy_path_).size(), 9u);
}

TEST_F(CopyIndexTest, FlushErrorsOfTheIndexArePrintedAndTheCopyGoesOn) {
  Fill(1000);
  PlantAndReopen({{"word", Units({7, 2, 10, 20})}});
  engine_.CloseIndex();
  engine_.OpenIndex(path_.c_str(), 0);
  engine_.SetOptionFlag(1);
  EXPECT_EQ(StandardErrorOf([&] { EXPECT_EQ(Copy(), 0); }),
            "Kestan: Could not write item 'word' -- Reader can't store\n");
  EXPECT_EQ(Dump(copy_path_).at("word"), Units({7}));
}

}  // namespace
}  // namespace kestan_tests
