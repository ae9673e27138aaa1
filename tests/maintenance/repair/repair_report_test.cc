// SPDX-License-Identifier: GPL-3.0-or-later
// Every sentence that a repair says.
#include <kestan/maintenance/repair/repair_report.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/index_test.h"

namespace kestan_maintenance {
namespace {

using kestan::Code;
using kestan::CodeSet;
using kestan::DocumentStatistics;
using kestan_tests::Datum;
using kestan_tests::Units;

using Lines = std::vector<std::string>;

// Returns the lines that `report(findings)` makes.
template <typename Report>
Lines LinesOf(Report report) {
  Lines lines;
  const kestan::TakeLine take = [&](std::string_view line) { lines.emplace_back(line); };
  const kestan::TakeFinding take_finding = kestan::AsLines(take);
  kestan::Findings findings(take_finding);
  report(&findings);
  return lines;
}

Lines LinesOfDamage(const kestan::Salvage::Damage& damage) {
  return LinesOf([&](kestan::Findings* findings) { kestan::ReportDamage(damage, findings); });
}

TEST(ReportDamageTest, AnIntactFileHasNoLines) { EXPECT_EQ(LinesOfDamage({}), Lines()); }

TEST(ReportDamageTest, EachKindOfDamageHasALine) {
  kestan::Salvage::Damage damage;
  damage.header = damage.directory = true;
  damage.orphan_buckets = 2;
  damage.old_records = 3;
  damage.unreadable_bytes = 512;
  EXPECT_EQ(
      LinesOfDamage(damage),
      Lines({"note: the header is damaged", "note: the directory or what it leads to is damaged",
             "note: bytes that cannot be read: 512", "note: buckets found beside the directory: 2",
             "note: records that may be old, for newer ones are damaged: 3"}));
}

TEST(ReportSystemRecordsTest, OnlyACounterOrFlagsThatWereCutAreReported) {
  const std::string counter = Units({3});
  const std::string options = Units({0, 0});
  kestan::SystemRecords system;
  const auto lines = [&] {
    return LinesOf(
        [&](kestan::Findings* findings) { kestan::ReportSystemRecords(system, findings); });
  };
  system.counter_bytes_found = 1;  // too few: the counter is missing
  EXPECT_EQ(lines(), Lines());
  system.counter = Datum(counter);
  system.options = Datum(options);
  system.counter_bytes_found = 8;
  system.options_bytes_found = 4;
  EXPECT_EQ(lines(), Lines({"note: g-code: 8 bytes, of which the first 2 are kept"}));
}

TEST(ReportOptionsTest, TheBasisOfInferredOptionsIsReported) {
  using Basis = kestan::InferredOptions::Basis;
  const auto lines = [](kestan::InferredOptions options) {
    return LinesOf([&](kestan::Findings* findings) { kestan::ReportOptions(options, findings); });
  };
  const std::string lost =
      "note: g-opts: lost, and flags of the host with it; going by the posting records, ";
  EXPECT_EQ(lines({1, Basis::kRecord}), Lines());
  EXPECT_EQ(lines({0, Basis::kPostings}),
            Lines({"note: g-opts: flag 1 was wrong, going by the posting records"}));
  EXPECT_EQ(lines({0, Basis::kNoRecord}), Lines({lost + "positions are kept"}));
  EXPECT_EQ(lines({1, Basis::kNoRecord}), Lines({lost + "no positions are kept"}));
}

TEST(ReportCounterTest, AChangedCounterIsReported) {
  const std::string counter = Units({3});
  kestan::SystemRecords system;
  kestan::AssignedCodes codes;
  const auto lines = [&] {
    return LinesOf(
        [&](kestan::Findings* findings) { kestan::ReportCounter(system, codes, findings); });
  };
  EXPECT_EQ(lines(), Lines());
  codes.counter = 5;
  EXPECT_EQ(lines(), Lines({"note: g-code: 5, lost"}));
  system.counter = Datum(counter);
  EXPECT_EQ(lines(), Lines({"note: g-code: 5 instead of 3"}));
  codes.counter = 3;
  EXPECT_EQ(lines(), Lines());
  codes.counter.reset();
  EXPECT_EQ(lines(), Lines({"note: g-code: 0 instead of 3"}));
}

class ReportDocumentsTest : public testing::Test {
 protected:
  ReportDocumentsTest() { system_.counter = Datum(counter_); }

