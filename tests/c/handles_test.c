/* SPDX-License-Identifier: GPL-3.0-or-later */
/* Handles that are none: null, freed, on the stack, or of another type. */
#include <stdlib.h>
#include <string.h>

#include "tests/c/harness.h"
#include "tests/c/poems.h"

/* Calls every function that takes a handle with `bad`, which is none of the type it is taken for.
 * Each must say so, and leave its outputs as they are, but for handles, which are null.
 */
static void ExpectNoWriter(void* bad) {
  const kestan_document document = KESTAN_DOCUMENT_INIT;
  const kestan_error* warning = NULL;
  EXPECT_NUMBER(KESTAN_EHANDLE, kestan_writer_add(bad, &document));
  EXPECT_NUMBER(KESTAN_EHANDLE, kestan_writer_remove(bad, "a", 1));
  EXPECT_NUMBER(KESTAN_EHANDLE, kestan_writer_rename(bad, "a", 1, "b", 1));
  EXPECT_NUMBER(KESTAN_EHANDLE, kestan_writer_commit(bad));
  EXPECT_NUMBER(KESTAN_EHANDLE, kestan_writer_rollback(bad));
  EXPECT_NUMBER(KESTAN_EHANDLE, kestan_writer_compact(bad));
  EXPECT_NUMBER(KESTAN_EHANDLE, kestan_writer_warning(&warning, bad));
  EXPECT(warning == NULL);
  kestan_writer_free(bad);
}

static void ExpectNoReader(void* bad) {
  int changed = 7;
  uint64_t count = 7;
  kestan_statistics statistics = KESTAN_STATISTICS_INIT;
  kestan_documents* documents = bad;
  kestan_terms* terms = bad;
  kestan_query* query = bad;
  kestan_hits* hits = bad;
  const kestan_query* const operands[] = {bad};
  EXPECT_NUMBER(KESTAN_EHANDLE, kestan_reader_refresh(&changed, bad));
  EXPECT_NUMBER(7, changed);
  EXPECT_NUMBER(KESTAN_EHANDLE, kestan_reader_statistics(&statistics, bad));
  EXPECT_NUMBER(KESTAN_EHANDLE, kestan_reader_documents(&documents, bad));
  EXPECT(documents == NULL);
  documents = bad;
  EXPECT_NUMBER(KESTAN_EHANDLE, kestan_reader_find(&documents, bad, "a", 1));
  EXPECT(documents == NULL);
  EXPECT_NUMBER(KESTAN_EHANDLE, kestan_reader_terms(&terms, bad, "a", 1, 0));
  EXPECT(terms == NULL);
  EXPECT_NUMBER(KESTAN_EHANDLE, kestan_reader_suggest(&terms, bad, "a", 1, 0));
  EXPECT_NUMBER(KESTAN_EHANDLE, kestan_query_word(&query, bad, "a", 1));
  EXPECT(query == NULL);
  EXPECT_NUMBER(KESTAN_EHANDLE, kestan_query_prefix(&query, bad, "a", 1));
  EXPECT_NUMBER(KESTAN_EHANDLE, kestan_query_phrase(&query, bad, "a", 1));
  EXPECT_NUMBER(KESTAN_EHANDLE, kestan_query_near(&query, bad, bad, bad, 1));
  EXPECT_NUMBER(KESTAN_EHANDLE, kestan_query_and(&query, bad, operands, 1));
  EXPECT_NUMBER(KESTAN_EHANDLE, kestan_query_or(&query, bad, operands, 1));
  EXPECT_NUMBER(KESTAN_EHANDLE, kestan_query_not(&query, bad, bad));
  EXPECT_NUMBER(KESTAN_EHANDLE, kestan_reader_search(&hits, bad, "a", 1, NULL));
  EXPECT(hits == NULL);
  EXPECT_NUMBER(KESTAN_EHANDLE, kestan_reader_search_query(&hits, bad, bad, NULL));
  EXPECT_NUMBER(KESTAN_EHANDLE, kestan_reader_count(&count, bad, "a", 1, NULL));
  EXPECT_NUMBER(KESTAN_EHANDLE, kestan_reader_count_query(&count, bad, bad, NULL));
  EXPECT_NUMBER(7, count);
  kestan_reader_free(bad);
}

