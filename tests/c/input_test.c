/* SPDX-License-Identifier: GPL-3.0-or-later */
/* Strings and options that make no sense: lengths that lie, zero bytes, other versions. */
#include <math.h>
#include <stdlib.h>
#include <string.h>

#include "tests/c/harness.h"
#include "tests/c/poems.h"

static const size_t kImpossible[] = {SIZE_MAX - 1, SIZE_MAX / 2 + 1, SIZE_MAX / 2,
                                     ((size_t)1 << 30) + 1};

TEST(LengthsThatNothingHasAreRefused) {
  MakePoems();
  kestan_reader* const reader = OpenReader("poems");
  kestan_writer* const writer = OpenWriter("poems");
  kestan_hits* const good = Search(reader, "roses");
  const kestan_hit* hit = NULL;
  REQUIRE_OK(kestan_hits_at(&hit, good, 0));
  for (size_t i = 0; i < COUNT_OF(kImpossible); ++i) {
    const size_t length = kImpossible[i];
    kestan_hits* hits = NULL;
    kestan_query* query = NULL;
    kestan_terms* terms = NULL;
    kestan_documents* documents = NULL;
    kestan_snippet* snippet = NULL;
    kestan_reader* other = NULL;
    kestan_report* report = NULL;
    uint64_t count = 0;
    EXPECT_NUMBER(KESTAN_EINVALID, kestan_reader_search(&hits, reader, "roses", length, NULL));
    EXPECT_NUMBER(KESTAN_EINVALID, kestan_reader_count(&count, reader, "roses", length, NULL));
    EXPECT_NUMBER(KESTAN_EINVALID, kestan_query_word(&query, reader, "roses", length));
    EXPECT_NUMBER(KESTAN_EINVALID, kestan_query_prefix(&query, reader, "roses", length));
    EXPECT_NUMBER(KESTAN_EINVALID, kestan_query_phrase(&query, reader, "roses", length));
    EXPECT_NUMBER(KESTAN_EINVALID, kestan_reader_terms(&terms, reader, "roses", length, 0));
    EXPECT_NUMBER(KESTAN_EINVALID, kestan_reader_suggest(&terms, reader, "roses", length, 0));
    EXPECT_NUMBER(KESTAN_EINVALID, kestan_reader_find(&documents, reader, "roses", length));
    EXPECT_NUMBER(KESTAN_EINVALID, kestan_hits_snippet(&snippet, good, hit, "roses", length));
    EXPECT_NUMBER(KESTAN_EINVALID, kestan_reader_open(&other, "poems", length));
    EXPECT(strstr(MessageOf(other), "length") != NULL);
    kestan_reader_free(other);
    EXPECT_NUMBER(KESTAN_EINVALID, kestan_check(&report, "poems", length));
    kestan_report_free(report);
    EXPECT_NUMBER(KESTAN_EINVALID, kestan_writer_remove(writer, "roses", length));
    EXPECT_NUMBER(KESTAN_EINVALID, kestan_writer_rename(writer, "roses", length, "a", 1));
    EXPECT_NUMBER(KESTAN_EINVALID, kestan_writer_rename(writer, "a", 1, "roses", length));
    kestan_document document = KESTAN_DOCUMENT_INIT;
    size_t* const lengths[] = {&document.name_length, &document.text_length, &document.title_length,
                               &document.summary_length, &document.data_length};
    document.name = document.text = document.title = document.summary = document.data = "a";
    for (size_t field = 0; field < COUNT_OF(lengths); ++field) {
      for (size_t all = 0; all < COUNT_OF(lengths); ++all) *lengths[all] = 1;
      *lengths[field] = length;
      EXPECT_NUMBER(KESTAN_EINVALID, kestan_writer_add(writer, &document));
    }
  }
  Commit(writer);
  EXPECT_NUMBER(KESTAN_OK, kestan_reader_refresh(NULL, reader));
  EXPECT_NUMBER(2, CountOf(reader, "roses"));
  kestan_hits_free(good);
  kestan_writer_free(writer);
  kestan_reader_free(reader);
}

