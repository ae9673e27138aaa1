// SPDX-License-Identifier: GPL-3.0-or-later
// What python.py does through Python, in C++: adds documents, and asks queries.
//
//   python_host CORPUS DOCUMENTS QUERIES INDEX THREADS
//
// Reads the first DOCUMENTS of CORPUS into memory, adds them to the new folder INDEX, with the text
// as the text and nothing else, and commits. Then asks each line of QUERIES five times, all words
// as they are written, for ten hits. Prints the seconds of adding and committing, by the clock and
// of the processor, and a line for each query: the fewest microseconds, how many documents match,
// and the names of the hits, parted by tabs.
#include <kestan/search.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <string>
#include <utility>
#include <vector>

#include "bench/peers/corpus.h"
#include "bench/peers/measure.h"

namespace {

using namespace kestan::search;
using kestan_bench::Fail;
using Clock = std::chrono::steady_clock;
using Texts = std::vector<std::pair<std::string, std::string>>;

constexpr int kTimes = 5;

void Check(const Status& status) {
  if (!status.ok()) Fail("python_host", status.ToString());
}

Texts ReadTexts(const std::string& path, std::size_t count) {
  Texts texts;
  kestan_bench::CorpusReader corpus(path);
  std::string name;
  std::string text;
  while (texts.size() < count && corpus.Next(&name, &text)) texts.emplace_back(name, text);
  return texts;
}

void Index(const Texts& texts, const std::string& folder, unsigned threads) {
  const kestan_bench::Stopwatch stopwatch;
  WriterOptions options;
  options.sync = false;
  options.threads = threads;
  auto writer = IndexWriter::Open(folder, options);
  Check(writer.status());
  for (const auto& [name, text] : texts) {
    Document document;
    document.name = name;
    document.text = text;
    Check(writer->Add(std::move(document)));
  }
  Check(writer->Commit());
  const kestan_bench::Elapsed took = stopwatch.Read();
  std::cout << took.wall_seconds << '\t' << took.cpu_seconds << '\n';
}

void Ask(const IndexReader& reader, const std::string& query) {
  SearchOptions options;
  options.words = WordsMean::kAll;
  options.limit = 10;
  options.with_titles = false;  // the names are asked for, as of the others
  double fewest = 0;
  std::size_t total = 0;
  std::string names;
  for (int i = 0; i < kTimes; ++i) {
    names.clear();
    const Clock::time_point start = Clock::now();
    const auto results = reader.Search(query, options);
    Check(results.status());
    for (const Hit& hit : results->hits) names.append("\t").append(hit.name);
    const std::chrono::duration<double, std::micro> took = Clock::now() - start;
    fewest = i == 0 ? took.count() : std::min(fewest, took.count());
    total = results->total;
  }
  std::cout << fewest << '\t' << total << names << '\n';
}

}  // namespace

int main(int count, char** arguments) {
  if (count != 6) Fail("python_host", "CORPUS DOCUMENTS QUERIES INDEX THREADS");
  const Texts texts = ReadTexts(arguments[1], std::strtoul(arguments[2], nullptr, 10));
  const auto threads = static_cast<unsigned>(std::strtoul(arguments[5], nullptr, 10));
  Index(texts, arguments[4], threads);
  const auto reader = IndexReader::Open(arguments[4]);
  Check(reader.status());
  std::ifstream queries(arguments[3]);
  for (std::string query; std::getline(queries, query);) Ask(*reader, query);
}
