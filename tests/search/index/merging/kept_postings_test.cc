// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/index/merging/kept_postings.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "tests/support/stored_records.h"

namespace kestan::search {
namespace {

using kestan_tests::Units;

const std::vector<Code> kNewCodes = {0, 5, 0, 6, 7};  // the document 2 was removed

TEST(KeptPostingsTest, GetNewCodes) {
  std::string kept = "before";
  const std::string record = Units({1, 2, 10, 20, 3, 1, 30});
  EXPECT_EQ(AppendKeptPostings(record, true, kNewCodes, &kept), 2u);
  EXPECT_EQ(kept, "before" + Units({5, 2, 10, 20, 6, 1, 30}));
}

TEST(KeptPostingsTest, AreThoseOfDocumentsThatWereNotRemoved) {
  std::string kept;
  const std::string record = Units({1, 0, 2, 3, 1, 2, 3, 4, 1, 9});
  EXPECT_EQ(AppendKeptPostings(record, true, kNewCodes, &kept), 2u);
  EXPECT_EQ(kept, Units({5, 0, 7, 1, 9}));
}

TEST(KeptPostingsTest, MayBeNone) {
  std::string kept;
  EXPECT_EQ(AppendKeptPostings("", true, kNewCodes, &kept), 0u);
  EXPECT_EQ(AppendKeptPostings(Units({2, 1, 1}), true, kNewCodes, &kept), 0u);
  EXPECT_EQ(kept, "");
}

TEST(KeptPostingsTest, WithoutPositionsAreCodes) {
  std::string kept;
  EXPECT_EQ(AppendKeptPostings(Units({1, 2, 3}), false, kNewCodes, &kept), 2u);
  EXPECT_EQ(kept, Units({5, 6}));
}

TEST(KeptPostingsTest, PositionsCanBeLeftOut) {
  std::string kept = "before";
  const std::string record = Units({1, 2, 10, 20, 2, 1, 5, 3, 0, 4, 1, 9});
  EXPECT_EQ(AppendKeptCodes(record, kNewCodes, &kept), 3u);
  EXPECT_EQ(kept, "before" + Units({5, 6, 7}));
  EXPECT_EQ(AppendKeptCodes(Units({3, 2, 1}), kNewCodes, &kept), std::nullopt);  // cut short
  EXPECT_EQ(AppendKeptCodes(Units({3, 1, 1, 1, 1, 1}), kNewCodes, &kept), std::nullopt);
}

TEST(KeptPostingsTest, DamageIsSeen) {
  const auto kept_of = [](const std::string& record, bool with_positions) {
    std::string kept;
    return AppendKeptPostings(record, with_positions, kNewCodes, &kept);
  };
  EXPECT_EQ(kept_of(Units({0, 1, 1}), true), std::nullopt);           // code 0
  EXPECT_EQ(kept_of(Units({5, 1, 1}), true), std::nullopt);           // past the last document
  EXPECT_EQ(kept_of(Units({3, 1, 1, 1, 1, 1}), true), std::nullopt);  // out of order
  EXPECT_EQ(kept_of(Units({3, 1, 1, 3, 1, 1}), true), std::nullopt);  // twice
  EXPECT_EQ(kept_of(Units({3, 2, 1}), true), std::nullopt);           // cut short
  EXPECT_EQ(kept_of(Units({3, 65535, 1}), true), std::nullopt);
  EXPECT_EQ(kept_of(Units({3}), true), std::nullopt);
  EXPECT_EQ(kept_of(Units({3, 0}) + "x", true), std::nullopt);
  EXPECT_EQ(kept_of("x", false), std::nullopt);
  EXPECT_EQ(kept_of(Units({3, 3}), false), std::nullopt);
}

}  // namespace
}  // namespace kestan::search