static void ExpectNoResult(void* bad) {
  const kestan_document_info* document = NULL;
  const kestan_term* term = NULL;
  const kestan_hit* hit = NULL;
  const kestan_fragment* fragment = NULL;
  const kestan_finding* finding = NULL;
  kestan_snippet* snippet = bad;
  const char* text = NULL;
  size_t size = 7;
  uint64_t count = 7;
  EXPECT_NUMBER(KESTAN_EHANDLE, kestan_documents_next(&document, bad));
  EXPECT_NUMBER(KESTAN_EHANDLE, kestan_terms_next(&term, bad));
  EXPECT_NUMBER(KESTAN_EHANDLE, kestan_hits_next(&hit, bad));
  EXPECT_NUMBER(KESTAN_EHANDLE, kestan_hits_at(&hit, bad, 0));
  EXPECT_NUMBER(KESTAN_EHANDLE, kestan_hits_count(&size, bad));
  EXPECT_NUMBER(KESTAN_EHANDLE, kestan_hits_total(&count, bad));
  EXPECT_NUMBER(KESTAN_EHANDLE, kestan_hits_note(&text, &size, bad, 0));
  EXPECT_NUMBER(KESTAN_EHANDLE, kestan_hits_suggestion(&text, &size, bad, 0));
  EXPECT_NUMBER(KESTAN_EHANDLE, kestan_hits_snippet(&snippet, bad, hit, "a", 1));
  EXPECT(snippet == NULL);
  EXPECT_NUMBER(KESTAN_EHANDLE, kestan_snippet_next(&fragment, bad));
  EXPECT_NUMBER(KESTAN_EHANDLE, kestan_snippet_text(&text, &size, bad));
  EXPECT_NUMBER(KESTAN_EHANDLE, kestan_report_next(&finding, bad));
  EXPECT_NUMBER(KESTAN_EHANDLE, kestan_report_counts(&count, &count, bad));
  EXPECT(document == NULL && term == NULL && hit == NULL && fragment == NULL && finding == NULL);
  EXPECT(text == NULL && size == 7 && count == 7);
  kestan_documents_free(bad);
  kestan_terms_free(bad);
  kestan_query_free(bad);
  kestan_hits_free(bad);
  kestan_snippet_free(bad);
  kestan_report_free(bad);
}

static void ExpectNoHandle(void* bad) {
  const kestan_error* error = NULL;
  ExpectNoWriter(bad);
  ExpectNoReader(bad);
  ExpectNoResult(bad);
  EXPECT_NUMBER(KESTAN_EHANDLE, kestan_last_error(&error, bad));
  EXPECT(error == NULL);
}

TEST(NullIsNoHandle) { ExpectNoHandle(NULL); }

TEST(AnAddressOfSomethingElseIsNoHandle) {
  char bytes[512];
  memset(bytes, 0x5a, sizeof(bytes));
  ExpectNoHandle(bytes);
  void* const block = calloc(1, 1000);
  ExpectNoHandle(block);
  free(block);
  int odd = 1;
  ExpectNoHandle((char*)&odd + 1);
}

TEST(AFreedHandleIsNone) {
  MakePoems();
  kestan_reader* const reader = OpenReader("poems");
  kestan_hits* const hits = Search(reader, "roses");
  kestan_hits_free(hits);
  ExpectNoHandle(hits);
  kestan_hits_free(hits);
  kestan_reader_free(reader);
  ExpectNoHandle(reader);
  kestan_reader_free(reader);
  kestan_writer* const writer = OpenWriter("poems");
  kestan_writer_free(writer);
  kestan_writer_free(writer);
  ExpectNoHandle(writer);
}

TEST(AnAddressInsideAHandleIsNoHandle) {
  MakePoems();
  kestan_reader* const reader = OpenReader("poems");
  ExpectNoHandle((char*)reader + 1);
  ExpectNoHandle((char*)reader + sizeof(void*));
  EXPECT_NUMBER(2, CountOf(reader, "roses"));
  kestan_reader_free(reader);
}

TEST(AHandleOfAnotherTypeIsNoReader) {
  MakePoems();
  kestan_reader* const reader = OpenReader("poems");
  kestan_hits* const hits = Search(reader, "roses");
  ExpectNoReader(hits);
  ExpectNoWriter(hits);
  ExpectNoWriter(reader);
  ExpectNoResult(reader);
  EXPECT(strcmp(NamesOf(hits), "roses.txt violets.txt ") == 0);
  EXPECT_NUMBER(2, CountOf(reader, "roses"));
  kestan_hits_free(hits);
  kestan_reader_free(reader);
}

