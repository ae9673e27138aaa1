// SPDX-License-Identifier: GPL-3.0-or-later
// Runs one engine through one measurement and prints what it found as lines of numbers. compare.py
// calls it; each measurement is a process of its own.
//
//   index FOLDER CORPUS (words|as-is) EVERY      index; commit after EVERY documents, 0: at the end
//   grow FOLDER CORPUS (words|as-is) EVERY       the same, printing the time of each step
//   update FOLDER CORPUS (words|as-is) EVERY     add to an index that is there
//   optimise FOLDER                              what makes a finished index smaller or faster
//   query FOLDER QUERIES CORPUS ANSWERS PASSES   all queries, PASSES times, and once to keep
//   cold FOLDER KIND FIRST [SECOND]              open, one query, its listing of all that match
//   cold10 FOLDER KIND FIRST [SECOND]            the same, listing the ten best
//   version                                      what engine it is
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <map>
#include <string>
#include <unordered_map>
#include <vector>

#include "bench/peers/corpus.h"
#include "bench/peers/engine.h"
#include "bench/peers/measure.h"

namespace kestan_bench {
namespace {

void Print(const char* what, const Elapsed& elapsed) {
  std::printf("%s\t%.9f\t%.9f\n", what, elapsed.wall_seconds, elapsed.cpu_seconds);
}

void Print(const char* what, std::uint64_t number) {
  std::printf("%s\t%llu\n", what, static_cast<unsigned long long>(number));
}

// Times all but the reading of the corpus.
class Indexer {
 public:
  Indexer(Engine* engine, bool raw) : engine_(*engine), raw_(raw) {}

  void AddAll(const std::string& corpus, unsigned every) {
    CorpusReader reader(corpus);
    std::string name;
    std::string text;
    for (unsigned added = 1; reader.Next(&name, &text); ++added) {
      const Stopwatch stopwatch;
      if (raw_) engine_.Clean(&text);
      engine_.Add(name, text);
      const bool is_step = every != 0 && added % every == 0;
      if (is_step) engine_.Commit();
      const Elapsed needed = stopwatch.Read();
      elapsed = elapsed + needed;
      step = step + needed;
      if (!is_step) continue;
      if (prints_steps) Print("step", step);
      step = {};
    }
  }

  bool prints_steps = false;
  Elapsed elapsed;
  Elapsed step;  // since the last commit

