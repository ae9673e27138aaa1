/* SPDX-License-Identifier: GPL-3.0-or-later */
/* A system that refuses: no permission, no room. */
#include <errno.h>
#include <fcntl.h>
#include <signal.h>
#include <stdio.h>
#include <string.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tests/c/harness.h"
#include "tests/c/poems.h"

/* Root may do anything, so the rest of the test is somebody else's. */
static void BecomeNobody(void) {
  if (geteuid() != 0) return;
  REQUIRE(chmod(".", 0755) == 0);
  REQUIRE(setegid(65534) == 0);
  REQUIRE(seteuid(65534) == 0);
}

static void BecomeRootAgain(void) {
  if (getuid() == 0) REQUIRE(seteuid(0) == 0);
}

TEST(AnIndexThatCannotBeReadIsAnErrorOfTheSystem) {
  MakePoems();
  REQUIRE(chmod("poems", 0) == 0);
  BecomeNobody();
  kestan_reader* reader = NULL;
  EXPECT_NUMBER(KESTAN_ESYSTEM, kestan_reader_open(&reader, "poems", 5));
  EXPECT_NUMBER(KESTAN_ESYSTEM, CodeOf(reader));
  EXPECT_NUMBER(EACCES, ErrorOf(reader)->system_error);
  kestan_reader_free(reader);
  kestan_report* report = NULL;
  EXPECT_NUMBER(KESTAN_ESYSTEM, kestan_check(&report, "poems", 5));
  EXPECT_NUMBER(EACCES, ErrorOf(report)->system_error);
  kestan_report_free(report);
  kestan_writer* writer = NULL;
  EXPECT_NUMBER(KESTAN_ESYSTEM, kestan_writer_open(&writer, "poems", 5, NULL));
  EXPECT_NUMBER(EACCES, ErrorOf(writer)->system_error);
  kestan_writer_free(writer);
  BecomeRootAgain();
  REQUIRE(chmod("poems", 0755) == 0);
}

TEST(AFolderThatCannotBeWrittenIsAnErrorOfTheSystem) {
  REQUIRE(chmod(".", 0555) == 0);
  BecomeNobody();
  REQUIRE(geteuid() == 0 || access("none", F_OK) != 0);
  kestan_writer* writer = NULL;
  EXPECT_NUMBER(KESTAN_ESYSTEM, kestan_writer_open(&writer, "index", 5, NULL));
  EXPECT_NUMBER(EACCES, ErrorOf(writer)->system_error);
  EXPECT(ErrorOf(writer)->column == -1);
  kestan_writer_free(writer);
  BecomeRootAgain();
}

TEST(APathThatIsTooLongIsAnErrorOfTheSystem) {
  char path[5001];
  memset(path, 'p', sizeof(path));
  path[5000] = '\0';
  kestan_reader* reader = NULL;
  EXPECT_NUMBER(KESTAN_ESYSTEM, kestan_reader_open(&reader, path, ZERO_TERMINATED));
  EXPECT_NUMBER(ENAMETOOLONG, ErrorOf(reader)->system_error);
  EXPECT(strncmp(path, ErrorOf(reader)->file, 5000) == 0);
  kestan_reader_free(reader);
}

/* Lets files grow up to that size and no further. */
static void LimitFiles(rlim_t bytes) {
  struct rlimit limit;
  REQUIRE(getrlimit(RLIMIT_FSIZE, &limit) == 0);
  limit.rlim_cur = bytes;
  REQUIRE(setrlimit(RLIMIT_FSIZE, &limit) == 0);
}

TEST(AnErrorOfWritingStaysUntilARollback) {
  MakePoems();
  signal(SIGXFSZ, SIG_IGN);
  kestan_writer* const writer = OpenWriter("poems");
  Add(writer, "new", NULL, "more roses");
  LimitFiles(100);
  EXPECT_NUMBER(KESTAN_ESYSTEM, kestan_writer_commit(writer));
  EXPECT_NUMBER(EFBIG, ErrorOf(writer)->system_error);
  LimitFiles(RLIM_INFINITY);
  EXPECT_NUMBER(KESTAN_ESYSTEM, kestan_writer_commit(writer));
  EXPECT_NUMBER(KESTAN_ESYSTEM, kestan_writer_remove(writer, "dead.txt", 8));
  EXPECT_NUMBER(KESTAN_ESYSTEM, kestan_writer_compact(writer));
  EXPECT_NUMBER(KESTAN_OK, kestan_writer_rollback(writer));
  kestan_reader* const reader = OpenReader("poems");
  EXPECT_NUMBER(2, CountOf(reader, "roses"));
  Add(writer, "new", NULL, "more roses");
  Commit(writer);
  EXPECT_NUMBER(KESTAN_OK, kestan_reader_refresh(NULL, reader));
  EXPECT_NUMBER(3, CountOf(reader, "roses"));
  kestan_reader_free(reader);
  kestan_writer_free(writer);
}
