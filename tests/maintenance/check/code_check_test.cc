// SPDX-License-Identifier: GPL-3.0-or-later
// Faults among documents, names and codes.
#include <kestan/maintenance/check/code_check.h>

#include "tests/maintenance/maintenance_test.h"

namespace kestan_tests {
namespace {

using namespace std::string_literals;

TEST(CodeCheckTest, ValidRecordsAreNotReported) { EXPECT_EQ(LinesOf(ValidRecords()), Lines()); }

TEST(CodeCheckTest, DocumentWithoutNameRecord) {
  EXPECT_EQ(LinesOf(Without("c-\2\0"s)), Lines({"d-b: code 2 has no name record"}));
}

TEST(CodeCheckTest, NameRecordWithoutDocument) {
  EXPECT_EQ(LinesOf(Without("d-b")), Lines({"c-\\x02\\x00: no document record: b"}));
}

TEST(CodeCheckTest, TwoDocumentsOfOneCode) {
  EXPECT_EQ(LinesOf(With({{"d-b", Units({9, 9, 1, 0})}})),
            Lines({
                "d-b: code 1 names another document: a",
                "c-\\x02\\x00: the document has another code, 1: b",
            }));
}

TEST(CodeCheckTest, NameRecordThatNamesAnotherDocument) {
  EXPECT_EQ(LinesOf(With({{"c-\2\0"s, "a\n"}})),
            Lines({"d-b: code 2 names another document: a\\x0a",
                   "c-\\x02\\x00: no document record: a\\x0a"}));
}

TEST(CodeCheckTest, CodeZeroOfADocument) {
  EXPECT_EQ(LinesOf(With({{"d-c", Units({9, 9, 0, 0})}, {"c-\0\0"s, "c"}})),
            Lines({"d-c: the code is 0", "c-\\x00\\x00: the code is 0"}));
}

TEST(CodeCheckTest, CounterBelowACodeInUse) {
  EXPECT_EQ(LinesOf(With({{"g-code", Units({1})}})),
            Lines({"g-code: the counter 1 is below code 2, which is in use"}));
}

TEST(CodeCheckTest, MissingCounter) {
  EXPECT_EQ(LinesOf(Without("g-code")),
            Lines({"g-code: missing, though codes up to 2 are in use"}));
}

TEST(CodeCheckTest, CounterAboveTheCodesLosesSome) {
  const Checked checked = CheckRecords(With({{"g-code", Units({5})}}));
  EXPECT_EQ(checked.lines, Lines({"g-code: codes neither in use nor removed nor reusable: 3"}));
  EXPECT_EQ(checked.result.faults, 1u);
  EXPECT_EQ(checked.result.notes, 0u);
}

TEST(CodeCheckTest, CodesInUseThatAreReusableOrRemoved) {
  EXPECT_EQ(LinesOf(With({{"g-avail", Units({1})}, {"g-deleted", Units({2})}})),
            Lines({"g-avail: code 1 is in use", "g-deleted: code 2 is in use"}));
}

TEST(CodeCheckTest, CodeThatIsReusableAndRemoved) {
  EXPECT_EQ(
      LinesOf(With({{"g-avail", Units({3})}, {"g-deleted", Units({3})}, {"g-code", Units({3})}})),
      Lines({"g-deleted: code 3 is reusable already"}));
}

TEST(CodeCheckTest, ListedCodesAboveTheCounter) {
  EXPECT_EQ(LinesOf(With({{"g-avail", Units({3})}, {"g-deleted", Units({65535})}})),
            Lines({"g-avail: code 3 is above the counter 2",
                   "g-deleted: code 65535 is above the counter 2"}));
}

TEST(CodeCheckTest, ListedCodeZero) {
  EXPECT_EQ(LinesOf(With({{"g-avail", Units({0})}, {"g-deleted", Units({0})}})),
            Lines({"g-avail: the code is 0", "g-deleted: the code is 0"}));
}

TEST(CodeCheckTest, RepeatedCodes) {
  EXPECT_EQ(LinesOf(With({{"g-avail", Units({3, 4, 3, 3})},
                          {"g-deleted", Units({5, 5})},
                          {"g-code", Units({5})}})),
            Lines({"g-avail: code 3 is listed 3 times", "g-deleted: code 5 is listed 2 times"}));
}

TEST(CodeCheckTest, ArraysOfOddLength) {
  EXPECT_EQ(
      LinesOf(With({{"g-avail", Units({3}) + "x"}, {"g-deleted", "x"}, {"g-code", Units({3})}})),
      Lines({"g-avail: odd length: 3 bytes", "g-deleted: odd length: 1 bytes"}));
}

TEST(CodeCheckTest, RecordsOfOtherLengths) {
  EXPECT_EQ(LinesOf(With({{"g-code", "\2"},
                          {"g-opts", "\0"s},
                          {"d-a", Units({9, 9, 1})},
                          {"d-b", Units({9, 9, 2, 0, 0})}})),
            Lines({"g-code: length 1 instead of 2 bytes", "g-opts: length 1 instead of 4 bytes",
                   "d-a: length 6 instead of 8 bytes", "d-b: length 10 instead of 8 bytes"}));
}

TEST(CodeCheckTest, KeysOfNameRecordsWithOtherLengths) {
  EXPECT_EQ(
      LinesOf(With({{"c-x", "a"}, {"c-xyz", ""}})),
      Lines({"c-x: the key has 3 bytes instead of 4", "c-xyz: the key has 5 bytes instead of 4"}));
}

TEST(CodeCheckTest, BytesAfterTheCode) {
  EXPECT_EQ(LinesOf(With({{"d-b", Units({9, 9, 2, 256})}})),
            Lines({"d-b: other bytes than 0 behind the code"}));
}

TEST(CodeCheckTest, MissingOptions) {
  EXPECT_EQ(LinesOf(Without("g-opts")), Lines({"g-opts: note: missing: no option is set"}));
}

TEST(CodeCheckTest, NameWithANul) {
  EXPECT_EQ(LinesOf(With({{"d-b\0c"s, Units({9, 9, 3, 0})},
                          {"c-\3\0"s, "b\0c"s},
                          {"g-code", Units({3})},
                          {"cat", Units({1, 1, 1, 2, 1, 1, 3, 1, 1})}})),
            Lines({"d-b\\x00c: note: a NUL in the name: no call of the engine reaches the "
                   "document"}));
}

TEST(CodeCheckTest, DocumentWithTheEmptyNameIsNoWord) {
  EXPECT_EQ(LinesOf(With({{"d-", Units({9, 9, 2, 0})}, {"c-\2\0"s, ""}})),
            Lines({"d-b: code 2 names another document: "}));
  EXPECT_EQ(LinesOf(With({{"d-", Units({2, 1, 2})}})), Lines());
}

}  // namespace
}  // namespace kestan_tests
