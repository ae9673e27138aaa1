// SPDX-License-Identifier: GPL-3.0-or-later
// The hashed cache against a plain ordered map.
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <array>
#include <map>
#include <string>
#include <vector>

#include <kestan/storage/dbcache.h>
#include "tests/support/counted.h"
#include "tests/support/index_test.h"

namespace kestan_tests {
namespace {

using PlainMap = std::map<std::string, std::string>;

// Keys of every length around the one up to which a digest holds them whole; some with NULs.
std::string KeyOf(unsigned number) {
  std::string key = std::to_string(number % 97);
  key.resize(key.size() + number % 14, number % 3 == 0 ? '\0' : 'k');
  return key;
}

void ExpectSame(kestan::DBCache* cache, const PlainMap& plain) {
  for (unsigned number = 0; number < 600; ++number) {
    const std::string key = KeyOf(number);
    const kestan::DBCache::Entry* const entry = cache->Find(Datum(key));
    const auto found = plain.find(key);
    RC_ASSERT((entry == nullptr) == (found == plain.end()));
    if (entry != nullptr) RC_ASSERT(Bytes(*entry->value.ptr) == found->second);
  }
  std::vector<std::string> dirty;
  for (const kestan::DBCache::Entry* entry : cache->DirtyInKeyOrder()) {
    dirty.push_back(Bytes(*entry->key.ptr));
  }
  std::vector<std::string> keys;
  for (const auto& [key, value] : plain) keys.push_back(key);
  RC_ASSERT(dirty == keys);
}

RC_GTEST_PROP(DBCachePropertiesTest, HoldsWhatAPlainMapHolds, ()) {
  kestan::DBCache cache;
  PlainMap plain;
  const auto numbers = *rc::gen::container<std::vector<unsigned>>(rc::gen::inRange(0u, 1200u));
  for (const unsigned number : numbers) {
    const std::string key = KeyOf(number / 2);
    if (number % 2 == 0) {
      cache.Erase(Datum(key));
      plain.erase(key);
    } else if (plain.emplace(key, std::to_string(number)).second) {
      cache.Insert(Counted(key), Counted(plain[key]))->value.ptr->dirty = true;
    }
  }
  ExpectSame(&cache, plain);
}

RC_GTEST_PROP(DBCachePropertiesTest, FindsManyAsItFindsOne, ()) {
  kestan::DBCache cache;
  const auto inserted = *rc::gen::container<std::vector<unsigned>>(rc::gen::inRange(0u, 300u));
  for (const unsigned number : inserted) {
    const std::string key = KeyOf(number);
    if (cache.Find(Datum(key)) == nullptr) cache.Insert(Counted(key), Counted(key));
  }
  std::vector<std::string> names;
  std::vector<DBDatum> keys;
  for (unsigned number = 0; number < 100; ++number) names.push_back(KeyOf(number));
  for (const std::string& name : names) keys.push_back(Datum(name));
  std::vector<DBDatumPtr> values(keys.size());
  cache.FindMany(values.data(), keys.data(), keys.size());
  for (std::size_t i = 0; i < keys.size(); ++i) {
    const kestan::DBCache::Entry* const entry = cache.Find(keys[i]);
    RC_ASSERT(values[i].ptr == (entry == nullptr ? nullptr : entry->value.ptr));
    if (entry != nullptr) RC_ASSERT(values[i].ptr->refs >= 2);
  }
}

}  // namespace
}  // namespace kestan_tests
