// SPDX-License-Identifier: GPL-3.0-or-later
// Records that are there but cannot be read: nothing may be put in their place.
#include <gdbm.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <functional>

#include "tests/indexing/planting.h"
#include "tests/support/gdbm_calls.h"
#include "tests/support/index_test.h"

namespace kestan_tests {
namespace {

using Action = std::function<void(Kestan*)>;
using Method = std::function<int(Kestan*)>;

class UnreadableRecordTest : public testing::Test {
 protected:
  // An index with two documents, one more that is removed, and a reusable code.
  void SetUp() override {
    Kestan engine;
    engine.OpenIndex(path_.c_str(), 1);
    for (const char* name : {"a", "b", "c", "d"}) engine.AddDocumentWords(name, "cat dog");
    engine.RemoveDocumentWords("d");
    engine.ShrinkIndex();
    engine.RemoveDocumentWords("c");
    engine.CloseIndex();
    before_ = Dump(path_);
  }

  // Opens the index and runs `action`. The first fetch of `key` fails in it, and so does the one
  // `again` fetches later, where a second look comes.
  //   Returns  what the file holds then.
  Records After(const std::string& key, const Action& action, int again = 0) {
    const auto calls = FetchesOf(action);
    const auto found = std::find(calls.begin(), calls.end(), "fetch " + key);
    EXPECT_NE(found, calls.end()) << key;
    const int nth = static_cast<int>(found - calls.begin()) + 1;
    GdbmWatch watch;
    watch.Fail("fetch", nth, GDBM_FILE_READ_ERROR);
    if (again > 0) watch.Fail("fetch", nth + again, GDBM_FILE_READ_ERROR);
    Run(path_, action);
    return Dump(path_);
  }

  // The same for a method, which must return `result` then and change nothing.
  void ExpectRefusal(const std::string& key, int result, const Method& method) {
    int returned = 0;
    const auto action = [&](Kestan* engine) { returned = method(engine); };
    EXPECT_EQ(After(key, action), before_) << key;
    EXPECT_EQ(returned, result) << key;
  }

  TempDir folder_;
  const std::string path_ = folder_ / "index";
  Records before_;

 private:
  static void Run(const std::string& path, const Action& action) {
    Kestan engine;
    engine.OpenIndex(path.c_str(), 1);
    action(&engine);
  }

