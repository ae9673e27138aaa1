/* SPDX-License-Identifier: GPL-3.0-or-later */
/* Readers: snapshots, documents, words, statistics. */
#include <string.h>
#include <time.h>

#include "tests/c/harness.h"
#include "tests/c/poems.h"

TEST(AReaderSeesACommitAfterARefresh) {
  MakePoems();
  kestan_reader* const reader = OpenReader("poems");
  int changed = -1;
  EXPECT_NUMBER(KESTAN_OK, kestan_reader_refresh(&changed, reader));
  EXPECT_NUMBER(0, changed);
  kestan_writer* const writer = OpenWriter("poems");
  Add(writer, "new.txt", NULL, "roses again");
  Commit(writer);
  EXPECT_NUMBER(2, CountOf(reader, "roses"));
  EXPECT_NUMBER(KESTAN_OK, kestan_reader_refresh(&changed, reader));
  EXPECT_NUMBER(1, changed);
  EXPECT_NUMBER(3, CountOf(reader, "roses"));
  kestan_reader_free(reader);
  kestan_writer_free(writer);
}

TEST(SeveralIndexesAreSearchedAsOne) {
  MakePoems();
  MakeNumbers("numbers", 4);
  const char* const paths[] = {"poems, and more", "numbers"};
  const size_t lengths[] = {5, ZERO_TERMINATED};
  kestan_reader* reader = NULL;
  REQUIRE_OK(kestan_reader_open_many(&reader, paths, lengths, 2));
  EXPECT_NUMBER(4, CountOf(reader, "roses OR even"));
  kestan_hits* const hits = Search(reader, "number3");
  const kestan_hit* hit = NULL;
  EXPECT_NUMBER(KESTAN_OK, kestan_hits_next(&hit, hits));
  EXPECT_NUMBER(1, hit->index);
  kestan_hits_free(hits);
  kestan_reader_free(reader);
}

TEST(StatisticsCountWhatIsThere) {
  MakePoems();
  kestan_reader* const reader = OpenReader("poems");
  kestan_statistics statistics = KESTAN_STATISTICS_INIT;
  EXPECT_NUMBER(KESTAN_OK, kestan_reader_statistics(&statistics, reader));
  EXPECT_NUMBER(3, statistics.documents);
  EXPECT_NUMBER(0, statistics.removed_documents);
  EXPECT_NUMBER(9 + 5 + 6, statistics.words);
  EXPECT_NUMBER(1, statistics.segments);
  EXPECT_NUMBER(1, statistics.with_positions);
  EXPECT(statistics.bytes > 0);
  EXPECT_NUMBER(KESTAN_STATISTICS_VERSION, statistics.version);
  kestan_reader_free(reader);
}

TEST(DocumentsAreListedInTheOrderOfTheirAddition) {
  MakePoems();
  kestan_reader* const reader = OpenReader("poems");
  kestan_documents* documents = NULL;
  REQUIRE_OK(kestan_reader_documents(&documents, reader));
  const kestan_document_info* document = NULL;
  REQUIRE_OK(kestan_documents_next(&document, documents));
  EXPECT_TEXT("roses.txt", document->name, document->name_length);
  EXPECT_TEXT("Roses", document->title, document->title_length);
  EXPECT_TEXT("Of roses and of other red flowers", document->summary, document->summary_length);
  EXPECT_NUMBER(3, document->data_length);
  EXPECT(memcmp(document->data, "\1\0\2", 4) == 0);
  EXPECT_NUMBER(9, document->words);
  EXPECT(document->added > 1000000000 && document->added <= (uint32_t)time(NULL));
  REQUIRE_OK(kestan_documents_next(&document, documents));
  EXPECT_TEXT("violets.txt", document->name, document->name_length);
  REQUIRE_OK(kestan_documents_next(&document, documents));
  EXPECT_TEXT("dead.txt", document->name, document->name_length);
  EXPECT_TEXT("", document->title, document->title_length);
  EXPECT_TEXT("", document->data, document->data_length);
  EXPECT_NUMBER(KESTAN_ITEROVER, kestan_documents_next(&document, documents));
  EXPECT_NUMBER(KESTAN_ITEROVER, kestan_documents_next(&document, documents));
  kestan_documents_free(documents);
  kestan_reader_free(reader);
}

TEST(ADocumentIsFoundByItsName) {
  MakePoems();
  kestan_reader* const reader = OpenReader("poems");
  kestan_documents* documents = NULL;
  REQUIRE_OK(kestan_reader_find(&documents, reader, "violets.txt, and more", 11));
  const kestan_document_info* document = NULL;
  REQUIRE_OK(kestan_documents_next(&document, documents));
  EXPECT_TEXT("Violets", document->title, document->title_length);
  EXPECT_NUMBER(KESTAN_ITEROVER, kestan_documents_next(&document, documents));
  kestan_documents_free(documents);
  EXPECT_NUMBER(KESTAN_ENOTFOUND, kestan_reader_find(&documents, reader, "violets", 7));
  EXPECT(documents == NULL);
  EXPECT_NUMBER(KESTAN_ENOTFOUND, kestan_reader_find(&documents, reader, "", 0));
  kestan_documents_free(documents);
  kestan_reader_free(reader);
}

