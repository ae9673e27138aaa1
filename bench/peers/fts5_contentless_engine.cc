// SPDX-License-Identifier: GPL-3.0-or-later
// SQLite FTS5 with content='': the index alone, and a table of names beside it.
#include "bench/peers/sqlite_engine.h"

namespace kestan_bench {
namespace {

class Fts5ContentlessEngine : public SqliteEngine {
 public:
  void Add(const std::string& name, const std::string& text) override {
    BeginIfNeeded();
    ++last_row_;
    sqlite3_bind_int64(insert_name_.get(), 1, last_row_);
    BindText(insert_name_, 2, name);
    RunOnce(insert_name_);
    sqlite3_bind_int64(insert_words_.get(), 1, last_row_);
    BindText(insert_words_, 2, text);
    RunOnce(insert_words_);
  }

 protected:
  void CreateTables() override {
    Execute(
        "CREATE VIRTUAL TABLE words USING fts5(body, content = '', "
        "tokenize = \"ascii tokenchars ''''\")");
    Execute("CREATE TABLE names (id INTEGER PRIMARY KEY, name TEXT NOT NULL)");
  }

  void PrepareAdding() override {
    insert_name_ = Prepare("INSERT INTO names VALUES (?1, ?2)");
    insert_words_ = Prepare("INSERT INTO words (rowid, body) VALUES (?1, ?2)");
    const Statement last = Prepare("SELECT coalesce(max(id), 0) FROM names");
    if (sqlite3_step(last.get()) == SQLITE_ROW) last_row_ = sqlite3_column_int64(last.get(), 0);
  }

  void EndAdding() override {
    insert_name_.reset();
    insert_words_.reset();
  }

  const char* SelectMatches() const override {
    return "SELECT names.name, bm25(words) FROM words JOIN names ON names.id = words.rowid "
           "WHERE words MATCH ?1";
  }

 private:
  sqlite3_int64 last_row_ = 0;
  Statement insert_name_;
  Statement insert_words_;
};

}  // namespace

std::unique_ptr<Engine> MakeEngine() { return std::make_unique<Fts5ContentlessEngine>(); }

}  // namespace kestan_bench
