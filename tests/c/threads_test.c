/* SPDX-License-Identifier: GPL-3.0-or-later */
/* Threads: readers are shared, writers are not. */
#include <pthread.h>
#include <string.h>
#include <unistd.h>

#include "tests/c/harness.h"
#include "tests/c/poems.h"

enum { kThreads = 4 };

typedef struct Shared {
  kestan_reader* reader;
  kestan_query* query;
  kestan_writer* writer;
  int rounds;
  int is_over; /* read and written with the built-in functions: C99 has no atomics */
  int refused;
  int accepted;
} Shared;

static int IsOver(Shared* shared) { return __atomic_load_n(&shared->is_over, __ATOMIC_SEQ_CST); }

static void StartAll(pthread_t* threads, void* (*work)(void*), Shared* shared) {
  for (int i = 0; i < kThreads; ++i) {
    REQUIRE(pthread_create(&threads[i], NULL, work, shared) == 0);
  }
}

/* Expects that each thread has returned what it was given. */
static void JoinAll(const pthread_t* threads, const Shared* shared) {
  for (int i = 0; i < kThreads; ++i) {
    void* result = NULL;
    REQUIRE(pthread_join(threads[i], &result) == 0);
    EXPECT(result == shared);
  }
}

/* Asks in all ways until it is over; between 2 and 30 documents match at any time. */
static void* Ask(void* payload) {
  Shared* const shared = payload;
  while (!IsOver(shared)) {
    kestan_hits* hits = NULL;
    kestan_documents* documents = NULL;
    kestan_terms* terms = NULL;
    const kestan_hit* hit = NULL;
    const kestan_document_info* document = NULL;
    const kestan_term* term = NULL;
    kestan_snippet* snippet = NULL;
    uint64_t count = 0;
    if (kestan_reader_search(&hits, shared->reader, "roses", 5, NULL) != KESTAN_OK) return NULL;
    if (kestan_hits_next(&hit, hits) != KESTAN_OK) return NULL;
    if (kestan_hits_snippet(&snippet, hits, hit, NULL, 0) != KESTAN_OK) return NULL;
    if (kestan_reader_count_query(&count, shared->reader, shared->query, NULL) != KESTAN_OK) {
      return NULL;
    }
    if (count < 2 || count > 30) return NULL;
    if (kestan_reader_documents(&documents, shared->reader) != KESTAN_OK) return NULL;
    if (kestan_documents_next(&document, documents) != KESTAN_OK) return NULL;
    kestan_documents_free(documents);
    if (kestan_reader_terms(&terms, shared->reader, "ro", 2, 0) != KESTAN_OK) return NULL;
    if (kestan_terms_next(&term, terms) != KESTAN_OK) return NULL;
    if (kestan_reader_find(&documents, shared->reader, NULL, 1) != KESTAN_EINVALID) return NULL;
    if (CodeOf(shared->reader) != KESTAN_EINVALID) return NULL;
    kestan_terms_free(terms);
    kestan_snippet_free(snippet);
    kestan_hits_free(hits);
  }
  return shared;
}

TEST(AReaderIsRefreshedWhileThreadsAskIt) {
  MakePoems();
  Shared shared;
  memset(&shared, 0, sizeof(shared));
  shared.reader = OpenReader("poems");
  REQUIRE_OK(kestan_query_word(&shared.query, shared.reader, "roses", 5));
  pthread_t threads[kThreads];
  StartAll(threads, Ask, &shared);
  kestan_writer* const writer = OpenWriter("poems");
  for (int i = 0; i < 20; ++i) {
    char name[] = "a";
    int changed = 0;
    name[0] = (char)('a' + i);
    Add(writer, name, NULL, "more roses");
    Commit(writer);
    EXPECT_NUMBER(KESTAN_OK, kestan_reader_refresh(&changed, shared.reader));
    EXPECT_NUMBER(1, changed);
  }
  __atomic_store_n(&shared.is_over, 1, __ATOMIC_SEQ_CST);
  JoinAll(threads, &shared);
  EXPECT_NUMBER(22, CountOf(shared.reader, "roses"));
  kestan_writer_free(writer);
  kestan_query_free(shared.query);
  kestan_reader_free(shared.reader);
}

