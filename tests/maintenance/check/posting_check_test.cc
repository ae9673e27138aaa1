// SPDX-License-Identifier: GPL-3.0-or-later
// Faults in posting records, word lists and texts, and documents with words missing.
#include <kestan/maintenance/check/posting_check.h>

#include <string>

#include "tests/maintenance/maintenance_test.h"

namespace kestan_tests {
namespace {

using namespace std::string_literals;

// The valid records without positions.
Records WithoutPositions(const Records& changes) {
  Records records = With({{"g-opts", Units({1, 0})}, {"cat", Units({1, 2})}, {"dog", Units({1})}});
  for (const auto& [key, value] : changes) records[key] = value;
  return records;
}

// Returns a posting record that lists document 1 at each position from `first` to `last`.
std::string Places(unsigned first, unsigned last) {
  std::string record = Units({1, last - first + 1});
  for (unsigned position = first; position <= last; ++position) record += Units({position});
  return record;
}

TEST(PostingCheckTest, OddLength) {
  EXPECT_EQ(LinesOf(With({{"dog", Units({1, 1, 2}) + "x"}})), Lines({"dog: odd length: 7 bytes"}));
}

TEST(PostingCheckTest, CountPastTheEnd) {
  EXPECT_EQ(LinesOf(With({{"dog", Units({1, 2, 2})}})),
            Lines({"dog: ends within an entry: code 1 counts 2 positions and has 1"}));
}

TEST(PostingCheckTest, EndAfterACode) {
  EXPECT_EQ(LinesOf(With({{"dog", Units({1, 1, 2, 2})}})),
            Lines({"dog: ends within an entry: code 2 without a number of positions"}));
}

TEST(PostingCheckTest, CodeZero) {
  EXPECT_EQ(LinesOf(With({{"dog", Units({1, 1, 2, 0, 1, 1, 0, 1, 2})}})),
            Lines({"dog: entries of code 0: 2"}));
}

TEST(PostingCheckTest, CodesThatNoDocumentHolds) {
  EXPECT_EQ(LinesOf(With({{"dog", Units({1, 1, 2, 3, 1, 1, 4, 1, 2})}})),
            Lines({"dog: entries of codes that no document holds: 2"}));
}

TEST(PostingCheckTest, ReusableCodesMustHaveNoPostings) {
  EXPECT_EQ(
      LinesOf(With(
          {{"dog", Units({1, 1, 2, 3, 1, 1})}, {"g-avail", Units({3})}, {"g-code", Units({3})}})),
      Lines({"dog: entries of codes that no document holds: 1"}));
}

TEST(PostingCheckTest, RemovedCodesAwaitAShrink) {
  EXPECT_EQ(
      LinesOf(With(
          {{"dog", Units({1, 1, 2, 3, 1, 1})}, {"g-deleted", Units({3})}, {"g-code", Units({3})}})),
      Lines());
}

// Whoever gets the free code next would be found under these words.
TEST(PostingCheckTest, OldPostingsOfWordsThatAreNeverPurgedAreFaults) {
  const Records records{{"x", Units({3, 1, 1, 2, 1, 1})},
                        {"y-", Units({3, 1, 1, 3, 1, 1})},
                        {"g-avail", Units({3})},
                        {"g-code", Units({3})}};
  EXPECT_EQ(LinesOf(With(records)),
            Lines({"x: entries of free codes, of documents that were removed: 1",
                   "y-: entries of free codes, of documents that were removed: 2",
                   "y-: entries of a code listed before: 1",
                   "d-b: words of one letter, or with a hyphen, contradict the others: those of an "
                   "earlier document?"}));
}

// "x" stands behind a gap: where codes are never used again it cannot be that of another document.
TEST(PostingCheckTest, WhereNoCodeIsUsedAgainShortWordsAreLikeOthers) {
  const TempDir dir;
  const std::string path = dir / "index";
  Plant(path, With({{"x", Units({1, 1, 5})}}));
  Database store;
  ASSERT_EQ(store.Open(path.c_str(), 0), 0);
  const auto findings = [&store](kestan::CodeReuse reuse) {
    std::string found;
    kestan::CheckIndexWithFindings(
        store,
        [&found](const kestan::Finding& finding) {
          found = std::string(finding.key).append(": ").append(finding.text);
        },
        reuse);
    return found;
  };
  EXPECT_EQ(findings(kestan::CodeReuse::kPossible),
            "d-a: words of one letter, or with a hyphen, contradict the others: those of an "
            "earlier document?");
  EXPECT_EQ(findings(kestan::CodeReuse::kNever),
            "d-a: words missing: at least 2 of 5; left half-written?");
}

TEST(PostingCheckTest, WordsThatAreNeverPurgedKnowNoCodesAboveTheCounter) {
  EXPECT_EQ(LinesOf(With({{"x", Units({3, 1, 1})}})),
            Lines({"x: entries of codes that no document holds: 1"}));
}

TEST(PostingCheckTest, RepeatedCodes) {
  EXPECT_EQ(LinesOf(With({{"cat", Units({1, 1, 1, 2, 1, 1, 1, 1, 3, 2, 1, 2})}})),
            Lines({"cat: entries of a code listed before: 2"}));
}

TEST(PostingCheckTest, PositionsOfZero) {
  EXPECT_EQ(LinesOf(With({{"fox", Units({1, 3, 0, 0, 3})}})),
            Lines({"fox: positions of 0: 2",
                   "d-a: some positions have several words, and others have none"}));
}

TEST(PostingCheckTest, PostingsWithoutPositions) {
  EXPECT_EQ(LinesOf(With({{"fox", Units({1, 0, 2, 0})}})),
            Lines({"fox: entries without positions: 2"}));
}

TEST(PostingCheckTest, SeveralFaultsOfOneRecord) {
  EXPECT_EQ(LinesOf(With({{"a\\b\n", Units({0, 1, 7, 9, 0, 2}) + "x"}})),
            Lines({"a\\x5cb\\x0a: note: no word: it is empty or holds white space or a NUL",
                   "a\\x5cb\\x0a: odd length: 13 bytes", "a\\x5cb\\x0a: entries of code 0: 1",
                   "a\\x5cb\\x0a: entries of codes that no document holds: 1",
                   "a\\x5cb\\x0a: entries without positions: 1",
                   "a\\x5cb\\x0a: ends within an entry: code 2 without a number of positions"}));
}

TEST(PostingCheckTest, EmptyPostingRecordsShareALine) {
  const Checked checked = CheckRecords(With({{"fox", ""}, {"hen", ""}}));
  EXPECT_EQ(checked.lines,
            Lines({"index file: note: empty posting records, of words that no document holds: 2"}));
  EXPECT_EQ(checked.result.notes, 1u);
}

// Without positions, "ab" is the code 25185 too.
TEST(PostingCheckTest, TextThatMayBeACodeLeavesOpenWhetherItsDocumentHasWords) {
  const unsigned code = 'a' | 'b' << 8;
  Records records = WithoutPositions(
      {{"g-code", Units({code})}, {"d-x", Units({0, 0, code, 0})}, {"c-ab", "x"}, {"t-a", "ab"}});
  Lines expected = LinesOf(records);
  records["t-a"] = "abc";
  const std::string note = "d-x: note: no words: an empty text, or left half-written?";
  EXPECT_EQ(expected.count(note), 0U);
  expected.insert(note);
  EXPECT_EQ(LinesOf(records), expected);
}

TEST(PostingCheckTest, KeysThatAreNoWords) {
  const std::string what = ": note: no word: it is empty or holds white space or a NUL";
  EXPECT_EQ(LinesOf(With({{"a cat", Units({1, 1, 3})}, {"c\0t"s, Units({1, 1, 3})}})),
            Lines({"a cat" + what, "c\\x00t" + what}));
}

TEST(PostingCheckTest, WithoutPositionsEveryUnitIsACode) {
  EXPECT_EQ(LinesOf(WithoutPositions({})), Lines());
  EXPECT_EQ(LinesOf(WithoutPositions({{"cat", Units({1, 2, 2, 0, 9}) + "x"}})),
            Lines({"cat: odd length: 11 bytes", "cat: entries of code 0: 1",
                   "cat: entries of a code listed before: 1",
                   "cat: entries of codes that no document holds: 1"}));
}

TEST(PostingCheckTest, DocumentWithoutWords) {
  EXPECT_EQ(LinesOf(With({{"cat", Units({1, 1, 1})}})),
            Lines({"d-b: note: no words: an empty text, or left half-written?"}));
  EXPECT_EQ(LinesOf(WithoutPositions({{"cat", Units({1})}})),
            Lines({"d-b: note: no words: an empty text, or left half-written?"}));
}

TEST(PostingCheckTest, DocumentWithoutWordsButThoseOfAnEarlierOne) {
  const Lines lines = LinesOf(With({{"x", Units({3, 1, 7})},
                                    {"d-c", Units({9, 9, 3, 0})},
                                    {"c-\3\0"s, "c"},
                                    {"g-avail", Units({3})},
                                    {"g-code", Units({3})}}));
  EXPECT_EQ(lines, Lines({"g-avail: code 3 is in use",
                          "d-c: note: no words: an empty text, or left half-written?"}));
}

TEST(PostingCheckTest, GapInTheWordsOfADocument) {
  EXPECT_EQ(LinesOf(With({{"dog", Units({1, 1, 4})}})),
            Lines({"d-a: words missing: at least 2 of 4; left half-written?"}));
}

TEST(PostingCheckTest, WrittenFormWithoutTheFoldedOne) {
  EXPECT_EQ(LinesOf(With({{"Fox", Units({1, 1, 3})}})),
            Lines({"Fox: the case-folded form has no record",
                   "d-a: words missing: at least 1 of 3; left half-written?"}));
  EXPECT_EQ(LinesOf(With({{"Fox", Units({1, 1, 3})}, {"fox", Units({1, 1, 3})}})), Lines());
}

TEST(PostingCheckTest, OneByteWordsFillGaps) {
  EXPECT_EQ(LinesOf(With({{"dog", Units({1, 1, 3})}, {"i", Units({1, 1, 2})}})), Lines());
}

TEST(PostingCheckTest, WordsWithHyphensFillGaps) {
  EXPECT_EQ(LinesOf(With({{"dog", Units({1, 1, 4})},
                          {"e-mail", Units({1, 1, 2})},
                          {"t-shirt", Units({1, 1, 3})}})),
            Lines({"e-mail: note: the posting record of a word with a hyphen",
                   "t-shirt: note: the posting record of a word with a hyphen"}));
}

TEST(PostingCheckTest, WordsThatLookLikeDocumentsNamesAndListsAreNoFaults) {
  const std::string what = ": note: the posting record of a word with a hyphen";
  EXPECT_EQ(LinesOf(With({{"dog", Units({1, 1, 6})},
                          {"d-day", Units({1, 1, 2})},
                          {"c-section", Units({1, 1, 3})},
                          {"c-ab", Units({1, 1, 4})},
                          {"w-2", Units({1, 1, 5})}})),
            Lines({"d-day" + what, "c-section" + what, "c-ab" + what, "w-2" + what}));
}

TEST(PostingCheckTest, DamagedPostingsOfAWordWithAHyphenAreFaults) {
  const std::string what = ": note: the posting record of a word with a hyphen";
  EXPECT_EQ(
      LinesOf(With({{"t-shirt", Units({9, 1, 1})}, {"e-mail", Units({1, 2, 1})}})),
      Lines({"t-shirt" + what, "t-shirt: entries of codes that no document holds: 1",
             "e-mail" + what, "e-mail: ends within an entry: code 1 counts 2 positions and has 1",
             "d-a: words of one letter, or with a hyphen, contradict the others: those of an "
             "earlier document?"}));
}

TEST(PostingCheckTest, ADocumentRecordShapedLikePostingsIsTheDocumentsWhereANameSaysSo) {
  EXPECT_EQ(LinesOf(With({{"d-b", Units({2, 1, 2})}})),
            Lines({"d-b: length 6 instead of 8 bytes"}));
  EXPECT_EQ(LinesOf(With({{"d-b", ""}})),
            Lines({"d-b: length 0 instead of 8 bytes", "d-b: the code is 0",
                   "c-\\x02\\x00: the document has another code, 0: b"}));
}

TEST(PostingCheckTest, AnEmptyRecordThatNoNameBelongsToMayBeThatOfAWord) {
  EXPECT_EQ(LinesOf(With({{"d-day", ""}})),
            Lines({"d-day: note: empty: that of a word with a hyphen, or of a lost document"}));
}

TEST(PostingCheckTest, PositionsThatOptionFlagOneLeftAreNotJudged) {
  const std::string what = ": note: a word with a hyphen, with positions that option flag 1 left";
  EXPECT_EQ(
      LinesOf(WithoutPositions({{"d-day", Units({1, 1, 9, 2})}, {"e-mail", Units({1, 2, 5, 70})}})),
      Lines({"d-day" + what, "e-mail" + what}));
}

TEST(PostingCheckTest, SeveralWordsAtOnePosition) {
  EXPECT_EQ(LinesOf(With({{"fox", Units({1, 1, 2})}})),
            Lines({"d-a: several words at one position: 3 up to position 2"}));
}

TEST(PostingCheckTest, PositionsThatDoNotAscend) {
  EXPECT_EQ(LinesOf(With({{"dog", Units({1, 2, 3, 2})}})),
            Lines({"d-a: positions of a word do not ascend"}));
}

// After the last position a text begins again at the first.
TEST(PostingCheckTest, DocumentWhosePositionsWrap) {
  const Records valid = With({{"dog", Places(2, 65535)}, {"fox", Units({1, 2, 1, 2})}});
  EXPECT_EQ(LinesOf(valid), Lines());
  EXPECT_EQ(LinesOf(With({{"dog", Places(2, 65535)}, {"fox", Units({1, 2, 1, 3})}})),
            Lines({"d-a: some positions have several words, and others have none"}));
  EXPECT_EQ(LinesOf(With({{"dog", Places(3, 65534)}})),
            Lines({"d-a: words missing: at least 1 of 65534; left half-written?"}));
}

TEST(PostingCheckTest, AWordAtThePositionOfAnotherWhereOneHasNone) {
  EXPECT_EQ(
      LinesOf(With(
          {{"dog", Units({1, 2, 2, 3})}, {"fox", Units({1, 1, 3})}, {"hen", Units({1, 1, 5})}})),
      Lines({"d-a: some positions have several words, and others have none"}));
}

TEST(PostingCheckTest, TextsOfDocumentsThatAreNotThere) {
  EXPECT_EQ(LinesOf(With({{"t-a", "A"}, {"s-b", "B"}, {"u-c", "C"}, {"t-c", ""}, {"s-", "x"}})),
            Lines({"u-c: note: its document is not in the index",
                   "t-c: note: its document is not in the index",
                   "s-: note: its document is not in the index"}));
}

TEST(PostingCheckTest, KeysOfUnknownFamilies) {
  EXPECT_EQ(LinesOf(With({{"g-none", "x"}, {"q-", Units({2, 1, 2})}, {"q-x", "x"}})),
            Lines({"g-none: note: no record of the engine has such a key",
                   "q-x: note: no record of the engine has such a key"}));
}

TEST(PostingCheckTest, WordListThatSharesMoreThanThereIs) {
  EXPECT_EQ(LinesOf(With({{"w-good",
                           "\x80"
                           "red\x83"
                           "dish\x80"
                           "ox"},
                          {"w-none", ""}})),
            Lines());
  EXPECT_EQ(LinesOf(With({{"w-bad",
                           "\x80"
                           "red\x84"
                           "dish"},
                          {"w-first",
                           "\x81"
                           "x\x83"
                           "y"}})),
            Lines({"w-bad: words that share more bytes than the word before has: 1",
                   "w-first: words that share more bytes than the word before has: 2"}));
}

// What DBPutWords makes of "\xc3\xa9t\xc3\xa9 \xc3\xa9tat caf\xe9 cave".
TEST(PostingCheckTest, WordListsOfBytesAbove127AreNoFaults) {
  EXPECT_EQ(
      LinesOf(With({{"w-list",
                     "\x80\xc3\xa9t\xc3\xa9\x83"
                     "at\x80"
                     "caf\xe9\x82ve"}})),
      Lines({"w-list: note: bytes above 127 in words, which do not come back as they went in"}));
}

TEST(PostingCheckTest, WordListThatDoesNotBeginWithAWord) {
  EXPECT_EQ(LinesOf(With({{"w-list", "red"}})),
            Lines({"w-list: the list does not begin with a word"}));
  EXPECT_EQ(LinesOf(With({{"w-list", "\xc3\xa9t\xc3\xa9"}}))
                .count("w-list: the list does not begin with a word"),
            1u);
}

}  // namespace
}  // namespace kestan_tests
