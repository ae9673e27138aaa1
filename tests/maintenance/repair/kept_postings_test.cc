// SPDX-License-Identifier: GPL-3.0-or-later
// Which postings of one record a repair keeps.
#include <kestan/maintenance/repair/kept_postings.h>

#include <gtest/gtest.h>

#include <string>

#include "tests/support/index_test.h"

namespace kestan_maintenance {
namespace {

using kestan_tests::Datum;
using kestan_tests::Units;

// Codes up to 9 are possible; 1 and 2 are known.
class KeptPostingsTest : public testing::Test {
 protected:
  KeptPostingsTest() {
    known_.set(1);
    known_.set(2);
  }

  // Returns the bytes of the postings that are kept.
  std::string Kept(const std::string& key, const std::string& value) {
    kestan::KeptPostings postings(rules_, no_long_documents_, known_);
    return Kept(&postings, key, value);
  }

  std::string Kept(kestan::KeptPostings* postings, const std::string& key,
                   const std::string& value) {
    const kestan::KeptRecord record = postings->Read(Datum(key), Datum(value));
    is_valid_ = record.is_valid;
    is_all_ = record.is_all;
    std::string bytes;
    for (const kestan::WholePosting& posting : record.postings) {
      bytes += value.substr(std::size_t{posting.first_unit} * 2, posting.units() * 2);
    }
    return bytes;
  }

  const kestan::PostingRules rules_{true, 9};
  const kestan::CodeSet no_long_documents_;
  kestan::CodeSet known_;
  bool is_valid_ = false;
  bool is_all_ = false;
};

TEST_F(KeptPostingsTest, AWholeRecordIsKeptAsItIsWhetherItsCodesAreKnownOrNot) {
  EXPECT_EQ(Kept("cat", Units({1, 1, 5, 9, 1, 6})), Units({1, 1, 5, 9, 1, 6}));
  EXPECT_TRUE(is_valid_ && is_all_);
}

TEST_F(KeptPostingsTest, OfTwoPostingsWithOneCodeTheFirstIsKept) {
  EXPECT_EQ(Kept("cat", Units({1, 1, 5, 1, 1, 6})), Units({1, 1, 5}));
  EXPECT_TRUE(is_valid_);
  EXPECT_FALSE(is_all_);
}

TEST_F(KeptPostingsTest, ADamagedRecordKeepsItsWholePostings) {
  EXPECT_EQ(Kept("cat", Units({1, 1, 5, 2, 7, 6})), Units({1, 1, 5}));
  EXPECT_FALSE(is_valid_ || is_all_);
}

TEST_F(KeptPostingsTest, OfAWordThatNoShrinkPurgesAllPostingsOfKnownCodesAreKept) {
  for (const std::string key : {"a", "e-mail"}) {
    EXPECT_EQ(Kept(key, Units({1, 1, 5, 1, 1, 6, 9, 1, 7})), Units({1, 1, 5, 1, 1, 6})) << key;
    EXPECT_TRUE(is_valid_) << key;
    EXPECT_FALSE(is_all_) << key;
  }
}

TEST_F(KeptPostingsTest, WhatIsKeptOfARecordDoesNotDependOnTheRecordBefore) {
  kestan::KeptPostings postings(rules_, no_long_documents_, known_);
  EXPECT_EQ(Kept(&postings, "cat", Units({1, 1, 5})), Units({1, 1, 5}));
  EXPECT_EQ(Kept(&postings, "dog", Units({1, 1, 6})), Units({1, 1, 6}));
  EXPECT_TRUE(is_all_);
}

}  // namespace
}  // namespace kestan_maintenance
