// SPDX-License-Identifier: GPL-3.0-or-later
// Measures each query operation by itself on one index of 16,000 documents of 200 words, the walks
// over the whole index beside a bare gdbm walk of the same file, and QueryAnd on two words that one
// document holds 30,000 times each, where positions ascend, and 60,000 times, where they wrap
// around. "bytes_a_match" is the memory that a held result set takes.
#include <benchmark/benchmark.h>
#include <gdbm.h>
#include <kestan/kestan.h>
#include <malloc.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "bench/support/texts.h"
#include "bench/support/workbench.h"

namespace kestan_bench {
namespace {

constexpr unsigned kDocuments = 16000;
constexpr unsigned kWords = 200;
constexpr unsigned kInOrder = 30000;  // of each of two words: the positions ascend
constexpr unsigned kWrapped = 60000;  // of each of two words: the positions start again

// One index, made when it is first needed and open for reading from then on.
class Library {
 public:
  static Library& Instance() {
    static Library library;
    return library;
  }

  Kestan& engine() { return engine_; }
  const std::string& path() const { return path_; }

 private:
  Library() {
    engine_.OpenIndex(path_.c_str(), 1);
    for (unsigned number = 0; number < kDocuments; ++number) {
      engine_.AddDocumentWords(DocumentName(number).c_str(), DocumentText(number, kWords).c_str());
    }
    AddPairs("in order", "leftinorder rightinorder ", kInOrder);
    AddPairs("wrapped", "leftwrapped rightwrapped ", kWrapped);
    engine_.CloseIndex();
    engine_.OpenIndex(path_.c_str(), 0);
  }

  void AddPairs(const char* name, const std::string& pair, unsigned times) {
    std::string text;
    for (unsigned i = 0; i < times; ++i) text += pair;
    engine_.AddDocumentWords(name, text.c_str());
  }

  const TempDir folder_;
  const std::string path_ = folder_ / "index";
  Kestan engine_;
};

Kestan& Engine() { return Library::Instance().engine(); }

// A result set, freed at the end.
class Found {
 public:
  explicit Found(int id) : id_(id) { Check(id > 0, "a registered result"); }
  ~Found() { Engine().FreeQueryResult(id_); }
  Found(const Found&) = delete;
  Found& operator=(const Found&) = delete;

  int id() const { return id_; }
  std::uint64_t Matches() const { return CountLines(Engine().QueryResults(id_)); }

