// SPDX-License-Identifier: GPL-3.0-or-later
// libkestan-search as a host uses it: an index folder, one thread unless KESTAN_BENCH_THREADS says
// how many, Compact() at the end.
#include <kestan/search.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "bench/peers/engine.h"
#include "bench/support/kestan_records.h"

namespace kestan_bench {
namespace {

using kestan::search::Document;
using kestan::search::Hit;
using kestan::search::IndexReader;
using kestan::search::IndexWriter;
using kestan::search::Match;
using kestan::search::SearchOptions;
using kestan::search::Status;
using kestan::search::WordsMean;
using kestan::search::WriterOptions;

void Check(const Status& status) {
  if (!status.ok()) Fail("kestan-search", status.ToString());
}

class KestanSearchEngine : public Engine {
 public:
  void Open(const std::string& folder, OpenMode mode) override {
    folder_ = folder;
    if (mode == OpenMode::kRead) {
      auto reader = IndexReader::Open(folder);
      Check(reader.status());
      reader_.emplace(std::move(*reader));
      return;
    }
    const char* const threads = std::getenv("KESTAN_BENCH_THREADS");
    WriterOptions options;
    options.sync = false;  // no engine of the comparison waits for the disk
    options.threads = threads == nullptr ? 1 : static_cast<unsigned>(std::atoi(threads));
    auto writer = IndexWriter::Open(folder, options);
    Check(writer.status());
    writer_.emplace(std::move(*writer));
  }

  // Raw text is left to the library.
  void Clean(std::string* text) override { text_ = text; }

  void Add(const std::string& name, const std::string& text) override {
    Document document;
    document.name = name;
    (text_ == nullptr ? document.words : document.text) = text;
    text_ = nullptr;
    Check(writer_->Add(std::move(document)));
  }

  void Commit() override {
    if (writer_) Check(writer_->Commit());
  }

  void Optimise() override { Check(writer_->Compact()); }

  void RunQuery(const Query& query, Listing* listing) override {
    SearchOptions options;
    options.words = WordsMean::kAll;
    Check(reader_->ForEachMatch(Text(query), options, [listing](const Match& match) {
      listing->Add(match.name, match.score);
      return true;
    }));
  }

  bool RunBest(const Query& query, std::size_t limit, Listing* listing) override {
    SearchOptions options;
    options.limit = limit;
    options.words = WordsMean::kAll;
    const auto results = reader_->Search(Text(query), options);
    Check(results.status());
    for (const Hit& hit : results->hits) listing->Add(hit.name, hit.score);
    return true;
  }

  void Close() override {
    writer_.reset();
    reader_.reset();
  }

  std::string Version() const override { return "Kestan, search library"; }

  std::uint64_t PayloadBytes() override {
    std::uint64_t bytes = 0;
    for (const auto& file : std::filesystem::directory_iterator(folder_)) {
      if (file.path().extension() == ".segment") bytes += RecordBytes(file.path());
    }
    return bytes;
  }

 private:
  static std::string Text(const Query& query) {
    switch (query.kind) {
      case QueryKind::kWord:
        return query.first;
      case QueryKind::kAnd:
        return query.first + " AND " + query.second;
      case QueryKind::kOr:
        return query.first + " OR " + query.second;
      case QueryKind::kAndNot:
        return query.first + " -" + query.second;
      default:
        return query.first + " NEAR/" + std::to_string(NearDistance(query.kind)) + " " +
               query.second;
    }
  }

  std::string folder_;
  std::optional<IndexWriter> writer_;
  std::optional<IndexReader> reader_;
  const std::string* text_ = nullptr;
};

}  // namespace

std::unique_ptr<Engine> MakeEngine() { return std::make_unique<KestanSearchEngine>(); }

}  // namespace kestan_bench