TEST(NullWithALengthIsRefused) {
  MakePoems();
  kestan_reader* const reader = OpenReader("poems");
  kestan_writer* const writer = OpenWriter("poems");
  kestan_hits* const good = Search(reader, "roses");
  const kestan_hit* hit = NULL;
  REQUIRE_OK(kestan_hits_at(&hit, good, 0));
  const size_t lengths[] = {1, ZERO_TERMINATED};
  for (size_t i = 0; i < COUNT_OF(lengths); ++i) {
    const size_t length = lengths[i];
    const char* const paths[] = {NULL};
    kestan_hits* hits = NULL;
    kestan_query* query = NULL;
    kestan_terms* terms = NULL;
    kestan_documents* documents = NULL;
    kestan_snippet* snippet = NULL;
    kestan_reader* other = NULL;
    kestan_writer* second = NULL;
    kestan_report* report = NULL;
    EXPECT_NUMBER(KESTAN_EINVALID, kestan_reader_search(&hits, reader, NULL, length, NULL));
    EXPECT(strstr(MessageOf(reader), "null") != NULL);
    EXPECT_NUMBER(KESTAN_EINVALID, kestan_query_word(&query, reader, NULL, length));
    EXPECT_NUMBER(KESTAN_EINVALID, kestan_reader_terms(&terms, reader, NULL, length, 0));
    EXPECT_NUMBER(KESTAN_EINVALID, kestan_reader_find(&documents, reader, NULL, length));
    EXPECT_NUMBER(KESTAN_EINVALID, kestan_hits_snippet(&snippet, good, hit, NULL, length));
    EXPECT_NUMBER(KESTAN_EINVALID, kestan_writer_remove(writer, NULL, length));
    EXPECT_NUMBER(KESTAN_EINVALID, kestan_reader_open(&other, NULL, length));
    kestan_reader_free(other);
    EXPECT_NUMBER(KESTAN_EINVALID, kestan_reader_open_many(&other, paths, &length, 1));
    kestan_reader_free(other);
    EXPECT_NUMBER(KESTAN_EINVALID, kestan_writer_open(&second, NULL, length, NULL));
    kestan_writer_free(second);
    EXPECT_NUMBER(KESTAN_EINVALID, kestan_check(&report, NULL, length));
    kestan_report_free(report);
    kestan_document document = KESTAN_DOCUMENT_INIT;
    document.name = "a";
    document.name_length = 1;
    document.title_length = length;
    EXPECT_NUMBER(KESTAN_EINVALID, kestan_writer_add(writer, &document));
    EXPECT(strstr(MessageOf(writer), "the title is null") != NULL);
  }
  EXPECT_NUMBER(KESTAN_EINVALID, kestan_writer_add(writer, NULL));
  kestan_hits_free(good);
  kestan_writer_free(writer);
  kestan_reader_free(reader);
}

TEST(APathIsNotEmptyAndHasNoZeroByte) {
  const char* const paths[] = {"", "a\0b", "\0"};
  const size_t lengths[] = {0, 3, 1};
  for (size_t i = 0; i < COUNT_OF(paths); ++i) {
    kestan_reader* reader = NULL;
    kestan_writer* writer = NULL;
    kestan_report* report = NULL;
    EXPECT_NUMBER(KESTAN_EINVALID, kestan_reader_open(&reader, paths[i], lengths[i]));
    EXPECT_NUMBER(KESTAN_EINVALID, CodeOf(reader));
    EXPECT_NUMBER(KESTAN_EINVALID, kestan_writer_open(&writer, paths[i], lengths[i], NULL));
    EXPECT_NUMBER(KESTAN_EINVALID, CodeOf(writer));
    EXPECT_NUMBER(KESTAN_EINVALID, kestan_check(&report, paths[i], lengths[i]));
    EXPECT_NUMBER(KESTAN_EINVALID, CodeOf(report));
    kestan_reader_free(reader);
    kestan_writer_free(writer);
    kestan_report_free(report);
  }
}

TEST(SeveralPathsAreAtLeastOneAndNotTooMany) {
  const char* const paths[] = {"poems"};
  const size_t lengths[] = {5};
  kestan_reader* reader = NULL;
  EXPECT_NUMBER(KESTAN_EINVALID, kestan_reader_open_many(&reader, paths, lengths, 0));
  kestan_reader_free(reader);
  EXPECT_NUMBER(KESTAN_EINVALID, kestan_reader_open_many(&reader, paths, lengths, SIZE_MAX));
  kestan_reader_free(reader);
  EXPECT_NUMBER(KESTAN_EINVALID, kestan_reader_open_many(&reader, NULL, lengths, 1));
  kestan_reader_free(reader);
  EXPECT_NUMBER(KESTAN_EINVALID, kestan_reader_open_many(&reader, paths, NULL, 1));
  EXPECT_NUMBER(KESTAN_EINVALID, CodeOf(reader));
  kestan_reader_free(reader);
}

