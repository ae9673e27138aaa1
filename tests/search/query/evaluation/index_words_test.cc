#include "search/query/evaluation/index_words.h"

#include <gtest/gtest.h>

#include "tests/support/index_test.h"

namespace kestan::search {
namespace {

class IndexWordsTest : public kestan_tests::IndexTest {};

TEST_F(IndexWordsTest, WordsAreThoseOfTheIndex) {
  engine_.AddDocumentWords("one", "a cat Dog");
  IndexWords words(ReaderOf(engine_));
  EXPECT_EQ(words.All().WithPrefix("c").size(), 1u);
  EXPECT_EQ(words.All().WithPrefix("D").size(), 1u);
  EXPECT_EQ(words.All().WithPrefix("x").size(), 0u);
}

TEST_F(IndexWordsTest, DocumentsAreCountedOnceEach) {
  engine_.AddDocumentWords("one", "cat cat dog");
  engine_.AddDocumentWords("two", "cat");
  IndexWords words(ReaderOf(engine_));
  EXPECT_EQ(words.DocumentsWith("cat"), 2u);
  EXPECT_EQ(words.DocumentsWith("dog"), 1u);
  EXPECT_EQ(words.DocumentsWith("cow"), 0u);
}

TEST_F(IndexWordsTest, WordsOfRemovedDocumentsStayUntilAShrink) {
  engine_.AddDocumentWords("one", "cat");
  engine_.AddDocumentWords("two", "dog");
  engine_.RemoveDocumentWords("one");
  EXPECT_EQ(IndexWords(ReaderOf(engine_)).All().WithPrefix("c").size(), 1u);
  engine_.ShrinkIndex();
  EXPECT_EQ(IndexWords(ReaderOf(engine_)).All().WithPrefix("c").size(), 0u);
}

TEST_F(IndexWordsTest, RemovedDocumentsAreNotCounted) {
  engine_.AddDocumentWords("one", "cat a");
  engine_.AddDocumentWords("two", "cat a");
  engine_.RemoveDocumentWords("one");
  IndexWords words(ReaderOf(engine_));
  EXPECT_EQ(words.DocumentsWith("cat"), 1u);
  EXPECT_EQ(words.DocumentsWith("a"), 1u);
  EXPECT_EQ(CountDocuments(ReaderOf(engine_), "cat"), 1u);
  EXPECT_EQ(CountDocuments(ReaderOf(engine_), "cow"), 0u);
}

}  // namespace
}  // namespace kestan::search