/* Does nothing but search, so that at any time some thread does. */
static void* SearchOnly(void* payload) {
  Shared* const shared = payload;
  while (!IsOver(shared)) {
    uint64_t count = 0;
    if (kestan_reader_count(&count, shared->reader, "common OR even", 14, NULL) != KESTAN_OK)
      return NULL;
  }
  return shared;
}

TEST(ARefreshIsNotPutOffByThreadsThatNeverStopSearching) {
  MakeNumbers("numbers", 2000);
  Shared shared;
  memset(&shared, 0, sizeof(shared));
  shared.reader = OpenReader("numbers");
  pthread_t threads[kThreads];
  StartAll(threads, SearchOnly, &shared);
  alarm(60);
  for (int i = 0; i < 400; ++i) {
    EXPECT_NUMBER(KESTAN_OK, kestan_reader_refresh(NULL, shared.reader));
  }
  alarm(0);
  __atomic_store_n(&shared.is_over, 1, __ATOMIC_SEQ_CST);
  JoinAll(threads, &shared);
  kestan_reader_free(shared.reader);
}

/* Adds and commits; counts what was accepted and what was refused. */
static void* Write(void* payload) {
  Shared* const shared = payload;
  for (int i = 0; i < shared->rounds; ++i) {
    kestan_document document = KESTAN_DOCUMENT_INIT;
    document.name = "a";
    document.name_length = 1;
    document.text = "word";
    document.text_length = 4;
    const int code = i % 10 == 9 ? kestan_writer_commit(shared->writer)
                                 : kestan_writer_add(shared->writer, &document);
    if (code == KESTAN_OK) {
      __atomic_add_fetch(&shared->accepted, 1, __ATOMIC_SEQ_CST);
    } else if (code == KESTAN_EINVALID && CodeOf(shared->writer) == KESTAN_EINVALID) {
      __atomic_add_fetch(&shared->refused, 1, __ATOMIC_SEQ_CST);
    } else {
      return NULL;
    }
  }
  return shared;
}

TEST(AWriterThatThreadsUseAtOnceRefusesAndLosesNothing) {
  Shared shared;
  memset(&shared, 0, sizeof(shared));
  shared.writer = OpenWriter("index");
  shared.rounds = 200;
  pthread_t threads[kThreads];
  StartAll(threads, Write, &shared);
  JoinAll(threads, &shared);
  EXPECT_NUMBER(kThreads * 200, shared.accepted + shared.refused);
  EXPECT(shared.accepted > 0);
  Add(shared.writer, "b", NULL, "word");
  Commit(shared.writer);
  kestan_writer_free(shared.writer);
  kestan_reader* const reader = OpenReader("index");
  EXPECT_NUMBER(2, CountOf(reader, "word"));
  kestan_reader_free(reader);
}

/* Makes and frees handles of its own beside the others. */
static void* OpenAndFree(void* payload) {
  Shared* const shared = payload;
  for (int i = 0; i < shared->rounds; ++i) {
    kestan_reader* reader = NULL;
    uint64_t count = 0;
    if (kestan_reader_open(&reader, "poems", 5) != KESTAN_OK) return NULL;
    if (kestan_reader_count(&count, reader, "roses", 5, NULL) != KESTAN_OK) return NULL;
    kestan_reader_free(reader);
    if (kestan_reader_refresh(NULL, NULL) != KESTAN_EHANDLE || count != 2) return NULL;
  }
  return shared;
}

TEST(ThreadsOpenAndFreeReadersOfTheirOwn) {
  MakePoems();
  Shared shared;
  memset(&shared, 0, sizeof(shared));
  shared.rounds = 20;
  pthread_t threads[kThreads];
  StartAll(threads, OpenAndFree, &shared);
  JoinAll(threads, &shared);
}
