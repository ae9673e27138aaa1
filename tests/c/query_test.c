/* SPDX-License-Identifier: GPL-3.0-or-later */
/* Queries built by calls: what they find is what the same text finds. */
#include <string.h>

#include "tests/c/harness.h"
#include "tests/c/poems.h"

static kestan_query* Word(kestan_reader* reader, const char* word) {
  kestan_query* query = NULL;
  REQUIRE_OK(kestan_query_word(&query, reader, word, ZERO_TERMINATED));
  return query;
}

/* Expects that `query` finds what `text` finds, with the same scores, and frees it. */
static void ExpectSame(kestan_reader* reader, kestan_query* query, const char* text) {
  kestan_hits* const expected = Search(reader, text);
  kestan_hits* found = NULL;
  uint64_t count = 0;
  size_t size = 0;
  size_t found_size = 0;
  REQUIRE_OK(kestan_reader_search_query(&found, reader, query, NULL));
  REQUIRE_OK(kestan_reader_count_query(&count, reader, query, NULL));
  EXPECT_NUMBER(CountOf(reader, text), count);
  EXPECT_NUMBER(KESTAN_OK, kestan_hits_count(&size, expected));
  EXPECT_NUMBER(KESTAN_OK, kestan_hits_count(&found_size, found));
  EXPECT(size > 0);
  EXPECT_NUMBER(size, found_size);
  for (size_t i = 0; i < size && i < found_size; ++i) {
    const kestan_hit* hit = NULL;
    const kestan_hit* found_hit = NULL;
    REQUIRE_OK(kestan_hits_at(&hit, expected, i));
    REQUIRE_OK(kestan_hits_at(&found_hit, found, i));
    EXPECT_TEXT(hit->name, found_hit->name, found_hit->name_length);
    EXPECT(hit->score == found_hit->score);
  }
  kestan_hits_free(expected);
  kestan_hits_free(found);
  kestan_query_free(query);
}

TEST(AWordFindsWhatItsTextFinds) {
  MakePoems();
  kestan_reader* const reader = OpenReader("poems");
  ExpectSame(reader, Word(reader, "roses"), "roses");
  ExpectSame(reader, Word(reader, "violet"), "violet");
  kestan_reader_free(reader);
}

TEST(APrefixAndAPhraseFindWhatTheirTextsFind) {
  MakePoems();
  kestan_reader* const reader = OpenReader("poems");
  kestan_query* query = NULL;
  REQUIRE_OK(kestan_query_prefix(&query, reader, "ros", 3));
  ExpectSame(reader, query, "ros*");
  REQUIRE_OK(kestan_query_phrase(&query, reader, "roses are", ZERO_TERMINATED));
  ExpectSame(reader, query, "\"roses are\"");
  kestan_reader_free(reader);
}

TEST(JoinedQueriesFindWhatTheirTextsFind) {
  MakePoems();
  kestan_reader* const reader = OpenReader("poems");
  kestan_query* const roses = Word(reader, "roses");
  kestan_query* const blue = Word(reader, "blue");
  const kestan_query* const both[] = {roses, blue};
  const kestan_query* operands[2];
  kestan_query* query = NULL;
  REQUIRE_OK(kestan_query_and(&query, reader, both, 2));
  ExpectSame(reader, query, "roses AND blue");
  REQUIRE_OK(kestan_query_or(&query, reader, both, 2));
  ExpectSame(reader, query, "roses OR blue");
  REQUIRE_OK(kestan_query_near(&query, reader, roses, blue, 1));
  ExpectSame(reader, query, "roses NEAR/1 blue");
  REQUIRE_OK(kestan_query_not(&query, reader, blue));
  operands[0] = roses;
  operands[1] = query;
  kestan_query* without = NULL;
  REQUIRE_OK(kestan_query_and(&without, reader, operands, 2));
  kestan_query_free(query);
  kestan_query_free(roses);
  kestan_query_free(blue);
  ExpectSame(reader, without, "roses NOT blue");
  kestan_reader_free(reader);
}

TEST(OneOperandIsEnough) {
  MakePoems();
  kestan_reader* const reader = OpenReader("poems");
  kestan_query* const roses = Word(reader, "roses");
  const kestan_query* const operands[] = {roses};
  kestan_query* query = NULL;
  REQUIRE_OK(kestan_query_and(&query, reader, operands, 1));
  ExpectSame(reader, query, "roses");
  REQUIRE_OK(kestan_query_or(&query, reader, operands, 1));
  ExpectSame(reader, query, "roses");
  EXPECT_NUMBER(KESTAN_EINVALID, kestan_query_and(&query, reader, operands, 0));
  EXPECT(query == NULL);
  EXPECT_NUMBER(KESTAN_EINVALID, kestan_query_or(&query, reader, NULL, 0));
  EXPECT_NUMBER(KESTAN_EINVALID, kestan_query_or(&query, reader, NULL, 1));
  EXPECT_NUMBER(KESTAN_EINVALID, kestan_query_or(&query, reader, operands, SIZE_MAX));
  EXPECT_NUMBER(KESTAN_EINVALID, CodeOf(reader));
  kestan_query_free(roses);
  kestan_reader_free(reader);
}

