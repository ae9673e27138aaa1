#include <kestan/search.h>

#include <cstdio>

using namespace kestan::search;

int Fail(const Status& status) {
  std::fprintf(stderr, "%s\n", status.ToString().c_str());
  return 1;
}

int main() {
  auto writer = IndexWriter::Open("poems.index");
  if (!writer.ok()) return Fail(writer.status());
  const char* const poems[][2] = {{"roses.txt", "Roses are red"},
                                  {"violets.txt", "Violets are blue, roses red"}};
  for (const auto& [name, text] : poems) {
    Document document;
    document.name = name;
    document.text = text;
    if (const Status added = writer->Add(document); !added.ok()) return Fail(added);
  }
  if (const Status committed = writer->Commit(); !committed.ok()) return Fail(committed);

  auto reader = IndexReader::Open("poems.index");
  if (!reader.ok()) return Fail(reader.status());
  const auto results = reader->Search("red roses");
  if (!results.ok()) return Fail(results.status());
  for (const Hit& hit : results->hits) std::puts(hit.name.c_str());
}
