// SPDX-License-Identifier: GPL-3.0-or-later
// Measures the store: getting records from its cache and from the file, putting new records and
// putting over old ones, flushing records that were changed in place, and writing a whole file at
// once. Beside getting and putting stands the same work with bare gdbm. The keys and values are the
// same in every run.
#include <benchmark/benchmark.h>
#include <gdbm.h>
#include <kestan/index_builder.h>
#include <kestan/storage/database.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "bench/support/texts.h"
#include "bench/support/workbench.h"

namespace kestan_bench {
namespace {

constexpr unsigned kRecords = 20000;
constexpr unsigned kValueBytes = 60;

DBDatum Datum(const std::string& bytes) {
  return {bytes.data(), static_cast<std::uint32_t>(bytes.size())};
}

datum BareDatum(const std::string& bytes) {
  return {const_cast<char*>(bytes.data()), static_cast<int>(bytes.size())};
}

// The keys in an order that has nothing to do with that of the file.
std::vector<std::string> Keys() {
  std::vector<std::string> keys;
  for (unsigned rank = 1; rank <= kRecords; ++rank) keys.push_back(WordOfRank(rank * 7919));
  return keys;
}

const std::string kValue(kValueBytes, 'v');
const std::string kLongerValue(2 * std::size_t{kValueBytes}, 'w');

void PutAll(Database* store, const std::vector<std::string>& keys, const std::string& value) {
  for (const std::string& key : keys) Check(store->Put(Datum(key), Datum(value)) == 0, "Put");
}

void GetAll(Database* store, const std::vector<std::string>& keys) {
  DBDatumPtr value;
  for (const std::string& key : keys) {
    Check(store->Get(&value, Datum(key)) == 0 && value.ptr->size == kValueBytes, "Get");
  }
}

void CountRecords(benchmark::State& state) {
  state.SetItemsProcessed(state.iterations() * kRecords);
}

void GetCached(benchmark::State& state) {
  const TempDir folder;
  const auto keys = Keys();
  Database store;
  store.Open((folder / "store").c_str(), 1);
  PutAll(&store, keys, kValue);
  for (auto _ : state) GetAll(&store, keys);
  CountRecords(state);
}

void GetUncached(benchmark::State& state) {
  const TempDir folder;
  const auto keys = Keys();
  Database store;
  store.Open((folder / "store").c_str(), 1);
  PutAll(&store, keys, kValue);
  store.Close();
  store.Open((folder / "store").c_str(), 0);
  for (auto _ : state) {
    GetAll(&store, keys);
    state.PauseTiming();
    store.Flush();
    state.ResumeTiming();
  }
  CountRecords(state);
}

void BuildFile(const std::string& path, const std::vector<std::string>& keys) {
  kestan::IndexBuilder builder;
  Check(builder.Open(path.c_str(), {0, keys.size()}) == kestan::StoreError::kNone, "Open");
  for (const std::string& key : keys) builder.AddWord(key, kValue);
  Check(builder.Finish() == kestan::StoreError::kNone, "Finish");
}

// From a file that has grown (0), or that was written at once (1).
void BareGdbmFetch(benchmark::State& state) {
  const TempDir folder;
  const auto keys = Keys();
  if (state.range(0) == 0) {
    Database store;
    store.Open((folder / "store").c_str(), 1);
    PutAll(&store, keys, kValue);
  } else {
    BuildFile(folder / "store", keys);
  }
  GDBM_FILE file = gdbm_open((folder / "store").c_str(), 0, GDBM_READER, 0, nullptr);
  for (auto _ : state) {
    for (const std::string& key : keys) {
      const datum value = gdbm_fetch(file, BareDatum(key));
      Check(value.dsize == static_cast<int>(kValueBytes), "gdbm_fetch");
      std::free(value.dptr);
    }
  }
  gdbm_close(file);
  CountRecords(state);
}

void PutNew(benchmark::State& state) {
  const TempDir folder;
  const auto keys = Keys();
  for (auto _ : state) {
    state.PauseTiming();
    std::remove((folder / "store").c_str());
    Database store;
    store.Open((folder / "store").c_str(), 1);
    state.ResumeTiming();
    PutAll(&store, keys, kValue);
    state.PauseTiming();
    store.Close();
    state.ResumeTiming();
  }
  CountRecords(state);
}

void PutOver(benchmark::State& state) {
  const TempDir folder;
  const auto keys = Keys();
  Database store;
  store.Open((folder / "store").c_str(), 1);
  PutAll(&store, keys, kLongerValue);
  for (auto _ : state) PutAll(&store, keys, kValue);
  GetAll(&store, keys);
  CountRecords(state);
}

// With mapping, which is gdbm's default (0), and without (1).
void BareGdbmStore(benchmark::State& state) {
  const TempDir folder;
  const auto keys = Keys();
  for (auto _ : state) {
    state.PauseTiming();
    GDBM_FILE file =
        gdbm_open((folder / "store").c_str(), 512, GDBM_NEWDB | GDBM_FAST, 0644, nullptr);
    int mapping = state.range(0) == 0 ? 1 : 0;
    gdbm_setopt(file, GDBM_SETMMAP, &mapping, sizeof(mapping));
    state.ResumeTiming();
    for (const std::string& key : keys) {
      Check(gdbm_store(file, BareDatum(key), BareDatum(kValue), GDBM_REPLACE) == 0, "gdbm_store");
    }
    state.PauseTiming();
    gdbm_close(file);
    state.ResumeTiming();
  }
  CountRecords(state);
}

void BuildWholeFile(benchmark::State& state) {
  const TempDir folder;
  const auto keys = Keys();
  for (auto _ : state) {
    state.PauseTiming();
    std::remove((folder / "store").c_str());
    state.ResumeTiming();
    BuildFile(folder / "store", keys);
  }
  CountRecords(state);
}

// Makes every value twice as long in place, as indexing does.
void GrowAll(Database* store, const std::vector<std::string>& keys) {
  DBDatumPtr value;
  for (const std::string& key : keys) {
    store->Get(&value, Datum(key));
    char* const grown = static_cast<char*>(std::realloc(value.ptr->data, kLongerValue.size()));
    kLongerValue.copy(grown, kLongerValue.size());
    value.ptr->data = grown;
    value.ptr->size = static_cast<std::uint32_t>(kLongerValue.size());
    value.ptr->dirty = true;
  }
}

void FlushDirty(benchmark::State& state) {
  const TempDir folder;
  const auto keys = Keys();
  Database store;
  store.Open((folder / "store").c_str(), 1);
  for (auto _ : state) {
    state.PauseTiming();
    PutAll(&store, keys, kValue);
    GrowAll(&store, keys);
    state.ResumeTiming();
    Check(store.Flush() == 0, "Flush");
  }
  DBDatumPtr value;
  Check(store.Get(&value, Datum(keys[0])) == 0 && value.ptr->size == kLongerValue.size(),
        "the flushed value");
  CountRecords(state);
}

BENCHMARK(GetCached)->Unit(benchmark::kMillisecond);
BENCHMARK(GetUncached)->Unit(benchmark::kMillisecond);
BENCHMARK(BareGdbmFetch)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);
BENCHMARK(PutNew)->Unit(benchmark::kMillisecond);
BENCHMARK(PutOver)->Unit(benchmark::kMillisecond);
BENCHMARK(BareGdbmStore)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);
BENCHMARK(BuildWholeFile)->Unit(benchmark::kMillisecond);
BENCHMARK(FlushDirty)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace kestan_bench
