// SPDX-License-Identifier: GPL-3.0-or-later
// Measures what happens to text and postings outside of queries: the three stripping functions on
// 1 MB, adding documents of lower-case and of capitalised words, the flush after them, shrinking
// after one document in eight was removed, and dropping all positions. Beside the last two stands
// the gdbm work that they cannot avoid. Texts are the same in every run.
#include <benchmark/benchmark.h>
#include <gdbm.h>
#include <kestan/kestan.h>

#include <cctype>
#include <cstring>
#include <string>
#include <vector>

#include "bench/support/texts.h"
#include "bench/support/workbench.h"
#include "tests/support/stored_records.h"

namespace kestan_bench {
namespace {

constexpr unsigned kDocuments = 8000;
constexpr unsigned kWords = 200;
constexpr unsigned kTextBytes = 1000000;

// ---- Stripping ----

// Sentences with capitals, apostrophes, numbers and marks, in lines of about 80 bytes.
std::string RawText() {
  Chance chance(1);
  std::string text;
  std::size_t line_start = 0;
  while (text.size() < kTextBytes) {
    std::string word = WordOfRank(1 + chance.Below(5000));
    if (chance.Below(8) == 0) word[0] = static_cast<char>(std::toupper(word[0]));
    if (chance.Below(50) == 0) word += "'s";
    if (chance.Below(20) == 0) word += " 1984";
    text += word + (chance.Below(10) == 0 ? ". " : " ");
    if (text.size() - line_start > 80) {
      text.back() = '\n';
      line_start = text.size();
    }
  }
  text.resize(kTextBytes);
  return text;
}

// Each pass works on a fresh copy; copying is timed too, and takes 1/20 of the fastest of the
// three.
template <typename Function>
void Strip(benchmark::State& state, Function function) {
  const std::string raw = RawText();
  std::string buffer = raw + ' ';
  const int expected = function(buffer.data(), kTextBytes);
  Check(expected > static_cast<int>(kTextBytes) / 2, "most of the text is words");
  for (auto _ : state) {
    std::memcpy(buffer.data(), raw.data(), raw.size());
    Check(function(buffer.data(), kTextBytes) == expected, "the same length every time");
  }
  state.SetBytesProcessed(state.iterations() * kTextBytes);
}

void StripNonWords(benchmark::State& state) { Strip(state, Kestan::StripNonWords); }
void StripBadLines(benchmark::State& state) { Strip(state, Kestan::StripBadLines); }

void StripWords(benchmark::State& state) {
  std::string stop_words;
  for (unsigned rank = 1; rank <= 500; ++rank) stop_words += WordOfRank(rank * 3) + ' ';
  Strip(state, [&stop_words](char* text, unsigned length) {
    const char* const no_list[] = {nullptr};
    return Kestan::StripWords(text, length, stop_words.c_str(), no_list);
  });
}

// ---- Adding ----

std::string Capitalised(std::string text) {
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (i == 0 || text[i - 1] == ' ') text[i] = static_cast<char>(std::toupper(text[i]));
  }
  return text;
}

void AddAll(Kestan* engine, bool capitalised) {
  for (unsigned number = 0; number < kDocuments; ++number) {
    const std::string text = DocumentText(number, kWords);
    engine->AddDocumentWords(DocumentName(number).c_str(),
                             capitalised ? Capitalised(text).c_str() : text.c_str());
  }
}

std::uint64_t Matches(Kestan* engine, const std::string& word) {
  const int id = engine->QueryWord(word.c_str());
  const std::uint64_t lines = CountLines(engine->QueryResults(id));
  engine->FreeQueryResult(id);
  return lines;
}

// Adds kDocuments documents to a new index and flushes them; times the one or the other. Making the
// texts is timed with the adding; TextsAlone shows how long that takes.
void AddOrFlush(benchmark::State& state, bool times_adding, bool capitalised) {
  const TempDir folder;
  for (auto _ : state) {
    state.PauseTiming();
    std::remove((folder / "index").c_str());
    Kestan engine;
    engine.OpenIndex((folder / "index").c_str(), 1);
    if (times_adding) state.ResumeTiming();
    AddAll(&engine, capitalised);
    if (times_adding) state.PauseTiming();
    if (!times_adding) state.ResumeTiming();
    engine.FlushIndex();
    if (!times_adding) state.PauseTiming();
    Check(Matches(&engine, WordOfRank(1)) > kDocuments / 2, "most documents hold the first word");
    engine.CloseIndex();
    state.ResumeTiming();
  }
  state.SetItemsProcessed(state.iterations() * kDocuments);
}

void AddDocumentWords(benchmark::State& state) { AddOrFlush(state, true, false); }
void AddCapitalisedWords(benchmark::State& state) { AddOrFlush(state, true, true); }
void FlushIndex(benchmark::State& state) { AddOrFlush(state, false, false); }

void TextsAlone(benchmark::State& state) {
  std::size_t bytes = 0;
  for (auto _ : state) {
    for (unsigned number = 0; number < kDocuments; ++number) {
      bytes += DocumentText(number, kWords).size() + DocumentName(number).size();
    }
  }
  Check(bytes > 0, "texts");
  state.SetItemsProcessed(state.iterations() * kDocuments);
}

// ---- Rewriting every posting record ----

// An index with a document in eight removed, to be copied and worked on.
void BuildIndex(const std::string& path) {
  Kestan engine;
  engine.OpenIndex(path.c_str(), 1);
  AddAll(&engine, false);
  for (unsigned number = 0; number < kDocuments; number += 8) {
    engine.RemoveDocumentWords(DocumentName(number).c_str());
  }
}

using kestan_tests::Dump;
using kestan_tests::GdbmDatum;
using kestan_tests::Records;
using kestan_tests::VisitRecords;

// The records of `after` that are new or other than in `before`, and the keys that are gone.
struct Changes {
  Records stored;
  std::vector<std::string> deleted;
};

Changes Difference(const Records& before, const Records& after) {
  Changes changes;
  for (const auto& [key, value] : after) {
    const auto old = before.find(key);
    if (old == before.end() || old->second != value) changes.stored[key] = value;
  }
  for (const auto& [key, value] : before) {
    if (after.count(key) == 0) changes.deleted.push_back(key);
  }
  return changes;
}

// The least that gdbm must do to turn one file into the other: read every record, store what
// changed, delete what goes, and reorganise (if so) and sync the file.
void ApplyBare(const std::string& path, const Changes& changes, bool reorganises) {
  GDBM_FILE file = gdbm_open(path.c_str(), 512, GDBM_WRITER | GDBM_FAST, 0644, nullptr);
  Check(file != nullptr, "gdbm_open");
  std::size_t bytes = 0;
  VisitRecords(file, [&bytes](datum /*key*/, datum value) {
    bytes += static_cast<std::size_t>(value.dsize);
  });
  Check(bytes > 0, "records");
  for (const auto& [key, value] : changes.stored) {
    Check(gdbm_store(file, GdbmDatum(key), GdbmDatum(value), GDBM_REPLACE) == 0, "gdbm_store");
  }
  for (const std::string& key : changes.deleted) gdbm_delete(file, GdbmDatum(key));
  if (reorganises) gdbm_reorganize(file);
  gdbm_sync(file);
  gdbm_close(file);
}

void Shrink(const std::string& path) {
  Kestan engine;
  Check(engine.OpenIndex(path.c_str(), 1) == 0, "OpenIndex");
  Check(engine.ShrinkIndex() == 0, "ShrinkIndex");
}

void DropPositions(const std::string& path) {
  Kestan engine;
  Check(engine.OpenIndex(path.c_str(), 1) == 0, "OpenIndex");
  Check(engine.SetOptionFlag(1) == 0, "SetOptionFlag");
}

// Times `work(path)` on fresh copies of one index.
template <typename Work>
void OnCopies(benchmark::State& state, const std::string& original, Work work) {
  const std::string copy = original + ".copy";
  for (auto _ : state) {
    state.PauseTiming();
    CopyOver(original, copy);
    state.ResumeTiming();
    work(copy);
  }
}

template <typename Work>
void TimeWork(benchmark::State& state, Work work) {
  const TempDir folder;
  BuildIndex(folder / "index");
  OnCopies(state, folder / "index", work);
  const Changes changes = Difference(Dump(folder / "index"), Dump(folder / "index.copy"));
  Check(changes.stored.size() > 10000, "most posting records changed");
}

template <typename Work>
void TimeBareTwin(benchmark::State& state, Work work, bool reorganises) {
  const TempDir folder;
  BuildIndex(folder / "index");
  CopyOver(folder / "index", folder / "done");
  work(folder / "done");
  const Records wanted = Dump(folder / "done");
  const Changes changes = Difference(Dump(folder / "index"), wanted);
  OnCopies(state, folder / "index",
           [&](const std::string& path) { ApplyBare(path, changes, reorganises); });
  Check(Dump(folder / "index.copy") == wanted, "the bare twin stores the same");
}

void ShrinkIndex(benchmark::State& state) { TimeWork(state, Shrink); }
void BareGdbmShrink(benchmark::State& state) { TimeBareTwin(state, Shrink, true); }
void SetOptionFlag(benchmark::State& state) { TimeWork(state, DropPositions); }
void BareGdbmSetOptionFlag(benchmark::State& state) { TimeBareTwin(state, DropPositions, false); }

BENCHMARK(StripNonWords)->Unit(benchmark::kMillisecond);
BENCHMARK(StripWords)->Unit(benchmark::kMillisecond);
BENCHMARK(StripBadLines)->Unit(benchmark::kMillisecond);
BENCHMARK(TextsAlone)->Unit(benchmark::kMillisecond);
BENCHMARK(AddDocumentWords)->Unit(benchmark::kMillisecond);
BENCHMARK(AddCapitalisedWords)->Unit(benchmark::kMillisecond);
BENCHMARK(FlushIndex)->Unit(benchmark::kMillisecond);
BENCHMARK(ShrinkIndex)->Unit(benchmark::kMillisecond);
BENCHMARK(BareGdbmShrink)->Unit(benchmark::kMillisecond);
BENCHMARK(SetOptionFlag)->Unit(benchmark::kMillisecond);
BENCHMARK(BareGdbmSetOptionFlag)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace kestan_bench
