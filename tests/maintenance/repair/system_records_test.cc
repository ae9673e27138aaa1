// SPDX-License-Identifier: GPL-3.0-or-later
// What is believed of the code counter, the code lists and the option flags.
#include <kestan/maintenance/repair/system_records.h>

#include <kestan/storage/datum_bytes.h>

#include <string>

#include "tests/maintenance/repair/salvaged_index.h"

namespace kestan_maintenance {
namespace {

using Basis = kestan::InferredOptions::Basis;

std::string BytesOf(const std::optional<DBDatum>& value) {
  return value ? std::string(kestan::BytesOf(*value)) : "missing";
}

using FindSystemRecordsTest = SalvagedIndex;

TEST_F(FindSystemRecordsTest, EachIsFoundUnderItsKey) {
  Read({{"g-code", Units({3})},
        {"g-opts", Units({1, 0})},
        {"g-avail", Units({2})},
        {"g-deleted", Units({1})},
        {"g-codes", "x"}});
  const auto found = kestan::FindSystemRecords(salvage_);
  EXPECT_EQ(BytesOf(found.counter), Units({3}));
  EXPECT_EQ(BytesOf(found.options), Units({1, 0}));
  EXPECT_EQ(BytesOf(found.reusable), Units({2}));
  EXPECT_EQ(BytesOf(found.removed), Units({1}));
}

TEST_F(FindSystemRecordsTest, WhereThereIsNoneNoneIsFound) {
  Read({{"cat", Units({1, 1, 1})}});
  const auto found = kestan::FindSystemRecords(salvage_);
  EXPECT_FALSE(found.counter || found.options || found.reusable || found.removed);
}

TEST_F(FindSystemRecordsTest, WhatAWordHasAppendedIsCutOff) {
  Read({{"g-code", Units({3, 1, 1})}, {"g-opts", Units({1, 0, 1, 1, 1})}});
  const auto found = kestan::FindSystemRecords(salvage_);
  EXPECT_EQ(BytesOf(found.counter), Units({3}));
  EXPECT_EQ(found.counter_bytes_found, 6U);
  EXPECT_EQ(BytesOf(found.options), Units({1, 0}));
  EXPECT_EQ(found.options_bytes_found, 10U);
}

TEST_F(FindSystemRecordsTest, ACounterOrFlagsWithTooFewBytesAreMissing) {
  Read({{"g-code", "x"}, {"g-opts", "xyz"}, {"g-avail", "x"}});
  const auto found = kestan::FindSystemRecords(salvage_);
  EXPECT_FALSE(found.counter || found.options);
  EXPECT_EQ(BytesOf(found.reusable), "x");
}

class InferOptionsTest : public SalvagedIndex {
 protected:
  // Infers the options of an index with this many records of each shape. Without flags it has no
  // record of them.
  kestan::InferredOptions Infer(std::optional<unsigned> flags, int with_positions, int codes_alone,
                                const std::string& prefix = "word") {
    Records records{{"g-code", Units({1000})}};
    if (flags) records["g-opts"] = Units({*flags, 0});
    const auto add = [&](int count, const std::string& value) {
      for (int i = 0; i < count; ++i) records[prefix + std::to_string(records.size())] = value;
    };
    add(with_positions, Units({5, 1, 5}));  // 5 twice: these are no distinct codes
    add(codes_alone, Units({5, 7}));
    Read(records);
    return kestan::InferOptions(salvage_, kestan::FindSystemRecords(salvage_));
  }
};

TEST_F(InferOptionsTest, TheRecordIsBelieved) {
  const auto options = Infer(5, 0, 20);
  EXPECT_EQ(options.flags, 5U);
  EXPECT_EQ(options.basis, Basis::kRecord);
  EXPECT_FALSE(options.with_positions());
}

TEST_F(InferOptionsTest, WithoutARecordHalfOfThePostingRecordsAreEnoughForPositions) {
  EXPECT_TRUE(Infer({}, 5, 5).with_positions());
  EXPECT_FALSE(Infer({}, 5, 6).with_positions());
  EXPECT_TRUE(Infer({}, 0, 0).with_positions());
  EXPECT_EQ(Infer({}, 5, 6).basis, Basis::kNoRecord);
}

TEST_F(InferOptionsTest, FlagOneIsWrongIfNineOfTenPostingRecordsSaySo) {
  EXPECT_EQ(Infer(4, 1, 9).flags, 5U);
  EXPECT_EQ(Infer(4, 1, 9).basis, Basis::kPostings);
  EXPECT_EQ(Infer(4, 2, 8).flags, 4U);
  EXPECT_EQ(Infer(5, 9, 1).flags, 4U);
  EXPECT_EQ(Infer(5, 8, 2).flags, 5U);
}

TEST_F(InferOptionsTest, FewerThanTenPostingRecordsDoNotContradictTheRecord) {
  EXPECT_EQ(Infer(0, 0, 9).flags, 0U);
  EXPECT_EQ(Infer(0, 0, 10).flags, 1U);
}

TEST_F(InferOptionsTest, RecordsWithAHyphenAsTheSecondByteOfTheKeyDoNotCount) {
  EXPECT_EQ(Infer(0, 0, 20, "x-").flags, 0U);
  EXPECT_TRUE(Infer({}, 0, 20, "x-").with_positions());
}

}  // namespace
}  // namespace kestan_maintenance
