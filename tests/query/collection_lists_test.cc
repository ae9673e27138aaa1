// SPDX-License-Identifier: GPL-3.0-or-later
// The walk of Kestan::ListDocuments and Kestan::CommonWords in
// kestan/query/collection_lists.cc: its order and the buffer it writes.
#include <algorithm>

#include "tests/query/query_test.h"
#include "tests/support/gdbm_calls.h"

namespace kestan_tests {
namespace {

// Returns the keys of the file at `path` in gdbm's order.
std::vector<std::string> KeysInOrder(const std::string& path) {
  std::vector<std::string> keys;
  GDBM_FILE file = gdbm_open(path.c_str(), 0, GDBM_READER, 0, nullptr);
  EXPECT_NE(file, nullptr);
  datum key = gdbm_firstkey(file);
  while (key.dptr != nullptr) {
    keys.emplace_back(key.dptr, static_cast<std::size_t>(key.dsize));
    const datum next = gdbm_nextkey(file, key);
    std::free(key.dptr);
    key = next;
  }
  gdbm_close(file);
  return keys;
}

auto CountLines(const std::string& lines) { return std::count(lines.begin(), lines.end(), '\n'); }

class CollectionWalkTest : public IndexTest {
 protected:
  // Lists the one document, whose name has `length` bytes.
  std::string DocumentOf(std::size_t length) {
    PlantAndReopen(Document(std::string(length, 'n'), 1) + Records{{"g-code", Units({1})}});
    return engine_.ListDocuments();
  }

  // Lists the one word, which has `length` bytes.
  std::string WordOf(std::size_t length) {
    PlantAndReopen({{std::string(length, 'n'), ""}, {"g-code", Units({1})}});
    return engine_.CommonWords(0, -1);
  }

  // Runs `walk` over five documents and a word of each, with the `nth` value that it fetches out of
  // reach.
  template <typename Walk>
  std::string WalkWithout(int nth, Walk walk) {
    Records records = {{"g-code", Units({5})}};
    for (const char* name : {"a", "b", "c", "d", "e"}) {
      records["d-" + std::string(name)] = records["word" + std::string(name)] = "";
    }
    PlantAndReopen(records);
    GdbmWatch gdbm;
    gdbm.Fail("fetch", nth + 1, GDBM_FILE_READ_ERROR);  // the first is that of the counter
    return walk();
  }

