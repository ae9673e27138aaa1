/* SPDX-License-Identifier: GPL-3.0-or-later */
#include "tests/c/poems.h"

#include <stdio.h>
#include <string.h>

#include "tests/c/harness.h"

kestan_writer_options QuickOptions(void) {
  kestan_writer_options options = KESTAN_WRITER_OPTIONS_INIT;
  options.sync = 0;
  options.threads = 1;
  return options;
}

kestan_writer* OpenWriter(const char* path) {
  const kestan_writer_options options = QuickOptions();
  kestan_writer* writer = NULL;
  REQUIRE_OK(kestan_writer_open(&writer, path, ZERO_TERMINATED, &options));
  return writer;
}

kestan_reader* OpenReader(const char* path) {
  kestan_reader* reader = NULL;
  REQUIRE_OK(kestan_reader_open(&reader, path, ZERO_TERMINATED));
  return reader;
}

void Add(kestan_writer* writer, const char* name, const char* title, const char* text) {
  kestan_document document = KESTAN_DOCUMENT_INIT;
  document.name = name;
  document.name_length = ZERO_TERMINATED;
  document.title = title;
  document.title_length = title == NULL ? 0 : ZERO_TERMINATED;
  document.text = text;
  document.text_length = ZERO_TERMINATED;
  REQUIRE_OK(kestan_writer_add(writer, &document));
}

void Commit(kestan_writer* writer) { REQUIRE_OK(kestan_writer_commit(writer)); }

void MakePoems(void) {
  kestan_writer* const writer = OpenWriter("poems");
  kestan_document roses = KESTAN_DOCUMENT_INIT;
  roses.name = "roses.txt";
  roses.name_length = 9;
  roses.title = "Roses";
  roses.title_length = 5;
  roses.text = "Roses are red, and a rose is a rose";
  roses.text_length = ZERO_TERMINATED;
  roses.summary = "Of roses and of other red flowers";
  roses.summary_length = ZERO_TERMINATED;
  roses.data = "\1\0\2";
  roses.data_length = 3;
  REQUIRE_OK(kestan_writer_add(writer, &roses));
  Add(writer, "violets.txt", "Violets", "Violets are blue, roses red");
  Add(writer, "dead.txt", NULL, "A dead end, said the gardener");
  Commit(writer);
  kestan_writer_free(writer);
}

void MakeNumbers(const char* path, int count) {
  kestan_writer* const writer = OpenWriter(path);
  for (int i = 0; i < count; ++i) {
    char name[32];
    char text[64];
    snprintf(name, sizeof(name), "d%d.txt", i);
    snprintf(text, sizeof(text), "common %s number%d", i % 2 == 0 ? "even" : "odd", i);
    Add(writer, name, NULL, text);
  }
  Commit(writer);
  kestan_writer_free(writer);
}

unsigned long long CountOf(kestan_reader* reader, const char* query) {
  uint64_t count = 0;
  REQUIRE_OK(kestan_reader_count(&count, reader, query, ZERO_TERMINATED, NULL));
  return count;
}

kestan_hits* Search(kestan_reader* reader, const char* query) {
  kestan_hits* hits = NULL;
  REQUIRE_OK(kestan_reader_search(&hits, reader, query, ZERO_TERMINATED, NULL));
  return hits;
}

const char* NamesOf(kestan_hits* hits) {
  static char names[4096];
  size_t count = 0;
  names[0] = '\0';
  REQUIRE_OK(kestan_hits_count(&count, hits));
  for (size_t i = 0; i < count; ++i) {
    const kestan_hit* hit = NULL;
    REQUIRE_OK(kestan_hits_at(&hit, hits, i));
    REQUIRE(strlen(names) + hit->name_length + 2 < sizeof(names));
    strcat(strcat(names, hit->name), " ");
  }
  return names;
}

const char* Found(kestan_reader* reader, const char* query) {
  kestan_hits* const hits = Search(reader, query);
  const char* const names = NamesOf(hits);
  kestan_hits_free(hits);
  return names;
}

const kestan_error* ErrorOf(const void* handle) {
  static const kestan_error none = {KESTAN_OK, 0, -1, "", 0, "", 0};
  const kestan_error* error = NULL;
  REQUIRE_OK(kestan_last_error(&error, handle));
  return error == NULL ? &none : error;
}

const char* MessageOf(const void* handle) { return ErrorOf(handle)->message; }

int CodeOf(const void* handle) { return ErrorOf(handle)->code; }
