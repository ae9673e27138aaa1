// SPDX-License-Identifier: GPL-3.0-or-later
// The cache by itself, without a file.
#include <kestan/storage/dbcache.h>

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tests/support/colliding_words.h"
#include "tests/support/counted.h"
#include "tests/support/index_test.h"

namespace kestan_tests {
namespace {

using namespace std::string_view_literals;

class DBCacheTest : public testing::Test {
 protected:
  DBDatum& Add(std::string_view key, std::string_view value) {
    return *cache_.Insert(Counted(key), Counted(value))->value.ptr;
  }

  // Returns the value of `key`, or "none".
  std::string Value(std::string_view key) {
    const kestan::DBCache::Entry* const entry = cache_.Find(Datum(key));
    return entry == nullptr ? "none" : Bytes(*entry->value.ptr);
  }

  std::vector<std::string> DirtyKeys() const {
    std::vector<std::string> keys;
    for (const kestan::DBCache::Entry* entry : cache_.DirtyInKeyOrder()) {
      keys.push_back(Bytes(*entry->key.ptr));
    }
    return keys;
  }

  kestan::DBCache cache_;
};

TEST_F(DBCacheTest, StartsEmpty) {
  EXPECT_EQ(Value("key"), "none");
  EXPECT_TRUE(DirtyKeys().empty());
}

TEST_F(DBCacheTest, FindsWhatWasInserted) {
  Add("a", "1");
  Add("b", "2");
  EXPECT_EQ(Value("a"), "1");
  EXPECT_EQ(Value("b"), "2");
  EXPECT_EQ(Value("c"), "none");
}

TEST_F(DBCacheTest, KeysAreBytesWithALength) {
  Add("k\0a"sv, "1");
  Add("k\0b"sv, "2");
  Add("k", "3");
  Add("", "4");
  EXPECT_EQ(Value("k\0a"sv), "1");
  EXPECT_EQ(Value("k\0b"sv), "2");
  EXPECT_EQ(Value("k"), "3");
  EXPECT_EQ(Value(""), "4");
}

TEST_F(DBCacheTest, HoldsEachDatumOnce) {
  const kestan::DBCache::Entry* const entry = cache_.Insert(Counted("key"), Counted("value"));
  EXPECT_EQ(entry->key.ptr->refs, 1);
  EXPECT_EQ(entry->value.ptr->refs, 1);
}

TEST_F(DBCacheTest, FindingDoesNotHold) {
  DBDatum& value = Add("key", "value");
  cache_.Find(Datum("key"));
  EXPECT_EQ(value.refs, 1);
}

TEST_F(DBCacheTest, DistinguishesKeysOfOneHash) {
  for (const char* start : {"", "commonbeginning"}) {
    const auto [one, two] = PairOfOneHash(kestan::Hasher(), start);
    Add(one, "one");
    EXPECT_EQ(Value(two), "none");
    Add(two, "two");
    EXPECT_EQ(Value(one), "one");
    EXPECT_EQ(Value(two), "two");
  }
}

TEST_F(DBCacheTest, ErasingLeavesTheValueToItsHolders) {
  const DBDatumPtr held = Counted("value");
  cache_.Insert(Counted("key"), held);
  cache_.Erase(Datum("key"));
  EXPECT_EQ(Value("key"), "none");
  EXPECT_EQ(held.ptr->refs, 1);
}

TEST_F(DBCacheTest, ErasingWhatIsNotThereDoesNothing) {
  Add("key", "value");
  cache_.Erase(Datum("other"));
  EXPECT_EQ(Value("key"), "value");
}

TEST_F(DBCacheTest, AnEntryCanBeErasedByItsOwnKey) {
  const kestan::DBCache::Entry* const entry = cache_.Insert(Counted("key"), Counted("value"));
  cache_.Erase(*entry->key.ptr);
  EXPECT_EQ(Value("key"), "none");
}

TEST_F(DBCacheTest, DirtyEntriesComeInKeyOrder) {
  for (std::string_view key :
       {"b"sv, "\xff"sv, "ab\0"sv, "ab"sv, "abc"sv, ""sv, "wordB"sv, "wordA"sv}) {
    Add(key, "value").dirty = true;
  }
  Add("clean", "value");
  EXPECT_EQ(DirtyKeys(), (std::vector<std::string>{"", "ab", std::string("ab\0", 3), "abc", "b",
                                                   "wordA", "wordB", "\xff"}));
}

TEST_F(DBCacheTest, DroppingKeepsHeldValuesOnly) {
  Add("free", "1");
  Add("dirty", "2").dirty = true;
  const DBDatumPtr held = Counted("3");
  cache_.Insert(Counted("held"), held);
  cache_.DropUnheld();
  EXPECT_EQ(Value("free"), "none");
  EXPECT_EQ(Value("dirty"), "none");
  EXPECT_EQ(Value("held"), "3");
}

TEST_F(DBCacheTest, DroppingMakesRoomForAsManyEntriesAgain) {
  for (const int count : {1, 48, 1000, 5000, 3}) {
    for (int i = 0; i < count; ++i) Add(std::to_string(i), std::to_string(2 * i));
    for (int i = 0; i < count; ++i) ASSERT_EQ(Value(std::to_string(i)), std::to_string(2 * i));
    cache_.DropUnheld();
    for (int i = 0; i < count; ++i) ASSERT_EQ(Value(std::to_string(i)), "none");
  }
}

TEST_F(DBCacheTest, AHeldKeyKeepsNoEntry) {
  const DBDatumPtr key = Counted("key");
  cache_.Insert(key, Counted("value"));
  cache_.DropUnheld();
  EXPECT_EQ(Value("key"), "none");
  EXPECT_EQ(key.ptr->refs, 1);
}

TEST_F(DBCacheTest, DyingGivesUpItsHolds) {
  const DBDatumPtr value = Counted("value");
  {
    kestan::DBCache cache;
    cache.Insert(Counted("key"), value);
    EXPECT_EQ(value.ptr->refs, 2);
  }
  EXPECT_EQ(value.ptr->refs, 1);
}

}  // namespace
}  // namespace kestan_tests
