/* SPDX-License-Identifier: GPL-3.0-or-later */
/* Filters: callbacks that say which documents are to be found. */
#include <string.h>

#include "tests/c/harness.h"
#include "tests/c/poems.h"

static kestan_search_options Filtering(kestan_filter_callback filter, void* payload) {
  kestan_search_options options = KESTAN_SEARCH_OPTIONS_INIT;
  options.filter = filter;
  options.filter_payload = payload;
  return options;
}

static int NameContains(kestan_filtered* document, void* payload) {
  const char* name = NULL;
  size_t length = 0;
  if (kestan_filtered_name(&name, &length, document) != KESTAN_OK) return -1;
  return strstr(name, payload) != NULL;
}

TEST(AFilterDecidesWhatIsFound) {
  MakePoems();
  kestan_reader* const reader = OpenReader("poems");
  char part[] = "violets";
  const kestan_search_options options = Filtering(NameContains, part);
  kestan_hits* hits = NULL;
  uint64_t count = 0;
  REQUIRE_OK(kestan_reader_search(&hits, reader, "roses", 5, &options));
  EXPECT(strcmp(NamesOf(hits), "violets.txt ") == 0);
  EXPECT_NUMBER(KESTAN_OK, kestan_hits_total(&count, hits));
  EXPECT_NUMBER(1, count);
  kestan_hits_free(hits);
  EXPECT_NUMBER(KESTAN_OK, kestan_reader_count(&count, reader, "roses", 5, &options));
  EXPECT_NUMBER(1, count);
  kestan_reader_free(reader);
}

static int SeeAll(kestan_filtered* document, void* payload) {
  const char* text = NULL;
  size_t length = 0;
  size_t index = 7;
  uint32_t added = 0;
  EXPECT_NUMBER(KESTAN_OK, kestan_filtered_name(&text, &length, document));
  EXPECT_TEXT("roses.txt", text, length);
  const char* const name = text;
  EXPECT_NUMBER(KESTAN_OK, kestan_filtered_title(&text, &length, document));
  EXPECT_TEXT("Roses", text, length);
  EXPECT_NUMBER(KESTAN_OK, kestan_filtered_summary(&text, &length, document));
  EXPECT_TEXT("Of roses and of other red flowers", text, length);
  EXPECT_NUMBER(KESTAN_OK, kestan_filtered_data(&text, &length, document));
  EXPECT_NUMBER(3, length);
  EXPECT(memcmp(text, "\1\0\2", 3) == 0);
  EXPECT_NUMBER(KESTAN_OK, kestan_filtered_index(&index, document));
  EXPECT_NUMBER(0, index);
  EXPECT_NUMBER(KESTAN_OK, kestan_filtered_added(&added, document));
  EXPECT(added > 1000000000);
  EXPECT(strcmp(name, "roses.txt") == 0);
  *(int*)payload = 1;
  return 1;
}

TEST(AFilterSeesAllOfADocumentButItsWords) {
  MakePoems();
  kestan_reader* const reader = OpenReader("poems");
  int was_called = 0;
  const kestan_search_options options = Filtering(SeeAll, &was_called);
  uint64_t count = 0;
  EXPECT_NUMBER(KESTAN_OK, kestan_reader_count(&count, reader, "rose AND is", 11, &options));
  EXPECT_NUMBER(1, was_called);
  kestan_reader_free(reader);
}

static int BadOutputs(kestan_filtered* document, void* payload) {
  const char* text = NULL;
  size_t length = 0;
  (void)payload;
  EXPECT_NUMBER(KESTAN_EINVALID, kestan_filtered_name(NULL, &length, document));
  EXPECT_NUMBER(KESTAN_EINVALID, kestan_filtered_title(&text, NULL, document));
  EXPECT_NUMBER(KESTAN_EINVALID, kestan_filtered_summary(NULL, NULL, document));
  EXPECT_NUMBER(KESTAN_EINVALID, kestan_filtered_data(NULL, &length, document));
  EXPECT_NUMBER(KESTAN_EINVALID, kestan_filtered_added(NULL, document));
  EXPECT_NUMBER(KESTAN_EINVALID, kestan_filtered_index(NULL, document));
  EXPECT(text == NULL && length == 0);
  return 0;
}

