// Measures whether costs stay flat as the index grows: at 1,000, 4,000, 16,000 and 65,535
// documents, the time a document takes to be added and to be flushed, a match takes in each kind of
// query, and a document takes to be shrunk away. Prints a Markdown table of CPU times.
//
//   growth [WORDS]      WORDS: a corpus that bench/peers/make_corpus.py wrote; without it, the
//   texts
//                       are generated, 200 words each
#include <kestan/kestan.h>

#include <cstdio>
#include <functional>
#include <sstream>
#include <string>
#include <vector>

#include "peers/corpus.h"
#include "peers/measure.h"
#include "support/texts.h"
#include "support/workbench.h"

namespace kestan_bench {

namespace {

constexpr unsigned kSizes[] = {1000, 4000, 16000, 65535};
constexpr unsigned kWords = 200;
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

// A row of the table: one number for each size.
struct Row {
  std::string name;
  std::vector<double> values;
};

class Growth {
 public:
  explicit Growth(const std::vector<Document>& documents) : documents_(documents) {}

  void MeasureAt(unsigned size) {
    const TempDir folder;
    engine_.OpenIndex((folder / "index").c_str(), 1);
    row_ = 0;
    Record("add, us a document", 1e6 * Seconds([&] { AddFirst(size); }) / size);
    Record("flush, us a document", 1e6 * Seconds([&] { engine_.FlushIndex(); }) / size);
    MeasureQueries();
    Record("shrink after removing one in eight, us a document",
           1e6 * (Remove(size), Seconds([&] { engine_.ShrinkIndex(); })) / size);
    engine_.CloseIndex();
  }

  void Print() const {
    std::printf("| |");
    for (const unsigned size : kSizes) std::printf(" %u |", size);
    std::printf("\n|---|");
    for (std::size_t i = 0; i < std::size(kSizes); ++i) std::printf("---:|");
    for (const Row& row : rows_) {
      std::printf("\n| %s |", row.name.c_str());
      for (const double value : row.values) std::printf(" %.3g |", value);
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
    if (row_ == rows_.size()) rows_.push_back({name, {}});
    rows_[row_++].values.push_back(value);
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

  // Runs `ask(first, second)`, which returns a result id or -1, on neighbouring words of the list
  // until there was enough to time, and says how long a match takes.
  void MeasureKind(const std::string& name, const std::vector<std::string>& words,
                   const std::function<int(int, int)>& ask) {
    std::uint64_t matches = 0;
    double seconds = 0;
    for (int pass = 0; pass < kFewestPasses || seconds < kFewestSeconds; ++pass) {
      for (std::size_t i = 1; i < words.size(); ++i) {
        const Stopwatch stopwatch;
        const int first = engine_.QueryWord(words[i - 1].c_str());
        const int second = engine_.QueryWord(words[i].c_str());
        const int id = ask(first, second);
        const char* lines = engine_.QueryResults(id);
        seconds += stopwatch.Read().cpu_seconds;
        matches += CountLines(lines);
        for (const int used : {first, second, id}) engine_.FreeQueryResult(used);
      }
    }
    Check(matches > 0, "some document matches");
    Record(name + ", ns a match", 1e9 * seconds / static_cast<double>(matches));
  }

  void MeasureQueries() {
    const auto words = MiddlingWords();
    const auto near = [this](int distance) {
      return [this, distance](int first, int second) {
        return engine_.QueryAnd(first, second, distance);
      };
    };
    MeasureKind("two words, one listed", words, [](int first, int /*second*/) { return first; });
    MeasureKind("AND", words, near(0));
    MeasureKind("NEAR/1", words, near(1));
    MeasureKind("NEAR/10", words, near(10));
    MeasureKind("OR", words,
                [this](int first, int second) { return engine_.QueryOr(first, second); });
    MeasureKind("NOT", words,
                [this](int first, int /*second*/) { return engine_.QueryNegate(first); });
  }

  const std::vector<Document>& documents_;
  Kestan engine_;
  std::vector<Row> rows_;
  std::size_t row_ = 0;
};

int Run(int argc, char** argv) {
  const auto documents =
      argc > 1 ? ReadDocuments(argv[1]) : MakeDocuments(kSizes[std::size(kSizes) - 1]);
  Growth growth(documents);
  for (const unsigned size : kSizes) {
    if (documents.size() < size) Fail("growth", "the corpus has too few documents");
    growth.MeasureAt(size);
  }
  growth.Print();
  return 0;
}

}  // namespace
}  // namespace kestan_bench

int main(int argc, char** argv) { return kestan_bench::Run(argc, argv); }
