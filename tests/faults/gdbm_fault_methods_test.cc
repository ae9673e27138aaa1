// SPDX-License-Identifier: GPL-3.0-or-later
// What each method of the engine returns and prints when a gdbm call of its own fails, for every
// error that the call may report.
#include <gdbm.h>
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "tests/faults/gdbm_fault_errors.h"
#include "tests/faults/gdbm_fault_messages.h"
#include "tests/support/gdbm_calls.h"
#include "tests/support/index_test.h"

namespace kestan_faults {
namespace {

using kestan_tests::GdbmWatch;
using kestan_tests::Records;
using kestan_tests::StandardErrorOf;

class GdbmFaultMethodsTest : public kestan_tests::IndexTest {
 protected:
  // An index with a record of every kind and nothing in memory. The document c is removed.
  void SetUp() override {
    IndexTest::SetUp();
    for (const char* name : {"a", "b", "c"}) engine_.AddDocumentWords(name, "cat dog");
    engine_.DBPutTitle("a", "title");
    engine_.DBPutSummary("a", "summary");
    engine_.DBPutUser("a", "user");
    engine_.DBPutWords("stop", "the");
    engine_.RemoveDocumentWords("c");
    engine_.FlushIndex();
  }

  // Runs `action` once for each error of `function`, with every call of it failing. It must print
  // what `lines` returns for the error.
  static void WithEachError(
      const std::string& function, const std::function<void(int)>& action,
      const std::function<std::string(int)>& lines = [](int) { return std::string(); }) {
    for (int error : ErrorsOf(function)) {
      SCOPED_TRACE(function + ": " + gdbm_strerror(error));
      GdbmWatch watch;
      watch.FailFrom(function, 1, error);
      EXPECT_EQ(StandardErrorOf([&] { action(error); }), lines(error));
    }
  }

  // Returns the lines of a flush that could write none of `keys`.
  static std::string CouldNotWriteEach(const std::vector<const char*>& keys, int error) {
    std::string lines;
    for (const char* key : keys) lines += CouldNotWrite(key, error) + "\n";
    return lines;
  }

  // Once for each error of a store: runs `change`, and then with every store failing `action`,
  // whose flush must say that it could not write `keys`.
  void FailStores(const std::vector<const char*>& keys, const std::function<void(int)>& change,
                  const std::function<int()>& action) {
    for (int error : ErrorsOf("store")) {
      SCOPED_TRACE(gdbm_strerror(error));
      change(error);
      GdbmWatch watch;
      watch.FailFrom("store", 1, error);
      EXPECT_EQ(StandardErrorOf([&] { EXPECT_EQ(action(), 0); }), CouldNotWriteEach(keys, error));
    }
  }