TEST(AHitOfOtherHitsIsRefused) {
  MakePoems();
  kestan_reader* const reader = OpenReader("poems");
  kestan_hits* const hits = Search(reader, "roses");
  kestan_hits* const others = Search(reader, "roses");
  const kestan_hit* hit = NULL;
  const kestan_hit* other = NULL;
  kestan_snippet* snippet = NULL;
  REQUIRE_OK(kestan_hits_at(&hit, hits, 1));
  REQUIRE_OK(kestan_hits_at(&other, others, 0));
  const kestan_hit copy = *hit;
  EXPECT_NUMBER(KESTAN_EINVALID, kestan_hits_snippet(&snippet, hits, other, "roses", 5));
  EXPECT_NUMBER(KESTAN_EINVALID, kestan_hits_snippet(&snippet, hits, &copy, "roses", 5));
  EXPECT_NUMBER(KESTAN_EINVALID, kestan_hits_snippet(&snippet, hits, NULL, "roses", 5));
  EXPECT_NUMBER(KESTAN_EINVALID, kestan_hits_snippet(&snippet, hits, hit + 1, "roses", 5));
  EXPECT_NUMBER(KESTAN_EINVALID, CodeOf(hits));
  EXPECT(snippet == NULL);
  kestan_hits_free(others);
  kestan_hits_free(hits);
  kestan_reader_free(reader);
}

TEST(AnAddressInsideAHitIsNoHit) {
  MakePoems();
  kestan_reader* const reader = OpenReader("poems");
  kestan_hits* const hits = Search(reader, "roses");
  const kestan_hit* hit = NULL;
  REQUIRE_OK(kestan_hits_at(&hit, hits, 0));
  for (size_t i = 1; i < sizeof(kestan_hit); ++i) {
    const void* const inside = (const char*)hit + i;
    kestan_snippet* snippet = NULL;
    EXPECT_NUMBER(KESTAN_EINVALID, kestan_hits_snippet(&snippet, hits, inside, NULL, 0));
    EXPECT(snippet == NULL);
  }
  kestan_hits_free(hits);
  kestan_reader_free(reader);
}

