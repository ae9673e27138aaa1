// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/maintenance/dump/dump_test.h"

#include <fstream>
#include <iterator>
#include <vector>

#include "tests/support/gdbm_calls.h"

namespace kestan_tests {
namespace {

using namespace std::string_literals;

TEST_F(DumpTest, AnEmptyFileIsTwoLines) {
  EXPECT_EQ(DumpOf(Records()), WholeDump("", 0));
  EXPECT_EQ(Load(WholeDump("", 0)), "");
  EXPECT_EQ(Dump(target_), Records());
}

TEST_F(DumpTest, RecordsAreInOrderOfTheirKeysBytes) {
  EXPECT_EQ(DumpOf({{"b", "2"}, {"a", "1"}, {"\xff", "4"}, {"ab", "3"}}),
            WholeDump("a\t1\nab\t3\nb\t2\n\\xff\t4\n", 4));
}

TEST_F(DumpTest, OnlyPrintableBytesStandAsTheyAre) {
  EXPECT_EQ(DumpOf({{"a key~", "\x1f !\\\x7f\x80\n\t\0z"s}}),
            WholeDump("a key~\t\\x1f !\\x5c\\x7f\\x80\\x0a\\x09\\x00z\n", 1));
}

TEST_F(DumpTest, KeysAndValuesMayBeEmpty) {
  const Records records = {{"", "value"}, {"key", ""}};
  EXPECT_EQ(DumpOf(records), WholeDump("\tvalue\nkey\t\n", 2));
  EXPECT_EQ(Load(DumpOf(records)), "");
  EXPECT_EQ(Dump(target_), records);
}

TEST_F(DumpTest, AKeyLikeTheLastLineIsAKey) {
  const Records records = {{"end 0 0000000000000000", ""}};
  EXPECT_EQ(Load(DumpOf(records)), "");
  EXPECT_EQ(Dump(target_), records);
}

TEST_F(DumpTest, LongRecordsGoOnInTheNextLine) {
  const std::size_t full = kestan::kMaxDumpLineBytes - 1;  // the backslash is one more
  const Records records = {{"k", std::string(full, 'v')}};
  EXPECT_EQ(DumpOf(records), WholeDump("k\t" + std::string(full - 5, 'v') + "\\\n" + "vvvvv\n", 1));
  EXPECT_EQ(Load(DumpOf(records)), "");
  EXPECT_EQ(Dump(target_), records);
}

TEST_F(DumpTest, RecordsOfSeveralLinesComeBack) {
  const Records records = {{"a", "before"},
                           {std::string(3000000, 'k'), "a long key"},
                           {"v", std::string(3000000, '\0')},
                           {"w", "after a long value"}};
  EXPECT_EQ(Load(DumpOf(records)), "");
  EXPECT_EQ(Dump(target_), records);
}

TEST_F(DumpTest, NoEscapeIsBrokenBetweenLines) {
  const std::size_t most = kestan::kMaxDumpLineBytes;
  for (const std::size_t bytes : {most - 7, most - 6, most - 5, most - 4, most - 3}) {
    const Records records = {{std::string(bytes, 'k'), "\xff\xff\xff"}};
    EXPECT_EQ(Load(DumpOf(records)), "") << bytes;
    EXPECT_EQ(Dump(target_), records) << bytes;
  }
}

TEST_F(DumpTest, NoLineIsLongerThanTheLimit) {
  constexpr std::size_t kLimit = 1048576;  // of the format, whatever the library is built with
  const std::string text = DumpOf({{std::string(3000000, '\xff'), std::string(3000000, '\0')}});
  LinesOfText lines(text);
  std::size_t longest = 0;
  for (std::string_view line; lines(&line);) longest = std::max(longest, line.size());
  EXPECT_LE(longest, kLimit);
  EXPECT_GT(longest, kLimit - 4);
}

TEST_F(DumpTest, ALoadedIndexAnswersAsTheFirstOneDid) {
  const std::string path = folder_ / "index";
  Kestan engine;
  ASSERT_EQ(engine.OpenIndex(path.c_str(), 1), 0);
  engine.AddDocumentWords("a.txt", "Hello world");
  engine.DBPutTitle("a.txt", "Greetings");
  engine.CloseIndex();
  ASSERT_EQ(Load(DumpOf(path)), "");
  EXPECT_EQ(Dump(target_), Dump(path));
  ASSERT_EQ(engine.OpenIndex(target_.c_str(), 0), 0);
  const int id = engine.QueryWord("world");
  EXPECT_STREQ(engine.QueryResults(id), "100 a.txt\n");
  engine.FreeQueryResult(id);
  EXPECT_STREQ(engine.DBGetTitle("a.txt"), "Greetings");
}

TEST_F(DumpTest, ChangesThatWaitAreDumped) {
  Database store;
  ASSERT_EQ(store.Open((folder_ / "index").c_str(), 1), 0);
  store.Put(Datum("key"), Datum("old"));
  DBDatumPtr value;
  store.Get(&value, Datum("key"));
  value.ptr->data[0] = 'O';
  value.ptr->dirty = true;
  std::string text;
  EXPECT_EQ(DumpInto(store, &text), kestan::StoreError::kNone);
  EXPECT_EQ(text, WholeDump("key\tOld\n", 1));
}

TEST_F(DumpTest, ManyRecordsDoNotStayInMemory) {
  Records records;
  for (int i = 0; i < 2500; ++i) records[std::to_string(i)] = "value";
  const std::string text = DumpOf(records);
  GdbmWatch watch;
  EXPECT_EQ(DumpOf(folder_ / "source"), text);
  EXPECT_EQ(watch.Count("sync"), 4u);  // at the start, after each 1000 records, and when closed
}

TEST_F(DumpTest, WithoutAFileNothingIsDone) {
  Database store;
  std::string text;
  const std::string said = "Kestan: Call to database::flush without an open database\n";
  EXPECT_EQ(
      StandardErrorOf([&] { EXPECT_EQ(DumpInto(store, &text), kestan::StoreError::kNotOpen); }),
      said);
  EXPECT_EQ(text, "");
  EXPECT_EQ(
      StandardErrorOf([&] { EXPECT_EQ(LoadInto(store, WholeDump("", 0)), "no file is open"); }),
      said);
}

TEST_F(DumpTest, ARecordThatCannotBeReadIsAnErrorAndNoEnd) {
  DumpOf(Records{{"a", "1"}, {"b", "2"}});
  Database store;
  ASSERT_EQ(store.Open((folder_ / "source").c_str(), 0), 0);
  GdbmWatch watch;
  watch.Fail("fetch", 2, GDBM_FILE_READ_ERROR);
  std::string text;
  EXPECT_EQ(DumpInto(store, &text), kestan::StoreError::kFileRead);
  EXPECT_EQ(text, "kestan-dump 1\na\t1\n");
}

TEST_F(DumpTest, AWalkThatBreaksOffIsAnErrorBeforeAnyLine) {
  DumpOf(Records{{"a", "1"}, {"b", "2"}});
  Database store;
  ASSERT_EQ(store.Open((folder_ / "source").c_str(), 0), 0);
  GdbmWatch watch;
  watch.Fail("nextkey", 1, GDBM_FILE_READ_ERROR);
  std::string text;
  EXPECT_EQ(DumpInto(store, &text), kestan::StoreError::kFileRead);
  EXPECT_EQ(text, "");
}

TEST_F(DumpTest, ARecordThatCannotBeWrittenIsAnError) {
  GdbmWatch watch;
  watch.Fail("store", 2, GDBM_FILE_WRITE_ERROR);
  EXPECT_EQ(Load(WholeDump("a\t1\nb\t2\nc\t3\n", 3)),
            "line 3: cannot store the record -- "s + Database::ErrorString(GDBM_FILE_WRITE_ERROR));
}

TEST_F(DumpTest, AFileThatCannotBeSyncedIsAnError) {
  GdbmWatch watch;
  watch.Fail("sync", 2, GDBM_FILE_SYNC_ERROR);  // the first one looks whether a file is open
  EXPECT_EQ(Load(WholeDump("a\t1\n", 1)),
            "the records cannot be written -- "s + Database::ErrorString(GDBM_FILE_SYNC_ERROR));
}

TEST_F(DumpTest, AnIndexThatIsNotEmptyIsNotLoadedInto) {
  Plant(target_, {{"a", "1"}});
  Database store;
  ASSERT_EQ(store.Open(target_.c_str(), 1), 0);
  EXPECT_EQ(LoadInto(store, WholeDump("b\t2\n", 1)), "the index is not empty");
  store.Close();
  EXPECT_EQ(Dump(target_), (Records{{"a", "1"}}));
}

TEST_F(DumpTest, AnIndexThatCannotBeReadIsNotTakenForEmpty) {
  GdbmWatch watch;
  watch.Fail("firstkey", 1, GDBM_FILE_READ_ERROR);
  EXPECT_EQ(Load(WholeDump("a\t1\n", 1)),
            "the index cannot be read -- "s + Database::ErrorString(GDBM_FILE_READ_ERROR));
  EXPECT_EQ(watch.Count("store"), 0u);
}

TEST_F(DumpTest, AnIndexThatIsOnlyReadIsNotLoadedInto) {
  Plant(target_, Records());
  Database store;
  ASSERT_EQ(store.Open(target_.c_str(), 0), 0);
  EXPECT_EQ(LoadInto(store, WholeDump("b\t2\n", 1)).substr(0, 33),
            "line 2: cannot store the record -");
}

TEST_F(DumpTest, ThePageShowsTheRealLines) {
  const Records records = {{"Hello", Units({1, 1, 1, 2, 1, 2})},
                           {"c-\x02\0"s, "b.txt"},
                           {"d-b.txt", "\x80\xa2\x20\x69\x02\0\0\0"s},
                           {"g-code", Units({2})},
                           {"g-opts", Units({0, 0})},
                           {"s-b.txt", "C:\\old\nend"}};
  std::ifstream file(KESTAN_SOURCE_DIR "/docs/dump-format.md");
  const std::string page(std::istreambuf_iterator<char>(file), {});
  const std::string shown = "\n```text\n" + DumpOf(records) + "```\n";
  EXPECT_NE(page.find(shown), std::string::npos) << shown;
}

}  // namespace
}  // namespace kestan_tests
