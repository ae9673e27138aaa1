/* SPDX-License-Identifier: GPL-3.0-or-later */
/* Processes that fork while indexes are open. */
#include <pthread.h>
#include <signal.h>
#include <stdio.h>
#include <string.h>
#include <sys/wait.h>
#include <unistd.h>

#include "tests/c/harness.h"
#include "tests/c/poems.h"

/* Returns how the child ended: its exit code, or 1000 and more after a signal. */
static int WaitFor(pid_t child) {
  int status = 0;
  if (waitpid(child, &status, 0) != child) return 2000;
  return WIFEXITED(status) ? WEXITSTATUS(status) : 1000 + WTERMSIG(status);
}

typedef struct Handles {
  kestan_writer* writer;
  kestan_reader* reader;
  kestan_hits* hits;
  kestan_documents* documents;
  kestan_terms* terms;
  kestan_query* query;
  kestan_snippet* snippet;
  kestan_report* report;
} Handles;

static Handles OpenAll(void) {
  Handles all;
  const kestan_hit* hit = NULL;
  MakePoems();
  all.writer = OpenWriter("poems");
  all.reader = OpenReader("poems");
  all.hits = Search(all.reader, "roses");
  REQUIRE_OK(kestan_reader_documents(&all.documents, all.reader));
  REQUIRE_OK(kestan_reader_terms(&all.terms, all.reader, "", 0, 0));
  REQUIRE_OK(kestan_query_word(&all.query, all.reader, "roses", 5));
  REQUIRE_OK(kestan_hits_at(&hit, all.hits, 0));
  REQUIRE_OK(kestan_hits_snippet(&all.snippet, all.hits, hit, NULL, 0));
  REQUIRE_OK(kestan_check(&all.report, "poems", 5));
  return all;
}

static void FreeAll(const Handles* all) {
  kestan_report_free(all->report);
  kestan_snippet_free(all->snippet);
  kestan_query_free(all->query);
  kestan_terms_free(all->terms);
  kestan_documents_free(all->documents);
  kestan_hits_free(all->hits);
  kestan_reader_free(all->reader);
  kestan_writer_free(all->writer);
}

/* Returns how many calls of the child do not say that their handle is the parent's. */
static int CountOthers(const Handles* all) {
  const kestan_document document = KESTAN_DOCUMENT_INIT;
  const kestan_query* const operands[] = {all->query};
  kestan_statistics statistics = KESTAN_STATISTICS_INIT;
  const kestan_error* error = NULL;
  const kestan_document_info* info = NULL;
  const kestan_term* term = NULL;
  const kestan_hit* hit = NULL;
  const kestan_fragment* fragment = NULL;
  const kestan_finding* finding = NULL;
  kestan_documents* documents = NULL;
  kestan_terms* terms = NULL;
  kestan_query* query = NULL;
  kestan_hits* hits = NULL;
  kestan_snippet* snippet = NULL;
  const char* text = NULL;
  size_t size = 0;
  uint64_t count = 0;
  const int codes[] = {
      kestan_writer_add(all->writer, &document),
      kestan_writer_remove(all->writer, "a", 1),
      kestan_writer_rename(all->writer, "a", 1, "b", 1),
      kestan_writer_commit(all->writer),
      kestan_writer_rollback(all->writer),
      kestan_writer_compact(all->writer),
      kestan_writer_warning(&error, all->writer),
      kestan_reader_refresh(NULL, all->reader),
      kestan_reader_statistics(&statistics, all->reader),
      kestan_reader_documents(&documents, all->reader),
      kestan_reader_find(&documents, all->reader, "a", 1),
      kestan_documents_next(&info, all->documents),
      kestan_reader_terms(&terms, all->reader, "a", 1, 0),
      kestan_reader_suggest(&terms, all->reader, "a", 1, 0),
      kestan_terms_next(&term, all->terms),
      kestan_query_word(&query, all->reader, "a", 1),
      kestan_query_prefix(&query, all->reader, "a", 1),
      kestan_query_phrase(&query, all->reader, "a", 1),
      kestan_query_near(&query, all->reader, all->query, all->query, 1),
      kestan_query_and(&query, all->reader, operands, 1),
      kestan_query_or(&query, all->reader, operands, 1),
      kestan_query_not(&query, all->reader, all->query),
      kestan_reader_search(&hits, all->reader, "a", 1, NULL),
      kestan_reader_search_query(&hits, all->reader, all->query, NULL),
      kestan_reader_count(&count, all->reader, "a", 1, NULL),
      kestan_reader_count_query(&count, all->reader, all->query, NULL),
      kestan_hits_next(&hit, all->hits),
      kestan_hits_at(&hit, all->hits, 0),
      kestan_hits_count(&size, all->hits),
      kestan_hits_total(&count, all->hits),
      kestan_hits_note(&text, &size, all->hits, 0),
      kestan_hits_suggestion(&text, &size, all->hits, 0),
      kestan_hits_snippet(&snippet, all->hits, hit, "a", 1),
      kestan_snippet_next(&fragment, all->snippet),
      kestan_snippet_text(&text, &size, all->snippet),
      kestan_report_next(&finding, all->report),
      kestan_report_counts(&count, &count, all->report),
  };
  int others = 0;
  for (size_t i = 0; i < COUNT_OF(codes); ++i) others += codes[i] != KESTAN_EFORKED;
  return others + (CodeOf(all->reader) != KESTAN_EFORKED) + (CodeOf(all->writer) != KESTAN_EFORKED);
}