TEST(OutputsOfAFilteredDocumentAreNotNull) {
  MakePoems();
  kestan_reader* const reader = OpenReader("poems");
  const kestan_search_options options = Filtering(BadOutputs, NULL);
  uint64_t count = 9;
  EXPECT_NUMBER(KESTAN_OK, kestan_reader_count(&count, reader, "roses", 5, &options));
  EXPECT_NUMBER(0, count);
  kestan_reader_free(reader);
}

static int Stop(kestan_filtered* document, void* payload) {
  (void)document;
  ++*(int*)payload;
  return -1;
}

TEST(AFilterThatFailsStopsTheSearch) {
  MakeNumbers("numbers", 100);
  kestan_reader* const reader = OpenReader("numbers");
  int calls = 0;
  const kestan_search_options options = Filtering(Stop, &calls);
  kestan_hits* hits = NULL;
  uint64_t count = 9;
  EXPECT_NUMBER(KESTAN_EINTERRUPTED, kestan_reader_search(&hits, reader, "common", 6, &options));
  EXPECT(hits == NULL);
  EXPECT_NUMBER(KESTAN_EINTERRUPTED, CodeOf(reader));
  EXPECT_NUMBER(KESTAN_EINTERRUPTED, kestan_reader_count(&count, reader, "common", 6, &options));
  EXPECT_NUMBER(9, count);
  EXPECT(calls >= 2 && calls < 20);
  EXPECT_NUMBER(100, CountOf(reader, "common"));
  kestan_reader_free(reader);
}

typedef struct Readers {
  kestan_reader* own;
  kestan_reader* other;
  kestan_query* query;
  kestan_hits* hits;
} Readers;

static int AskReaders(kestan_filtered* document, void* payload) {
  const Readers* const readers = payload;
  kestan_hits* hits = NULL;
  kestan_documents* documents = NULL;
  kestan_terms* terms = NULL;
  kestan_query* query = NULL;
  kestan_snippet* snippet = NULL;
  const kestan_hit* hit = NULL;
  kestan_statistics statistics = KESTAN_STATISTICS_INIT;
  uint64_t count = 0;
  (void)document;
  EXPECT_NUMBER(KESTAN_EINVALID, kestan_reader_search(&hits, readers->own, "roses", 5, NULL));
  EXPECT_NUMBER(KESTAN_EINVALID,
                kestan_reader_search_query(&hits, readers->own, readers->query, NULL));
  EXPECT_NUMBER(KESTAN_EINVALID, kestan_reader_count(&count, readers->own, "roses", 5, NULL));
  EXPECT_NUMBER(KESTAN_EINVALID, kestan_reader_refresh(NULL, readers->own));
  EXPECT_NUMBER(KESTAN_EINVALID, kestan_reader_documents(&documents, readers->own));
  EXPECT_NUMBER(KESTAN_EINVALID, kestan_reader_find(&documents, readers->own, "a", 1));
  EXPECT_NUMBER(KESTAN_EINVALID, kestan_reader_terms(&terms, readers->own, "a", 1, 0));
  EXPECT_NUMBER(KESTAN_EINVALID, kestan_query_word(&query, readers->own, "a", 1));
  EXPECT_NUMBER(KESTAN_EINVALID, kestan_reader_statistics(&statistics, readers->own));
  EXPECT(strstr(MessageOf(readers->own), "filter") != NULL);
  EXPECT_NUMBER(KESTAN_OK, kestan_hits_at(&hit, readers->hits, 0));
  EXPECT_NUMBER(KESTAN_EINVALID, kestan_hits_snippet(&snippet, readers->hits, hit, NULL, 0));
  EXPECT_NUMBER(KESTAN_OK, kestan_hits_snippet(&snippet, readers->hits, hit, "roses", 5));
  kestan_snippet_free(snippet);
  EXPECT_NUMBER(2, CountOf(readers->other, "roses"));
  EXPECT_NUMBER(KESTAN_OK, kestan_reader_refresh(NULL, readers->other));
  return 1;
}

