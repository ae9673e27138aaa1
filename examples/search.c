#include <kestan/c.h>
#include <stdio.h>

static int Fail(const void* handle) { /* Prints why a call with the handle failed. */
  const kestan_error* error = NULL;
  kestan_last_error(&error, handle);
  fprintf(stderr, "%s\n", error == NULL ? "memory ran out" : error->message);
  return 1;
}

static int Add(kestan_writer* writer, const char* name, const char* title, const char* text) {
  kestan_document document = KESTAN_DOCUMENT_INIT;
  document.name = name, document.title = title, document.text = document.summary = text;
  document.name_length = document.title_length = KESTAN_ZERO_TERMINATED;
  document.text_length = document.summary_length = KESTAN_ZERO_TERMINATED;
  return kestan_writer_add(writer, &document);
}

int main(int argc, char** argv) {
  const char *line, *query = argc > 1 ? argv[1] : "+red rose";
  kestan_writer* writer;
  kestan_reader* reader;
  kestan_hits* hits;
  const kestan_hit* hit;
  size_t length;
  if (kestan_writer_open(&writer, "poems.index", KESTAN_ZERO_TERMINATED, NULL)) return Fail(writer);
  if (Add(writer, "roses.txt", "Roses", "Roses are red, and a rose is a rose")) return Fail(writer);
  if (Add(writer, "violets.txt", "Violets", "Violets are blue, roses red")) return Fail(writer);
  if (kestan_writer_commit(writer)) return Fail(writer);
  if (kestan_reader_open(&reader, "poems.index", KESTAN_ZERO_TERMINATED)) return Fail(reader);
  if (kestan_reader_search(&hits, reader, query, KESTAN_ZERO_TERMINATED, NULL)) return Fail(reader);
  for (size_t i = 0; kestan_hits_note(&line, &length, hits, i) == KESTAN_OK; ++i) puts(line);
  for (kestan_snippet* s; kestan_hits_next(&hit, hits) == KESTAN_OK; kestan_snippet_free(s)) {
    if (kestan_hits_snippet(&s, hits, hit, NULL, 0)) return Fail(hits);
    kestan_snippet_text(&line, &length, s);
    printf("%3d%%  %s (%s)  %s\n", hit->percent, hit->name, hit->title, line);
  }
  kestan_hits_free(hits), kestan_reader_free(reader), kestan_writer_free(writer);
}
