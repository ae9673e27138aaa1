/* SPDX-License-Identifier: GPL-3.0-or-later */
/* Writers: what they do when they are used as they should be. */
#include <string.h>

#include "tests/c/harness.h"
#include "tests/c/poems.h"

TEST(ADocumentIsFoundAfterACommit) {
  kestan_writer* const writer = OpenWriter("poems");
  Add(writer, "a", "A title", "some words");
  Commit(writer);
  kestan_reader* const reader = OpenReader("poems");
  EXPECT(strcmp(Found(reader, "words"), "a ") == 0);
  kestan_reader_free(reader);
  kestan_writer_free(writer);
}

TEST(WhatIsNotCommittedIsLost) {
  kestan_writer* writer = OpenWriter("poems");
  Add(writer, "a", NULL, "word");
  Commit(writer);
  Add(writer, "b", NULL, "word");
  kestan_writer_free(writer);
  kestan_reader* const reader = OpenReader("poems");
  EXPECT(strcmp(Found(reader, "word"), "a ") == 0);
  kestan_reader_free(reader);
}

TEST(ARollbackForgetsWhatWasNotCommitted) {
  kestan_writer* const writer = OpenWriter("poems");
  Add(writer, "a", NULL, "word");
  Commit(writer);
  Add(writer, "b", NULL, "word");
  EXPECT_NUMBER(KESTAN_OK, kestan_writer_remove(writer, "a", 1));
  EXPECT_NUMBER(KESTAN_OK, kestan_writer_rollback(writer));
  Commit(writer);
  kestan_reader* const reader = OpenReader("poems");
  EXPECT(strcmp(Found(reader, "word"), "a ") == 0);
  kestan_reader_free(reader);
  kestan_writer_free(writer);
}

TEST(ADocumentTakesThePlaceOfOneOfItsName) {
  kestan_writer* const writer = OpenWriter("poems");
  Add(writer, "a", NULL, "old");
  Commit(writer);
  Add(writer, "a", NULL, "new");
  Commit(writer);
  kestan_reader* const reader = OpenReader("poems");
  EXPECT_NUMBER(0, CountOf(reader, "old"));
  EXPECT_NUMBER(1, CountOf(reader, "new"));
  kestan_reader_free(reader);
  kestan_writer_free(writer);
}

TEST(ARemovedDocumentIsFoundNoLonger) {
  MakePoems();
  kestan_writer* const writer = OpenWriter("poems");
  EXPECT_NUMBER(KESTAN_OK, kestan_writer_remove(writer, "roses.txt", 9));
  EXPECT_NUMBER(KESTAN_ENOTFOUND, kestan_writer_remove(writer, "roses.txt", ZERO_TERMINATED));
  EXPECT_NUMBER(KESTAN_ENOTFOUND, CodeOf(writer));
  Commit(writer);
  kestan_reader* const reader = OpenReader("poems");
  EXPECT(strcmp(Found(reader, "roses"), "violets.txt ") == 0);
  kestan_reader_free(reader);
  kestan_writer_free(writer);
}

TEST(ARenamedDocumentKeepsItsWords) {
  MakePoems();
  kestan_writer* const writer = OpenWriter("poems");
  EXPECT_NUMBER(KESTAN_OK, kestan_writer_rename(writer, "roses.txt", 9, "rosen.txt", 9));
  EXPECT_NUMBER(KESTAN_ENOTFOUND, kestan_writer_rename(writer, "roses.txt", 9, "x", 1));
  EXPECT_NUMBER(KESTAN_EEXISTS,
                kestan_writer_rename(writer, "rosen.txt", 9, "dead.txt", ZERO_TERMINATED));
  Commit(writer);
  kestan_reader* const reader = OpenReader("poems");
  EXPECT(strcmp(Found(reader, "roses"), "rosen.txt violets.txt ") == 0);
  kestan_reader_free(reader);
  kestan_writer_free(writer);
}

TEST(CompactingLeavesOneSegmentWithoutRemovedDocuments) {
  kestan_writer* const writer = OpenWriter("index");
  Add(writer, "a", NULL, "word");
  Commit(writer);
  Add(writer, "b", NULL, "word");
  Commit(writer);
  EXPECT_NUMBER(KESTAN_OK, kestan_writer_remove(writer, "a", 1));
  EXPECT_NUMBER(KESTAN_OK, kestan_writer_compact(writer));
  kestan_reader* const reader = OpenReader("index");
  kestan_statistics statistics = KESTAN_STATISTICS_INIT;
  EXPECT_NUMBER(KESTAN_OK, kestan_reader_statistics(&statistics, reader));
  EXPECT_NUMBER(1, statistics.segments);
  EXPECT_NUMBER(1, statistics.documents);
  EXPECT_NUMBER(0, statistics.removed_documents);
  kestan_reader_free(reader);
  kestan_writer_free(writer);
}