TEST(AFilterMayUseAnotherReaderButNotItsOwn) {
  MakePoems();
  Readers readers = {OpenReader("poems"), OpenReader("poems"), NULL, NULL};
  REQUIRE_OK(kestan_query_word(&readers.query, readers.own, "roses", 5));
  readers.hits = Search(readers.own, "roses");
  const kestan_search_options options = Filtering(AskReaders, &readers);
  uint64_t count = 0;
  EXPECT_NUMBER(KESTAN_OK, kestan_reader_count(&count, readers.own, "roses", 5, &options));
  EXPECT_NUMBER(2, count);
  kestan_hits_free(readers.hits);
  kestan_query_free(readers.query);
  kestan_reader_free(readers.own);
  kestan_reader_free(readers.other);
}

static int FreeReader(kestan_filtered* document, void* payload) {
  const char* name = NULL;
  size_t length = 0;
  kestan_reader_free(payload);
  EXPECT_NUMBER(KESTAN_EHANDLE, kestan_reader_refresh(NULL, payload));
  return kestan_filtered_name(&name, &length, document) == KESTAN_OK ? 1 : -1;
}

TEST(AReaderThatItsFilterFreesEndsItsSearchAndIsGone) {
  MakePoems();
  kestan_reader* const reader = OpenReader("poems");
  const kestan_search_options options = Filtering(FreeReader, reader);
  kestan_hits* hits = NULL;
  EXPECT_NUMBER(KESTAN_OK, kestan_reader_search(&hits, reader, "roses", 5, &options));
  EXPECT(strcmp(NamesOf(hits), "roses.txt violets.txt ") == 0);
  EXPECT_NUMBER(KESTAN_EHANDLE, kestan_reader_refresh(NULL, reader));
  kestan_hits_free(hits);
}

static int Keep(kestan_filtered* document, void* payload) {
  *(kestan_filtered**)payload = document;
  return 1;
}

TEST(AFilteredDocumentIsNoneAfterItsCall) {
  MakePoems();
  kestan_reader* const reader = OpenReader("poems");
  kestan_filtered* kept = NULL;
  const kestan_search_options options = Filtering(Keep, &kept);
  const char* text = NULL;
  size_t length = 0;
  uint32_t added = 0;
  size_t index = 0;
  uint64_t count = 0;
  EXPECT_NUMBER(KESTAN_OK, kestan_reader_count(&count, reader, "roses", 5, &options));
  EXPECT(kept != NULL);
  EXPECT_NUMBER(KESTAN_EHANDLE, kestan_filtered_name(&text, &length, kept));
  EXPECT_NUMBER(KESTAN_EHANDLE, kestan_filtered_title(&text, &length, kept));
  EXPECT_NUMBER(KESTAN_EHANDLE, kestan_filtered_summary(&text, &length, kept));
  EXPECT_NUMBER(KESTAN_EHANDLE, kestan_filtered_data(&text, &length, kept));
  EXPECT_NUMBER(KESTAN_EHANDLE, kestan_filtered_added(&added, kept));
  EXPECT_NUMBER(KESTAN_EHANDLE, kestan_filtered_index(&index, kept));
  EXPECT_NUMBER(KESTAN_EHANDLE, kestan_filtered_name(&text, &length, NULL));
  EXPECT_NUMBER(KESTAN_EHANDLE, kestan_filtered_added(&added, NULL));
  EXPECT_NUMBER(KESTAN_EHANDLE, kestan_filtered_index(&index, NULL));
  kestan_reader_free(reader);
}
