/* SPDX-License-Identifier: GPL-3.0-or-later */
/* Searching: options, hits, notes, suggestions, snippets. */
#include <string.h>

#include "tests/c/harness.h"
#include "tests/c/poems.h"

static const char* FoundWith(kestan_reader* reader, const char* query,
                             const kestan_search_options* options) {
  kestan_hits* hits = NULL;
  REQUIRE_OK(kestan_reader_search(&hits, reader, query, ZERO_TERMINATED, options));
  const char* const names = NamesOf(hits);
  kestan_hits_free(hits);
  return names;
}

TEST(HitsComeBestFirst) {
  MakePoems();
  kestan_reader* const reader = OpenReader("poems");
  kestan_hits* const hits = Search(reader, "roses");
  const kestan_hit* first = NULL;
  const kestan_hit* second = NULL;
  const kestan_hit* third = NULL;
  REQUIRE_OK(kestan_hits_next(&first, hits));
  REQUIRE_OK(kestan_hits_next(&second, hits));
  EXPECT_NUMBER(KESTAN_ITEROVER, kestan_hits_next(&third, hits));
  EXPECT_NUMBER(KESTAN_ITEROVER, kestan_hits_next(&third, hits));
  EXPECT(third == NULL);
  EXPECT_TEXT("roses.txt", first->name, first->name_length);
  EXPECT_TEXT("Roses", first->title, first->title_length);
  EXPECT_NUMBER(100, first->percent);
  EXPECT_NUMBER(0, first->index);
  EXPECT_TEXT("violets.txt", second->name, second->name_length);
  EXPECT(first->score > second->score && second->score > 0);
  EXPECT(second->percent >= 1 && second->percent < 100);
  EXPECT_NUMBER(KESTAN_OK, kestan_hits_at(&third, hits, 1));
  EXPECT(third == second);
  EXPECT_NUMBER(KESTAN_ITEROVER, kestan_hits_at(&third, hits, 2));
  EXPECT_NUMBER(KESTAN_ITEROVER, kestan_hits_at(&third, hits, SIZE_MAX));
  kestan_hits_free(hits);
  kestan_reader_free(reader);
}

TEST(TheLimitBoundsHitsAndNotTheTotal) {
  MakeNumbers("numbers", 30);
  kestan_reader* const reader = OpenReader("numbers");
  const size_t limits[] = {1, 10, 0, 30, 31, SIZE_MAX};
  const int expected[] = {1, 10, 30, 30, 30, 30};
  for (size_t i = 0; i < COUNT_OF(limits); ++i) {
    kestan_search_options options = KESTAN_SEARCH_OPTIONS_INIT;
    options.limit = limits[i];
    kestan_hits* hits = NULL;
    size_t count = 0;
    uint64_t total = 0;
    REQUIRE_OK(kestan_reader_search(&hits, reader, "common", 6, &options));
    EXPECT_NUMBER(KESTAN_OK, kestan_hits_count(&count, hits));
    EXPECT_NUMBER(KESTAN_OK, kestan_hits_total(&total, hits));
    EXPECT_NUMBER(expected[i], count);
    EXPECT_NUMBER(30, total);
    kestan_hits_free(hits);
  }
  kestan_reader_free(reader);
}

TEST(OptionsDecideWhatWordsMean) {
  MakePoems();
  kestan_reader* const reader = OpenReader("poems");
  kestan_search_options options = KESTAN_SEARCH_OPTIONS_INIT;
  EXPECT(strcmp(FoundWith(reader, "blue roses", &options), "violets.txt ") == 0);
  options.words = KESTAN_WORDS_ANY;
  EXPECT(strstr(FoundWith(reader, "blue roses", &options), "roses.txt ") != NULL);
  options.words = KESTAN_WORDS_ALL;
  EXPECT(strcmp(FoundWith(reader, "violet", &options), "") == 0);
  options.words = KESTAN_WORDS_BEST;
  EXPECT(strcmp(FoundWith(reader, "violet", &options), "violets.txt ") == 0);
  kestan_reader_free(reader);
}

