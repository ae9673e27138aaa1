/* SPDX-License-Identifier: GPL-3.0-or-later */
#include "tests/c/harness.h"

#include <dirent.h>
#include <fcntl.h>
#include <ftw.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

enum { kMaxTests = 500 };

static struct {
  const char* name;
  TestFunction function;
} tests[kMaxTests];
static size_t test_count = 0;
static int has_failed = 0;

void RegisterTest(const char* name, TestFunction function) {
  if (test_count == kMaxTests) abort();
  tests[test_count].name = name;
  tests[test_count++].function = function;
}

static void Complain(const char* file, int line) {
  has_failed = 1;
  fprintf(stderr, "%s:%d: ", file, line);
}

int ExpectTrue(int holds, const char* what, const char* file, int line) {
  if (holds) return 1;
  Complain(file, line);
  fprintf(stderr, "not so: %s\n", what);
  return 0;
}

int ExpectNumber(long long expected, long long found, const char* what, const char* file,
                 int line) {
  if (expected == found) return 1;
  Complain(file, line);
  fprintf(stderr, "%s is %lld, not %lld\n", what, found, expected);
  return 0;
}

int ExpectText(const char* expected, const char* found, size_t length, const char* what,
               const char* file, int line) {
  if (found != NULL && strlen(expected) == length && memcmp(expected, found, length) == 0 &&
      found[length] == '\0') {
    return 1;
  }
  Complain(file, line);
  fprintf(stderr, "%s is \"%.*s\", not \"%s\"\n", what, found == NULL ? 0 : (int)length,
          found == NULL ? "" : found, expected);
  return 0;
}

void GiveUp(void) { exit(1); }

static int CountDescriptors(void) {
  int count = 0;
  DIR* const folder = opendir("/proc/self/fd");
  if (folder == NULL) return 0;
  while (readdir(folder) != NULL) ++count;
  closedir(folder);
  return count;
}

/* Runs the test in the folder, with both output streams led into the file. */
static void RunInChild(TestFunction function, const char* folder, int output) {
  if (chdir(folder) != 0 || dup2(output, 1) < 0 || dup2(output, 2) < 0) _exit(2);
  const int descriptors = CountDescriptors();
  function();
  EXPECT_NUMBER(descriptors, CountDescriptors());
  exit(has_failed);
}

static int Remove(const char* path, const struct stat* about, int type, struct FTW* place) {
  (void)about;
  (void)type;
  (void)place;
  return remove(path);
}

/* Prints what the test has printed. Returns whether that is nothing. */
static int ShowOutput(int output) {
  char bytes[4096];
  int is_empty = 1;
  ssize_t count;
  lseek(output, 0, SEEK_SET);
  while ((count = read(output, bytes, sizeof(bytes))) > 0) {
    fwrite(bytes, 1, (size_t)count, stderr);
    is_empty = 0;
  }
  return is_empty;
}

static int Run(TestFunction function) {
  char folder[] = "/tmp/kestan_c_test_XXXXXX";
  FILE* const output = tmpfile();
  if (output == NULL || mkdtemp(folder) == NULL) return 2;
  const pid_t child = fork();
  if (child == 0) RunInChild(function, folder, fileno(output));
  int status = 0;
  waitpid(child, &status, 0);
  nftw(folder, Remove, 16, FTW_DEPTH | FTW_PHYS);
  const int is_silent = ShowOutput(fileno(output));
  fclose(output);
  if (WIFSIGNALED(status)) fprintf(stderr, "ended by signal %d\n", WTERMSIG(status));
  if (!is_silent) fputs("something was printed\n", stderr);
  return WIFEXITED(status) && WEXITSTATUS(status) == 0 && is_silent ? 0 : 1;
}

/* Runs the tests that are named, or all. Returns how many have failed, 255 at most. */
int main(int argc, char** argv) {
  int failed = 0;
  int ran = 0;
  for (size_t i = 0; i < test_count; ++i) {
    int is_wanted = argc == 1;
    for (int a = 1; a < argc; ++a) is_wanted |= strcmp(argv[a], tests[i].name) == 0;
    if (!is_wanted) continue;
    ++ran;
    if (Run(tests[i].function) == 0) continue;
    fprintf(stderr, "FAILED: %s\n", tests[i].name);
    ++failed;
  }
  printf("%d tests, %d failed\n", ran, failed);
  if (ran == 0) return 2;
  return failed > 255 ? 255 : failed;
}
