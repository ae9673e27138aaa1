// SPDX-License-Identifier: GPL-3.0-or-later
// Which documents come of document and name records that do not agree.
#include <kestan/maintenance/repair/documents.h>

#include <gtest/gtest.h>

#include <string>

namespace kestan_maintenance {
namespace {

using kestan::CodeSet;
using kestan::DocumentCandidate;
using kestan::NameCandidate;

// Returns the resolved documents as "name=code@time" and the lost ones as "-name".
std::string Repaired(kestan::Vector<DocumentCandidate> documents,
                     kestan::Vector<NameCandidate> names, const CodeSet& retired = CodeSet()) {
  std::string text;
  const auto repaired = kestan::ResolveDocuments({std::move(documents), std::move(names)}, retired);
  for (const auto& document : repaired.documents) {
    text += std::string(document.name) + "=" + std::to_string(document.code) + "@" +
            std::to_string(document.timestamp) + " ";
  }
  for (const auto& lost : repaired.lost) text += "-" + std::string(lost.name) + " ";
  return text;
}

TEST(ResolveDocumentsTest, RecordsThatAgreeMakeADocument) {
  EXPECT_EQ(Repaired({{"b", 9, 2, true}, {"a", 8, 1, true}}, {{"a", 1, true}, {"b", 2, true}}),
            "a=1@8 b=2@9 ");
}

TEST(ResolveDocumentsTest, ADocumentRecordAloneKeepsItsCode) {
  EXPECT_EQ(Repaired({{"a", 8, 1, true}}, {}), "a=1@8 ");
}

TEST(ResolveDocumentsTest, ANameRecordAloneMakesADocumentOfTimeZero) {
  EXPECT_EQ(Repaired({}, {{"a", 1, true}}), "a=1@0 ");
}

TEST(ResolveDocumentsTest, ADocumentRecordWithoutACodeTakesThatOfItsName) {
  EXPECT_EQ(Repaired({{"a", 8, 0, true}}, {{"a", 3, true}}), "a=3@0 ");
}

TEST(ResolveDocumentsTest, ADocumentRecordWithoutACodeAloneIsLost) {
  EXPECT_EQ(Repaired({{"a", 8, 0, true}}, {}), "-a ");
}

TEST(ResolveDocumentsTest, OfTwoDocumentsWithOneCodeTheNameRecordDecides) {
  EXPECT_EQ(Repaired({{"a", 8, 1, true}, {"b", 9, 1, true}}, {{"a", 1, true}}), "a=1@8 -b ");
}

TEST(ResolveDocumentsTest, OfTwoDocumentsWithOneCodeTheOtherIsSavedByItsOwnNameRecord) {
  EXPECT_EQ(Repaired({{"a", 8, 1, true}, {"b", 9, 1, true}}, {{"a", 1, true}, {"b", 2, true}}),
            "a=1@8 b=2@0 ");
}

TEST(ResolveDocumentsTest, OfTwoDocumentsWithOneCodeAndNoNameTheNewerIsSaved) {
  EXPECT_EQ(Repaired({{"a", 8, 1, true}, {"b", 9, 1, true}}, {}), "b=1@9 -a ");
}

TEST(ResolveDocumentsTest, ARenamedDocumentWhoseNameRecordWasNotWrittenHasItsNewName) {
  EXPECT_EQ(Repaired({{"new", 9, 1, true}}, {{"old", 1, true}}), "new=1@9 ");
}

TEST(ResolveDocumentsTest, ADocumentIsNotRenamedWhereTheOldNameHasARecordOfItsOwn) {
  EXPECT_EQ(Repaired({{"new", 9, 1, true}, {"old", 8, 2, true}}, {{"old", 1, true}}),
            "old=1@0 -new ");
}

TEST(ResolveDocumentsTest, OfTwoCodesWithOneNameTheDocumentRecordDecides) {
  EXPECT_EQ(Repaired({{"a", 8, 2, true}}, {{"a", 1, true}, {"a", 2, true}}), "a=2@8 ");
}

TEST(ResolveDocumentsTest, OfTwoCodesWithOneNameAndNoDocumentRecordOneIsTaken) {
  EXPECT_EQ(Repaired({}, {{"a", 1, true}, {"a", 2, true}}), "a=1@0 ");
  EXPECT_EQ(Repaired({}, {{"a", 1, false}, {"a", 2, true}}), "a=2@0 ");
}

TEST(ResolveDocumentsTest, AnOldDocumentRecordYieldsToTheNameRecordOfItsCode) {
  EXPECT_EQ(Repaired({{"old", 9, 1, false}}, {{"new", 1, true}}), "new=1@0 -old ");
}

TEST(ResolveDocumentsTest, OldRecordsOfARemovedDocumentStayAway) {
  CodeSet retired;
  retired.set(1);
  EXPECT_EQ(Repaired({{"a", 8, 1, false}}, {{"a", 1, false}}, retired), "");
}

TEST(ResolveDocumentsTest, CurrentRecordsOutweighTheListOfRemovedCodes) {
  CodeSet retired;
  retired.set(1);
  EXPECT_EQ(Repaired({{"a", 8, 1, true}}, {{"a", 1, true}}, retired), "a=1@8 ");
}

TEST(ResolveDocumentsTest, CodeZeroNamesNoDocument) {
  EXPECT_EQ(Repaired({}, {{"a", 0, true}}), "");
}

TEST(ResolveDocumentsTest, TheEmptyNameIsAName) {
  EXPECT_EQ(Repaired({{"", 8, 1, true}}, {{"", 1, true}}), "=1@8 ");
}

}  // namespace
}  // namespace kestan_maintenance
