/* SPDX-License-Identifier: GPL-3.0-or-later */
/* Damaged indexes: an error or a right answer, never a wrong one, and the check tells. */
#include <dirent.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>

#include "tests/c/harness.h"
#include "tests/c/poems.h"

/* Changes the byte at `at` of the file at `path`. Returns whether there is one. */
static int FlipByte(const char* path, long at) {
  FILE* const file = fopen(path, "r+b");
  if (file == NULL) return 0;
  fseek(file, at, SEEK_SET);
  const int byte = fgetc(file);
  if (byte != EOF) {
    fseek(file, at, SEEK_SET);
    fputc(byte ^ 0x55, file);
  }
  fclose(file);
  return byte != EOF;
}

static uint64_t FaultsOf(const char* path) {
  kestan_report* report = NULL;
  const kestan_finding* finding = NULL;
  uint64_t faults = 0;
  uint64_t kept = 0;
  const int code = kestan_check(&report, path, ZERO_TERMINATED);
  if (code == KESTAN_EVERSION) faults = 1; /* the bytes that are changed are its version */
  if (code == KESTAN_OK) {
    EXPECT_NUMBER(KESTAN_OK, kestan_report_counts(&faults, NULL, report));
    while (kestan_report_next(&finding, report) == KESTAN_OK) {
      EXPECT(finding->file_length > 0 && finding->text_length > 0);
      EXPECT_NUMBER(strlen(finding->text), finding->text_length);
      if (finding->is_fault) ++kept;
    }
    EXPECT_NUMBER(faults, kept);
  } else {
    EXPECT_NUMBER(KESTAN_EVERSION, code);
  }
  kestan_report_free(report);
  return faults;
}

static int IsDamage(int code) { return code == KESTAN_EDAMAGED || code == KESTAN_EVERSION; }

/* Asks the index; every answer is right, or an error that says why there is none. */
static void ExpectRightAnswersOrErrors(const char* path) {
  kestan_reader* reader = NULL;
  int code = kestan_reader_open(&reader, path, ZERO_TERMINATED);
  if (code != KESTAN_OK) {
    EXPECT(IsDamage(code));
    EXPECT(ErrorOf(reader)->message_length > 0);
    kestan_reader_free(reader);
    return;
  }
  kestan_hits* hits = NULL;
  code = kestan_reader_search(&hits, reader, "roses", 5, NULL);
  if (code == KESTAN_OK) {
    EXPECT(strcmp(NamesOf(hits), "roses.txt violets.txt ") == 0);
  } else {
    EXPECT(IsDamage(code));
    EXPECT(hits == NULL);
  }
  kestan_hits_free(hits);
  kestan_documents* documents = NULL;
  const kestan_document_info* document = NULL;
  if (kestan_reader_documents(&documents, reader) == KESTAN_OK) {
    int count = 0;
    while ((code = kestan_documents_next(&document, documents)) == KESTAN_OK) ++count;
    EXPECT((code == KESTAN_ITEROVER && count == 3) || IsDamage(code));
  }
  kestan_documents_free(documents);
  kestan_reader_free(reader);
}

/* Changes a byte in `file` of the index, one in `stride`, and asks each time. */
static int DamageFile(const char* file, long stride) {
  struct stat about;
  int tried = 0;
  REQUIRE(stat(file, &about) == 0);
  for (long at = 0; at < about.st_size; at += stride) {
    REQUIRE(FlipByte(file, at));
    ExpectRightAnswersOrErrors("poems");
    EXPECT(FaultsOf("poems") > 0);
    REQUIRE(FlipByte(file, at));
    ++tried;
  }
  return tried;
}

TEST(AChangedByteAnywhereIsFoundByTheCheckAndNeverAWrongAnswer) {
  MakePoems();
  DIR* const folder = opendir("poems");
  REQUIRE(folder != NULL);
  const struct dirent* entry = NULL;
  int tried = 0;
  while ((entry = readdir(folder)) != NULL) {
    char path[400];
    struct stat about;
    snprintf(path, sizeof(path), "poems/%s", entry->d_name);
    if (stat(path, &about) != 0 || !S_ISREG(about.st_mode) || about.st_size == 0) continue;
    tried += DamageFile(path, about.st_size / 40 + 1);
  }
  closedir(folder);
  EXPECT(tried > 60);
  ExpectRightAnswersOrErrors("poems");
  EXPECT_NUMBER(0, FaultsOf("poems"));
}

TEST(AnIndexWithoutItsFilesIsDamaged) {
  MakePoems();
  DIR* const folder = opendir("poems");
  REQUIRE(folder != NULL);
  const struct dirent* entry = NULL;
  while ((entry = readdir(folder)) != NULL) {
    char path[400];
    snprintf(path, sizeof(path), "poems/%s", entry->d_name);
    if (strcmp(entry->d_name, "MANIFEST") != 0 && entry->d_name[0] != '.') remove(path);
  }
  closedir(folder);
  kestan_reader* reader = NULL;
  EXPECT_NUMBER(KESTAN_EDAMAGED, kestan_reader_open(&reader, "poems", 5));
  EXPECT(ErrorOf(reader)->file_length > 5);
  kestan_reader_free(reader);
  EXPECT(FaultsOf("poems") > 0);
}

TEST(AWriterWarnsOfASegmentThatItCannotMerge) {
  kestan_writer_options options = QuickOptions();
  options.merge_factor = 2;
  MakePoems();
  FILE* const manifest = fopen("poems/MANIFEST", "r");
  REQUIRE(manifest != NULL);
  fclose(manifest);
  DIR* const folder = opendir("poems");
  REQUIRE(folder != NULL);
  const struct dirent* entry = NULL;
  kestan_writer* writer = NULL;
  REQUIRE_OK(kestan_writer_open(&writer, "poems", 5, &options));
  while ((entry = readdir(folder)) != NULL) {
    char path[400];
    struct stat about;
    snprintf(path, sizeof(path), "poems/%s", entry->d_name);
    if (strcmp(entry->d_name, "MANIFEST") == 0 || stat(path, &about) != 0) continue;
    if (!S_ISREG(about.st_mode)) continue;
    for (long at = 0; at < about.st_size; at += 7) FlipByte(path, at);
  }
  closedir(folder);
  kestan_document document = KESTAN_DOCUMENT_INIT;
  document.name = "a";
  document.name_length = 1;
  int code = kestan_writer_add(writer, &document);
  if (code == KESTAN_OK) code = kestan_writer_commit(writer);
  EXPECT(code == KESTAN_OK || IsDamage(code));
  const kestan_error* warning = NULL;
  int warnings = 0;
  while (kestan_writer_warning(&warning, writer) == KESTAN_OK) {
    ++warnings;
    EXPECT(IsDamage(warning->code));
    EXPECT(warning->file_length > 0 && warning->message_length > 0);
  }
  EXPECT(warnings > 0 || code != KESTAN_OK);
  kestan_writer_free(writer);
}

/* An index file of the engine is an index of its own, damaged or not. */
TEST(AFileThatIsNoIndexIsRefused) {
  FILE* const file = fopen("text", "w");
  REQUIRE(file != NULL);
  fputs("This is no index.\n", file);
  fclose(file);
  kestan_reader* reader = NULL;
  const int code = kestan_reader_open(&reader, "text", 4);
  EXPECT(code == KESTAN_EDAMAGED || code == KESTAN_EVERSION);
  EXPECT_TEXT("text", ErrorOf(reader)->file, ErrorOf(reader)->file_length);
  kestan_reader_free(reader);
}
