// SPDX-License-Identifier: GPL-3.0-or-later
// The codes of a new index.
#include <kestan/maintenance/repair/codes.h>

#include <gtest/gtest.h>

#include <initializer_list>

#include "tests/support/index_test.h"

namespace kestan_maintenance {
namespace {

using kestan::Code;
using kestan::CodeSet;
using kestan_tests::Datum;
using kestan_tests::Units;

using Codes = kestan::Vector<Code>;

CodeSet SetOf(std::initializer_list<Code> codes) {
  CodeSet set;
  for (const Code code : codes) set.set(code);
  return set;
}

TEST(CodesSeenTest, ACodeIsNewOncePerRecord) {
  kestan::CodesSeen seen;
  seen.StartRecord();
  EXPECT_TRUE(seen.Add(65535));
  EXPECT_FALSE(seen.Add(65535));
  EXPECT_TRUE(seen.Add(1));
  seen.StartRecord();
  EXPECT_TRUE(seen.Add(65535));
}

TEST(AssignCodesTest, AnEmptyIndexHasNoRecordsOfCodes) {
  const auto codes = kestan::AssignCodes({}, {}, {}, {});
  EXPECT_FALSE(codes.counter || codes.reusable || codes.removed);
}

TEST(AssignCodesTest, CodesThatNobodyHasBecomeReusable) {
  const auto codes = kestan::AssignCodes(SetOf({2, 4}), {}, {}, {});
  EXPECT_EQ(codes.counter, 4);
  EXPECT_EQ(codes.reusable, Codes({1, 3}));
  EXPECT_FALSE(codes.removed);
}

TEST(AssignCodesTest, CodesThatOnlyPostingsHaveBecomeRemovedOnes) {
  const auto codes = kestan::AssignCodes(SetOf({1}), SetOf({1, 2}), {}, {});
  EXPECT_EQ(codes.counter, 2);
  EXPECT_EQ(codes.removed, Codes({2}));
  EXPECT_EQ(codes.orphans, SetOf({2}));
}

TEST(AssignCodesTest, ListedCodesKeepTheirOrderAndAreNoOrphans) {
  const std::string removed = Units({5, 2, 5, 1});
  const std::string reusable = Units({4, 3, 2, 9});
  kestan::SystemRecords system;
  system.removed = Datum(removed);
  system.reusable = Datum(reusable);
  const auto codes = kestan::AssignCodes(SetOf({1}), SetOf({2}), SetOf({1, 2, 3, 4, 5}), system);
  EXPECT_EQ(codes.removed, Codes({5, 2}));
  EXPECT_EQ(codes.reusable, Codes({4, 3}));
  EXPECT_TRUE(codes.orphans.none());
  EXPECT_EQ(codes.counter, 5);
}

TEST(AssignCodesTest, TheLastCodeIsOneToo) {
  const auto codes = kestan::AssignCodes(SetOf({65535}), {}, {}, {});
  EXPECT_EQ(codes.counter, 65535);
  EXPECT_EQ(codes.reusable->size(), 65534U);
}

TEST(HighestCodeTest, TheCounterIsBelievedUnlessADocumentThatAgreesHasAHigherOne) {
  const std::string counter = Units({5});
  kestan::SystemRecords system;
  system.counter = Datum(counter);
  EXPECT_EQ(kestan::HighestCode(system, {{{"a", 0, 9, true}}, {}}, 20), 5);
  EXPECT_EQ(kestan::HighestCode(system, {{{"a", 0, 9, true}}, {{"b", 9, true}}}, 20), 5);
  EXPECT_EQ(kestan::HighestCode(system, {{{"a", 0, 9, true}}, {{"a", 9, true}}}, 20), 9);
}

TEST(HighestCodeTest, WithoutACounterEveryRecordCounts) {
  const std::string list = Units({12, 3});
  kestan::SystemRecords system;
  EXPECT_EQ(kestan::HighestCode(system, {}, 0), 0);
  EXPECT_EQ(kestan::HighestCode(system, {}, 20), 20);
  EXPECT_EQ(kestan::HighestCode(system, {{{"a", 0, 9, true}}, {{"b", 10, true}}}, 8), 10);
  system.reusable = Datum(list);
  EXPECT_EQ(kestan::HighestCode(system, {}, 8), 12);
}

TEST(RetiredCodesTest, ListedCodesFromOneToTheHighestAre) {
  const std::string removed = Units({0, 7, 8});
  const std::string reusable = Units({2});
  kestan::SystemRecords system;
  system.removed = Datum(removed);
  system.reusable = Datum(reusable);
  EXPECT_EQ(kestan::RetiredCodes(system, 7), SetOf({2, 7}));
}

}  // namespace
}  // namespace kestan_maintenance
