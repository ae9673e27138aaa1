// SPDX-License-Identifier: GPL-3.0-or-later
// The option flags, and what flag 1 does to the words' records.
#include <climits>

#include "tests/support/gdbm_calls.h"
#include "tests/support/index_test.h"

namespace kestan_tests {
namespace {

using Lines = std::vector<std::string>;

std::string Flags(unsigned long flags) {
  return Units({static_cast<unsigned>(flags & 0xffff), static_cast<unsigned>(flags >> 16)});
}

const std::string kGetLine = "Kestan: Call to database::get without an open database\n";
const std::string kPutLine = "Kestan: Call to database::put without an open database\n";
const std::string kFirstLine = "Kestan: Call to database::first without an open database\n";

using OptionsTest = IndexTest;

TEST_F(OptionsTest, ANewIndexHasNoneAndSaysSo) {
  EXPECT_EQ(engine_.Options(), 0u);
  EXPECT_EQ(Stored(), (Records{{"g-opts", std::string(4, '\0')}}));
}

TEST_F(OptionsTest, AnIndexThatWasOpenedOnceHoldsTheRecord) {
  engine_.CloseIndex();
  Plant(path_, {{"word", ""}});
  engine_.OpenIndex(path_.c_str(), 1);
  EXPECT_EQ(engine_.Options(), 0u);
  EXPECT_EQ(Stored().at("g-opts"), std::string(4, '\0'));
}

TEST_F(OptionsTest, AreLoadedWhenTheIndexIsOpened) {
  PlantAndReopen({{"g-opts", Flags(0x87654322)}});
  EXPECT_EQ(engine_.Options(), 0x87654322u);
}

TEST_F(OptionsTest, AskingForThemDoesNotTouchTheFile) {
  engine_.FlushIndex();  // a look at the record would have to read it now
  GdbmWatch gdbm;
  EXPECT_EQ(engine_.Options(), 0u);
  EXPECT_TRUE(gdbm.Calls().empty());
}

TEST_F(OptionsTest, LoadingDoesNotStoreThem) {
  PlantAndReopen({{"g-opts", Flags(4)}});
  GdbmWatch gdbm;
  engine_.GetOptions();
  EXPECT_EQ(gdbm.Count("store"), 0u);
}

TEST_F(OptionsTest, OfALongerRecordAreItsFirstFourBytes) {
  PlantAndReopen({{"g-opts", Flags(4) + "more"}});
  EXPECT_EQ(engine_.Options(), 4u);
}

TEST_F(OptionsTest, OfAShorterRecordLackTheMissingBytes) {
  const std::string all = Flags(0x04030202);
  const unsigned long expected[] = {0, 0x02, 0x0202, 0x030202};
  for (std::size_t size = 0; size < 4; ++size) {
    PlantAndReopen({{"g-opts", all.substr(0, size)}});
    EXPECT_EQ(engine_.Options(), expected[size]);
  }
}

TEST_F(OptionsTest, CanBeLoadedAgain) {
  EXPECT_EQ(engine_.SetOptionFlag(4), 0);
  engine_.GetOptions();
  EXPECT_EQ(engine_.Options(), 4u);
}

TEST_F(OptionsTest, LoadingAnAbsentRecordMakesOneOfZero) {
  engine_.SetOptionFlag(4);
  engine_.CloseIndex();
  std::filesystem::remove(path_);
  Plant(path_, {});
  engine_.OpenIndex(path_.c_str(), 1);
  EXPECT_EQ(engine_.Options(), 0u);
  EXPECT_EQ(Stored().at("g-opts"), Flags(0));
}

TEST_F(OptionsTest, AreStoredAsFourLittleEndianBytes) {
  EXPECT_EQ(engine_.SetOptionFlag(0x87654322), 0);
  EXPECT_EQ(Stored().at("g-opts"), "\x22\x43\x65\x87");
}

TEST_F(OptionsTest, AreStoredAtOnce) {
  GdbmWatch gdbm;
  engine_.SetOptionFlag(4);
  engine_.UnsetOptionFlag(4);
  EXPECT_EQ(engine_.PutOptions(), 0);
  EXPECT_EQ(gdbm.Lines(), (Lines{"store g-opts", "store g-opts", "store g-opts"}));
  EXPECT_EQ(gdbm.Calls()[0].value, Flags(4));
  EXPECT_EQ(gdbm.Calls()[1].value, Flags(0));
}

TEST_F(OptionsTest, StoringReturnsGdbmsError) {
  GdbmWatch gdbm;
  gdbm.Fail("store", 1, GDBM_FILE_WRITE_ERROR);
  EXPECT_EQ(StandardErrorOf([&] { EXPECT_EQ(engine_.PutOptions(), GDBM_FILE_WRITE_ERROR); }), "");
}

TEST_F(OptionsTest, AFailureToStoreThemIsNotReported) {
  GdbmWatch gdbm;
  gdbm.Fail("store", 1, GDBM_FILE_WRITE_ERROR);
  gdbm.Fail("store", 2, GDBM_FILE_WRITE_ERROR);
  EXPECT_EQ(StandardErrorOf([&] { EXPECT_EQ(engine_.SetOptionFlag(6), 0); }), "");
  EXPECT_EQ(StandardErrorOf([&] { EXPECT_EQ(engine_.UnsetOptionFlag(2), 0); }), "");
  EXPECT_EQ(engine_.Options(), 4u);
}

TEST_F(OptionsTest, NoFlagsCannotBeSetOrCleared) {
  EXPECT_EQ(engine_.SetOptionFlag(0), -1);
  EXPECT_EQ(engine_.UnsetOptionFlag(0), -1);
}

#if ULONG_MAX > 0xffffffff
TEST_F(OptionsTest, FlagsAreTheLow32BitsOfTheArgument) {
  EXPECT_EQ(engine_.SetOptionFlag(0x100000000), -1);
  EXPECT_EQ(engine_.UnsetOptionFlag(0x100000000), -1);
  EXPECT_EQ(engine_.SetOptionFlag(0x100000004), 0);
  EXPECT_EQ(engine_.Options(), 4u);
  EXPECT_EQ(engine_.UnsetOptionFlag(0x200000004), 0);
  EXPECT_EQ(engine_.Options(), 0u);
}
#endif

TEST_F(OptionsTest, SettingAddsFlags) {
  EXPECT_EQ(engine_.SetOptionFlag(4), 0);
  EXPECT_EQ(engine_.SetOptionFlag(8 | 0x80000000), 0);
  EXPECT_EQ(engine_.Options(), 0x8000000cu);
}

TEST_F(OptionsTest, AMaskThatOverlapsIsIgnoredWhole) {
  PlantAndReopen({{"g-opts", Flags(4)}, {"word", Units({7, 1, 10})}});
  GdbmWatch gdbm;
  EXPECT_EQ(engine_.SetOptionFlag(5), 0);
  EXPECT_EQ(engine_.SetOptionFlag(4), 0);
  EXPECT_EQ(engine_.Options(), 4u);
  EXPECT_TRUE(gdbm.Calls().empty());
  EXPECT_EQ(Stored().at("word"), Units({7, 1, 10}));
}

TEST_F(OptionsTest, ClearingTakesFlagsAway) {
  engine_.SetOptionFlag(0xe);
  EXPECT_EQ(engine_.UnsetOptionFlag(0x14), 0);
  EXPECT_EQ(engine_.Options(), 0xau);
  EXPECT_EQ(Stored().at("g-opts"), Flags(0xa));
}

TEST_F(OptionsTest, ClearingWhatIsNotSetChangesNothing) {
  engine_.SetOptionFlag(4);
  GdbmWatch gdbm;
  EXPECT_EQ(engine_.UnsetOptionFlag(8), 0);
  EXPECT_EQ(engine_.UnsetOptionFlag(1), 0);
  EXPECT_EQ(engine_.UnsetOptionFlag(9), 0);
  EXPECT_EQ(engine_.Options(), 4u);
  EXPECT_TRUE(gdbm.Calls().empty());
}

TEST_F(OptionsTest, FlagOneCannotBeCleared) {
  engine_.SetOptionFlag(5);
  GdbmWatch gdbm;
  EXPECT_EQ(engine_.UnsetOptionFlag(1), -2);
  EXPECT_EQ(engine_.UnsetOptionFlag(5), -2);
  EXPECT_EQ(engine_.Options(), 5u);
  EXPECT_TRUE(gdbm.Calls().empty());
}

TEST_F(OptionsTest, AMaskWithFlagOneIsRefusedForTheSakeOfAnyOtherFlag) {
  engine_.SetOptionFlag(4);
  EXPECT_EQ(engine_.UnsetOptionFlag(5), -2);
  EXPECT_EQ(engine_.Options(), 4u);
}

TEST_F(OptionsTest, FlagsOtherThanOneConvertNothing) {
  PlantAndReopen({{"word", Units({7, 1, 10})}});
  GdbmWatch gdbm;
  engine_.SetOptionFlag(0xfffffffe);
  EXPECT_EQ(gdbm.Lines(), (Lines{"store g-opts"}));
  EXPECT_EQ(Stored().at("word"), Units({7, 1, 10}));
}

TEST_F(OptionsTest, WithoutAnIndexTheWordInMemoryChangesAnyway) {
  engine_.CloseIndex();
  EXPECT_EQ(StandardErrorOf([&] { EXPECT_EQ(engine_.SetOptionFlag(4), 0); }), kPutLine);
  EXPECT_EQ(engine_.Options(), 4u);
  EXPECT_EQ(StandardErrorOf([&] { EXPECT_EQ(engine_.UnsetOptionFlag(4), 0); }), kPutLine);
  EXPECT_EQ(engine_.Options(), 0u);
  EXPECT_EQ(StandardErrorOf([&] { EXPECT_EQ(engine_.SetOptionFlag(1), 0); }),
            kPutLine + kFirstLine);
  EXPECT_EQ(engine_.Options(), 1u);
}

TEST_F(OptionsTest, WithoutAnIndexLoadingGivesZero) {
  engine_.SetOptionFlag(4);
  engine_.CloseIndex();
  EXPECT_EQ(StandardErrorOf([&] { engine_.GetOptions(); }), kGetLine + kPutLine);
  EXPECT_EQ(engine_.Options(), 0u);
}

TEST_F(OptionsTest, WithoutAnIndexStoringFails) {
  engine_.CloseIndex();
  EXPECT_EQ(StandardErrorOf([&] { EXPECT_EQ(engine_.PutOptions(), -1); }), kPutLine);
}

// Plants a record for "word", sets flag 1 and returns what the record becomes.
class PositionsConversionTest : public IndexTest {
 protected:
  std::string Converted(const std::string& record) {
    engine_.CloseIndex();
    std::filesystem::remove(path_);
    Plant(path_, {{"word", record}});
    engine_.OpenIndex(path_.c_str(), 1);
    engine_.SetOptionFlag(1);
    return Stored().at("word");
  }
};

TEST_F(PositionsConversionTest, KeepsTheCodesAlone) {
  EXPECT_EQ(Converted(Units({7, 2, 10, 20, 9, 0})), Units({7, 9}));
  EXPECT_EQ(Converted(Units({7, 1, 10})), Units({7}));
  EXPECT_EQ(Converted(Units({3, 3, 1, 2, 3, 2, 1, 65535, 1, 0})), Units({3, 2, 1}));
}

TEST_F(PositionsConversionTest, AnEmptyRecordStaysEmpty) { EXPECT_EQ(Converted(""), ""); }

TEST_F(PositionsConversionTest, OfADamagedRecordStaysWithinIt) {
  EXPECT_EQ(Converted(Units({7})), Units({7}));
  EXPECT_EQ(Converted(Units({7, 65535, 1, 2})), Units({7}));
  EXPECT_EQ(Converted(Units({7, 1})), Units({7}));
  EXPECT_EQ(Converted(Units({7, 1, 10, 9})), Units({7, 9}));
  EXPECT_EQ(Converted(Units({7, 1, 10}) + "x"), Units({7}));
  EXPECT_EQ(Converted("x"), "");
}

TEST_F(PositionsConversionTest, IsMadeOnce) {
  EXPECT_EQ(Converted(Units({7, 2, 10, 20, 9, 0})), Units({7, 9}));
  engine_.OpenIndex(path_.c_str(), 1);
  EXPECT_EQ(engine_.SetOptionFlag(1), 0);
  EXPECT_EQ(Stored().at("word"), Units({7, 9}));
}

TEST_F(PositionsConversionTest, ReachesTheFileWithTheNextFlush) {
  PlantAndReopen({{"word", Units({7, 2, 10, 20})}});
  GdbmWatch gdbm;
  engine_.SetOptionFlag(1);
  EXPECT_EQ(gdbm.Count("store"), 1u);  // the flags
  EXPECT_EQ(gdbm.Count("sync"), 0u);
  engine_.FlushIndex();
  EXPECT_EQ(gdbm.Calls().end()[-2].key, "word");
  EXPECT_EQ(gdbm.Calls().end()[-2].value, Units({7}));
}

TEST_F(PositionsConversionTest, RecordsThatStayAsTheyAreAreWrittenToo) {
  PlantAndReopen({{"code", Units({7})}, {"empty", ""}, {"word", Units({7, 1, 10})}});
  GdbmWatch gdbm;
  engine_.SetOptionFlag(1);
  engine_.FlushIndex();
  Lines writes;
  for (const GdbmCall& call : gdbm.Calls()) {
    if (call.function == "store") writes.push_back(call.key);
  }
  EXPECT_EQ(writes, (Lines{"g-opts", "code", "empty", "word"}));
}

TEST_F(PositionsConversionTest, IsSeenByQueriesBeforeTheFlush) {
  engine_.AddDocumentWords("name", "word word");
  engine_.SetOptionFlag(1);
  const int id = engine_.QueryWord("word");
  EXPECT_EQ(Listing(id), "100 name\n");
}

TEST_F(PositionsConversionTest, FollowsTheFlagsInAnyMaskThatHoldsOne) {
  PlantAndReopen({{"word", Units({7, 2, 10, 20})}});
  EXPECT_EQ(engine_.SetOptionFlag(9), 0);
  EXPECT_EQ(engine_.Options(), 9u);
  EXPECT_EQ(Stored().at("word"), Units({7}));
}

TEST_F(PositionsConversionTest, LeavesSystemRecordsAlone) {
  const std::string postings = Units({7, 2, 10, 20});
  Records records;
  for (const char* key : {"g-code", "g-avail", "g-deleted", "d-x", "c-xy", "w-x", "u-x", "s-x",
                          "t-x", "x-y", "---"}) {
    records[key] = postings;
  }
  PlantAndReopen(records);
  engine_.SetOptionFlag(1);
  records["g-opts"] = Flags(1);
  EXPECT_EQ(Stored(), records);
}

TEST_F(PositionsConversionTest, TakesEveryOtherKeyForAWord) {
  Records records;
  for (const char* key : {"a", "-", "a-", "--", "ab", "abc", "a_b", "-ab", "ab-"}) {
    records[key] = Units({7, 2, 10, 20});
  }
  PlantAndReopen(records);
  engine_.SetOptionFlag(1);
  for (auto& [key, value] : records) value = Units({7});
  records["g-opts"] = Flags(1);
  EXPECT_EQ(Stored(), records);
}

TEST_F(PositionsConversionTest, CoversALargeIndex) {
  Records records;
  for (unsigned i = 0; i < 3000; ++i) records["word" + std::to_string(i)] = Units({i, 1, 10});
  PlantAndReopen(records);
  engine_.SetOptionFlag(1);
  for (unsigned i = 0; i < 3000; ++i) records["word" + std::to_string(i)] = Units({i});
  records["g-opts"] = Flags(1);
  EXPECT_EQ(Stored(), records);
}

TEST_F(PositionsConversionTest, NewDocumentsAddCodesAlone) {
  engine_.AddDocumentWords("first", "word word");
  engine_.SetOptionFlag(1);
  engine_.AddDocumentWords("second", "word word");
  EXPECT_EQ(Stored().at("word"), Units({1, 2}));
}

}  // namespace
}  // namespace kestan_tests