TEST(AnEmptyCommitIsFine) {
  kestan_writer* const writer = OpenWriter("index");
  Commit(writer);
  Commit(writer);
  EXPECT_NUMBER(KESTAN_OK, kestan_writer_compact(writer));
  EXPECT_NUMBER(KESTAN_OK, kestan_writer_rollback(writer));
  kestan_reader* const reader = OpenReader("index");
  EXPECT_NUMBER(0, CountOf(reader, "word"));
  kestan_reader_free(reader);
  kestan_writer_free(writer);
}

TEST(WithoutCreateNoIndexIsMade) {
  kestan_writer_options options = QuickOptions();
  options.create = 0;
  kestan_writer* writer = NULL;
  EXPECT_NUMBER(KESTAN_ENOTFOUND, kestan_writer_open(&writer, "none", 4, &options));
  EXPECT_NUMBER(KESTAN_ENOTFOUND, CodeOf(writer));
  kestan_writer_free(writer);
  kestan_reader* reader = NULL;
  EXPECT_NUMBER(KESTAN_ENOTFOUND, kestan_reader_open(&reader, "none", 4));
  kestan_reader_free(reader);
}

TEST(WithoutPositionsTheStatisticsSaySo) {
  kestan_writer_options options = QuickOptions();
  options.with_positions = 0;
  kestan_writer* writer = NULL;
  REQUIRE_OK(kestan_writer_open(&writer, "index", 5, &options));
  Add(writer, "a", NULL, "some words");
  Commit(writer);
  kestan_writer_free(writer);
  kestan_reader* const reader = OpenReader("index");
  kestan_statistics statistics = KESTAN_STATISTICS_INIT;
  EXPECT_NUMBER(KESTAN_OK, kestan_reader_statistics(&statistics, reader));
  EXPECT_NUMBER(0, statistics.with_positions);
  kestan_reader_free(reader);
}

TEST(TheLanguageDecidesWhichFormsAWordHas) {
  kestan_writer_options options = QuickOptions();
  options.language = "german, and more";
  options.language_length = 6;
  kestan_writer* writer = NULL;
  REQUIRE_OK(kestan_writer_open(&writer, "index", 5, &options));
  Add(writer, "a", NULL, "Viele Blumen");
  Commit(writer);
  kestan_writer_free(writer);
  kestan_reader* const reader = OpenReader("index");
  EXPECT_NUMBER(1, CountOf(reader, "blume"));
  kestan_reader_free(reader);
}

TEST(AWriterThatGoesWellHasNoWarnings) {
  MakePoems();
  kestan_writer* const writer = OpenWriter("poems");
  const kestan_error* warning = NULL;
  EXPECT_NUMBER(KESTAN_ITEROVER, kestan_writer_warning(&warning, writer));
  EXPECT(warning == NULL);
  EXPECT_NUMBER(KESTAN_OK, kestan_writer_compact(writer));
  EXPECT_NUMBER(KESTAN_ITEROVER, kestan_writer_warning(&warning, writer));
  EXPECT_NUMBER(KESTAN_OK, CodeOf(writer));
  kestan_writer_free(writer);
}

TEST(DefaultOptionsOpenAWriterToo) {
  kestan_writer* writer = NULL;
  REQUIRE_OK(kestan_writer_open(&writer, "index", 5, NULL));
  Add(writer, "a", NULL, "word");
  Commit(writer);
  kestan_writer_free(writer);
  const kestan_writer_options options = KESTAN_WRITER_OPTIONS_INIT;
  REQUIRE_OK(kestan_writer_open(&writer, "index", 5, &options));
  kestan_writer_free(writer);
  kestan_writer_free(NULL);
}

TEST(TheVersionIsThatOfTheLibrary) {
  int major = -1;
  int minor = -1;
  int patch = -1;
  EXPECT_NUMBER(KESTAN_OK, kestan_version(&major, &minor, &patch));
  EXPECT_NUMBER(KESTAN_PROJECT_MAJOR, major);
  EXPECT_NUMBER(KESTAN_PROJECT_MINOR, minor);
  EXPECT_NUMBER(KESTAN_PROJECT_PATCH, patch);
  EXPECT_NUMBER(KESTAN_EINVALID, kestan_version(NULL, &minor, &patch));
  EXPECT_NUMBER(KESTAN_EINVALID, kestan_version(&major, NULL, &patch));
  EXPECT_NUMBER(KESTAN_EINVALID, kestan_version(&major, &minor, NULL));
}
