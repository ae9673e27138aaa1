// SPDX-License-Identifier: GPL-3.0-or-later
// What both forms of SQLite FTS5 share: a connection set up for speed, and statements.
#ifndef KESTAN_BENCH_PEERS_SQLITE_ENGINE_H_
#define KESTAN_BENCH_PEERS_SQLITE_ENGINE_H_

#include <sqlite3.h>

#include <memory>
#include <string>
#include <string_view>

#include "bench/peers/engine.h"

namespace kestan_bench {

struct FinalizeStatement {
  void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};
using Statement = std::unique_ptr<sqlite3_stmt, FinalizeStatement>;

// The table "words" holds the index. Every document has the same row number in all tables.
class SqliteEngine : public Engine {
 public:
  void Open(const std::string& folder, OpenMode mode) override;
  void Commit() override;
  void Optimise() override;
  void RunQuery(const Query& query, Listing* listing) override;
  void Close() override;
  std::string Version() const override;

 protected:
  // Makes the tables of a new index.
  virtual void CreateTables() = 0;
  // Prepares the statements for Add(), or lets go of them.
  virtual void PrepareAdding() = 0;
  virtual void EndAdding() = 0;
  // The SELECT of name and score whose one parameter is the MATCH expression.
  virtual const char* SelectMatches() const = 0;

  void Execute(const std::string& sql);
  Statement Prepare(const char* sql);
  // Borrows `text` until the statement has run.
  void BindText(const Statement& statement, int parameter, std::string_view text);
  void RunOnce(const Statement& statement);
  void BeginIfNeeded();
  sqlite3* connection() { return connection_; }

 private:
  sqlite3* connection_ = nullptr;
  bool in_transaction_ = false;
  Statement select_;
};

}  // namespace kestan_bench

#endif  // KESTAN_BENCH_PEERS_SQLITE_ENGINE_H_
