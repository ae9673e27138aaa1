// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/maintenance/documents.h>

#include <string>
#include <vector>

#include "tests/indexing/planting.h"
#include "tests/support/gdbm_calls.h"
#include "tests/support/index_test.h"

namespace kestan_tests {
namespace {

using namespace std::string_literals;

// Returns a document as "NAME: WORD/POSITION WORD/POSITION ...".
std::string ToString(const kestan::StoredDocument& document) {
  std::string line = std::string(document.name) + ":";
  for (std::size_t i = 0; i < document.word_count; ++i) {
    const kestan::PlacedWord& word = document.words[i];
    line += " " + std::string(word.bytes) + "/" + std::to_string(word.position);
  }
  return line;
}

class DocumentsTest : public IndexTest {
 protected:
  // Closes the index and reads its documents.
  std::vector<std::string> Read(std::size_t places_at_once = kestan::kPlacesAtOnce) {
    engine_.CloseIndex();
    std::vector<std::string> lines;
    Database store;
    EXPECT_EQ(store.Open(path_.c_str(), 0), 0);
    const auto take = [&](const auto& document) { lines.push_back(ToString(document)); };
    EXPECT_EQ(kestan::ReadDocuments(store, take, places_at_once), kestan::StoreError::kNone);
    EXPECT_EQ(store.FileError(), 0);
    return lines;
  }