TEST(WithoutTitlesHitsHaveNone) {
  MakePoems();
  kestan_reader* const reader = OpenReader("poems");
  kestan_search_options options = KESTAN_SEARCH_OPTIONS_INIT;
  options.with_titles = 0;
  kestan_hits* hits = NULL;
  const kestan_hit* hit = NULL;
  REQUIRE_OK(kestan_reader_search(&hits, reader, "rose", 4, &options));
  REQUIRE_OK(kestan_hits_next(&hit, hits));
  EXPECT_TEXT("", hit->title, hit->title_length);
  kestan_hits_free(hits);
  kestan_reader_free(reader);
}

TEST(NotesSayHowAQueryWasRead) {
  MakePoems();
  kestan_reader* const reader = OpenReader("poems");
  kestan_hits* const hits = Search(reader, "+roses red");
  const char* note = NULL;
  size_t length = 0;
  REQUIRE_OK(kestan_hits_note(&note, &length, hits, 0));
  EXPECT_NUMBER(strlen(note), length);
  EXPECT(length > 0);
  EXPECT_NUMBER(KESTAN_ITEROVER, kestan_hits_note(&note, &length, hits, 100));
  kestan_hits_free(hits);
  kestan_reader_free(reader);
}

TEST(AStrictSearchRefusesWhatWouldBeLeftOut) {
  MakePoems();
  kestan_reader* const reader = OpenReader("poems");
  kestan_search_options options = KESTAN_SEARCH_OPTIONS_INIT;
  options.strict = 1;
  kestan_hits* hits = NULL;
  uint64_t count = 7;
  EXPECT_NUMBER(KESTAN_EQUERY, kestan_reader_search(&hits, reader, "roses AND ?!", 12, &options));
  EXPECT(hits == NULL);
  EXPECT_NUMBER(KESTAN_EQUERY, ErrorOf(reader)->code);
  EXPECT_NUMBER(10, ErrorOf(reader)->column);
  EXPECT_NUMBER(KESTAN_EQUERY, kestan_reader_count(&count, reader, "roses AND ?!", 12, &options));
  EXPECT_NUMBER(7, count);
  EXPECT_NUMBER(KESTAN_OK, kestan_reader_count(&count, reader, "roses", 5, &options));
  EXPECT_NUMBER(2, count);
  kestan_reader_free(reader);
}

TEST(AWordThatNoDocumentHasIsSuggestedInstead) {
  MakePoems();
  kestan_reader* const reader = OpenReader("poems");
  kestan_hits* const hits = Search(reader, "gardenor");
  const char* suggestion = NULL;
  size_t length = 0;
  REQUIRE_OK(kestan_hits_suggestion(&suggestion, &length, hits, 0));
  EXPECT_TEXT("gardener", suggestion, length);
  EXPECT_NUMBER(KESTAN_ITEROVER, kestan_hits_suggestion(&suggestion, &length, hits, 1));
  EXPECT_NUMBER(KESTAN_ITEROVER, kestan_hits_note(&suggestion, &length, hits, SIZE_MAX));
  kestan_hits_free(hits);
  kestan_reader_free(reader);
}