TEST(WordsAreListedByTheirPrefix) {
  MakePoems();
  kestan_reader* const reader = OpenReader("poems");
  kestan_terms* terms = NULL;
  const kestan_term* term = NULL;
  REQUIRE_OK(kestan_reader_terms(&terms, reader, "ros", 3, 0));
  REQUIRE_OK(kestan_terms_next(&term, terms));
  EXPECT_TEXT("rose", term->term, term->term_length);
  EXPECT_NUMBER(1, term->documents);
  REQUIRE_OK(kestan_terms_next(&term, terms));
  EXPECT_TEXT("roses", term->term, term->term_length);
  EXPECT_NUMBER(2, term->documents);
  EXPECT_NUMBER(KESTAN_ITEROVER, kestan_terms_next(&term, terms));
  EXPECT_NUMBER(KESTAN_ITEROVER, kestan_terms_next(&term, terms));
  kestan_terms_free(terms);
  kestan_reader_free(reader);
}

TEST(WordsAreListedUpToTheLimit) {
  MakePoems();
  kestan_reader* const reader = OpenReader("poems");
  const size_t limits[] = {1, 5, 0, SIZE_MAX};
  const int expected[] = {1, 5, 14, 14};
  for (size_t i = 0; i < COUNT_OF(limits); ++i) {
    kestan_terms* terms = NULL;
    const kestan_term* term = NULL;
    int count = 0;
    REQUIRE_OK(kestan_reader_terms(&terms, reader, NULL, 0, limits[i]));
    while (kestan_terms_next(&term, terms) == KESTAN_OK) ++count;
    EXPECT_NUMBER(expected[i], count);
    kestan_terms_free(terms);
  }
  kestan_reader_free(reader);
}

TEST(AMisspelledWordHasSuggestions) {
  MakePoems();
  kestan_reader* const reader = OpenReader("poems");
  kestan_terms* terms = NULL;
  const kestan_term* term = NULL;
  REQUIRE_OK(kestan_reader_suggest(&terms, reader, "rsoes", ZERO_TERMINATED, 1));
  REQUIRE_OK(kestan_terms_next(&term, terms));
  EXPECT_TEXT("roses", term->term, term->term_length);
  EXPECT_NUMBER(2, term->documents);
  EXPECT_NUMBER(KESTAN_ITEROVER, kestan_terms_next(&term, terms));
  kestan_terms_free(terms);
  REQUIRE_OK(kestan_reader_suggest(&terms, reader, "roses", 5, 0));
  EXPECT_NUMBER(KESTAN_ITEROVER, kestan_terms_next(&term, terms));
  kestan_terms_free(terms);
  kestan_reader_free(reader);
}

TEST(DocumentsGoOnAfterARefreshAndAfterTheirReader) {
  MakeNumbers("numbers", 10);
  kestan_reader* const reader = OpenReader("numbers");
  kestan_documents* documents = NULL;
  const kestan_document_info* document = NULL;
  REQUIRE_OK(kestan_reader_documents(&documents, reader));
  REQUIRE_OK(kestan_documents_next(&document, documents));
  kestan_writer* const writer = OpenWriter("numbers");
  EXPECT_NUMBER(KESTAN_OK, kestan_writer_remove(writer, "d5.txt", 6));
  EXPECT_NUMBER(KESTAN_OK, kestan_writer_compact(writer));
  kestan_writer_free(writer);
  EXPECT_NUMBER(KESTAN_OK, kestan_reader_refresh(NULL, reader));
  int count = 1;
  while (count < 5 && kestan_documents_next(&document, documents) == KESTAN_OK) ++count;
  kestan_reader_free(reader);
  while (kestan_documents_next(&document, documents) == KESTAN_OK) ++count;
  EXPECT_NUMBER(10, count);
  EXPECT_TEXT("d9.txt", document->name, document->name_length);
  kestan_documents_free(documents);
}

TEST(WhatAReaderHasMadeOutlivesIt) {
  MakePoems();
  kestan_reader* const reader = OpenReader("poems");
  kestan_hits* const hits = Search(reader, "roses");
  kestan_terms* terms = NULL;
  kestan_query* query = NULL;
  REQUIRE_OK(kestan_reader_terms(&terms, reader, "r", 1, 0));
  REQUIRE_OK(kestan_query_word(&query, reader, "roses", 5));
  kestan_reader_free(reader);
  EXPECT(strcmp(NamesOf(hits), "roses.txt violets.txt ") == 0);
  const kestan_hit* hit = NULL;
  REQUIRE_OK(kestan_hits_next(&hit, hits));
  kestan_snippet* snippet = NULL;
  REQUIRE_OK(kestan_hits_snippet(&snippet, hits, hit, NULL, 0));
  const char* text = NULL;
  size_t length = 0;
  EXPECT_NUMBER(KESTAN_OK, kestan_snippet_text(&text, &length, snippet));
  EXPECT_TEXT("Of roses and of other red flowers", text, length);
  kestan_hits_free(hits);
  const kestan_term* term = NULL;
  EXPECT_NUMBER(KESTAN_OK, kestan_terms_next(&term, terms));
  kestan_terms_free(terms);
  EXPECT_NUMBER(KESTAN_OK, CodeOf(query));
  kestan_query_free(query);
  const kestan_fragment* fragment = NULL;
  EXPECT_NUMBER(KESTAN_OK, kestan_snippet_next(&fragment, snippet));
  EXPECT_TEXT("Of ", fragment->text, fragment->text_length);
  kestan_snippet_free(snippet);
}
