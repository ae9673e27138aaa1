/* SPDX-License-Identifier: GPL-3.0-or-later */
/* Errors: each code is reached, and the last one is told to the thread that made it. */
#include <errno.h>
#include <pthread.h>
#include <stdio.h>
#include <string.h>
#include <sys/wait.h>
#include <unistd.h>

#include "tests/c/harness.h"
#include "tests/c/poems.h"

static int StopAtOnce(const kestan_progress* progress, void* payload) {
  (void)progress;
  (void)payload;
  return 1;
}

static int ReachNotFound(void) {
  kestan_reader* reader = NULL;
  const int code = kestan_reader_open(&reader, "none", 4);
  kestan_reader_free(reader);
  return code;
}

static int ReachExists(void) {
  kestan_writer* const writer = OpenWriter("poems");
  const int code = kestan_writer_rename(writer, "roses.txt", 9, "dead.txt", 8);
  kestan_writer_free(writer);
  return code;
}

static int ReachInvalid(void) { return kestan_version(NULL, NULL, NULL); }

static int ReachHandle(void) { return kestan_writer_commit(NULL); }

static int ReachQuery(void) {
  kestan_reader* const reader = OpenReader("poems");
  kestan_query* query = NULL;
  const int code = kestan_query_word(&query, reader, "?", 1);
  kestan_reader_free(reader);
  return code;
}

static int ReachBusy(void) {
  kestan_writer* const writer = OpenWriter("poems");
  kestan_writer* second = NULL;
  const int code = kestan_writer_open(&second, "poems", 5, NULL);
  kestan_writer_free(second);
  kestan_writer_free(writer);
  return code;
}

/* Writes `text` over the beginning of the manifest, and asks. */
static int OpenWithManifest(const char* path, const char* text) {
  char manifest[100];
  kestan_reader* reader = NULL;
  snprintf(manifest, sizeof(manifest), "%s/MANIFEST", path);
  FILE* const file = fopen(manifest, "r+");
  REQUIRE(file != NULL);
  fputs(text, file);
  fclose(file);
  const int code = kestan_reader_open(&reader, path, ZERO_TERMINATED);
  EXPECT_NUMBER(code, CodeOf(reader));
  kestan_reader_free(reader);
  return code;
}

static int ReachDamaged(void) {
  MakeNumbers("damaged", 2);
  return OpenWithManifest("damaged", "nonsense nonsense nonsense");
}

static int ReachVersion(void) {
  MakeNumbers("newer", 2);
  return OpenWithManifest("newer", "kestan-index 9");
}

static int ReachSystem(void) {
  kestan_reader* reader = NULL;
  const int code = kestan_reader_open(&reader, "poems/MANIFEST/none", ZERO_TERMINATED);
  kestan_reader_free(reader);
  return code;
}

static int ReachInterrupted(void) {
  kestan_writer_options options = QuickOptions();
  kestan_writer* writer = NULL;
  options.progress = StopAtOnce;
  REQUIRE_OK(kestan_writer_open(&writer, "poems", 5, &options));
  Add(writer, "new", NULL, "word");
  const int code = kestan_writer_commit(writer);
  kestan_writer_free(writer);
  return code;
}

static int ReachForked(void) {
  kestan_reader* const reader = OpenReader("poems");
  const pid_t child = fork();
  if (child == 0) _exit(kestan_reader_refresh(NULL, reader) == KESTAN_EFORKED);
  int status = 0;
  waitpid(child, &status, 0);
  kestan_reader_free(reader);
  return WIFEXITED(status) && WEXITSTATUS(status) == 1 ? KESTAN_EFORKED : KESTAN_OK;
}

static int ReachEnd(void) {
  kestan_reader* const reader = OpenReader("poems");
  kestan_hits* const hits = Search(reader, "nothing");
  const kestan_hit* hit = NULL;
  const int code = kestan_hits_next(&hit, hits);
  kestan_hits_free(hits);
  kestan_reader_free(reader);
  return code;
}

/* KESTAN_ENOMEM is reached by the tests of failing allocations. */
TEST(EveryErrorIsReached) {
  static const struct {
    int code;
    int (*reach)(void);
  } all[] = {
      {KESTAN_ENOTFOUND, ReachNotFound}, {KESTAN_EEXISTS, ReachExists},
      {KESTAN_EINVALID, ReachInvalid},   {KESTAN_EHANDLE, ReachHandle},
      {KESTAN_EQUERY, ReachQuery},       {KESTAN_EBUSY, ReachBusy},
      {KESTAN_EDAMAGED, ReachDamaged},   {KESTAN_EVERSION, ReachVersion},
      {KESTAN_ESYSTEM, ReachSystem},     {KESTAN_EINTERRUPTED, ReachInterrupted},
      {KESTAN_EFORKED, ReachForked},     {KESTAN_ITEROVER, ReachEnd},
  };
  MakePoems();
  for (size_t i = 0; i < COUNT_OF(all); ++i) {
    EXPECT_NUMBER(all[i].code, all[i].reach());
    for (size_t k = 0; k < i; ++k) EXPECT(all[k].code != all[i].code);
  }
}