  static std::string Line(std::size_t length) { return std::string(length, 'n') + "\n"; }
};

TEST_F(CollectionWalkTest, ListsDocumentsInTheOrderOfTheFile) {
  std::string expected;
  for (char name = 'a'; name <= 'z'; ++name)
    engine_.AddDocumentWords(std::string(1, name).c_str(), "cat");
  engine_.CloseIndex();
  for (const std::string& key : KeysInOrder(path_)) {
    if (key.compare(0, 2, "d-") == 0) expected += key.substr(2) + "\n";
  }
  ASSERT_EQ(expected.size(), 52U);
  ASSERT_EQ(engine_.OpenIndex(path_.c_str(), 0), 0);
  const char* const lines = engine_.ListDocuments();
  EXPECT_EQ(lines, Kestan::WordBuf);
  EXPECT_EQ(lines, expected);
}

TEST_F(CollectionWalkTest, ListsWordsInTheOrderOfTheFile) {
  std::string text, expected;
  for (int i = 100; i < 200; ++i) text += std::to_string(i) + " ";
  engine_.AddDocumentWords("one", text.c_str());
  engine_.CloseIndex();
  for (const std::string& key : KeysInOrder(path_)) {
    if (key.size() == 3) expected += key + "\n";
  }
  ASSERT_EQ(engine_.OpenIndex(path_.c_str(), 0), 0);
  EXPECT_EQ(engine_.CommonWords(1, 1), expected);
}

TEST_F(CollectionWalkTest, ListsNamesOfAnyBytes) {
  PlantAndReopen({{"g-code", Units({1})}, {std::string("d-a\0\n", 5), ""}});
  engine_.ListDocuments();
  EXPECT_EQ(std::string(Kestan::WordBuf, 5), std::string("a\0\n\n\0", 5));
}

TEST_F(CollectionWalkTest, DocumentsAreRecognisedByTheirKeysAlone) {
  PlantAndReopen({{"g-code", Units({1})}, {"d", ""}, {"D-x", ""}, {"e-x", ""}, {"dx-", ""}});
  EXPECT_STREQ(engine_.ListDocuments(), "");
  PlantAndReopen({{"d-x", ""}});
  EXPECT_STREQ(engine_.ListDocuments(), "x\n");
}

TEST_F(CollectionWalkTest, EmptyNameIsADocumentAndAWordToo) {
  engine_.AddDocumentWords("", "");
  EXPECT_STREQ(engine_.ListDocuments(), "\n");
  EXPECT_STREQ(engine_.CommonWords(0, -1), "d-\n");
}

TEST_F(CollectionWalkTest, RemovedAndMovedDocumentsAreListedAsTheyAreNow) {
  for (const char* name : {"one", "two"}) engine_.AddDocumentWords(name, "");
  engine_.RemoveDocumentWords("one");
  engine_.MoveDocumentWords("two", "three");
  EXPECT_STREQ(engine_.ListDocuments(), "three\n");
}

TEST_F(CollectionWalkTest, IndexWithoutCounterIsAnEmptyTextOutsideTheBuffer) {
  PlantAndReopen(Document("one", 1));
  EXPECT_EQ(StandardErrorOf([&] { EXPECT_STREQ(engine_.ListDocuments(), ""); }), "");
  EXPECT_EQ(Kestan::WordBuf, nullptr);
  EXPECT_EQ(Kestan::WBSize, 0U);
}

TEST_F(CollectionWalkTest, IndexWithoutCounterLeavesTheBufferAlone) {
  engine_.DBPutTitle("name", "title");
  const char* const title = engine_.DBGetTitle("name");
  EXPECT_STREQ(engine_.ListDocuments(), "");
  EXPECT_STREQ(engine_.CommonWords(0, -1), "");
  EXPECT_STREQ(title, "title");
}

TEST_F(CollectionWalkTest, WithoutAnIndexIsAnEmptyText) {
  engine_.CloseIndex();
  EXPECT_EQ(StandardErrorOf([&] { EXPECT_STREQ(engine_.ListDocuments(), ""); }),
            "Kestan: Call to database::get without an open database\n");
}

TEST_F(CollectionWalkTest, IndexWithoutDocumentsIsAnEmptyTextInTheBuffer) {
  PlantAndReopen({{"g-code", Units({4})}});
  const char* const lines = engine_.ListDocuments();
  EXPECT_STREQ(lines, "");
  EXPECT_EQ(lines, Kestan::WordBuf);
  EXPECT_EQ(Kestan::WBSize, 4096U);
}

TEST_F(CollectionWalkTest, NameThatFillsTheBufferFits) {
  EXPECT_EQ(DocumentOf(4094), Line(4094));
  EXPECT_EQ(Kestan::WBSize, 4096U);
}

TEST_F(CollectionWalkTest, NameThatLeavesNoRoomDoublesTheBuffer) {
  EXPECT_EQ(DocumentOf(4095), Line(4095));
  EXPECT_EQ(Kestan::WBSize, 8192U);
}

TEST_F(CollectionWalkTest, BufferDoublesOnlyOnceForOneName) {
  EXPECT_EQ(DocumentOf(10000), Line(10000));
  EXPECT_EQ(Kestan::WBSize, 8192U);
}

TEST_F(CollectionWalkTest, WordThatFillsTheBufferFits) {
  EXPECT_EQ(WordOf(4094), Line(4094));
  EXPECT_EQ(Kestan::WBSize, 4096U);
}

TEST_F(CollectionWalkTest, WordThatLeavesNoRoomDoublesTheBuffer) {
  EXPECT_EQ(WordOf(4095), Line(4095));
  EXPECT_EQ(Kestan::WBSize, 8192U);
}

TEST_F(CollectionWalkTest, BufferDoublesOnlyOnceForOneWord) {
  EXPECT_EQ(WordOf(10000), Line(10000));
  EXPECT_EQ(Kestan::WBSize, 8192U);
}

TEST_F(CollectionWalkTest, BufferDoublesForEachNamePastItsEnd) {
  Records records = {{"g-code", Units({3})}};
  for (char letter : {'a', 'b', 'c'}) records["d-" + std::string(20000, letter)] = "";
  PlantAndReopen(records);
  const std::string lines = engine_.ListDocuments();
  for (char letter : {'a', 'b', 'c'}) {
    EXPECT_NE(lines.find(std::string(20000, letter) + "\n"), std::string::npos) << letter;
  }
  EXPECT_EQ(lines.size(), 60003U);
  EXPECT_EQ(Kestan::WBSize, 32768U);
}

TEST_F(CollectionWalkTest, BufferCountedAs0GrowsTo4096) {
  engine_.DBPutTitle("name", std::string(5000, 't').c_str());
  engine_.DBGetTitle("name");
  ASSERT_EQ(Kestan::WBSize, 0U);
  EXPECT_EQ(DocumentOf(4094), Line(4094));
  EXPECT_EQ(Kestan::WBSize, 4096U);
}

TEST_F(CollectionWalkTest, ManyRecordsAreVisitedOnceAcrossFlushes) {
  for (int i = 0; i < 500; ++i) engine_.AddDocumentWords(std::to_string(i).c_str(), "cat");
  EXPECT_EQ(CountLines(engine_.ListDocuments()), 500);
  EXPECT_STREQ(engine_.CommonWords(500, 500), "cat\n");
  EXPECT_EQ(Stored().at("g-code"), Units({500}));
}

TEST_F(CollectionWalkTest, EndsAtARecordThatCannotBeFetched) {
  const auto documents = [&] { return engine_.ListDocuments(); };
  const auto words = [&] { return engine_.CommonWords(0, -1); };
  const std::string all_documents = WalkWithout(11, documents);
  const std::string all_words = WalkWithout(11, words);
  ASSERT_EQ(CountLines(all_documents) + CountLines(all_words), 10);
  for (int nth = 1; nth <= 10; ++nth) {
    const std::string first_documents = WalkWithout(nth, documents);
    const std::string first_words = WalkWithout(nth, words);
    EXPECT_EQ(first_documents, all_documents.substr(0, first_documents.size()));
    EXPECT_EQ(first_words, all_words.substr(0, first_words.size()));
    EXPECT_EQ(CountLines(first_documents) + CountLines(first_words), nth - 1);
  }
}

// What a walk has passed is cached until the next flush, and a shared value that is put under a
// cached key becomes clean: only the word "d-a", moved to the key of "d-b", tells the two apart.
TEST_F(CollectionWalkTest, AWalkLeavesTheRecordsThatItPassedInTheCache) {
  engine_.AddDocumentWords("code", "d-b");
  engine_.CloseIndex();
  ASSERT_EQ(engine_.OpenIndex(path_.c_str(), 0), 0);
  engine_.AddDocumentWords("", "d-a");
  engine_.ListDocuments();
  engine_.MoveDocumentWords("a", "b");
  const std::string said = StandardErrorOf([&] { engine_.CloseIndex(); });
  EXPECT_EQ(said.find("'d-b'"), std::string::npos) << said;
}

}  // namespace
}  // namespace kestan_tests