  void AddDocumentOf(int error) {
    engine_.AddDocumentWords(std::to_string(error).c_str(), "cat dog");
  }
};

TEST_F(GdbmFaultMethodsTest, PutReturnsTheErrorNumber) {
  WithEachError("store", [&](int error) {
    EXPECT_EQ(engine_.DBPutTitle("a", "new"), error);
    EXPECT_EQ(engine_.DBPutSummary("a", "new"), error);
    EXPECT_EQ(engine_.DBPutUser("new", "new"), error);
    EXPECT_EQ(engine_.DBPutWords("stop", "new"), error);
    EXPECT_EQ(engine_.PutOptions(), error);
  });
  const Records stored = Stored();
  EXPECT_EQ(stored.at("t-a"), "title");
  EXPECT_EQ(stored.at("s-a"), "summary");
  EXPECT_EQ(stored.count("u-new"), 0u);
}

TEST_F(GdbmFaultMethodsTest, OptionFlagsChangeInMemoryAlone) {
  WithEachError("store", [&](int) {
    EXPECT_EQ(engine_.SetOptionFlag(4), 0);
    EXPECT_EQ(engine_.Options(), 4u);
    EXPECT_EQ(engine_.UnsetOptionFlag(4), 0);
    EXPECT_EQ(engine_.Options(), 0u);
    EXPECT_EQ(engine_.SetOptionFlag(8), 0);
    engine_.UnsetOptionFlag(8);
  });
}

TEST_F(GdbmFaultMethodsTest, GetReturnsNull) {
  WithEachError("fetch", [&](int) {
    EXPECT_EQ(engine_.DBGetTitle("a"), nullptr);
    EXPECT_EQ(engine_.DBGetSummary("a"), nullptr);
    EXPECT_EQ(engine_.DBGetUser("a"), nullptr);
    EXPECT_EQ(engine_.DBGetWords("stop"), nullptr);
  });
  EXPECT_STREQ(engine_.DBGetTitle("a"), "title");
}

TEST_F(GdbmFaultMethodsTest, DelNeedsToSeeTheText) {
  WithEachError("fetch", [&](int) {
    EXPECT_EQ(engine_.DBDelTitle("a"), -1);
    EXPECT_EQ(engine_.DBDelSummary("a"), -1);
    EXPECT_EQ(engine_.DBDelUser("a"), -1);
  });
  EXPECT_EQ(Stored().at("t-a"), "title");
}

TEST_F(GdbmFaultMethodsTest, DelDoesNotReportThatGdbmKeptTheText) {
  WithEachError("delete", [&](int) {
    EXPECT_EQ(engine_.DBDelTitle("a"), 0);
    EXPECT_EQ(engine_.DBDelSummary("a"), 0);
    EXPECT_EQ(engine_.DBDelUser("a"), 0);
  });
  EXPECT_EQ(Stored().at("t-a"), "title");
}

TEST_F(GdbmFaultMethodsTest, DocumentsThatCannotBeReadAreUnknownAndStay) {
  WithEachError("fetch", [&](int error) {
    const bool is_missing = error == GDBM_ITEM_NOT_FOUND;
    EXPECT_EQ(engine_.DocumentTimestamp("a"), 0u);
    EXPECT_EQ(engine_.RemoveDocumentWords("a"), is_missing ? 1 : -1);
    EXPECT_EQ(engine_.MoveDocumentWords("a", "new"), is_missing ? -1 : -2);
    EXPECT_EQ(engine_.QueryWord("cat"), -1);
  });
  EXPECT_NE(engine_.DocumentTimestamp("a"), 0u);
}

TEST_F(GdbmFaultMethodsTest, DocumentThatCannotBeDeletedIsRemovedAllTheSame) {
  WithEachError("delete", [&](int) { EXPECT_EQ(engine_.RemoveDocumentWords("a"), 0); });
}

TEST_F(GdbmFaultMethodsTest, DocumentThatCannotBeDeletedMovesAllTheSame) {
  WithEachError("delete", [&](int) { EXPECT_EQ(engine_.MoveDocumentWords("a", "new"), 0); });
}

TEST_F(GdbmFaultMethodsTest, MoveSaysThatTheNameIsMissing) {
  GdbmWatch watch;
  watch.Fail("fetch", 2, GDBM_ITEM_NOT_FOUND);
  int result = 0;
  EXPECT_EQ(StandardErrorOf([&] { result = engine_.MoveDocumentWords("b", "new"); }),
            "Kestan: Could not fetch document for code 2 (oops!)\n");
  EXPECT_EQ(result, -1);
}

TEST_F(GdbmFaultMethodsTest, MoveNeedsToReadTheName) {
  for (int error : ErrorsOf("fetch")) {
    if (error == GDBM_ITEM_NOT_FOUND) continue;
    GdbmWatch watch;
    watch.Fail("fetch", 2, error);
    EXPECT_EQ(StandardErrorOf([&] { EXPECT_EQ(engine_.MoveDocumentWords("b", "new"), -2); }), "");
    EXPECT_EQ(watch.Count("store") + watch.Count("delete"), 0u);
    engine_.FlushIndex();
  }
}

TEST_F(GdbmFaultMethodsTest, RemoveNeedsToReadTheRemovedCodes) {
  for (int error : ErrorsOf("fetch")) {
    if (error == GDBM_ITEM_NOT_FOUND) continue;  // there are none then
    GdbmWatch watch;
    watch.Fail("fetch", 2, error);
    EXPECT_EQ(engine_.RemoveDocumentWords("b"), -1);
    EXPECT_EQ(watch.Count("store") + watch.Count("delete"), 0u);
    engine_.FlushIndex();
  }
}

TEST_F(GdbmFaultMethodsTest, AddListsNewWordsThatItCannotStore) {
  WithEachError("store", [&](int error) {
    const std::string word = "new" + std::to_string(error);
    EXPECT_EQ(engine_.AddDocumentWords("d", ("cat " + word).c_str()), word + "\n");
    engine_.RemoveDocumentWords("d");
  });
}

TEST_F(GdbmFaultMethodsTest, AddDoesNothingWithoutTheCounter) {
  for (int error : ErrorsOf("fetch")) {
    if (error == GDBM_ITEM_NOT_FOUND) continue;  // there is none then, and counting begins
    GdbmWatch watch;
    watch.FailFrom("fetch", 1, error);
    EXPECT_EQ(StandardErrorOf([&] { EXPECT_STREQ(engine_.AddDocumentWords("d", "new"), ""); }), "");
    EXPECT_EQ(watch.Count("store"), 0u);
  }
  EXPECT_EQ(engine_.DocumentTimestamp("d"), 0u);
}

TEST_F(GdbmFaultMethodsTest, FlushPrintsALineForEachRecordThatItCannotWrite) {
  FailStores(
      {"cat", "dog", "g-code"}, [&](int error) { AddDocumentOf(error); },
      [&] { return engine_.FlushIndex(); });
}

TEST_F(GdbmFaultMethodsTest, FlushWritesTheRecordsAroundOneThatItCannotWrite) {
  AddDocumentOf(0);
  GdbmWatch watch;
  watch.Fail("store", 2, GDBM_FILE_WRITE_ERROR);
  EXPECT_EQ(StandardErrorOf([&] { engine_.FlushIndex(); }),
            CouldNotWriteEach({"dog"}, GDBM_FILE_WRITE_ERROR));
  const Records stored = Stored();
  EXPECT_EQ(stored.at("cat"), kestan_tests::Units({1, 1, 1, 2, 1, 1, 3, 1, 1, 4, 1, 1}));
  EXPECT_EQ(stored.at("dog"), kestan_tests::Units({1, 1, 2, 2, 1, 2, 3, 1, 2}));
  EXPECT_EQ(stored.at("g-code"), kestan_tests::Units({4}));
}

TEST_F(GdbmFaultMethodsTest, ClosePrintsALineForEachRecordThatItCannotWrite) {
  const auto change = [&](int error) {
    engine_.OpenIndex(path_.c_str(), 1);
    AddDocumentOf(error);
  };
  engine_.CloseIndex();
  FailStores({"cat", "dog", "g-code"}, change, [&] { return engine_.CloseIndex(); });
}

TEST_F(GdbmFaultMethodsTest, ShrinkPrintsALineForEachRecordThatItCannotWrite) {
  const auto change = [&](int error) {
    AddDocumentOf(error);
    engine_.RemoveDocumentWords(std::to_string(error).c_str());
    engine_.FlushIndex();
  };
  FailStores({"cat", "dog", "g-avail"}, change, [&] { return engine_.ShrinkIndex(); });
}

TEST_F(GdbmFaultMethodsTest, WhatGdbmSaysOfTheFileAsAWholeIsNotReported) {
  for (const char* function : {"sync", "reorganize", "close", "setopt"}) {
    WithEachError(function, [&](int) {
      EXPECT_EQ(engine_.FlushIndex(), 0);
      EXPECT_EQ(engine_.ShrinkIndex(), 0);
      EXPECT_EQ(engine_.CloseIndex(), 0);
      EXPECT_EQ(engine_.OpenIndex(path_.c_str(), 1), 0);
      EXPECT_EQ(engine_.CopyIndexTo((folder_ / "copy").c_str()), 0);
    });
  }
  EXPECT_STREQ(engine_.DBGetTitle("a"), "title");
}

TEST_F(GdbmFaultMethodsTest, OpenReturnsMinusOneAndLeavesTheEngineClosed) {
  engine_.CloseIndex();
  for (int mode : {0, 1}) {
    WithEachError("open", [&](int) { EXPECT_EQ(engine_.OpenIndex(path_.c_str(), mode), -1); });
  }
  EXPECT_EQ(engine_.OpenIndex(path_.c_str(), 1), 0);
}

TEST_F(GdbmFaultMethodsTest, OpenNeedsToReadTheOptions) {
  engine_.CloseIndex();
  for (int error : ErrorsOf("fetch")) {
    if (error == GDBM_ITEM_NOT_FOUND) continue;  // the file has none then
    GdbmWatch watch;
    watch.Fail("fetch", 1, error);
    EXPECT_EQ(engine_.OpenIndex(path_.c_str(), 1), -1);
    EXPECT_EQ(kestan_tests::CountOpenFiles(), 0u);
  }
  EXPECT_EQ(engine_.OpenIndex(path_.c_str(), 1), 0);
}

TEST_F(GdbmFaultMethodsTest, OpenGoesOnWithoutStoringTheOptions) {
  engine_.CloseIndex();
  WithEachError("store", [&](int) {
    EXPECT_EQ(engine_.OpenIndex((folder_ / "new").c_str(), 1), 0);
    engine_.CloseIndex();
  });
}

TEST_F(GdbmFaultMethodsTest, CopySaysThatItCannotOpen) {
  const std::string copy = folder_ / "copy";
  WithEachError(
      "open", [&](int) { EXPECT_EQ(engine_.CopyIndexTo(copy.c_str()), -1); },
      [&](int error) {
        return "Kestan: Could not open index file '" + copy + "' -- " + gdbm_strerror(error);
      });
}

TEST_F(GdbmFaultMethodsTest, CopyDoesNotReportWhatItCouldNotStore) {
  WithEachError("store",
                [&](int) { EXPECT_EQ(engine_.CopyIndexTo((folder_ / "copy").c_str()), 0); });
}

TEST_F(GdbmFaultMethodsTest, WalksEndWhereAKeyCannotBeRead) {
  for (const char* function : {"firstkey", "nextkey"}) {
    const std::size_t most = function == std::string("nextkey") ? 1 : 0;  // records
    const std::string copy = folder_ / function;
    WithEachError(function, [&](int) {
      EXPECT_LE(std::string(engine_.ListDocuments()).size(), most * std::string("a\n").size());
      EXPECT_LE(std::string(engine_.CommonWords(0, -1)).size(), most * std::string("cat\n").size());
      EXPECT_EQ(engine_.CopyIndexTo(copy.c_str()), 0);
    });
    EXPECT_EQ(kestan_tests::Dump(copy).size(), most);
  }
}

TEST_F(GdbmFaultMethodsTest, PositionsStayWhereTheWalkBreaksOff) {
  for (const char* function : {"firstkey", "nextkey"}) {
    for (int error : ErrorsOf(function)) {
      if (error == GDBM_ITEM_NOT_FOUND) continue;  // looks like the end
      GdbmWatch watch;
      watch.Fail(function, 1, error);
      EXPECT_EQ(StandardErrorOf([&] { EXPECT_EQ(engine_.SetOptionFlag(1), -3); }), "");
      EXPECT_EQ(watch.Count("store"), 0u);
    }
  }
  EXPECT_EQ(engine_.Options(), 0u);
}

TEST_F(GdbmFaultMethodsTest, ListsAreEmptyWithoutTheCounter) {
  WithEachError("fetch", [&](int) {
    EXPECT_STREQ(engine_.ListDocuments(), "");
    EXPECT_STREQ(engine_.CommonWords(0, -1), "");
  });
}

TEST_F(GdbmFaultMethodsTest, ListingLeavesOutNamesThatCannotBeRead) {
  const int id = engine_.QueryWord("cat");
  WithEachError("fetch", [&](int) { EXPECT_STREQ(engine_.QueryResults(id), ""); });
  EXPECT_EQ(Listing(id), "100 a\n100 b\n");
}

TEST_F(GdbmFaultMethodsTest, ComplementEndsTheProcessWithoutTheCounter) {
  constexpr int kNoSet = 0;  // counts as empty
  for (int error : ErrorsOf("fetch")) {
    GdbmWatch watch;
    watch.FailFrom("fetch", 1, error);
    EXPECT_EXIT(engine_.QueryNegate(kNoSet), testing::ExitedWithCode(1),
                "^Kestan: Could not locate global-code \\(oops!\\)\n$");
  }
}

}  // namespace
}  // namespace kestan_faults