TEST(NamesThatNoDocumentCanHaveAreRefused) {
  char longest[4097];
  memset(longest, 'n', sizeof(longest));
  kestan_writer* const writer = OpenWriter("index");
  kestan_document document = KESTAN_DOCUMENT_INIT;
  EXPECT_NUMBER(KESTAN_EINVALID, kestan_writer_add(writer, &document));
  document.name = "a\0b";
  document.name_length = 3;
  EXPECT_NUMBER(KESTAN_EINVALID, kestan_writer_add(writer, &document));
  document.name = longest;
  document.name_length = 4097;
  EXPECT_NUMBER(KESTAN_EINVALID, kestan_writer_add(writer, &document));
  document.name_length = 4096;
  EXPECT_NUMBER(KESTAN_OK, kestan_writer_add(writer, &document));
  EXPECT_NUMBER(KESTAN_EINVALID, kestan_writer_rename(writer, longest, 4096, "a\0b", 3));
  EXPECT_NUMBER(KESTAN_EINVALID, kestan_writer_rename(writer, longest, 4096, "", 0));
  EXPECT_NUMBER(KESTAN_EINVALID, kestan_writer_rename(writer, longest, 4096, longest, 4097));
  EXPECT_NUMBER(KESTAN_ENOTFOUND, kestan_writer_remove(writer, "a\0b", 3));
  EXPECT_NUMBER(KESTAN_OK, kestan_writer_commit(writer));
  kestan_writer_free(writer);
}

TEST(TextsAndQueriesMayHoldAnyBytes) {
  kestan_writer* const writer = OpenWriter("index");
  kestan_document document = KESTAN_DOCUMENT_INIT;
  document.name = "\xff\x01 name";
  document.name_length = 7;
  document.text = "one\0two caf\xe9 caf\xc3\xa9";
  document.text_length = 18;
  document.title = "t\0u";
  document.title_length = 3;
  REQUIRE_OK(kestan_writer_add(writer, &document));
  Commit(writer);
  kestan_writer_free(writer);
  kestan_reader* const reader = OpenReader("index");
  EXPECT_NUMBER(1, CountOf(reader, "one"));
  EXPECT_NUMBER(1, CountOf(reader, "two"));
  kestan_hits* hits = NULL;
  REQUIRE_OK(kestan_reader_search(&hits, reader, "one\0two", 7, NULL));
  const kestan_hit* hit = NULL;
  REQUIRE_OK(kestan_hits_next(&hit, hits));
  EXPECT_TEXT("\xff\x01 name", hit->name, hit->name_length);
  EXPECT_NUMBER(3, hit->title_length);
  EXPECT(memcmp(hit->title, "t\0u", 4) == 0);
  kestan_hits_free(hits);
  kestan_reader_free(reader);
}

TEST(OptionsOfAnotherVersionAreRefused) {
  MakePoems();
  const unsigned versions[] = {0, 2, 0xdeadbeef};
  kestan_reader* const reader = OpenReader("poems");
  kestan_writer* const writer = OpenWriter("poems");
  for (size_t i = 0; i < COUNT_OF(versions); ++i) {
    kestan_writer_options writing = QuickOptions();
    kestan_search_options searching = KESTAN_SEARCH_OPTIONS_INIT;
    kestan_document document = KESTAN_DOCUMENT_INIT;
    kestan_statistics statistics = KESTAN_STATISTICS_INIT;
    kestan_writer* other = NULL;
    kestan_hits* hits = NULL;
    uint64_t count = 0;
    writing.version = searching.version = document.version = statistics.version = versions[i];
    EXPECT_NUMBER(KESTAN_EINVALID, kestan_writer_open(&other, "other", 5, &writing));
    EXPECT(strstr(MessageOf(other), "version") != NULL);
    kestan_writer_free(other);
    EXPECT_NUMBER(KESTAN_EINVALID, kestan_reader_search(&hits, reader, "a", 1, &searching));
    EXPECT_NUMBER(KESTAN_EINVALID, kestan_reader_count(&count, reader, "a", 1, &searching));
    EXPECT_NUMBER(KESTAN_EINVALID, kestan_writer_add(writer, &document));
    EXPECT_NUMBER(KESTAN_EINVALID, kestan_reader_statistics(&statistics, reader));
    EXPECT_NUMBER(0, statistics.documents);
    EXPECT_NUMBER(KESTAN_EINVALID, kestan_writer_options_init(&writing, versions[i]));
    EXPECT_NUMBER(KESTAN_EINVALID, kestan_search_options_init(&searching, versions[i]));
    EXPECT_NUMBER(KESTAN_EINVALID, kestan_document_init(&document, versions[i]));
    EXPECT_NUMBER(KESTAN_EINVALID, kestan_statistics_init(&statistics, versions[i]));
    EXPECT_NUMBER(versions[i], writing.version);
  }
  kestan_writer_free(writer);
  kestan_reader_free(reader);
}

