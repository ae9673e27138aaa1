/* SPDX-License-Identifier: GPL-3.0-or-later */
/* Calls in the wrong order, and two writers on one index. */
#include <string.h>

#include "tests/c/harness.h"
#include "tests/c/poems.h"

TEST(AWriterThatCouldNotBeOpenedDoesNothing) {
  kestan_writer_options options = QuickOptions();
  options.create = 0;
  kestan_writer* writer = NULL;
  EXPECT_NUMBER(KESTAN_ENOTFOUND, kestan_writer_open(&writer, "none", 4, &options));
  REQUIRE(writer != NULL);
  EXPECT_NUMBER(KESTAN_ENOTFOUND, CodeOf(writer));
  const kestan_document document = KESTAN_DOCUMENT_INIT;
  const kestan_error* warning = NULL;
  EXPECT_NUMBER(KESTAN_EINVALID, kestan_writer_add(writer, &document));
  EXPECT_NUMBER(KESTAN_EINVALID, kestan_writer_remove(writer, "a", 1));
  EXPECT_NUMBER(KESTAN_EINVALID, kestan_writer_rename(writer, "a", 1, "b", 1));
  EXPECT_NUMBER(KESTAN_EINVALID, kestan_writer_commit(writer));
  EXPECT_NUMBER(KESTAN_EINVALID, kestan_writer_rollback(writer));
  EXPECT_NUMBER(KESTAN_EINVALID, kestan_writer_compact(writer));
  EXPECT_NUMBER(KESTAN_EINVALID, kestan_writer_warning(&warning, writer));
  EXPECT(strstr(MessageOf(writer), "could not be opened") != NULL);
  kestan_writer_free(writer);
}

TEST(AReaderThatCouldNotBeOpenedAnswersNothing) {
  kestan_reader* reader = NULL;
  EXPECT_NUMBER(KESTAN_ENOTFOUND, kestan_reader_open(&reader, "none", 4));
  REQUIRE(reader != NULL);
  EXPECT_TEXT("none", ErrorOf(reader)->file, ErrorOf(reader)->file_length);
  kestan_hits* hits = NULL;
  kestan_documents* documents = NULL;
  kestan_terms* terms = NULL;
  kestan_query* query = NULL;
  kestan_statistics statistics = KESTAN_STATISTICS_INIT;
  uint64_t count = 0;
  int changed = 0;
  EXPECT_NUMBER(KESTAN_EINVALID, kestan_reader_search(&hits, reader, "a", 1, NULL));
  EXPECT_NUMBER(KESTAN_EINVALID, kestan_reader_count(&count, reader, "a", 1, NULL));
  EXPECT_NUMBER(KESTAN_EINVALID, kestan_reader_refresh(&changed, reader));
  EXPECT_NUMBER(KESTAN_EINVALID, kestan_reader_documents(&documents, reader));
  EXPECT_NUMBER(KESTAN_EINVALID, kestan_reader_find(&documents, reader, "a", 1));
  EXPECT_NUMBER(KESTAN_EINVALID, kestan_reader_terms(&terms, reader, "a", 1, 0));
  EXPECT_NUMBER(KESTAN_EINVALID, kestan_reader_suggest(&terms, reader, "a", 1, 0));
  EXPECT_NUMBER(KESTAN_EINVALID, kestan_query_word(&query, reader, "a", 1));
  EXPECT_NUMBER(KESTAN_EINVALID, kestan_reader_statistics(&statistics, reader));
  EXPECT(strstr(MessageOf(reader), "could not be opened") != NULL);
  kestan_reader_free(reader);
}

TEST(ACheckThatFoundNoIndexHasAnEmptyReport) {
  kestan_report* report = NULL;
  const kestan_finding* finding = NULL;
  uint64_t faults = 7;
  uint64_t notes = 7;
  EXPECT_NUMBER(KESTAN_ENOTFOUND, kestan_check(&report, "none", 4));
  EXPECT_NUMBER(KESTAN_ITEROVER, kestan_report_next(&finding, report));
  EXPECT_NUMBER(KESTAN_OK, kestan_report_counts(&faults, &notes, report));
  EXPECT_NUMBER(0, faults);
  EXPECT_NUMBER(0, notes);
  kestan_report_free(report);
}

TEST(OneIndexOfSeveralThatIsMissingIsNamed) {
  MakePoems();
  const char* const paths[] = {"poems", "none"};
  const size_t lengths[] = {5, 4};
  kestan_reader* reader = NULL;
  EXPECT_NUMBER(KESTAN_ENOTFOUND, kestan_reader_open_many(&reader, paths, lengths, 2));
  EXPECT_TEXT("none", ErrorOf(reader)->file, ErrorOf(reader)->file_length);
  kestan_reader_free(reader);
}

TEST(ASecondWriterIsRefusedUntilTheFirstIsFreed) {
  MakePoems();
  kestan_writer* const first = OpenWriter("poems");
  kestan_writer* second = NULL;
  EXPECT_NUMBER(KESTAN_EBUSY, kestan_writer_open(&second, "poems", 5, NULL));
  EXPECT_NUMBER(KESTAN_EBUSY, CodeOf(second));
  EXPECT_NUMBER(KESTAN_EINVALID, kestan_writer_commit(second));
  kestan_writer_free(second);
  Add(first, "new", NULL, "more roses");
  Commit(first);
  kestan_writer_free(first);
  kestan_writer_free(OpenWriter("poems"));
  kestan_reader* const reader = OpenReader("poems");
  EXPECT_NUMBER(3, CountOf(reader, "roses"));
  kestan_reader_free(reader);
}

TEST(AnErrorDoesNotEndAnIteration) {
  MakePoems();
  kestan_reader* const reader = OpenReader("poems");
  kestan_hits* const hits = Search(reader, "roses");
  const kestan_hit* hit = NULL;
  EXPECT_NUMBER(KESTAN_OK, kestan_hits_next(&hit, hits));
  EXPECT_NUMBER(KESTAN_EINVALID, kestan_hits_next(NULL, hits));
  EXPECT_NUMBER(KESTAN_OK, kestan_hits_next(&hit, hits));
  EXPECT_TEXT("violets.txt", hit->name, hit->name_length);
  EXPECT_NUMBER(KESTAN_ITEROVER, kestan_hits_next(&hit, hits));
  kestan_hits_free(hits);
  kestan_reader_free(reader);
}

TEST(ARefusedDocumentIsNoErrorOfWriting) {
  kestan_writer* const writer = OpenWriter("index");
  kestan_document document = KESTAN_DOCUMENT_INIT;
  Add(writer, "a", NULL, "word");
  EXPECT_NUMBER(KESTAN_EINVALID, kestan_writer_add(writer, &document));
  Add(writer, "b", NULL, "word");
  Commit(writer);
  kestan_reader* const reader = OpenReader("index");
  EXPECT_NUMBER(2, CountOf(reader, "word"));
  kestan_reader_free(reader);
  kestan_writer_free(writer);
}