TEST(ASnippetIsMadeOfFragments) {
  MakePoems();
  kestan_reader* const reader = OpenReader("poems");
  kestan_hits* const hits = Search(reader, "roses");
  const kestan_hit* hit = NULL;
  REQUIRE_OK(kestan_hits_next(&hit, hits));
  kestan_snippet* snippet = NULL;
  REQUIRE_OK(kestan_hits_snippet(&snippet, hits, hit, "Some\nroses here", 15));
  const kestan_fragment* fragment = NULL;
  REQUIRE_OK(kestan_snippet_next(&fragment, snippet));
  EXPECT_TEXT("Some ", fragment->text, fragment->text_length);
  EXPECT_NUMBER(0, fragment->matches);
  REQUIRE_OK(kestan_snippet_next(&fragment, snippet));
  EXPECT_TEXT("roses", fragment->text, fragment->text_length);
  EXPECT_NUMBER(1, fragment->matches);
  REQUIRE_OK(kestan_snippet_next(&fragment, snippet));
  EXPECT_NUMBER(KESTAN_ITEROVER, kestan_snippet_next(&fragment, snippet));
  const char* text = NULL;
  size_t length = 0;
  EXPECT_NUMBER(KESTAN_OK, kestan_snippet_text(&text, &length, snippet));
  EXPECT_TEXT("Some roses here", text, length);
  kestan_snippet_free(snippet);
  kestan_hits_free(hits);
  kestan_reader_free(reader);
}

TEST(ATextWithoutAMatchHasAnEmptySnippet) {
  MakePoems();
  kestan_reader* const reader = OpenReader("poems");
  kestan_hits* const hits = Search(reader, "roses");
  const kestan_hit* hit = NULL;
  REQUIRE_OK(kestan_hits_at(&hit, hits, 1));
  const char* const texts[] = {"nothing", "", NULL};
  for (size_t i = 0; i < COUNT_OF(texts); ++i) {
    kestan_snippet* snippet = NULL;
    const kestan_fragment* fragment = NULL;
    const char* text = NULL;
    size_t length = 1;
    REQUIRE_OK(kestan_hits_snippet(&snippet, hits, hit, texts[i],
                                   texts[i] == NULL ? 0 : strlen(texts[i])));
    EXPECT_NUMBER(KESTAN_ITEROVER, kestan_snippet_next(&fragment, snippet));
    EXPECT_NUMBER(KESTAN_OK, kestan_snippet_text(&text, &length, snippet));
    EXPECT_TEXT("", text, length);
    kestan_snippet_free(snippet);
  }
  kestan_hits_free(hits);
  kestan_reader_free(reader);
}

TEST(ADocumentThatARefreshHasTakenAwayHasNoSnippetOfItsOwn) {
  MakePoems();
  kestan_reader* const reader = OpenReader("poems");
  kestan_hits* const hits = Search(reader, "rose");
  const kestan_hit* hit = NULL;
  REQUIRE_OK(kestan_hits_next(&hit, hits));
  kestan_writer* const writer = OpenWriter("poems");
  EXPECT_NUMBER(KESTAN_OK, kestan_writer_remove(writer, "roses.txt", 9));
  Commit(writer);
  kestan_writer_free(writer);
  EXPECT_NUMBER(KESTAN_OK, kestan_reader_refresh(NULL, reader));
  kestan_snippet* snippet = NULL;
  EXPECT_NUMBER(KESTAN_ENOTFOUND, kestan_hits_snippet(&snippet, hits, hit, NULL, 0));
  EXPECT(snippet == NULL);
  EXPECT_NUMBER(KESTAN_ENOTFOUND, CodeOf(hits));
  EXPECT_NUMBER(KESTAN_OK, kestan_hits_snippet(&snippet, hits, hit, "a rose", 6));
  kestan_snippet_free(snippet);
  kestan_hits_free(hits);
  kestan_reader_free(reader);
}

TEST(ABlankQueryFindsNothing) {
  MakePoems();
  kestan_reader* const reader = OpenReader("poems");
  EXPECT(strcmp(Found(reader, ""), "") == 0);
  EXPECT(strcmp(Found(reader, " \t\n"), "") == 0);
  kestan_hits* hits = NULL;
  REQUIRE_OK(kestan_reader_search(&hits, reader, NULL, 0, NULL));
  EXPECT(strcmp(NamesOf(hits), "") == 0);
  kestan_hits_free(hits);
  kestan_reader_free(reader);
}
