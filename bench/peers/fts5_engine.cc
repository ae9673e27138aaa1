// SPDX-License-Identifier: GPL-3.0-or-later
// SQLite FTS5 as it comes: the text and the name are kept beside the index.
#include "bench/peers/sqlite_engine.h"

namespace kestan_bench {
namespace {

class Fts5Engine : public SqliteEngine {
 public:
  void Add(const std::string& name, const std::string& text) override {
    BeginIfNeeded();
    BindText(insert_, 1, name);
    BindText(insert_, 2, text);
    RunOnce(insert_);
  }

 protected:
  void CreateTables() override {
    Execute(
        "CREATE VIRTUAL TABLE words USING fts5(name UNINDEXED, body, "
        "tokenize = \"ascii tokenchars ''''\")");
  }

  void PrepareAdding() override { insert_ = Prepare("INSERT INTO words VALUES (?1, ?2)"); }
  void EndAdding() override { insert_.reset(); }

  const char* SelectMatches() const override {
    return "SELECT name, bm25(words) FROM words WHERE words MATCH ?1";
  }

 private:
  Statement insert_;
};

}  // namespace

std::unique_ptr<Engine> MakeEngine() { return std::make_unique<Fts5Engine>(); }

}  // namespace kestan_bench
