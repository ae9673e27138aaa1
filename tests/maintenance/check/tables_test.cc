// SPDX-License-Identifier: GPL-3.0-or-later
// What the tables gather, record by record.
#include <kestan/maintenance/check/tables.h>

#include <string>

#include "tests/maintenance/maintenance_test.h"
#include "tests/support/gdbm_calls.h"

namespace kestan_tests {
namespace {

using namespace std::string_literals;
using kestan::IndexTables;

IndexTables TablesOf(const Records& records) {
  const TempDir folder;
  Plant(folder / "index", records);
  Database store;
  EXPECT_EQ(store.Open((folder / "index").c_str(), 0), 0);
  return kestan::ReadTables(store);
}

TEST(TablesTest, HoldDocumentsByName) {
  const IndexTables tables = TablesOf(With({{"d-\xff", Units({0x5678, 0x1234, 7, 0})},
                                            {"d-", Units({1, 0, 8, 0})},
                                            {"d-Z", Units({2, 0})}}));
  ASSERT_EQ(tables.documents.size(), 5u);
  std::string names;
  for (const auto& document : tables.documents) names += std::string(document.name) + ",";
  EXPECT_EQ(names, ",Z,a,b,\xff,");
  const IndexTables::Document* const last = tables.FindDocument("\xff");
  ASSERT_NE(last, nullptr);
  EXPECT_EQ(last->code, 7);
  ASSERT_NE(tables.FindDocument("Z"), nullptr);
  EXPECT_EQ(tables.FindDocument("Z")->code, 0);
  EXPECT_EQ(tables.FindDocument("c"), nullptr);
  EXPECT_EQ(tables.FindDocument("\xff\xff"), nullptr);
  ASSERT_EQ(tables.odd.size(), 1u);
  EXPECT_EQ(tables.odd[0].key, "d-Z");
  EXPECT_EQ(tables.odd[0].bytes, 4u);
}

TEST(TablesTest, HoldNamesByCode) {
  const IndexTables tables = TablesOf(With({{"c-\xff\xff", "last"}, {"c-\0\1"s, "middle"}}));
  ASSERT_EQ(tables.names.size(), 4u);
  EXPECT_EQ(tables.names.back().code, 65535);
  ASSERT_NE(tables.FindName(256), nullptr);
  EXPECT_EQ(tables.FindName(256)->name, "middle");
  EXPECT_EQ(tables.FindName(3), nullptr);
}

TEST(TablesTest, HoldNoWordsWithHyphens) {
  const IndexTables tables = TablesOf(With({{"d-day", Units({1, 1, 1})},
                                            {"d-night", ""},
                                            {"c-section", Units({1, 1, 2})},
                                            {"c-ab", Units({1, 1, 3})},
                                            {"t-shirt", Units({1, 1, 4})},
                                            {"e-mail", Units({1, 1, 5})}}));
  EXPECT_EQ(tables.documents.size(), 2u);
  EXPECT_EQ(tables.names.size(), 2u);
  EXPECT_TRUE(tables.odd.empty());
}

TEST(TablesTest, HoldDamagedDocumentsThatANameRecordNames) {
  const IndexTables tables = TablesOf(With({{"d-a", ""}, {"d-b", Units({1, 1, 2})}}));
  ASSERT_EQ(tables.documents.size(), 2u);
  EXPECT_EQ(tables.odd.size(), 2u);
  const std::string value = Units({1, 1, 2});
  EXPECT_EQ(tables.KindOfRecord(Datum("d-b"), Datum(value)), kestan::RecordKind::kDocument);
  EXPECT_EQ(tables.KindOfRecord(Datum("d-c"), Datum(value)), kestan::RecordKind::kPosting);
  EXPECT_EQ(tables.KindOfRecord(Datum("d-c"), Datum("")), kestan::RecordKind::kPosting);
}

TEST(TablesTest, HoldCodesAsTheRecordsListThem) {
  const IndexTables tables =
      TablesOf(With({{"g-avail", Units({9, 3, 3})}, {"g-deleted", Units({0}) + "x"}}));
  EXPECT_EQ(tables.reusable, (kestan::Vector<kestan::Code>{9, 3, 3}));
  EXPECT_EQ(tables.removed, (kestan::Vector<kestan::Code>{0}));
  EXPECT_TRUE(tables.has_counter);
  EXPECT_EQ(tables.counter, 2);
  EXPECT_TRUE(tables.has_options);
  ASSERT_EQ(tables.odd.size(), 1u);
  EXPECT_EQ(tables.odd[0].key, "g-deleted");
  EXPECT_EQ(tables.odd[0].bytes, 3u);
}

TEST(TablesTest, HoldNothingOfTextsAndStrangers) {
  const IndexTables tables =
      TablesOf({{"t-a", ""}, {"u-", "x"}, {"s-b", ""}, {"w-c", ""}, {"q-d", ""}});
  EXPECT_TRUE(tables.documents.empty());
  EXPECT_TRUE(tables.names.empty());
  EXPECT_TRUE(tables.odd.empty());
  EXPECT_FALSE(tables.has_counter);
  EXPECT_FALSE(tables.has_options);
  EXPECT_FALSE(tables.IsIncomplete());
}

TEST(TablesTest, ReportThatTheyAreIncomplete) {
  const TempDir folder;
  Plant(folder / "index", ValidRecords());
  Database store;
  ASSERT_EQ(store.Open((folder / "index").c_str(), 0), 0);
  GdbmWatch watch;
  watch.Fail("fetch", 3, GDBM_FILE_READ_ERROR);
  watch.Fail("nextkey", 4, GDBM_FILE_SEEK_ERROR);
  const IndexTables tables = kestan::ReadTables(store);
  EXPECT_EQ(tables.unreadable.size(), 1u);
  EXPECT_EQ(tables.walk_error, GDBM_FILE_SEEK_ERROR);
  EXPECT_TRUE(tables.IsIncomplete());
}

}  // namespace
}  // namespace kestan_tests