  // Returns the line about document "a", code 1, of which the postings say this.
  std::string LineOf(const DocumentStatistics& statistics) {
    documents_.documents = {{"a", 7, 1}};
    counts_.documents[1] = statistics;
    const Lines lines = Reported();
    EXPECT_EQ(lines.size(), 1U);
    return lines.empty() ? "" : lines[0];
  }

  Lines Reported() {
    result_ = kestan::RepairResult();
    return LinesOf([this](kestan::Findings* findings) {
      kestan::ReportDocuments({documents_, counts_, system_, retired_, orphans_, is_damaged_},
                              findings, &result_);
    });
  }

  const std::string counter_ = Units({3});
  kestan::RepairedDocuments documents_;
  kestan::PostingCounts counts_;
  kestan::SystemRecords system_;
  CodeSet retired_;
  CodeSet orphans_;
  bool is_damaged_ = true;
  kestan::RepairResult result_;
};

TEST_F(ReportDocumentsTest, ADocumentWithAsManyWordsAsPositionsIsSaved) {
  EXPECT_EQ(LineOf({5, 0, 5, true, true}), "saved: a");
  EXPECT_EQ(LineOf({4, 1, 5, true, true}), "saved: a");
  EXPECT_EQ(LineOf({4, 2, 5, true, true}), "saved: a");
  EXPECT_EQ(result_.saved, 1U);
}

TEST_F(ReportDocumentsTest, MissingWordsAreCounted) {
  EXPECT_EQ(LineOf({3, 1, 5, true, true}), "words missing: a: at least 1 of 5");
  EXPECT_EQ(result_.words_missing, 1U);
}

TEST_F(ReportDocumentsTest, NoWordsAreMissedInALongDocument) {
  EXPECT_EQ(LineOf({1, 0, 65535, true, true}), "saved: a");
  EXPECT_EQ(LineOf({1, 0, 65534, true, true}), "words missing: a: at least 65533 of 65534");
}

TEST_F(ReportDocumentsTest, ADocumentWithoutWordsIsHalfWritten) {
  EXPECT_EQ(LineOf({}), "half-written: a: no words");
  EXPECT_EQ(result_.half_written, 1U);
}

TEST_F(ReportDocumentsTest, WordsMissingInAValidFileWereNotWritten) {
  is_damaged_ = false;
  EXPECT_EQ(LineOf({3, 0, 5, true, true}), "half-written: a: at least 2 of 5 words missing");
  EXPECT_EQ(LineOf({0, 1, 0, true, false}), "saved: a");
}

TEST_F(ReportDocumentsTest, DoubtfulWordsAreNotThoseOfADocumentYoungerThanTheLastFlush) {
  retired_.set(1);
  EXPECT_EQ(LineOf({0, 1, 0, true, false}), "half-written: a: no words");
  EXPECT_EQ(LineOf({3, 0, 5, true, true}), "half-written: a: at least 2 of 5 words missing");
  EXPECT_EQ(LineOf({5, 0, 5, true, true}), "saved: a");
}

TEST_F(ReportDocumentsTest, CodesAboveTheCounterAndRetiredOnesAreYoungerThanTheLastFlush) {
  retired_.set(2);
  const kestan::DocumentEvidence evidence{documents_, counts_,  system_,
                                          retired_,   orphans_, is_damaged_};
  EXPECT_FALSE(evidence.IsYoungerThanFlush(1));
  EXPECT_TRUE(evidence.IsYoungerThanFlush(2));
  EXPECT_FALSE(evidence.IsYoungerThanFlush(3));
  EXPECT_TRUE(evidence.IsYoungerThanFlush(4));
  system_.counter.reset();
  EXPECT_FALSE(evidence.IsYoungerThanFlush(4));
}

TEST_F(ReportDocumentsTest, LostNamesAndOrphanCodesAreLost) {
  documents_.lost = {{"b\n", "why"}};
  orphans_.set(65535);
  EXPECT_EQ(Reported(),
            Lines({"lost: b\\x0a: why", "lost: code 65535: only words of the document are left"}));
  EXPECT_EQ(result_.lost, 2U);
}

}  // namespace
}  // namespace kestan_maintenance