  using Lines = std::vector<std::string>;
};

TEST_F(DocumentsTest, WordsAreInOrderAsTheyWereWritten) {
  engine_.AddDocumentWords("a.txt", "Hello world hello WORLD");
  engine_.AddDocumentWords("b.txt", "x");
  EXPECT_EQ(Read(), (Lines{"a.txt: Hello/1 world/2 hello/3 WORLD/4", "b.txt: x/1"}));
}

TEST_F(DocumentsTest, ANewIndexHasNone) { EXPECT_EQ(Read(), Lines()); }

TEST_F(DocumentsTest, ADocumentMayHaveNoWords) {
  engine_.AddDocumentWords("empty", " \n");
  EXPECT_EQ(Read(), Lines{"empty:"});
}

TEST_F(DocumentsTest, RemovedDocumentsAreGoneBeforeAnyShrink) {
  engine_.AddDocumentWords("a", "one two");
  engine_.AddDocumentWords("b", "two three");
  engine_.RemoveDocumentWords("a");
  EXPECT_EQ(Read(), Lines{"b: two/1 three/2"});
}

TEST_F(DocumentsTest, RenamedDocumentsHaveTheirNewName) {
  engine_.AddDocumentWords("a", "one");
  engine_.MoveDocumentWords("a", "b");
  EXPECT_EQ(Read(), Lines{"b: one/1"});
}

TEST_F(DocumentsTest, DocumentsComeByTheirCodes) {
  engine_.AddDocumentWords("a", "one");
  engine_.AddDocumentWords("z", "two");
  engine_.RemoveDocumentWords("a");
  engine_.AddDocumentWords("m", "three");
  EXPECT_EQ(Read(), (Lines{"z: two/1", "m: three/1"}));
}

TEST_F(DocumentsTest, SideRecordsAreThereWhereTheyAre) {
  engine_.AddDocumentWords("a", "one");
  engine_.AddDocumentWords("b", "two");
  engine_.DBPutTitle("a", "A title");
  engine_.DBPutSummary("b", "");
  engine_.DBPutUser("b", "user");
  const std::uint32_t time = engine_.DocumentTimestamp("a");
  engine_.CloseIndex();
  Database store;
  ASSERT_EQ(store.Open(path_.c_str(), 0), 0);
  int given = 0;
  kestan::ReadDocuments(store, [&](const kestan::StoredDocument& document) {
    const bool is_a = ++given == 1;
    EXPECT_EQ(document.code, given);
    EXPECT_EQ(document.title, is_a ? std::optional<std::string_view>("A title") : std::nullopt);
    EXPECT_EQ(document.summary, is_a ? std::nullopt : std::optional<std::string_view>(""));
    EXPECT_EQ(document.user, is_a ? std::nullopt : std::optional<std::string_view>("user"));
    EXPECT_TRUE(document.has_positions);
    EXPECT_TRUE(!is_a || document.timestamp == time);
  });
  EXPECT_EQ(given, 2);
}

TEST_F(DocumentsTest, WithoutPositionsEachWordIsThereOnceInOrderOfBytes) {
  engine_.SetOptionFlag(1);
  engine_.AddDocumentWords("a", "Zoo ape zoo Ape ape bee");
  EXPECT_EQ(Read(), Lines{"a: Ape/0 Zoo/0 bee/0"});
}

TEST_F(DocumentsTest, DroppedPositionsAreSaid) {
  engine_.AddDocumentWords("a", "one");
  engine_.SetOptionFlag(1);
  engine_.CloseIndex();
  Database store;
  ASSERT_EQ(store.Open(path_.c_str(), 0), 0);
  kestan::ReadDocuments(
      store, [](const kestan::StoredDocument& document) { EXPECT_FALSE(document.has_positions); });
}

TEST_F(DocumentsTest, PositionsStartAgainAfterTheLastOne) {
  std::string text = "First hello";
  for (int i = 3; i <= 65535; ++i) text += " x";
  engine_.AddDocumentWords("a", (text + " first Hello last").c_str());
  const std::string line = Read().at(0);
  EXPECT_EQ(line.substr(0, 55), "a: First/1 first/1 Hello/2 hello/2 last/3 x/3 x/4 x/5 x");
}

TEST_F(DocumentsTest, EachBatchHoldsWhatItMay) {
  engine_.AddDocumentWords("a", "one two three");
  engine_.AddDocumentWords("b", "two One");
  engine_.AddDocumentWords("c", "");
  engine_.AddDocumentWords("d", "three");
  const Lines all = Read();
  EXPECT_EQ(all, (Lines{"a: one/1 two/2 three/3", "b: two/1 One/2", "c:", "d: three/1"}));
  for (std::size_t most = 0; most < 9; ++most) EXPECT_EQ(Read(most), all) << most;
}

TEST_F(DocumentsTest, HyphensAndOneLetterAreWordsWhereNoOtherRecordHasSuchKeys) {
  engine_.AddDocumentWords("a", "x-ray x- a t-shirt e-mail");
  EXPECT_EQ(Read(), Lines{"a: x-ray/1 x-/2 a/3 e-mail/5"});
}

TEST_F(DocumentsTest, AWordWithADocumentsKeyIsNoDocument) {
  engine_.AddDocumentWords("a", "d-day d-");
  EXPECT_EQ(Read(), Lines{"a: d-/2"});
}

TEST_F(DocumentsTest, TheEmptyNameIsOneToo) {
  engine_.AddDocumentWords("", "one");
  engine_.DBPutTitle("", "Title");
  EXPECT_EQ(Read(), Lines{": one/1"});
}

TEST_F(DocumentsTest, TheEmptyNameTakesNoOtherWordsThanTheKeysOfItsRecords) {
  engine_.AddDocumentWords("", "one x t- -- d-day");
  engine_.DBPutTitle("", "Title");
  EXPECT_EQ(Read(), Lines{": one/1 x/2 --/4"});
}

TEST_F(DocumentsTest, WithoutOptionsPositionsAreRead) {
  engine_.AddDocumentWords("a", "one two");
  engine_.CloseIndex();
  Records records = Dump(path_);
  records.erase("g-opts");
  std::filesystem::remove(path_);
  Plant(path_, records);
  EXPECT_EQ(Read(), Lines{"a: one/1 two/2"});
}

// As where a record of theirs was lost.
TEST_F(DocumentsTest, CapitalsAccountForAFoldedFormAtTheirOwnPlaceOnly) {
  engine_.AddDocumentWords("a", "bee");
  PlantAndReopen({{"Ape", EncodedPosting(1, {2, 3, 4})},
                  {"Zoo", EncodedPosting(1, {5})},
                  {"ape", EncodedPosting(1, {3, 6})},
                  {"bat", EncodedPosting(1, {4})},
                  {"Bat", EncodedPosting(1, {7})},
                  {"Cow", EncodedPosting(1, {8})},
                  {"dog", EncodedPosting(1, {9})}});
  EXPECT_EQ(Read(), Lines{"a: bee/1 Ape/2 Ape/3 Ape/4 bat/4 Zoo/5 ape/6 Bat/7 Cow/8 dog/9"});
}

TEST_F(DocumentsTest, OldPostingsOfOneLetterWordsGiveWayToNewerOnes) {
  engine_.AddDocumentWords("old", "x x a");
  engine_.RemoveDocumentWords("old");
  engine_.ShrinkIndex();
  engine_.AddDocumentWords("new", "b a");  // takes the same code
  EXPECT_EQ(Read(), Lines{"new: b/1 x/1 a/2 x/2"});
}

TEST_F(DocumentsTest, DamagedPostingsAreReadAsFarAsTheyGo) {
  engine_.AddDocumentWords("a", "one two");
  PlantAndReopen(
      {{"one", EncodedPosting(1, {7, 0}) + Units({1, 9, 5})}, {"two", "x"}, {"three", ""}});
  EXPECT_EQ(Read(), Lines{"a: one/0 one/5 one/7"});
}

TEST_F(DocumentsTest, ARecordThatCannotBeReadIsAnError) {
  engine_.AddDocumentWords("a", "one two");
  engine_.DBPutTitle("a", "Title");
  engine_.CloseIndex();
  int successes = 0;
  for (int nth = 1; successes == 0; ++nth) {
    Database store;
    ASSERT_EQ(store.Open(path_.c_str(), 0), 0);
    GdbmWatch watch;
    watch.Fail("fetch", nth, GDBM_FILE_READ_ERROR);
    int given = 0;
    const auto error = kestan::ReadDocuments(store, [&](const auto&) { ++given; });
    const bool has_failed = store.FileError() != 0;
    EXPECT_EQ(error, has_failed ? kestan::StoreError::kFileRead : kestan::StoreError::kNone) << nth;
    EXPECT_EQ(given, has_failed ? 0 : 1) << nth;
    if (has_failed) continue;
    ++successes;
    EXPECT_GT(nth, 7);  // options, document, name, two words, three side records
  }
}

TEST_F(DocumentsTest, AKeyThatOnlyTheWalkFindsHasNoRecord) {
  engine_.AddDocumentWords("a", "one two");
  engine_.CloseIndex();
  for (const int nth : {2, 3}) {  // after the options: document and name
    GdbmWatch watch;
    watch.Fail("fetch", nth, GDBM_ITEM_NOT_FOUND);
    EXPECT_EQ(Read(), Lines()) << nth;
  }
  GdbmWatch watch;
  watch.Fail("fetch", 4, GDBM_ITEM_NOT_FOUND);  // the first word, when it is counted
  watch.Fail("fetch", 6, GDBM_ITEM_NOT_FOUND);  // and when it is read
  EXPECT_EQ(Read(), Lines{"a: two/2"});
}

// With more words than stay in memory, each batch reads the postings again.
TEST_F(DocumentsTest, ARecordThatCannotBeReadAgainIsAnError) {
  std::string text;
  for (int i = 0; i < 1200; ++i) text += "word" + std::to_string(i) + " ";
  engine_.AddDocumentWords("a", text.c_str());
  engine_.CloseIndex();
  constexpr int kFirstTime = 3 + 1200;  // options, document, name, words
  for (const int nth : {kFirstTime, kFirstTime + 1, kFirstTime + 500}) {
    Database store;
    ASSERT_EQ(store.Open(path_.c_str(), 0), 0);
    GdbmWatch watch;
    watch.Fail("fetch", nth, GDBM_FILE_READ_ERROR);
    int given = 0;
    EXPECT_EQ(kestan::ReadDocuments(store, [&](const auto&) { ++given; }),
              kestan::StoreError::kFileRead);
    EXPECT_EQ(given, 0) << nth;
  }
}

TEST_F(DocumentsTest, AWalkThatBreaksOffIsAnError) {
  engine_.AddDocumentWords("a", "one two");
  engine_.CloseIndex();
  Database store;
  ASSERT_EQ(store.Open(path_.c_str(), 0), 0);
  GdbmWatch watch;
  watch.Fail("nextkey", 2, GDBM_FILE_READ_ERROR);
  EXPECT_EQ(kestan::ReadDocuments(store, [](const auto&) { FAIL(); }),
            kestan::StoreError::kFileRead);
}

TEST_F(DocumentsTest, WithoutAFileNothingIsDone) {
  Database store;
  EXPECT_EQ(StandardErrorOf([&] {
              EXPECT_EQ(kestan::ReadDocuments(store, [](const auto&) { FAIL(); }),
                        kestan::StoreError::kNotOpen);
            }),
            "Kestan: Call to database::flush without an open database\n");
}

}  // namespace
}  // namespace kestan_tests
