// SPDX-License-Identifier: GPL-3.0-or-later
// Measures whether costs stay flat from 1,000 to 4,000, 16,000 and 65,535 documents: how long a
// document takes to be added, flushed and shrunk, and a match to be found and listed by each kind
// of query. Prints a Markdown table of CPU times, medians of three runs.
//
//   growth [WORDS]
//
// WORDS is a corpus that peers/make_corpus.py wrote; without it, the texts are generated.
#include <kestan/kestan.h>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

#include "bench/peers/corpus.h"
#include "bench/peers/measure.h"
#include "bench/support/texts.h"
#include "bench/support/workbench.h"

namespace kestan_bench {

namespace {

constexpr unsigned kSizes[] = {1000, 4000, 16000, 65535};
constexpr unsigned kWords = 200;
constexpr int kRuns = 3;
constexpr int kFewestPasses = 3;
constexpr double kFewestSeconds = 0.2;

struct Document {
  std::string name;
  std::string text;
};

std::vector<Document> ReadDocuments(const char* path) {
  std::vector<Document> documents;
  CorpusReader reader(path);
  Document document;
  while (reader.Next(&document.name, &document.text)) documents.push_back(document);
  return documents;
}

std::vector<Document> MakeDocuments(unsigned count) {
  std::vector<Document> documents;
  for (unsigned number = 0; number < count; ++number) {
    documents.push_back({DocumentName(number), DocumentText(number, kWords)});
  }
  return documents;
}

// A row of the table: for each size, what each run measured.
struct Row {
  std::string name;
  std::vector<std::vector<double>> values;
};

double Median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  return values[values.size() / 2];
}

class Growth {
 public:
  explicit Growth(const std::vector<Document>& documents) : documents_(documents) {}

  void MeasureAt(std::size_t column) {
    const unsigned size = kSizes[column];
    const TempDir folder;
    engine_.OpenIndex((folder / "index").c_str(), 1);
    column_ = column;
    row_ = 0;
    Record("add, us a document", 1e6 * Seconds([&] { AddFirst(size); }) / size);
    Record("flush, us a document", 1e6 * Seconds([&] { engine_.FlushIndex(); }) / size);
    MeasureQueries();
    Remove(size);
    Record("shrink after removing one in eight, us a document",
           1e6 * Seconds([&] { engine_.ShrinkIndex(); }) / size);
    engine_.CloseIndex();
  }

  void Print() const {
    std::printf("| |");
    for (const unsigned size : kSizes) std::printf(" %u |", size);
    std::printf("\n|---|");
    for (std::size_t i = 0; i < std::size(kSizes); ++i) std::printf("---:|");
    for (const Row& row : rows_) {
      std::printf("\n| %s |", row.name.c_str());
      for (const auto& values : row.values) std::printf(" %.3g |", Median(values));
    }
    std::printf("\n");
  }

 private:
  static double Seconds(const std::function<void()>& work) {
    const Stopwatch stopwatch;
    work();
    return stopwatch.Read().cpu_seconds;
  }

  void Record(const std::string& name, double value) {
    if (row_ == rows_.size()) rows_.push_back({name, {std::size(kSizes), std::vector<double>{}}});
    rows_[row_++].values[column_].push_back(value);
  }

  void AddFirst(unsigned size) {
    for (unsigned i = 0; i < size; ++i) {
      engine_.AddDocumentWords(documents_[i].name.c_str(), documents_[i].text.c_str());
    }
  }

  void Remove(unsigned size) {
    for (unsigned i = 0; i < size; i += 8) {
      Check(engine_.RemoveDocumentWords(documents_[i].name.c_str()) == 0, "the document was there");
    }
  }

  // The words in a tenth to a half of the documents: at every size about the same words.
  std::vector<std::string> MiddlingWords() {
    std::istringstream lines(engine_.CommonWords(0.1, 0.5));
    std::vector<std::string> words;
    for (std::string word; std::getline(lines, word);) words.push_back(word);
    std::sort(words.begin(), words.end());
    Check(words.size() >= 2, "some words are common");
    return words;
  }

  using Ask = std::function<int(int first, int second)>;

  // Combines neighbouring words of the list with `ask`, from looking them up to listing the answer,
  // until there was enough to time, and says how long a match takes.
  void MeasurePairs(const std::string& name, const std::vector<std::string>& words,
                    const Ask& ask) {
    MeasureKind(name, words, [&](std::size_t i, std::vector<int>* ids) {
      ids->push_back(engine_.QueryWord(words[i - 1].c_str()));
      ids->push_back(engine_.QueryWord(words[i].c_str()));
      ids->push_back(ask((*ids)[0], (*ids)[1]));
    });
  }

  void MeasureKind(const std::string& name, const std::vector<std::string>& words,
                   const std::function<void(std::size_t, std::vector<int>*)>& ask) {
    std::uint64_t matches = 0;
    double seconds = 0;
    for (int pass = 0; pass < kFewestPasses || seconds < kFewestSeconds; ++pass) {
      for (std::size_t i = 1; i < words.size(); ++i) {
        std::vector<int> ids;
        const Stopwatch stopwatch;
        ask(i, &ids);
        const char* lines = engine_.QueryResults(ids.back());
        seconds += stopwatch.Read().cpu_seconds;
        matches += CountLines(lines);
        for (const int id : ids) engine_.FreeQueryResult(id);
      }
    }
    Check(matches > 0, "some document matches");
    Record(name + ", ns a match", 1e9 * seconds / static_cast<double>(matches));
  }

  void MeasureQueries() {
    const auto words = MiddlingWords();
    MeasureKind("word", words, [&](std::size_t i, std::vector<int>* ids) {
      ids->push_back(engine_.QueryWord(words[i].c_str()));
    });
    MeasureKind("NOT", words, [&](std::size_t i, std::vector<int>* ids) {
      ids->push_back(engine_.QueryWord(words[i].c_str()));
      ids->push_back(engine_.QueryNegate(ids->back()));
    });
    for (const int distance : {0, 1, 10}) {
      const auto near = distance == 0 ? "AND" : "NEAR/" + std::to_string(distance);
      MeasurePairs(near, words, [&](int first, int second) {
        return engine_.QueryAnd(first, second, distance);
      });
    }
    MeasurePairs("OR", words,
                 [&](int first, int second) { return engine_.QueryOr(first, second); });
  }

  const std::vector<Document>& documents_;
  Kestan engine_;
  std::vector<Row> rows_;
  std::size_t column_ = 0;
  std::size_t row_ = 0;
};

int Run(int argc, char** argv) {
  const auto documents =
      argc > 1 ? ReadDocuments(argv[1]) : MakeDocuments(kSizes[std::size(kSizes) - 1]);
  Growth growth(documents);
  Check(documents.size() >= kSizes[std::size(kSizes) - 1], "a corpus of enough documents");
  for (int run = 0; run < kRuns; ++run) {
    for (std::size_t column = 0; column < std::size(kSizes); ++column) growth.MeasureAt(column);
  }
  growth.Print();
  return 0;
}

}  // namespace
}  // namespace kestan_bench

int main(int argc, char** argv) { return kestan_bench::Run(argc, argv); }
