// SPDX-License-Identifier: GPL-3.0-or-later
#include "bench/peers/sqlite_engine.h"

namespace kestan_bench {
namespace {

// The MATCH expression of a query. NEAR counts the words between the two.
std::string MatchExpression(const Query& query) {
  const std::string first = '"' + query.first + '"';
  const std::string second = '"' + query.second + '"';
  switch (query.kind) {
    case QueryKind::kWord:
      return first;
    case QueryKind::kAnd:
      return first + " AND " + second;
    case QueryKind::kOr:
      return first + " OR " + second;
    case QueryKind::kAndNot:
      return first + " NOT " + second;
    default:
      return "NEAR(" + first + ' ' + second + ", " + std::to_string(NearDistance(query.kind) - 1) +
             ')';
  }
}

}  // namespace

void SqliteEngine::Open(const std::string& folder, OpenMode mode) {
  const std::string path = folder + "/index.sqlite";
  const int flags =
      mode == OpenMode::kRead ? SQLITE_OPEN_READONLY : SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE;
  if (sqlite3_open_v2(path.c_str(), &connection_, flags | SQLITE_OPEN_NOMUTEX, nullptr) !=
      SQLITE_OK) {
    Fail(path, "cannot be opened");
  }
  Execute("PRAGMA cache_size = -262144");
  Execute("PRAGMA mmap_size = 1073741824");
  if (mode == OpenMode::kRead) {
    Execute("BEGIN");
    select_ = Prepare(SelectMatches());
    return;
  }
  Execute("PRAGMA journal_mode = WAL");
  Execute("PRAGMA synchronous = OFF");
  Execute("PRAGMA locking_mode = EXCLUSIVE");
  if (mode != OpenMode::kUpdate) CreateTables();
  PrepareAdding();
}

void SqliteEngine::BeginIfNeeded() {
  if (in_transaction_) return;
  Execute("BEGIN");
  in_transaction_ = true;
}

void SqliteEngine::Commit() {
  if (in_transaction_) Execute("COMMIT");
  in_transaction_ = false;
}

void SqliteEngine::Optimise() {
  Execute("INSERT INTO words(words) VALUES ('optimize')");
  Execute("VACUUM");
}

void SqliteEngine::RunQuery(const Query& query, Listing* listing) {
  const std::string expression = MatchExpression(query);
  BindText(select_, 1, expression);
  int result = sqlite3_step(select_.get());
  for (; result == SQLITE_ROW; result = sqlite3_step(select_.get())) {
    const auto* name = reinterpret_cast<const char*>(sqlite3_column_text(select_.get(), 0));
    const auto bytes = static_cast<std::size_t>(sqlite3_column_bytes(select_.get(), 0));
    listing->Add({name, bytes}, -sqlite3_column_double(select_.get(), 1));
  }
  if (result != SQLITE_DONE) Fail(expression, sqlite3_errmsg(connection_));
  sqlite3_reset(select_.get());
}

void SqliteEngine::Close() {
  select_.reset();
  EndAdding();
  if (sqlite3_close(connection_) != SQLITE_OK) Fail("sqlite", sqlite3_errmsg(connection_));
  connection_ = nullptr;
}

std::string SqliteEngine::Version() const { return std::string("SQLite ") + sqlite3_libversion(); }

void SqliteEngine::Execute(const std::string& sql) {
  if (sqlite3_exec(connection_, sql.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK) {
    Fail(sql, sqlite3_errmsg(connection_));
  }
}

Statement SqliteEngine::Prepare(const char* sql) {
  sqlite3_stmt* statement = nullptr;
  if (sqlite3_prepare_v3(connection_, sql, -1, SQLITE_PREPARE_PERSISTENT, &statement, nullptr) !=
      SQLITE_OK) {
    Fail(sql, sqlite3_errmsg(connection_));
  }
  return Statement(statement);
}

void SqliteEngine::BindText(const Statement& statement, int parameter, std::string_view text) {
  sqlite3_bind_text(statement.get(), parameter, text.data(), static_cast<int>(text.size()),
                    nullptr);  // null: the bytes stay where they are
}

void SqliteEngine::RunOnce(const Statement& statement) {
  if (sqlite3_step(statement.get()) != SQLITE_DONE) Fail("sqlite", sqlite3_errmsg(connection_));
  sqlite3_reset(statement.get());
}

}  // namespace kestan_bench