 private:
  const int id_;
};

// Two words that three documents in four hold, once or twice as a rule, and one that few hold.
std::string CommonWord() { return WordOfRank(8); }
std::string OtherCommonWord() { return WordOfRank(9); }
std::string RareWord() { return WordOfRank(60000); }

// Times `query`, which returns a result id, and says how long a matching document takes.
template <typename Query>
void TimeQuery(benchmark::State& state, Query query) {
  const std::uint64_t matches = Found(query()).Matches();
  Check(matches > 0, "some document matches");
  for (auto _ : state) Found found(query());
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(matches));
  state.counters["matches"] = static_cast<double>(matches);
  const std::size_t before = mallinfo2().uordblks + mallinfo2().hblkhd;
  const Found held(query());
  const std::size_t after = mallinfo2().uordblks + mallinfo2().hblkhd;
  state.counters["bytes_a_match"] =
      static_cast<double>(after - before) / static_cast<double>(matches);
}

void QueryCommonWord(benchmark::State& state) {
  TimeQuery(state, [] { return Engine().QueryWord(CommonWord().c_str()); });
}

void QueryRareWord(benchmark::State& state) {
  TimeQuery(state, [] { return Engine().QueryWord(RareWord().c_str()); });
}

void QueryAnd(benchmark::State& state) {
  const Found first(Engine().QueryWord(CommonWord().c_str()));
  const Found second(Engine().QueryWord(OtherCommonWord().c_str()));
  const int distance = static_cast<int>(state.range(0));
  TimeQuery(state, [&] { return Engine().QueryAnd(first.id(), second.id(), distance); });
}

void QueryAndOfPairs(benchmark::State& state, const std::string& suffix) {
  const Found first(Engine().QueryWord(("left" + suffix).c_str()));
  const Found second(Engine().QueryWord(("right" + suffix).c_str()));
  const int distance = static_cast<int>(state.range(0));
  TimeQuery(state, [&] { return Engine().QueryAnd(first.id(), second.id(), distance); });
}

void QueryAndOf30000InOrder(benchmark::State& state) { QueryAndOfPairs(state, "inorder"); }
void QueryAndOf60000Wrapped(benchmark::State& state) { QueryAndOfPairs(state, "wrapped"); }

void QueryOr(benchmark::State& state) {
  const Found first(Engine().QueryWord(CommonWord().c_str()));
  const Found second(Engine().QueryWord(OtherCommonWord().c_str()));
  TimeQuery(state, [&] { return Engine().QueryOr(first.id(), second.id()); });
}

void QueryNegate(benchmark::State& state) {
  const Found word(Engine().QueryWord(RareWord().c_str()));
  TimeQuery(state, [&] { return Engine().QueryNegate(word.id()); });
}

void QueryResults(benchmark::State& state) {
  const Found word(Engine().QueryWord(CommonWord().c_str()));
  const auto matches = static_cast<std::int64_t>(word.Matches());
  for (auto _ : state) benchmark::DoNotOptimize(Engine().QueryResults(word.id()));
  state.SetItemsProcessed(state.iterations() * matches);
}

// A common word from the question to the text of the answer.
void WordToListing(benchmark::State& state) {
  const auto matches =
      static_cast<std::int64_t>(Found(Engine().QueryWord(CommonWord().c_str())).Matches());
  for (auto _ : state) {
    const Found word(Engine().QueryWord(CommonWord().c_str()));
    benchmark::DoNotOptimize(Engine().QueryResults(word.id()));
  }
  state.SetItemsProcessed(state.iterations() * matches);
}

// ---- Walks over the whole index ----

void CommonWords(benchmark::State& state) {
  Check(CountLines(Engine().CommonWords(0.1, -1)) > 0, "some word is common");
  for (auto _ : state) benchmark::DoNotOptimize(Engine().CommonWords(0.1, -1));
}

void ListDocuments(benchmark::State& state) {
  for (auto _ : state) {
    const char* names = Engine().ListDocuments();
    state.PauseTiming();
    Check(CountLines(names) == kDocuments + 2, "every document is listed");
    state.ResumeTiming();
  }
}

// Every key, and with 1 every value too.
void BareGdbmWalk(benchmark::State& state) {
  GDBM_FILE file = gdbm_open(Library::Instance().path().c_str(), 0, GDBM_READER, 0, nullptr);
  for (auto _ : state) {
    datum key = gdbm_firstkey(file);
    std::size_t keys = 0;
    while (key.dptr != nullptr) {
      if (state.range(0) == 1) std::free(gdbm_fetch(file, key).dptr);
      const datum next = gdbm_nextkey(file, key);
      std::free(key.dptr);
      key = next;
      ++keys;
    }
    Check(keys > 2 * kDocuments, "two records a document");
  }
  gdbm_close(file);
}

BENCHMARK(QueryCommonWord)->Unit(benchmark::kMicrosecond);
BENCHMARK(QueryRareWord)->Unit(benchmark::kMicrosecond);
BENCHMARK(QueryAnd)->Arg(0)->Arg(1)->Arg(10)->Unit(benchmark::kMicrosecond);
BENCHMARK(QueryAndOf30000InOrder)->Arg(0)->Arg(1)->Arg(10)->Unit(benchmark::kMicrosecond);
BENCHMARK(QueryAndOf60000Wrapped)->Arg(0)->Arg(1)->Arg(10)->Unit(benchmark::kMicrosecond);
BENCHMARK(QueryOr)->Unit(benchmark::kMicrosecond);
BENCHMARK(QueryNegate)->Unit(benchmark::kMicrosecond);
BENCHMARK(QueryResults)->Unit(benchmark::kMicrosecond);
BENCHMARK(WordToListing)->Unit(benchmark::kMicrosecond);
BENCHMARK(CommonWords)->Unit(benchmark::kMillisecond);
BENCHMARK(ListDocuments)->Unit(benchmark::kMillisecond);
BENCHMARK(BareGdbmWalk)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace kestan_bench