/* Programs have them compiled in. */
TEST(TheNumbersOfCodesNeverChange) {
  static const int codes[] = {
      KESTAN_OK,     KESTAN_ENOTFOUND,    KESTAN_EEXISTS,  KESTAN_EINVALID, KESTAN_EHANDLE,
      KESTAN_EQUERY, KESTAN_EBUSY,        KESTAN_EDAMAGED, KESTAN_EVERSION, KESTAN_ESYSTEM,
      KESTAN_ENOMEM, KESTAN_EINTERRUPTED, KESTAN_EFORKED};
  for (size_t i = 0; i < COUNT_OF(codes); ++i) EXPECT_NUMBER(-(int)i, codes[i]);
  EXPECT_NUMBER(-31, KESTAN_ITEROVER);
  EXPECT_NUMBER(0, KESTAN_PHASE_WRITING);
  EXPECT_NUMBER(1, KESTAN_PHASE_MERGING);
  EXPECT_NUMBER(0, KESTAN_WORDS_BEST);
  EXPECT_NUMBER(1, KESTAN_WORDS_ALL);
  EXPECT_NUMBER(2, KESTAN_WORDS_ANY);
  EXPECT(KESTAN_ZERO_TERMINATED == SIZE_MAX);
}

TEST(TheLastErrorTellsAllOfIt) {
  MakePoems();
  kestan_reader* const reader = OpenReader("poems");
  const kestan_error* error = NULL;
  REQUIRE_OK(kestan_last_error(&error, reader));
  EXPECT(error == NULL);
  kestan_documents* documents = NULL;
  EXPECT_NUMBER(KESTAN_ENOTFOUND, kestan_reader_find(&documents, reader, "none", 4));
  REQUIRE_OK(kestan_last_error(&error, reader));
  REQUIRE(error != NULL);
  EXPECT_NUMBER(KESTAN_ENOTFOUND, error->code);
  EXPECT_NUMBER(0, error->system_error);
  EXPECT_NUMBER(-1, error->column);
  EXPECT(error->message_length > 0);
  EXPECT_NUMBER(strlen(error->message), error->message_length);
  EXPECT_NUMBER(strlen(error->file), error->file_length);
  EXPECT(strchr(error->message, '\n') == NULL);
  kestan_reader_free(reader);
}

TEST(AnErrorStaysTheLastOneAfterASuccess) {
  MakePoems();
  kestan_reader* const reader = OpenReader("poems");
  kestan_documents* documents = NULL;
  EXPECT_NUMBER(KESTAN_ENOTFOUND, kestan_reader_find(&documents, reader, "none", 4));
  const kestan_error* const error = ErrorOf(reader);
  EXPECT_NUMBER(2, CountOf(reader, "roses"));
  EXPECT(ErrorOf(reader) == error);
  EXPECT_NUMBER(KESTAN_ENOTFOUND, error->code);
  kestan_reader_free(reader);
}

/* A name may hold any bytes but zero, and a message is one line of UTF-8. */
TEST(ANameInAMessageIsPartOfItsLine) {
  MakePoems();
  kestan_writer* const writer = OpenWriter("poems");
  const kestan_error* error = NULL;
  EXPECT_NUMBER(KESTAN_ENOTFOUND, kestan_writer_remove(writer, "a\n\x1b\xff\0z", 6));
  EXPECT_NUMBER(KESTAN_OK, kestan_last_error(&error, writer));
  REQUIRE(error != NULL);
  EXPECT_TEXT("there is no document 'a\\x0a\\x1b\\xff\\x00z'", error->message,
              error->message_length);
  kestan_writer_free(writer);
}

TEST(EachHandleHasItsOwnLastError) {
  MakePoems();
  kestan_reader* const reader = OpenReader("poems");
  kestan_reader* const other = OpenReader("poems");
  kestan_hits* const hits = Search(reader, "roses");
  EXPECT_NUMBER(KESTAN_EINVALID, kestan_hits_next(NULL, hits));
  EXPECT_NUMBER(KESTAN_EINVALID, CodeOf(hits));
  EXPECT_NUMBER(KESTAN_OK, CodeOf(reader));
  EXPECT_NUMBER(KESTAN_OK, CodeOf(other));
  kestan_hits_free(hits);
  kestan_reader_free(reader);
  kestan_reader_free(other);
}

/* Sees no error at first, and then its own. Returns its argument if all is so. */
static void* ErrInThread(void* reader) {
  kestan_hits* hits = NULL;
  const kestan_error* error = NULL;
  if (kestan_last_error(&error, reader) != KESTAN_OK || error != NULL) return NULL;
  if (kestan_reader_search(&hits, reader, NULL, 1, NULL) != KESTAN_EINVALID) return NULL;
  if (kestan_last_error(&error, reader) != KESTAN_OK || error == NULL) return NULL;
  return error->code == KESTAN_EINVALID ? reader : NULL;
}

TEST(EachThreadHasItsOwnLastError) {
  MakePoems();
  kestan_reader* const reader = OpenReader("poems");
  kestan_documents* documents = NULL;
  EXPECT_NUMBER(KESTAN_ENOTFOUND, kestan_reader_find(&documents, reader, "none", 4));
  pthread_t thread;
  void* result = NULL;
  REQUIRE(pthread_create(&thread, NULL, ErrInThread, reader) == 0);
  REQUIRE(pthread_join(thread, &result) == 0);
  EXPECT(result == reader);
  EXPECT_NUMBER(KESTAN_ENOTFOUND, CodeOf(reader));
  kestan_reader_free(reader);
}

/* Threads that follow each other are often given one identifier. */
TEST(AThreadDoesNotInheritTheErrorOfOneThatHasEnded) {
  MakePoems();
  kestan_reader* const reader = OpenReader("poems");
  for (int i = 0; i < 100; ++i) {
    pthread_t thread;
    void* result = NULL;
    REQUIRE(pthread_create(&thread, NULL, ErrInThread, reader) == 0);
    REQUIRE(pthread_join(thread, &result) == 0);
    EXPECT(result == reader);
  }
  kestan_reader_free(reader);
}
