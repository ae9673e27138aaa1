/* SPDX-License-Identifier: GPL-3.0-or-later */
/* A process that forks while its other threads search. A sanitizer's allocator may be locked in the
 * child for ever, so this is a program of builds without one.
 */
#include <pthread.h>
#include <sys/wait.h>
#include <unistd.h>

#include "tests/c/harness.h"
#include "tests/c/poems.h"

static int is_over; /* read and written with the built-in functions: C99 has no atomics */

static void* AskAllTheTime(void* reader) {
  while (!__atomic_load_n(&is_over, __ATOMIC_SEQ_CST)) {
    uint64_t count = 0;
    kestan_hits* hits = NULL;
    if (kestan_reader_count(&count, reader, "roses", 5, NULL) != KESTAN_OK) return NULL;
    if (kestan_reader_search(&hits, reader, "caf\xc3\xa9 violet", 12, NULL) != KESTAN_OK)
      return NULL;
    kestan_hits_free(hits);
  }
  return reader;
}

TEST(AChildOpensTheIndexWhileThreadsOfTheParentAsk) {
  MakePoems();
  kestan_reader* const reader = OpenReader("poems");
  pthread_t threads[4];
  for (size_t i = 0; i < COUNT_OF(threads); ++i) {
    REQUIRE(pthread_create(&threads[i], NULL, AskAllTheTime, reader) == 0);
  }
  for (int i = 0; i < 50; ++i) {
    const pid_t child = fork();
    if (child == 0) {
      alarm(60);
      kestan_reader* const own = OpenReader("poems");
      const unsigned long long count = CountOf(own, "roses");
      kestan_reader_free(own);
      _exit((int)count);
    }
    int status = 0;
    REQUIRE(waitpid(child, &status, 0) == child);
    EXPECT(WIFEXITED(status));
    EXPECT_NUMBER(2, WEXITSTATUS(status));
  }
  __atomic_store_n(&is_over, 1, __ATOMIC_SEQ_CST);
  for (size_t i = 0; i < COUNT_OF(threads); ++i) {
    void* result = NULL;
    REQUIRE(pthread_join(threads[i], &result) == 0);
    EXPECT(result == reader);
  }
  kestan_reader_free(reader);
}
