// SPDX-License-Identifier: GPL-3.0-or-later
// Fetching many values at once.
#include "tests/storage/database_test.h"

namespace kestan_tests {
namespace {

class DatabaseGetManyTest : public DatabaseTest {
 protected:
  // Fetches the values of `names`, "none" for each that is absent.
  std::vector<std::string> GetMany(const std::vector<std::string>& names) {
    std::vector<DBDatum> keys;
    for (const std::string& name : names) keys.push_back(Datum(name));
    std::vector<DBDatumPtr> values(names.size());
    EXPECT_EQ(store_.GetMany(values.data(), keys.data(), keys.size()), 0);
    std::vector<std::string> found;
    for (const DBDatumPtr& value : values) {
      found.push_back(value.ptr == nullptr ? "none" : Bytes(*value.ptr));
    }
    return found;
  }
};

TEST_F(DatabaseGetManyTest, FindsCachedRecordsAndThoseInTheFile) {
  Put("a", "1");
  Put("b", "2");
  store_.Flush();
  Put("c", "3");
  EXPECT_EQ(GetMany({"a", "b", "c", "d", "a"}),
            (std::vector<std::string>{"1", "2", "3", "none", "1"}));
}

TEST_F(DatabaseGetManyTest, OfMoreKeysThanABatchFindsAll) {
  std::vector<std::string> names;
  for (int i = 0; i < 100; ++i) names.push_back(std::to_string(i));
  for (const std::string& name : names) Put(name, name);
  EXPECT_EQ(GetMany(names), names);
}

TEST_F(DatabaseGetManyTest, SharesTheValuesWithTheCache) {
  Put("a", "1");
  const DBDatum key = Datum("a");
  DBDatumPtr value;
  store_.GetMany(&value, &key, 1);
  EXPECT_EQ(value.ptr, Held("a").ptr);
  EXPECT_EQ(value.ptr->refs, 2);
}

TEST_F(DatabaseGetManyTest, OfNoKeysDoesNothing) { EXPECT_TRUE(GetMany({}).empty()); }

TEST_F(DatabaseGetManyTest, ReplacesWhatTheHandlesHeld) {
  Put("a", "1");
  DBDatumPtr value = Held("a");
  const DBDatum absent = Datum("b");
  store_.GetMany(&value, &absent, 1);
  EXPECT_EQ(value.ptr, nullptr);
}

TEST_F(DatabaseGetManyTest, WithoutAFileSaysSoOnce) {
  store_.Close();
  const DBDatum key = Datum("a");
  DBDatumPtr value;
  EXPECT_EQ(StandardErrorOf([&] { EXPECT_EQ(store_.GetMany(&value, &key, 1), -1); }),
            "Kestan: Call to database::get without an open database\n");
}

}  // namespace
}  // namespace kestan_tests
