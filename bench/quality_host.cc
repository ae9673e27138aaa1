// SPDX-License-Identifier: GPL-3.0-or-later
// Answers the questions of a test collection through the search library, for retrieval_quality.py.
//
//   quality_host COLLECTION INDEX [--any] [--k1 K1] [--b B] [--bonus BONUS] [--opening BONUS]
//
// COLLECTION is a folder of docs.tsv (name, text and, if there is one, title) and queries.tsv
// (number, question), lines parted by tabs. Indexes the documents in the new folder INDEX, asks
// each question as it stands, and prints a line for each: its number, the microseconds it took and
// the names of up to 1000 answers, the best first, parted by tabs. What is not said is a default of
// the library.
#include <kestan/search.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <string>
#include <vector>

#include "bench/support/collection.h"

namespace {

using namespace kestan::search;
using namespace kestan_bench;
using Clock = std::chrono::steady_clock;

constexpr std::size_t kKept = 1000;  // answers to a question

[[noreturn]] void Fail(const std::string& message) { EndWith("quality_host", message); }

void Check(const Status& status) {
  if (!status.ok()) Fail(status.ToString());
}

void Index(const std::string& collection, const std::string& index) {
  auto writer = IndexWriter::Open(index);
  Check(writer.status());
  for (Fields& fields : ReadCollection(collection + "/docs.tsv")) {
    Document document;
    document.name = std::move(fields[0]);
    document.text = std::move(fields[1]);
    if (fields.size() > 2) document.title = std::move(fields[2]);
    Check(writer->Add(std::move(document)));
  }
  Check(writer->Commit());
}

SearchOptions OptionsFrom(int count, char** arguments) {
  SearchOptions options;
  options.limit = kKept;
  for (int i = 0; i < count; ++i) {
    const std::string name = arguments[i];
    if (name == "--any") {
      options.words = WordsMean::kAny;
      continue;
    }
    double* const value = name == "--k1"        ? &options.k1
                          : name == "--b"       ? &options.b
                          : name == "--bonus"   ? &options.proximity_bonus
                          : name == "--opening" ? &options.opening_bonus
                                                : nullptr;
    if (value == nullptr || i + 1 == count) Fail("bad argument " + name);
    *value = std::strtod(arguments[++i], nullptr);
  }
  return options;
}

void Answer(const IndexReader& reader, const Fields& question, const SearchOptions& options) {
  const Clock::time_point start = Clock::now();
  const auto results = reader.Search(question[1], options);
  const std::chrono::duration<double, std::micro> took = Clock::now() - start;
  Check(results.status());
  std::cout << question[0] << "\t" << static_cast<long>(took.count());
  for (const Hit& hit : results->hits) std::cout << "\t" << hit.name;
  std::cout << "\n";
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 3)
    Fail(
        "usage: quality_host COLLECTION INDEX [--any] [--k1 K1] [--b B] [--bonus B]"
        " [--opening B]");
  const std::string collection = argv[1];
  const SearchOptions options = OptionsFrom(argc - 3, argv + 3);
  Index(collection, argv[2]);
  auto reader = IndexReader::Open(argv[2]);
  Check(reader.status());
  for (const Fields& question : ReadCollection(collection + "/queries.tsv")) {
    Answer(*reader, question, options);
  }
}
