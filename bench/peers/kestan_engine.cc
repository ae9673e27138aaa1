// SPDX-License-Identifier: GPL-3.0-or-later
// Kestan as a host uses it: one file, FlushIndex as commit, ShrinkIndex at the end.
#include <kestan/kestan.h>

#include <string>

#include "bench/peers/engine.h"
#include "bench/support/kestan_records.h"

namespace kestan_bench {
namespace {

class KestanEngine : public Engine {
 public:
  void Open(const std::string& folder, OpenMode mode) override {
    path_ = folder + "/index";
    if (engine_.OpenIndex(path_.c_str(), mode == OpenMode::kRead ? 0 : 1) != 0) {
      Fail(path_, "cannot be opened");
    }
  }

  void Clean(std::string* text) override {
    const auto size = static_cast<unsigned>(text->size());
    text->push_back(' ');  // for the last blank
    text->resize(static_cast<std::size_t>(Kestan::StripNonWords(text->data(), size)));
  }

  void Add(const std::string& name, const std::string& text) override {
    engine_.AddDocumentWords(name.c_str(), text.c_str());
  }

  void Commit() override { engine_.FlushIndex(); }

  void Optimise() override {
    if (engine_.ShrinkIndex() != 0) Fail(path_, "cannot be shrunk");
  }

  void RunQuery(const Query& query, Listing* listing) override {
    const int first = engine_.QueryWord(query.first.c_str());
    const int second =
        query.kind == QueryKind::kWord ? -1 : engine_.QueryWord(query.second.c_str());
    const int complement = query.kind == QueryKind::kAndNot ? engine_.QueryNegate(second) : -1;
    const int combined = Combine(query.kind, first, second, complement);
    listing->AddLines(engine_.QueryResults(combined));
    for (const int id : {first, second, complement, combined}) engine_.FreeQueryResult(id);
  }

  void Close() override { engine_.CloseIndex(); }

  std::string Version() const override { return "Kestan"; }

  std::uint64_t PayloadBytes() override {
    engine_.CloseIndex();
    return RecordBytes(path_);
  }

 private:
  int Combine(QueryKind kind, int first, int second, int complement) {
    if (kind == QueryKind::kWord) return first;
    if (kind == QueryKind::kOr) return engine_.QueryOr(first, second);
    if (kind == QueryKind::kAndNot) return engine_.QueryAnd(first, complement, 0);
    return engine_.QueryAnd(first, second, NearDistance(kind));
  }

  Kestan engine_;
  std::string path_;
};

}  // namespace

std::unique_ptr<Engine> MakeEngine() { return std::make_unique<KestanEngine>(); }

}  // namespace kestan_bench