TEST(OutputsThatAreNullAreRefused) {
  MakePoems();
  kestan_reader* const reader = OpenReader("poems");
  kestan_writer* const writer = OpenWriter("poems");
  kestan_hits* const hits = Search(reader, "roses");
  kestan_terms* terms = NULL;
  kestan_documents* documents = NULL;
  kestan_snippet* snippet = NULL;
  kestan_report* report = NULL;
  kestan_query* query = NULL;
  const kestan_hit* hit = NULL;
  const char* text = NULL;
  size_t length = 7;
  REQUIRE_OK(kestan_hits_at(&hit, hits, 0));
  REQUIRE_OK(kestan_reader_terms(&terms, reader, "a", 1, 0));
  REQUIRE_OK(kestan_reader_documents(&documents, reader));
  REQUIRE_OK(kestan_hits_snippet(&snippet, hits, hit, "roses", 5));
  REQUIRE_OK(kestan_check(&report, "poems", 5));
  REQUIRE_OK(kestan_query_word(&query, reader, "roses", 5));
  const kestan_query* const operands[] = {query};
  EXPECT_NUMBER(KESTAN_EINVALID, kestan_last_error(NULL, reader));
  EXPECT_NUMBER(KESTAN_EINVALID, kestan_writer_open(NULL, "poems", 5, NULL));
  EXPECT_NUMBER(KESTAN_EINVALID, kestan_writer_warning(NULL, writer));
  EXPECT_NUMBER(KESTAN_EINVALID, CodeOf(writer));
  EXPECT_NUMBER(KESTAN_EINVALID, kestan_reader_open(NULL, "poems", 5));
  EXPECT_NUMBER(KESTAN_EINVALID, kestan_reader_open_many(NULL, NULL, NULL, 0));
  EXPECT_NUMBER(KESTAN_OK, kestan_reader_refresh(NULL, reader));
  EXPECT_NUMBER(KESTAN_EINVALID, kestan_reader_statistics(NULL, reader));
  EXPECT_NUMBER(KESTAN_EINVALID, CodeOf(reader));
  EXPECT_NUMBER(KESTAN_EINVALID, kestan_reader_documents(NULL, reader));
  EXPECT_NUMBER(KESTAN_EINVALID, kestan_reader_find(NULL, reader, "a", 1));
  EXPECT_NUMBER(KESTAN_EINVALID, kestan_reader_terms(NULL, reader, "a", 1, 0));
  EXPECT_NUMBER(KESTAN_EINVALID, kestan_reader_suggest(NULL, reader, "a", 1, 0));
  EXPECT_NUMBER(KESTAN_EINVALID, kestan_query_word(NULL, reader, "a", 1));
  EXPECT_NUMBER(KESTAN_EINVALID, kestan_query_prefix(NULL, reader, "a", 1));
  EXPECT_NUMBER(KESTAN_EINVALID, kestan_query_phrase(NULL, reader, "a", 1));
  EXPECT_NUMBER(KESTAN_EINVALID, kestan_query_near(NULL, reader, query, query, 1));
  EXPECT_NUMBER(KESTAN_EINVALID, kestan_query_and(NULL, reader, operands, 1));
  EXPECT_NUMBER(KESTAN_EINVALID, kestan_query_or(NULL, reader, operands, 1));
  EXPECT_NUMBER(KESTAN_EINVALID, kestan_query_not(NULL, reader, query));
  EXPECT_NUMBER(KESTAN_EINVALID, kestan_reader_search(NULL, reader, "a", 1, NULL));
  EXPECT_NUMBER(KESTAN_EINVALID, kestan_reader_search_query(NULL, reader, query, NULL));
  EXPECT_NUMBER(KESTAN_EINVALID, kestan_reader_count(NULL, reader, "a", 1, NULL));
  EXPECT_NUMBER(KESTAN_EINVALID, kestan_reader_count_query(NULL, reader, query, NULL));
  EXPECT_NUMBER(KESTAN_EINVALID, kestan_documents_next(NULL, documents));
  EXPECT_NUMBER(KESTAN_EINVALID, kestan_terms_next(NULL, terms));
  EXPECT_NUMBER(KESTAN_EINVALID, kestan_hits_next(NULL, hits));
  EXPECT_NUMBER(KESTAN_EINVALID, kestan_hits_at(NULL, hits, 0));
  EXPECT_NUMBER(KESTAN_EINVALID, kestan_hits_count(NULL, hits));
  EXPECT_NUMBER(KESTAN_EINVALID, kestan_hits_total(NULL, hits));
  EXPECT_NUMBER(KESTAN_EINVALID, kestan_hits_note(NULL, &length, hits, 0));
  EXPECT_NUMBER(KESTAN_EINVALID, kestan_hits_note(&text, NULL, hits, 0));
  EXPECT_NUMBER(KESTAN_EINVALID, kestan_hits_suggestion(NULL, &length, hits, 0));
  EXPECT_NUMBER(KESTAN_EINVALID, kestan_hits_snippet(NULL, hits, hit, "a", 1));
  EXPECT_NUMBER(KESTAN_EINVALID, kestan_snippet_next(NULL, snippet));
  EXPECT_NUMBER(KESTAN_EINVALID, kestan_snippet_text(NULL, &length, snippet));
  EXPECT_NUMBER(KESTAN_EINVALID, kestan_snippet_text(&text, NULL, snippet));
  EXPECT_NUMBER(KESTAN_EINVALID, kestan_check(NULL, "poems", 5));
  EXPECT_NUMBER(KESTAN_EINVALID, kestan_report_next(NULL, report));
  EXPECT_NUMBER(KESTAN_OK, kestan_report_counts(NULL, NULL, report));
  EXPECT_NUMBER(KESTAN_EINVALID, kestan_writer_options_init(NULL, KESTAN_WRITER_OPTIONS_VERSION));
  EXPECT_NUMBER(KESTAN_EINVALID, kestan_document_init(NULL, KESTAN_DOCUMENT_VERSION));
  EXPECT_NUMBER(KESTAN_EINVALID, kestan_statistics_init(NULL, KESTAN_STATISTICS_VERSION));
  EXPECT_NUMBER(KESTAN_EINVALID, kestan_search_options_init(NULL, KESTAN_SEARCH_OPTIONS_VERSION));
  EXPECT(text == NULL && length == 7);
  kestan_query_free(query);
  kestan_report_free(report);
  kestan_snippet_free(snippet);
  kestan_documents_free(documents);
  kestan_terms_free(terms);
  kestan_hits_free(hits);
  kestan_writer_free(writer);
  kestan_reader_free(reader);
}
