// SPDX-License-Identifier: GPL-3.0-or-later
// Opening, flushing and closing an index.
#include <fstream>

#include "tests/support/gdbm_calls.h"
#include "tests/support/index_test.h"

namespace kestan_tests {
namespace {

using Lines = std::vector<std::string>;

const std::string kNoOptions(4, '\0');

// An engine without an index.
class ClosedIndexTest : public IndexTest {
 protected:
  void SetUp() override {}

  // Adds a document and returns the key of its name, which holds its code.
  std::string NameKeyOfNewDocument(const std::string& name) {
    engine_.AddDocumentWords(name.c_str(), "");
    for (const auto& [key, value] : Stored()) {
      if (key.substr(0, 2) == "c-" && value == name) return key;
    }
    return "none";
  }
};

using LifecycleTest = IndexTest;

TEST_F(ClosedIndexTest, ReadingAMissingFileFailsInSilence) {
  EXPECT_EQ(StandardErrorOf([&] { EXPECT_EQ(engine_.OpenIndex(path_.c_str(), 0), -1); }), "");
  EXPECT_FALSE(std::filesystem::exists(path_));
}

TEST_F(ClosedIndexTest, WritingAMissingFileCreatesIt) {
  EXPECT_EQ(StandardErrorOf([&] { EXPECT_EQ(engine_.OpenIndex(path_.c_str(), 1), 0); }), "");
  EXPECT_EQ(engine_.Options(), 0u);
  EXPECT_EQ(Stored(), (Records{{"g-opts", kNoOptions}}));
}

TEST_F(ClosedIndexTest, OptionsAreLoadedBeforeTheReusableCodes) {
  Plant(path_, {{"g-opts", kNoOptions}, {"g-avail", Units({3})}});
  const GdbmWatch gdbm;
  EXPECT_EQ(engine_.OpenIndex(path_.c_str(), 1), 0);
  EXPECT_EQ(gdbm.Lines(), (Lines{"fetch g-opts", "fetch g-avail"}));
}

TEST_F(ClosedIndexTest, AnyModeButZeroWrites) {
  for (int mode : {1, 2, -1}) {
    EXPECT_EQ(engine_.OpenIndex(path_.c_str(), mode), 0);
    EXPECT_EQ(engine_.DBPutTitle("name", "title"), 0);
    engine_.CloseIndex();
  }
}

TEST_F(ClosedIndexTest, AFileOfAnotherKindFailsInSilence) {
  std::ofstream(path_) << std::string(4096, 'x');
  EXPECT_EQ(StandardErrorOf([&] {
              EXPECT_EQ(engine_.OpenIndex(path_.c_str(), 0), -1);
              EXPECT_EQ(engine_.OpenIndex(path_.c_str(), 1), -1);
            }),
            "");
}

TEST_F(ClosedIndexTest, AFailedOpenLeavesItClosed) {
  EXPECT_EQ(engine_.OpenIndex(path_.c_str(), 0), -1);
  EXPECT_EQ(engine_.OpenIndex(path_.c_str(), 1), 0);
}

TEST_F(ClosedIndexTest, AReaderReadsAndIsRefusedWriting) {
  Plant(path_, {{"g-opts", kNoOptions}, {"t-name", "title"}});
  EXPECT_EQ(engine_.OpenIndex(path_.c_str(), 0), 0);
  EXPECT_STREQ(engine_.DBGetTitle("name"), "title");
  EXPECT_EQ(StandardErrorOf(
                [&] { EXPECT_EQ(engine_.DBPutTitle("name", "new"), GDBM_READER_CANT_STORE); }),
            "");
}

TEST_F(ClosedIndexTest, AReaderOfAnIndexWithoutOptionsOpensInSilence) {
  Plant(path_, {{"t-name", "title"}});
  EXPECT_EQ(StandardErrorOf([&] { EXPECT_EQ(engine_.OpenIndex(path_.c_str(), 0), 0); }), "");
  EXPECT_EQ(engine_.Options(), 0u);
  EXPECT_EQ(Stored(), (Records{{"t-name", "title"}}));
}

TEST_F(ClosedIndexTest, ReusableCodesAreLoaded) {
  Plant(path_, {{"g-avail", Units({5, 9})}, {"g-code", Units({20})}});
  engine_.OpenIndex(path_.c_str(), 1);
  EXPECT_EQ(NameKeyOfNewDocument("name"), "c-" + Units({9}));
}

TEST_F(ClosedIndexTest, WithoutReusableCodesTheFirstCodeIsOne) {
  engine_.OpenIndex(path_.c_str(), 1);
  EXPECT_EQ(NameKeyOfNewDocument("name"), "c-" + Units({1}));
}

TEST_F(ClosedIndexTest, OpeningWritesNoReusableCodes) {
  Plant(path_, {{"g-avail", Units({5, 9})}});
  engine_.OpenIndex(path_.c_str(), 1);
  EXPECT_EQ(Stored(), (Records{{"g-avail", Units({5, 9})}, {"g-opts", kNoOptions}}));
}

TEST_F(ClosedIndexTest, ClosingStoresNoListOfCodesOfItsOwn) {
  engine_.OpenIndex(path_.c_str(), 1);
  EXPECT_EQ(Stored().count("g-avail"), 0u);
}

TEST_F(ClosedIndexTest, HalfACodeIsNoReusableCode) {
  Plant(path_, {{"g-avail", "\x05"}});
  engine_.OpenIndex(path_.c_str(), 1);
  EXPECT_EQ(NameKeyOfNewDocument("name"), "c-" + Units({1}));
}

TEST_F(ClosedIndexTest, TheReusableCodesOfOneIndexAreNotThoseOfTheNext) {
  Plant(path_, {{"g-avail", Units({5})}, {"g-code", Units({20})}});
  engine_.OpenIndex(path_.c_str(), 1);
  engine_.CloseIndex();
  const std::string other_path = folder_ / "other";
  engine_.OpenIndex(other_path.c_str(), 1);
  engine_.AddDocumentWords("name", "");
  engine_.CloseIndex();
  const Records stored = Dump(other_path);
  EXPECT_EQ(stored.at("c-" + Units({1})), "name");
  EXPECT_EQ(stored.at("g-code"), Units({1}));
}

TEST_F(ClosedIndexTest, TheReusableCodesOfAnotherIndexTakeTheirPlace) {
  const std::string other_path = folder_ / "other";
  Plant(path_, {{"g-avail", Units({5})}, {"g-code", Units({20})}});
  Plant(other_path, {{"g-avail", Units({7})}, {"g-code", Units({20})}});
  engine_.OpenIndex(path_.c_str(), 1);
  engine_.CloseIndex();
  engine_.OpenIndex(other_path.c_str(), 1);
  engine_.AddDocumentWords("name", "");
  engine_.CloseIndex();
  EXPECT_EQ(Dump(other_path).at("c-" + Units({7})), "name");
  EXPECT_EQ(Dump(path_).at("g-avail"), Units({5}));
}

TEST_F(ClosedIndexTest, ClosingIsNoErrorAndPrintsNothing) {
  EXPECT_EQ(StandardErrorOf([&] {
              EXPECT_EQ(engine_.CloseIndex(), 0);
              EXPECT_EQ(engine_.CloseIndex(), 0);
            }),
            "");
}

TEST_F(ClosedIndexTest, FlushingReturnsZeroAndTheStoreComplains) {
  EXPECT_EQ(StandardErrorOf([&] { EXPECT_EQ(engine_.FlushIndex(), 0); }),
            "Kestan: Call to database::flush without an open database\n");
}

TEST_F(LifecycleTest, ASecondOpenIsRefusedAndChangesNothing) {
  engine_.DBPutTitle("name", "title");
  const std::string other_path = folder_ / "other";
  const std::string printed =
      StandardErrorOf([&] { EXPECT_EQ(engine_.OpenIndex(other_path.c_str(), 1), -1); });
  EXPECT_EQ(printed, "Kestan: Index file is already open\n");
  EXPECT_FALSE(std::filesystem::exists(other_path));
  EXPECT_STREQ(engine_.DBGetTitle("name"), "title");
}

TEST_F(LifecycleTest, ASecondOpenTouchesNoFile) {
  engine_.FlushIndex();  // a look at a record would have to read it now
  const GdbmWatch gdbm;
  StandardErrorOf([&] { EXPECT_EQ(engine_.OpenIndex(path_.c_str(), 1), -1); });
  EXPECT_TRUE(gdbm.Calls().empty());
  EXPECT_TRUE(gdbm.Openings().empty());
}

TEST_F(LifecycleTest, ASecondOpenKeepsTheOptions) {
  engine_.SetOptionFlag(4);
  const std::string other_path = folder_ / "other";
  Plant(other_path, {{"g-opts", std::string("\x08\0\0\0", 4)}});
  StandardErrorOf([&] { engine_.OpenIndex(other_path.c_str(), 1); });
  EXPECT_EQ(engine_.Options(), 4u);
}

TEST_F(LifecycleTest, IndexesMayBeOpenedOneAfterTheOther) {
  const std::string other_path = folder_ / "other";
  engine_.DBPutTitle("name", "first");
  EXPECT_EQ(engine_.CloseIndex(), 0);
  EXPECT_EQ(engine_.OpenIndex(other_path.c_str(), 1), 0);
  EXPECT_EQ(engine_.DBGetTitle("name"), nullptr);
  engine_.DBPutTitle("name", "second");
  engine_.CloseIndex();
  EXPECT_EQ(engine_.OpenIndex(path_.c_str(), 1), 0);
  EXPECT_STREQ(engine_.DBGetTitle("name"), "first");
}

TEST_F(LifecycleTest, ClosingWritesWhatWaits) {
  PlantAndReopen({{"word", Units({7, 1, 10})}});
  engine_.SetOptionFlag(1);
  EXPECT_EQ(Stored().at("word"), Units({7}));
}

TEST_F(LifecycleTest, ClosingTwiceReturnsZero) {
  EXPECT_EQ(engine_.CloseIndex(), 0);
  EXPECT_EQ(engine_.CloseIndex(), 0);
}

TEST_F(LifecycleTest, ClosingKeepsTheOptionsInMemory) {
  engine_.SetOptionFlag(4);
  engine_.CloseIndex();
  EXPECT_EQ(engine_.Options(), 4u);
}

TEST_F(LifecycleTest, ClosingKeepsTheScratchBuffer) {
  engine_.DBPutTitle("name", "title");
  const char* const title = engine_.DBGetTitle("name");
  engine_.CloseIndex();
  EXPECT_EQ(Kestan::WBSize, 4096u);
  EXPECT_EQ(Kestan::WordBuf, title);
  EXPECT_STREQ(title, "title");
}

TEST_F(LifecycleTest, FlushingWritesWhatWaitsAndDropsIt) {
  PlantAndReopen({{"word", Units({7, 1, 10})}});
  engine_.SetOptionFlag(1);
  GdbmWatch gdbm;
  EXPECT_EQ(engine_.FlushIndex(), 0);
  EXPECT_EQ(engine_.FlushIndex(), 0);
  EXPECT_EQ(gdbm.Lines(), (Lines{"store word", "sync", "sync"}));
}

TEST_F(LifecycleTest, FlushingReturnsZeroWhateverTheStoreReports) {
  PlantAndReopen({{"word", Units({7, 1, 10})}});
  engine_.CloseIndex();
  engine_.OpenIndex(path_.c_str(), 0);
  engine_.SetOptionFlag(1);
  EXPECT_EQ(StandardErrorOf([&] { EXPECT_EQ(engine_.FlushIndex(), 0); }),
            "Kestan: Could not write item 'word' -- Reader can't store\n");
}

TEST_F(LifecycleTest, ClosingReturnsZeroWhateverTheStoreReports) {
  PlantAndReopen({{"word", Units({7, 1, 10})}});
  engine_.CloseIndex();
  engine_.OpenIndex(path_.c_str(), 0);
  engine_.SetOptionFlag(1);
  EXPECT_EQ(StandardErrorOf([&] { EXPECT_EQ(engine_.CloseIndex(), 0); }),
            "Kestan: Could not write item 'word' -- Reader can't store\n");
  EXPECT_EQ(StandardErrorOf([&] { EXPECT_EQ(engine_.CloseIndex(), 0); }), "");
  EXPECT_EQ(Dump(path_).at("word"), Units({7, 1, 10}));
}

}  // namespace
}  // namespace kestan_tests
