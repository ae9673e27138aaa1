// SPDX-License-Identifier: GPL-3.0-or-later
// Every kind of record, damaged in every way, is read by every method as the model reads it: bytes
// that are missing are 0, and a count reaches no further than its record.
//
// A byte gets 6 other values here. For all 255, which takes long:
//   KESTAN_HOSTILE_BYTES=all hostile_tests --gtest_filter='HostileRecords.*'
#include <gtest/gtest.h>

#include "tests/hostile/record_damage.h"
#include "tests/hostile/record_scripts.h"

namespace kestan_hostile {
namespace {

using kestan_model::Records;

void RunAll(const Records& records, const std::string& damage) {
  ReadAndConvert(records, damage);
  ShrinkAndAdd(records, damage);
  RemoveAndMove(records, damage);
}

// Damages the record `key` of the index `good`, which has it.
void Damage(const Records& good, const std::string& key) {
  for (const std::string& form : DamagedForms(good.at(key))) {
    Records damaged = good;
    damaged[key] = form;
    RunAll(damaged, kestan_model::Shown(key) + " is " + kestan_model::Shown(form));
  }
}

void Lose(const std::string& key) {
  Records damaged = GoodIndex();
  damaged.erase(key);
  RunAll(damaged, kestan_model::Shown(key) + " is missing");
}

TEST(HostileRecordsTest, ThatAreGoodAreReadAsTheModelReadsThem) {
  RunAll(GoodIndex(), "good");
  RunAll(GoodIndexWithoutPositions(), "good, without positions");
}

TEST(HostileRecordsTest, PostingsWithPositions) { Damage(GoodIndex(), "cat"); }

TEST(HostileRecordsTest, PostingsWhoseCodesDoNotAscend) { Damage(GoodIndex(), "dog"); }

TEST(HostileRecordsTest, PostingsOfAOneByteWord) { Damage(GoodIndex(), "x"); }

TEST(HostileRecordsTest, PostingsWithoutPositions) { Damage(GoodIndexWithoutPositions(), "cat"); }

TEST(HostileRecordsTest, TheCodeCounter) { Damage(GoodIndex(), "g-code"); }

TEST(HostileRecordsTest, TheReusableCodes) { Damage(GoodIndex(), "g-avail"); }

TEST(HostileRecordsTest, TheRemovedCodes) { Damage(GoodIndex(), "g-deleted"); }

TEST(HostileRecordsTest, TheOptionFlags) { Damage(GoodIndex(), "g-opts"); }

TEST(HostileRecordsTest, DocumentRecords) {
  Damage(GoodIndex(), "d-a");
  Damage(GoodIndex(), "d-b");
}

TEST(HostileRecordsTest, NameRecords) { Damage(GoodIndex(), std::string("c-\x01\0", 4)); }

TEST(HostileRecordsTest, WordLists) { Damage(GoodIndex(), "w-list"); }

TEST(HostileRecordsTest, TextsOfTheHost) {
  for (const char* key : {"t-a", "s-a", "u-a"}) Damage(GoodIndex(), key);
}

TEST(HostileRecordsTest, ThatAreMissing) {
  for (const auto& [key, unused] : GoodIndex()) Lose(key);
}

// Keys that no version writes, beside an index that is whole.
TEST(HostileRecordsTest, UnderKeysThatFitNothing) {
  const std::string keys[] = {
      "",    "-",  "--", "c-",    std::string("c-\0", 3), "c-12345",           "d-", "g-",
      "g-x", "w-", "t-", "-opts", std::string(300, '-'),  std::string(2, '\0')};
  for (const std::string& key : keys) {
    for (const std::string value : {"", "\x01", "value", "\xff\xff\xff\xff"}) {
      Records records = GoodIndex();
      records[key] = value;
      RunAll(records, kestan_model::Shown(key) + " is " + kestan_model::Shown(value));
    }
  }
}

}  // namespace
}  // namespace kestan_hostile
