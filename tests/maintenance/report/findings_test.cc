// SPDX-License-Identifier: GPL-3.0-or-later
// Findings, and the lines that are made of them.
#include <kestan/maintenance/report/findings.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace kestan_maintenance {
namespace {

using kestan::Finding;
using kestan::FindingKind;
using kestan::Severity;

std::string LineOf(FindingKind kind, std::string_view key, std::string_view text) {
  std::string made;
  kestan::ReportAsLine({kestan::SeverityOf(kind), kind, key, text},
                       [&](std::string_view line) { made = line; });
  return made;
}

TEST(ReportAsLineTest, EachKindHasItsLine) {
  EXPECT_EQ(LineOf(FindingKind::kCheckFault, "d-a", "the code is 0"), "d-a: the code is 0");
  EXPECT_EQ(LineOf(FindingKind::kCheckNote, "d-a", "no words"), "d-a: note: no words");
  EXPECT_EQ(LineOf(FindingKind::kCheckWordsMissing, "d-a", "words missing"), "d-a: words missing");
  EXPECT_EQ(LineOf(FindingKind::kSaved, "a", ""), "saved: a");
  EXPECT_EQ(LineOf(FindingKind::kWordsMissing, "a", "at least 1 of 2"),
            "words missing: a: at least 1 of 2");
  EXPECT_EQ(LineOf(FindingKind::kHalfWritten, "a", "no words"), "half-written: a: no words");
  EXPECT_EQ(LineOf(FindingKind::kLost, "a", "why"), "lost: a: why");
  EXPECT_EQ(LineOf(FindingKind::kLostCode, "7", "why"), "lost: code 7: why");
  EXPECT_EQ(LineOf(FindingKind::kRepairNote, "g-code", "1, lost"), "note: g-code: 1, lost");
  EXPECT_EQ(LineOf(FindingKind::kDropped, "c-x", ""), "note: dropped: c-x");
  EXPECT_EQ(LineOf(FindingKind::kFileNote, kestan::kWholeFile, "the header is damaged"),
            "note: the header is damaged");
  EXPECT_EQ(LineOf(FindingKind::kCannotRead, "/a", "Is a directory"), "/a: Is a directory");
  EXPECT_EQ(LineOf(FindingKind::kCannotWrite, "/a", "File exists"), "/a: File exists");
}

TEST(ReportAsLineTest, KeysAreEscapedAndTextsAreNot) {
  EXPECT_EQ(LineOf(FindingKind::kCheckFault, "a\n\\", "b\\"), "a\\x0a\\x5c: b\\");
}

TEST(ReportAsLineTest, WithoutATakerThereIsNoLine) {
  kestan::ReportAsLine({Severity::kInfo, FindingKind::kSaved, "a", ""}, {});
  EXPECT_FALSE(kestan::AsLines({}));
}

TEST(SeverityOfTest, EachKindHasItsSeverity) {
  for (const FindingKind kind :
       {FindingKind::kCheckFault, FindingKind::kWordsMissing, FindingKind::kHalfWritten,
        FindingKind::kLost, FindingKind::kLostCode, FindingKind::kCannotRead,
        FindingKind::kCannotWrite, FindingKind::kCheckWordsMissing}) {
    EXPECT_EQ(kestan::SeverityOf(kind), Severity::kFault);
  }
  for (const FindingKind kind : {FindingKind::kCheckNote, FindingKind::kRepairNote,
                                 FindingKind::kDropped, FindingKind::kFileNote}) {
    EXPECT_EQ(kestan::SeverityOf(kind), Severity::kNote);
  }
  EXPECT_EQ(kestan::SeverityOf(FindingKind::kSaved), Severity::kInfo);
}

TEST(FindingsTest, AreHandedOutWithTheKeyAsItIs) {
  std::vector<std::string> taken;
  const kestan::TakeFinding take = [&](const Finding& finding) {
    EXPECT_EQ(finding.severity, Severity::kFault);
    EXPECT_EQ(finding.kind, FindingKind::kCheckFault);
    taken.emplace_back(finding.key);
    taken.emplace_back(finding.text);
  };
  kestan::Findings(take).Fault("c-\1", "code ", std::uint64_t{7}, " twice");
  EXPECT_EQ(taken, std::vector<std::string>({"c-\1", "code 7 twice"}));
}

TEST(FindingsTest, FaultsAndNotesAreCountedWithoutATakerToo) {
  const kestan::TakeFinding none;
  kestan::Findings findings(none);
  findings.Fault("a", "wrong");
  findings.Note("a", "odd");
  findings.Report(FindingKind::kDropped, "a");
  findings.Report(FindingKind::kSaved, "a");
  EXPECT_EQ(findings.faults(), 1U);
  EXPECT_EQ(findings.notes(), 2U);
}

}  // namespace
}  // namespace kestan_maintenance