 private:
  Engine& engine_;
  const bool raw_;
};

struct Indexing {
  std::string folder;
  std::string corpus;
  bool raw = false;
  unsigned every = 0;
};

void Index(Engine* engine, const std::string& task, const Indexing& indexing) {
  const auto& [folder, corpus, raw, every] = indexing;
  const Stopwatch opening;
  engine->Open(folder, task == "update" ? OpenMode::kUpdate
                       : every == 0     ? OpenMode::kCreateAtOnce
                                        : OpenMode::kCreateInSteps);
  const Elapsed opened = opening.Read();
  Indexer indexer(engine, raw);
  indexer.prints_steps = task == "grow";
  indexer.AddAll(corpus, every);
  const Stopwatch closing;
  engine->Commit();
  engine->Close();
  Print(task == "update" ? "update" : "index", opened + indexer.elapsed + closing.Read());
  Print("peak", PeakMemoryBytes());
  Print("size", FolderBytes(folder));
}

void Optimise(Engine* engine, const std::string& folder) {
  const Stopwatch stopwatch;
  engine->Open(folder, OpenMode::kUpdate);
  engine->Optimise();
  engine->Close();
  Print("optimise", stopwatch.Read());
  Print("peak", PeakMemoryBytes());
  Print("size", FolderBytes(folder));
  engine->Open(folder, OpenMode::kRead);
  Print("payload", engine->PayloadBytes());
  engine->Close();
}

std::unordered_map<std::string, std::uint32_t> NumbersOfNames(const std::string& corpus) {
  std::unordered_map<std::string, std::uint32_t> numbers;
  CorpusReader reader(corpus);
  std::string name;
  std::string text;
  while (reader.Next(&name, &text)) {
    const auto number = static_cast<std::uint32_t>(numbers.size());
    numbers.emplace(name, number);
  }
  return numbers;
}

// Writes, for each query, how many documents it lists and then their numbers in ascending order.
std::map<QueryKind, std::uint64_t> KeepAnswers(Engine* engine, const std::vector<Query>& queries,
                                               const std::string& corpus,
                                               const std::string& answers) {
  const auto numbers = NumbersOfNames(corpus);
  std::map<QueryKind, std::uint64_t> matches;
  std::ofstream out(answers, std::ios::binary);
  for (const Query& query : queries) {
    Listing listing(true);
    engine->RunQuery(query, &listing);
    std::vector<std::uint32_t> found{static_cast<std::uint32_t>(listing.names().size())};
    for (const std::string& name : listing.names()) found.push_back(numbers.at(name));
    std::sort(found.begin() + 1, found.end());
    out.write(reinterpret_cast<const char*>(found.data()),
              static_cast<std::streamsize>(found.size() * sizeof(found[0])));
    matches[query.kind] += listing.names().size();
  }
  if (!out.flush()) Fail(answers, "cannot be written");
  return matches;
}

std::uint64_t TimeKind(Engine* engine, const std::vector<Query>& queries, QueryKind kind) {
  Listing listing(false);
  const Stopwatch stopwatch;
  for (const Query& query : queries) {
    if (query.kind == kind) engine->RunQuery(query, &listing);
  }
  Print((std::string("query.") + KindName(kind)).c_str(), stopwatch.Read());
  return listing.checksum();
}

void RunQueries(Engine* engine, const std::string& folder, const std::vector<Query>& queries,
                const std::string& corpus, const std::string& answers, int passes) {
  engine->Open(folder, OpenMode::kRead);
  const auto matches = KeepAnswers(engine, queries, corpus, answers);
  for (const auto& [kind, count] : matches) {
    Print((std::string("matches.") + KindName(kind)).c_str(), count);
    std::uint64_t first_checksum = 0;
    for (int pass = 0; pass < passes; ++pass) {
      const std::uint64_t checksum = TimeKind(engine, queries, kind);
      if (pass == 0) first_checksum = checksum;
      if (checksum != first_checksum) Fail(KindName(kind), "two passes answer differently");
    }
  }
  engine->Close();
  Print("peak", PeakMemoryBytes());
}

// `limit` is how many of the best documents are listed; 0: all.
void RunCold(Engine* engine, const std::string& folder, const Query& query, std::size_t limit) {
  Listing listing(false);
  const Stopwatch stopwatch;
  engine->Open(folder, OpenMode::kRead);
  if (limit == 0) {
    engine->RunQuery(query, &listing);
  } else if (!engine->RunBest(query, limit, &listing)) {
    Fail("driver", "this engine does not list the best documents");
  }
  Print("cold", stopwatch.Read());
  engine->Close();
}

int Run(const std::vector<std::string>& arguments) {
  const auto engine = MakeEngine();
  const std::string task = arguments.empty() ? "" : arguments[0];
  const std::size_t count = arguments.size();
  if (task == "version") {
    std::printf("%s\n", engine->Version().c_str());
  } else if ((task == "index" || task == "grow" || task == "update") && count == 5) {
    Index(engine.get(), task,
          {arguments[1], arguments[2], arguments[3] == "as-is",
           static_cast<unsigned>(std::stoul(arguments[4]))});
  } else if (task == "optimise" && count == 2) {
    Optimise(engine.get(), arguments[1]);
  } else if (task == "query" && count == 6) {
    RunQueries(engine.get(), arguments[1], ReadQueries(arguments[2]), arguments[3], arguments[4],
               std::stoi(arguments[5]));
  } else if ((task == "cold" || task == "cold10") && count >= 4) {
    RunCold(engine.get(), arguments[1],
            {KindNamed(arguments[2]), arguments[3], count > 4 ? arguments[4] : ""},
            task == "cold" ? 0 : 10);
  } else {
    Fail("driver", "see the top of driver.cc for the arguments");
  }
  return 0;
}

}  // namespace
}  // namespace kestan_bench

int main(int argc, char** argv) { return kestan_bench::Run({argv + 1, argv + argc}); }