TEST(WriterOptionsThatMakeNoSenseAreRefused) {
  kestan_writer_options options[5];
  for (size_t i = 0; i < COUNT_OF(options); ++i) options[i] = QuickOptions();
  options[0].merge_factor = 1;
  options[1].memory_budget = 0;
  options[2].language = "klingon";
  options[2].language_length = ZERO_TERMINATED;
  options[3].language_length = 3;
  options[4].language = "de";
  options[4].language_length = SIZE_MAX - 1;
  for (size_t i = 0; i < COUNT_OF(options); ++i) {
    kestan_writer* writer = NULL;
    EXPECT_NUMBER(KESTAN_EINVALID, kestan_writer_open(&writer, "index", 5, &options[i]));
    EXPECT_NUMBER(KESTAN_EINVALID, CodeOf(writer));
    kestan_writer_free(writer);
  }
}

TEST(WriterOptionsAtTheirLimitsWork) {
  kestan_writer_options options[3];
  for (size_t i = 0; i < COUNT_OF(options); ++i) options[i] = QuickOptions();
  options[0].merge_factor = 2;
  options[0].memory_budget = 1;
  options[1].merge_factor = 4294967295u;
  options[1].memory_budget = SIZE_MAX;
  options[2].threads = 4294967295u;
  for (size_t i = 0; i < COUNT_OF(options); ++i) {
    kestan_writer* writer = NULL;
    REQUIRE_OK(kestan_writer_open(&writer, "index", 5, &options[i]));
    Add(writer, "a", NULL, "word");
    Add(writer, "b", NULL, "word");
    Commit(writer);
    kestan_writer_free(writer);
    kestan_reader* const reader = OpenReader("index");
    EXPECT_NUMBER(2, CountOf(reader, "word"));
    kestan_reader_free(reader);
  }
}

TEST(SearchOptionsThatMakeNoSenseAreRefused) {
  MakePoems();
  kestan_reader* const reader = OpenReader("poems");
  kestan_search_options options[16];
  size_t count = 0;
  const double bad[] = {-1, NAN, INFINITY};
  for (size_t i = 0; i < COUNT_OF(options); ++i) {
    options[i] = (kestan_search_options)KESTAN_SEARCH_OPTIONS_INIT;
  }
  for (size_t i = 0; i < COUNT_OF(bad); ++i) {
    options[count++].k1 = bad[i];
    options[count++].b = bad[i];
    options[count++].proximity_bonus = bad[i];
    options[count++].opening_bonus = bad[i];
  }
  options[count++].words = -1;
  options[count++].words = 3;
  options[count++].b = 1.5;
  for (size_t i = 0; i < count; ++i) {
    kestan_hits* hits = NULL;
    uint64_t matches = 0;
    EXPECT_NUMBER(KESTAN_EINVALID, kestan_reader_search(&hits, reader, "roses", 5, &options[i]));
    EXPECT(hits == NULL);
    EXPECT_NUMBER(KESTAN_EINVALID, kestan_reader_count(&matches, reader, "roses", 5, &options[i]));
  }
  kestan_reader_free(reader);
}

/* The score must stay a number, or the order of the hits would mean nothing. */
TEST(SearchOptionsThatAreHugeAreRefusedOrGiveScores) {
  MakePoems();
  kestan_reader* const reader = OpenReader("poems");
  const double values[] = {0, 1e-300, 1, 1e6, 1e300, 1.7e308};
  for (size_t i = 0; i < COUNT_OF(values) * 3; ++i) {
    kestan_search_options options = KESTAN_SEARCH_OPTIONS_INIT;
    double* const fields[] = {&options.k1, &options.proximity_bonus, &options.opening_bonus};
    *fields[i % 3] = values[i / 3];
    kestan_hits* hits = NULL;
    const int code = kestan_reader_search(&hits, reader, "roses red", 9, &options);
    EXPECT(code == (values[i / 3] > 1e6 ? KESTAN_EINVALID : KESTAN_OK));
    const kestan_hit* hit = NULL;
    while (hits != NULL && kestan_hits_next(&hit, hits) == KESTAN_OK) {
      EXPECT(isfinite(hit->score));
      EXPECT(hit->percent >= 1 && hit->percent <= 100);
    }
    kestan_hits_free(hits);
  }
  kestan_reader_free(reader);
}
