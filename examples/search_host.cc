#include <kestan/search.h>

#include <cstdio>

int main() {
  using namespace kestan::search;
  auto writer = IndexWriter::Open("poems.index");
  if (!writer.ok()) return std::fprintf(stderr, "%s\n", writer.status().ToString().c_str());
  Status status = writer->Add({"roses.txt", "Roses are red", "", "Roses"});
  if (status.ok())
    status = writer->Add({"violets.txt", "Violets are blue, roses red", "", "Violets"});
  if (status.ok()) status = writer->Commit();
  if (!status.ok()) return std::fprintf(stderr, "%s\n", status.ToString().c_str());

  auto reader = IndexReader::Open("poems.index");
  if (!reader.ok()) return std::fprintf(stderr, "%s\n", reader.status().ToString().c_str());
  const auto results = reader->Search("red roses");
  if (!results.ok()) return std::fprintf(stderr, "%s\n", results.status().ToString().c_str());
  std::printf("%llu documents\n", static_cast<unsigned long long>(results->total));
  for (const Hit& hit : results->hits) {
    std::printf("%d %s (%s)\n", hit.percent, hit.name.c_str(), hit.title.c_str());
  }
}
