/* SPDX-License-Identifier: GPL-3.0-or-later */
/* Memory that runs out: each allocation of a session fails once. The session then ends with
 * KESTAN_ENOMEM or goes on without harm, nothing is lost, and no byte is leaked.
 */
#include <errno.h>
#include <stdio.h>
#include <sys/wait.h>
#include <unistd.h>

#include "tests/c/failing_malloc.h"
#include "tests/c/harness.h"
#include "tests/c/poems.h"

/* Errors of calls with a query are those of the reader. */
static void ExpectNoErrorOf(const kestan_query* query) {
  const kestan_error* error = NULL;
  if (query == NULL) return;
  EXPECT_NUMBER(KESTAN_OK, kestan_last_error(&error, query));
  EXPECT(error == NULL);
}

/* Returns KESTAN_OK, or the first error. Frees all that it has made. */
static int Ask(kestan_reader* reader) {
  kestan_hits* hits = NULL;
  kestan_snippet* snippet = NULL;
  kestan_documents* documents = NULL;
  kestan_terms* terms = NULL;
  kestan_query* query = NULL;
  const kestan_hit* hit = NULL;
  const kestan_document_info* document = NULL;
  const kestan_query* operands[1];
  uint64_t count = 2;
  int code = kestan_reader_search(&hits, reader, "roses", 5, NULL);
  if (code == KESTAN_OK) code = kestan_hits_next(&hit, hits);
  if (code == KESTAN_OK) code = kestan_hits_snippet(&snippet, hits, hit, NULL, 0);
  if (code == KESTAN_OK) code = kestan_reader_documents(&documents, reader);
  while (code == KESTAN_OK) code = kestan_documents_next(&document, documents);
  if (code == KESTAN_ITEROVER) code = kestan_reader_terms(&terms, reader, "r", 1, 0);
  if (code == KESTAN_OK) code = kestan_query_word(&query, reader, "roses", 5);
  kestan_query* both = NULL;
  operands[0] = query;
  if (code == KESTAN_OK) code = kestan_query_and(&both, reader, operands, 1);
  if (code == KESTAN_OK) code = kestan_reader_count_query(&count, reader, both, NULL);
  EXPECT_NUMBER(2, count);
  ExpectNoErrorOf(query);
  ExpectNoErrorOf(both);
  kestan_query_free(both);
  kestan_query_free(query);
  kestan_terms_free(terms);
  kestan_documents_free(documents);
  kestan_snippet_free(snippet);
  kestan_hits_free(hits);
  return code;
}

static int OpenAndAsk(void) {
  kestan_reader* reader = NULL;
  int code = kestan_reader_open(&reader, "poems", 5);
  if (code == KESTAN_OK) code = Ask(reader);
  kestan_reader_free(reader);
  return code;
}

static int CheckIndex(void) {
  kestan_report* report = NULL;
  uint64_t faults = 0;
  int code = kestan_check(&report, "poems", 5);
  if (code == KESTAN_OK) code = kestan_report_counts(&faults, NULL, report);
  EXPECT_NUMBER(0, faults);
  kestan_report_free(report);
  return code;
}

static int Write(void) {
  const kestan_writer_options options = QuickOptions();
  kestan_writer* writer = NULL;
  kestan_document document = KESTAN_DOCUMENT_INIT;
  document.name = document.title = document.text = "dead.txt";
  document.name_length = document.title_length = document.text_length = 8;
  int code = kestan_writer_open(&writer, "poems", 5, &options);
  if (code == KESTAN_OK) code = kestan_writer_add(writer, &document);
  if (code == KESTAN_OK) code = kestan_writer_commit(writer);
  if (code != KESTAN_OK && writer != NULL) {
    const kestan_error* error = NULL;
    EXPECT_NUMBER(KESTAN_OK, kestan_last_error(&error, writer));
    EXPECT(error == NULL || error->code == code);
  }
  kestan_writer_free(writer);
  return code;
}

enum { kFine = 0, kEnded = ENOMEM, kNoMemory = 50, kOtherCode, kLeak, kNotReached };

/* Blocks that may be lost where an index file could not be opened or written. */
enum { kLostByGdbm = 8 };

/* Runs `session` in a process of its own, with the allocation number `nth` failing. Returns how
 * that ended: one of the above, kEnded if the library ended it, as it does without memory
 * for the key/value store of an index file, or 1000 and more for a signal.
 */
static int Try(int (*session)(void), long nth, long may_lose) {
  const pid_t child = fork();
  if (child == 0) {
    if (freopen("/dev/null", "w", stderr) == NULL) _exit(kOtherCode);
    if (session() != KESTAN_OK || session() != KESTAN_OK) _exit(kOtherCode);
    FailAllocation(1); /* what the first errors need is there from now on */
    if (session() != KESTAN_ENOMEM || !StopFailing()) _exit(kOtherCode);
    kestan_reader* missing = NULL;
    kestan_reader_open(&missing, "none", 4);
    kestan_reader_free(missing);
    const long blocks = BlocksInUse();
    FailAllocation(nth);
    const int code = session();
    const int was_not_reached = WasNotReached();
    const int has_failed = StopFailing();
    if (was_not_reached) _exit(code == KESTAN_OK ? kNotReached : kOtherCode);
    /* libstemmer does not say that memory is why it has no stemmer. */
    const int is_no_memory = code == KESTAN_ENOMEM || code == KESTAN_ESYSTEM;
    if (code != KESTAN_OK && !(is_no_memory && has_failed)) _exit(kOtherCode);
    if (BlocksInUse() > blocks + may_lose) _exit(kLeak);
    if (session() != KESTAN_OK) _exit(kOtherCode);
    _exit(code == KESTAN_OK ? kFine : kNoMemory);
  }
  int status = 0;
  if (waitpid(child, &status, 0) != child) return 2000;
  return WIFEXITED(status) ? WEXITSTATUS(status) : 1000 + WTERMSIG(status);
}

/* Lets each allocation of `session` fail once. Many must be an error of the library. */
static void FailEach(int (*session)(void), long may_lose) {
  int errors = 0;
  long nth = 1;
  for (;; ++nth) {
    const int end = Try(session, nth, may_lose);
    if (end == kNotReached) break;
    errors += end == kNoMemory;
    if (end == kFine || end == kNoMemory || end == kEnded) continue;
    EXPECT_NUMBER(kFine, end);
    EXPECT_NUMBER(0, nth); /* prints it */
    break;
  }
  EXPECT(nth > 50);
  EXPECT(errors > 50);
  kestan_reader* const reader = OpenReader("poems");
  EXPECT_NUMBER(2, CountOf(reader, "roses"));
  kestan_reader_free(reader);
}

TEST(AskingSurvivesEachAllocationThatFails) {
  MakePoems();
  FailEach(OpenAndAsk, 0);
}

TEST(CheckingSurvivesEachAllocationThatFails) {
  MakePoems();
  FailEach(CheckIndex, kLostByGdbm);
}

TEST(WritingSurvivesEachAllocationThatFails) {
  MakePoems();
  FailEach(Write, kLostByGdbm);
}

TEST(TheFirstCallOfAProcessSurvivesEachAllocationThatFails) {
  MakePoems();
  kestan_reader* reader = NULL;
  FailAllocation(1);
  EXPECT_NUMBER(KESTAN_ENOMEM, kestan_reader_open(&reader, "poems", 5));
  EXPECT(StopFailing());
  EXPECT(reader == NULL);
  const kestan_error* error = NULL;
  EXPECT_NUMBER(KESTAN_EHANDLE, kestan_last_error(&error, reader));
}
