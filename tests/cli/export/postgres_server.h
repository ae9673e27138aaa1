// SPDX-License-Identifier: GPL-3.0-or-later
// A PostgreSQL server for one test: in a folder of its own, reached through a socket there, gone
// with the object.
#ifndef KESTAN_TESTS_CLI_EXPORT_POSTGRES_SERVER_H_
#define KESTAN_TESTS_CLI_EXPORT_POSTGRES_SERVER_H_

#include <sys/types.h>

#include <filesystem>
#include <string>
#include <vector>

namespace kestan_tests {

// What a program printed, and how it ended.
struct Ran {
  int status = -1;
  std::string out;
  std::string err;
};

class PostgresServer {
 public:
  // Returns the folder of the server's programs, empty if it is not installed.
  static std::filesystem::path Programs();

  // Makes a folder, a database and a server. A failure of these is a failure of the test.
  PostgresServer();

  // Stops the server and removes the folder.
  ~PostgresServer();

  PostgresServer(const PostgresServer&) = delete;
  PostgresServer& operator=(const PostgresServer&) = delete;

  bool IsRunning() const { return server_ > 0; }

  // Runs psql on `script`. Its output has a line for each row and tabs between columns.
  Ran Psql(const std::string& script) const;

  // Returns the rows that `query` answers with, each as a text. A failure is one of the test.
  std::vector<std::string> Rows(const std::string& query) const;

 private:
  void Start();
  void WaitUntilReady();

  const std::filesystem::path folder_;
  pid_t server_ = -1;
};

}  // namespace kestan_tests

#endif  // KESTAN_TESTS_CLI_EXPORT_POSTGRES_SERVER_H_
