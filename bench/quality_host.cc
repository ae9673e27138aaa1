// Answers the questions of a test collection through the search library, for retrieval_quality.py.
//
//   quality_host COLLECTION INDEX [--any] [--k1 K1] [--b B] [--bonus BONUS]
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
#include <fstream>
#include <iostream>
#include <string>
#include <vector>

namespace {

using namespace kestan::search;
using Clock = std::chrono::steady_clock;
using Fields = std::vector<std::string>;

constexpr std::size_t kKept = 1000;  // answers to a question

[[noreturn]] void Fail(const std::string& message) {
  std::cerr << "quality_host: " << message << "\n";
  std::exit(1);
}

void Check(const Status& status) {
  if (!status.ok()) Fail(status.ToString());
}

Fields FieldsOf(const std::string& line) {
  Fields fields(1);
  for (const char c : line) {
    if (c == '\t') {
      fields.emplace_back();
    } else {
      fields.back() += c;
    }
  }
  return fields;
}

// Returns the lines of a file, each of at least two fields.
std::vector<Fields> ReadLines(const std::string& path) {
  std::ifstream file(path);
  std::vector<Fields> lines;
  for (std::string line; std::getline(file, line);) {
    lines.push_back(FieldsOf(line));
    if (lines.back().size() < 2) Fail(path + ": a line without a tab");
  }
  if (lines.empty()) Fail(path + ": no lines");
  return lines;
}

void Index(const std::string& collection, const std::string& index) {
  auto writer = IndexWriter::Open(index);
  Check(writer.status());
  for (Fields& fields : ReadLines(collection + "/docs.tsv")) {
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
    double* const value = name == "--k1"      ? &options.k1
                          : name == "--b"     ? &options.b
                          : name == "--bonus" ? &options.proximity_bonus
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
  if (argc < 3) Fail("usage: quality_host COLLECTION INDEX [--any] [--k1 K1] [--b B] [--bonus B]");
  const std::string collection = argv[1];
  const SearchOptions options = OptionsFrom(argc - 3, argv + 3);
  Index(collection, argv[2]);
  auto reader = IndexReader::Open(argv[2]);
  Check(reader.status());
  for (const Fields& question : ReadLines(collection + "/queries.tsv")) {
    Answer(*reader, question, options);
  }
}