  // The fetches of a run on a copy in which nothing fails.
  std::vector<std::string> FetchesOf(const Action& action) {
    std::filesystem::copy_file(path_, folder_ / "copy",
                               std::filesystem::copy_options::overwrite_existing);
    GdbmWatch watch;
    Run(folder_ / "copy", action);
    std::vector<std::string> fetches;
    for (const std::string& line : watch.Lines()) {
      if (line.rfind("fetch ", 0) == 0) fetches.push_back(line);
    }
    return fetches;
  }
};

void AddDocument(Kestan* engine) { engine->AddDocumentWords("new", "cat dog"); }

TEST_F(UnreadableRecordTest, OfAWordKeepsItsPostingsWhenADocumentIsAdded) {
  const Records after = After("cat", AddDocument, 2);  // "dog" is fetched in between
  EXPECT_EQ(after.at("cat"), before_.at("cat"));
  EXPECT_EQ(after.at("dog"), before_.at("dog") + Units({4, 1, 2}));
  EXPECT_EQ(after.count("d-new"), 1u);
}

TEST_F(UnreadableRecordTest, OfAWordIsUsedWhenASecondReadFindsIt) {
  const Records after = After("dog", AddDocument);
  EXPECT_EQ(after.at("dog"), before_.at("dog") + Units({4, 1, 2}));
}

TEST_F(UnreadableRecordTest, OfTheCounterLeavesTheIndexAsItWas) {
  std::string new_words = "?";
  const Records after = After("g-code", [&](Kestan* engine) {
    engine->AddDocumentWords("x", "cat");  // takes the reusable code
    new_words = engine->AddDocumentWords("new", "cat fresh");
  });
  EXPECT_EQ(after.at("g-code"), before_.at("g-code"));
  EXPECT_EQ(after.count("d-new"), 0u);
  EXPECT_EQ(after.count("fresh"), 0u);
  EXPECT_EQ(new_words, "");
}

TEST_F(UnreadableRecordTest, OfTheCounterKeepsTheEarlierVersion) {
  std::string new_words = "?";
  const Records after = After("g-code", [&](Kestan* engine) {
    engine->AddDocumentWords("x", "cat");  // takes the reusable code
    new_words = engine->AddDocumentWords("b", "fresh");
  });
  EXPECT_EQ(new_words, "");
  EXPECT_EQ(after.at("d-b"), before_.at("d-b"));
  EXPECT_EQ(after.at("g-deleted"), before_.at("g-deleted"));
}

int RemoveB(Kestan* engine) { return engine->RemoveDocumentWords("b"); }
int MoveB(Kestan* engine) { return engine->MoveDocumentWords("b", "new"); }
int DropPositions(Kestan* engine) { return engine->SetOptionFlag(1 | 4); }

TEST_F(UnreadableRecordTest, KeepsTheDocumentFromBeingRemoved) {
  for (const char* key : {"g-deleted", "d-b"}) ExpectRefusal(key, -1, RemoveB);
}

TEST_F(UnreadableRecordTest, KeepsTheEarlierVersionOfADocument) {
  const auto add = [](Kestan* engine) {
    return static_cast<int>(std::strlen(engine->AddDocumentWords("b", "fresh")));
  };
  for (const char* key : {"g-deleted", "d-b"}) ExpectRefusal(key, 0, add);
}

TEST_F(UnreadableRecordTest, KeepsTheDocumentFromMoving) {
  for (const std::string& key : {std::string("d-b"), NameKey(2)}) ExpectRefusal(key, -2, MoveB);
}

TEST_F(UnreadableRecordTest, KeepsThePositionsOfAllWords) {
  for (const auto& [key, value] : before_) {
    if (key == "g-opts" || key == "g-avail") continue;  // read when the index is opened
    ExpectRefusal(key, -3, DropPositions);
  }
}

TEST_F(UnreadableRecordTest, LeavesTheFlagsAsTheyWere) {
  unsigned long flags = 0;
  After("dog", [&](Kestan* engine) {
    DropPositions(engine);
    flags = engine->Options();
  });
  EXPECT_EQ(flags, 0u);
}

TEST_F(UnreadableRecordTest, DoesNoHarmWhereTheNextTryReadsIt) {
  const Records after = After("g-deleted", [](Kestan* engine) {
    RemoveB(engine);
    RemoveB(engine);
    DropPositions(engine);
  });
  EXPECT_EQ(after.at("g-deleted"), Units({3, 2}));
  EXPECT_EQ(after.at("cat"), Units({1, 2, 3}));
  EXPECT_EQ(after.at("g-opts"), Units({5, 0}));
}

TEST_F(UnreadableRecordTest, DoesNotMatterToTheHostsOwnFlags) {
  Kestan engine;
  ASSERT_EQ(engine.OpenIndex(path_.c_str(), 1), 0);
  GdbmWatch watch;
  watch.FailFrom("fetch", 1, GDBM_FILE_READ_ERROR);
  EXPECT_EQ(engine.SetOptionFlag(4), 0);
}

TEST_F(UnreadableRecordTest, KeepsThePositionsWhereTheWalkBreaksOff) {
  for (const char* function : {"firstkey", "nextkey"}) {
    GdbmWatch watch;
    watch.Fail(function, 1, GDBM_FILE_READ_ERROR);
    Kestan engine;
    ASSERT_EQ(engine.OpenIndex(path_.c_str(), 1), 0);
    EXPECT_EQ(DropPositions(&engine), -3);
    engine.CloseIndex();
    EXPECT_EQ(Dump(path_), before_);
  }
}

TEST_F(UnreadableRecordTest, OfReusableCodesKeepsTheIndexFromOpening) {
  const Records after = After("g-avail", [](Kestan* engine) { engine->ShrinkIndex(); });
  EXPECT_EQ(after, before_);
}

TEST_F(UnreadableRecordTest, OfOptionsKeepsTheIndexFromOpening) {
  const Records after = After("g-opts", AddDocument);
  EXPECT_EQ(after, before_);
}

TEST_F(UnreadableRecordTest, OfAWordKeepsCodesFromBeingReused) {
  const Records after = After("cat", [](Kestan* engine) { engine->ShrinkIndex(); });
  EXPECT_EQ(after.at("cat"), before_.at("cat"));
  EXPECT_EQ(after.at("dog"), Units({1, 1, 2, 2, 1, 2}));
  EXPECT_EQ(after.at("g-deleted"), before_.at("g-deleted"));
  EXPECT_EQ(after.at("g-avail"), before_.at("g-avail"));
}

TEST_F(UnreadableRecordTest, OfAWordStaysWhereTheWalkOfAShrinkBreaksOff) {
  GdbmWatch watch;
  watch.Fail("nextkey", 2, GDBM_FILE_READ_ERROR);
  Kestan engine;
  ASSERT_EQ(engine.OpenIndex(path_.c_str(), 1), 0);
  engine.ShrinkIndex();
  engine.CloseIndex();
  EXPECT_EQ(Dump(path_).at("g-deleted"), before_.at("g-deleted"));
}

}  // namespace
}  // namespace kestan_tests