TEST(AQueryNeedsAWord) {
  MakePoems();
  kestan_reader* const reader = OpenReader("poems");
  kestan_query* query = NULL;
  const char* const texts[] = {"", " ", "?!", "\xe2\x80\x94"};
  for (size_t i = 0; i < COUNT_OF(texts); ++i) {
    EXPECT_NUMBER(KESTAN_EQUERY, kestan_query_word(&query, reader, texts[i], ZERO_TERMINATED));
    EXPECT_NUMBER(KESTAN_EQUERY, CodeOf(reader));
    EXPECT_NUMBER(KESTAN_EQUERY, kestan_query_prefix(&query, reader, texts[i], ZERO_TERMINATED));
    EXPECT_NUMBER(KESTAN_EQUERY, kestan_query_phrase(&query, reader, texts[i], ZERO_TERMINATED));
    EXPECT(query == NULL);
  }
  kestan_reader_free(reader);
}

TEST(OperatorsInAWordAreWords) {
  kestan_writer* const writer = OpenWriter("index");
  Add(writer, "a", NULL, "this OR that");
  Add(writer, "b", NULL, "this");
  Commit(writer);
  kestan_writer_free(writer);
  kestan_reader* const reader = OpenReader("index");
  kestan_query* const query = Word(reader, "OR");
  uint64_t count = 0;
  EXPECT_NUMBER(KESTAN_OK, kestan_reader_count_query(&count, reader, query, NULL));
  EXPECT_NUMBER(1, count);
  kestan_query_free(query);
  kestan_reader_free(reader);
}

TEST(ADistanceIsAtLeastOne) {
  MakePoems();
  kestan_reader* const reader = OpenReader("poems");
  kestan_query* const word = Word(reader, "roses");
  kestan_query* query = NULL;
  EXPECT_NUMBER(KESTAN_EINVALID, kestan_query_near(&query, reader, word, word, 0));
  EXPECT(query == NULL);
  EXPECT_NUMBER(KESTAN_OK, kestan_query_near(&query, reader, word, word, 2147483647));
  kestan_query_free(query);
  EXPECT_NUMBER(KESTAN_EINVALID, kestan_query_near(&query, reader, word, word, 4294967295u));
  EXPECT_NUMBER(KESTAN_EHANDLE, kestan_query_near(&query, reader, word, NULL, 1));
  EXPECT(query == NULL);
  kestan_query_free(word);
  kestan_reader_free(reader);
}

TEST(AQueryThatIsNestedTooDeeplyIsRefused) {
  MakePoems();
  kestan_reader* const reader = OpenReader("poems");
  kestan_query* query = Word(reader, "roses");
  int code = KESTAN_OK;
  int depth = 0;
  for (; code == KESTAN_OK && depth < 100000; ++depth) {
    kestan_query* deeper = NULL;
    code = kestan_query_not(&deeper, reader, query);
    if (code != KESTAN_OK) break;
    kestan_query_free(query);
    query = deeper;
  }
  EXPECT_NUMBER(KESTAN_EQUERY, code);
  EXPECT(depth >= 30);
  kestan_query_free(query);
  kestan_reader_free(reader);
}

TEST(AQueryOfAnotherReaderIsRefused) {
  MakePoems();
  kestan_reader* const reader = OpenReader("poems");
  kestan_reader* const other = OpenReader("poems");
  kestan_query* const query = Word(reader, "roses");
  const kestan_query* const operands[] = {query};
  kestan_query* joined = NULL;
  kestan_hits* hits = NULL;
  uint64_t count = 9;
  EXPECT_NUMBER(KESTAN_EINVALID, kestan_reader_search_query(&hits, other, query, NULL));
  EXPECT(hits == NULL);
  EXPECT(strstr(MessageOf(other), "another reader") != NULL);
  EXPECT_NUMBER(KESTAN_EINVALID, kestan_reader_count_query(&count, other, query, NULL));
  EXPECT_NUMBER(9, count);
  EXPECT_NUMBER(KESTAN_EINVALID, kestan_query_and(&joined, other, operands, 1));
  EXPECT_NUMBER(KESTAN_EINVALID, kestan_query_not(&joined, other, query));
  kestan_reader_free(reader);
  EXPECT_NUMBER(KESTAN_EINVALID, kestan_query_not(&joined, other, query));
  EXPECT(joined == NULL);
  kestan_query_free(query);
  kestan_reader_free(other);
}

TEST(AQueryIsPutToItsReaderAfterARefreshToo) {
  MakePoems();
  kestan_reader* const reader = OpenReader("poems");
  kestan_query* const query = Word(reader, "roses");
  kestan_writer* const writer = OpenWriter("poems");
  Add(writer, "new", NULL, "more roses");
  Commit(writer);
  kestan_writer_free(writer);
  EXPECT_NUMBER(KESTAN_OK, kestan_reader_refresh(NULL, reader));
  uint64_t count = 0;
  EXPECT_NUMBER(KESTAN_OK, kestan_reader_count_query(&count, reader, query, NULL));
  EXPECT_NUMBER(3, count);
  kestan_query_free(query);
  kestan_reader_free(reader);
}