TEST(HandlesOfTheParentAreNotTheChilds) {
  const Handles all = OpenAll();
  const pid_t child = fork();
  if (child == 0) {
    const int others = CountOthers(&all);
    FreeAll(&all);
    _exit(others);
  }
  EXPECT_NUMBER(0, WaitFor(child));
  EXPECT_NUMBER(2, CountOf(all.reader, "roses"));
  FreeAll(&all);
}

TEST(AChildThatEndsLosesNothingOfItsParent) {
  const Handles all = OpenAll();
  Add(all.writer, "new", NULL, "more roses");
  const pid_t child = fork();
  if (child == 0) {
    FreeAll(&all);
    _exit(0);
  }
  EXPECT_NUMBER(0, WaitFor(child));
  kestan_writer* second = NULL;
  EXPECT_NUMBER(KESTAN_EBUSY, kestan_writer_open(&second, "poems", 5, NULL));
  kestan_writer_free(second);
  Commit(all.writer);
  EXPECT_NUMBER(KESTAN_OK, kestan_reader_refresh(NULL, all.reader));
  EXPECT_NUMBER(3, CountOf(all.reader, "roses"));
  FreeAll(&all);
}

TEST(AChildOpensTheIndexAgain) {
  MakePoems();
  kestan_reader* const reader = OpenReader("poems");
  const pid_t child = fork();
  if (child == 0) {
    kestan_reader* const own = OpenReader("poems");
    const unsigned long long count = CountOf(own, "roses");
    kestan_writer* const writer = OpenWriter("poems");
    Add(writer, "child", NULL, "roses of the child");
    Commit(writer);
    kestan_writer_free(writer);
    kestan_reader_free(own);
    _exit((int)count);
  }
  EXPECT_NUMBER(2, WaitFor(child));
  EXPECT_NUMBER(KESTAN_OK, kestan_reader_refresh(NULL, reader));
  EXPECT_NUMBER(3, CountOf(reader, "roses"));
  kestan_reader_free(reader);
}

TEST(AQueryOfTheParentIsNoneOfTheChildsReader) {
  MakePoems();
  kestan_reader* const reader = OpenReader("poems");
  kestan_query* query = NULL;
  REQUIRE(kestan_query_word(&query, reader, "roses", 5) == KESTAN_OK);
  const pid_t child = fork();
  if (child == 0) {
    kestan_reader* const own = OpenReader("poems");
    uint64_t count = 0;
    const int code = kestan_reader_count_query(&count, own, query, NULL);
    kestan_reader_free(own);
    _exit(code == KESTAN_EFORKED ? 7 : 8);
  }
  EXPECT_NUMBER(7, WaitFor(child));
  kestan_query_free(query);
  kestan_reader_free(reader);
}

TEST(AGrandchildHasNoHandleOfItsParentEither) {
  MakePoems();
  const pid_t child = fork();
  if (child == 0) {
    kestan_reader* const reader = OpenReader("poems");
    const pid_t grandchild = fork();
    if (grandchild == 0) _exit(kestan_reader_refresh(NULL, reader) == KESTAN_EFORKED ? 7 : 8);
    const int ended = WaitFor(grandchild);
    _exit(kestan_reader_refresh(NULL, reader) == KESTAN_OK ? ended : 9);
  }
  EXPECT_NUMBER(7, WaitFor(child));
}

TEST(TheLockOfAWriterGoesWithItsParent) {
  MakePoems();
  kestan_writer* const writer = OpenWriter("poems");
  int wake[2];
  REQUIRE(pipe(wake) == 0);
  const pid_t child = fork();
  if (child == 0) {
    char byte;
    close(wake[1]);
    _exit(read(wake[0], &byte, 1) == 0 ? 0 : 1);
  }
  kestan_writer_free(writer);
  kestan_writer* again = NULL;
  EXPECT_NUMBER(KESTAN_OK, kestan_writer_open(&again, "poems", 5, NULL));
  kestan_writer_free(again);
  close(wake[0]);
  close(wake[1]);
  EXPECT_NUMBER(0, WaitFor(child));
}
