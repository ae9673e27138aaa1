// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/cli/export/postgres_server.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <fstream>
#include <iterator>
#include <sstream>
#include <thread>

namespace kestan_tests {
namespace {

namespace fs = std::filesystem;
using Arguments = std::vector<std::string>;

constexpr uid_t kNobody = 65534;
constexpr int kSecondsToStart = 60;

std::string BytesOf(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

// The path of a socket has at most 107 bytes, so the folder is near the root.
fs::path MakeFolder() {
  const fs::path memory = "/dev/shm";
  const bool in_memory = access(memory.c_str(), W_OK) == 0;
  std::string pattern =
      ((in_memory ? memory : fs::temp_directory_path()) / "kestan-pg-XXXXXX").string();
  EXPECT_NE(mkdtemp(pattern.data()), nullptr);
  // The server refuses to run as the superuser.
  EXPECT_TRUE(geteuid() != 0 || chown(pattern.c_str(), kNobody, kNobody) == 0);
  return pattern;
}

// Becomes the program `arguments[0]`, with an ordinary user's rights.
[[noreturn]] void Become(const Arguments& arguments, const fs::path& folder,
                         const std::string& name) {
  std::vector<char*> argv;
  for (const std::string& argument : arguments) argv.push_back(const_cast<char*>(argument.c_str()));
  argv.push_back(nullptr);
  dup2(open("/dev/null", O_RDONLY), STDIN_FILENO);
  dup2(open((folder / (name + ".out")).c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644), STDOUT_FILENO);
  dup2(open((folder / (name + ".err")).c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644), STDERR_FILENO);
  for (int other = STDERR_FILENO + 1; other < 64; ++other) close(other);
  if (geteuid() == 0 && (setgid(kNobody) != 0 || setuid(kNobody) != 0)) _exit(127);
  prctl(PR_SET_PDEATHSIG, SIGQUIT);  // no server outlives a test that crashed
  for (const char* variable : {"PGHOST", "PGPORT", "PGUSER", "PGDATABASE", "PGOPTIONS", "PGDATA"}) {
    unsetenv(variable);
  }
  if (chdir(folder.c_str()) == 0) execv(argv[0], argv.data());
  _exit(127);
}

pid_t Spawn(const Arguments& arguments, const fs::path& folder, const std::string& name) {
  const pid_t child = fork();
  if (child == 0) Become(arguments, folder, name);
  return child;
}

Ran Run(const Arguments& arguments, const fs::path& folder, const std::string& name) {
  int status = 0;
  const pid_t child = Spawn(arguments, folder, name);
  EXPECT_EQ(waitpid(child, &status, 0), child);
  return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, BytesOf(folder / (name + ".out")),
          BytesOf(folder / (name + ".err"))};
}

}  // namespace

fs::path PostgresServer::Programs() {
  std::vector<fs::path> found;
  std::error_code ignored;
  for (const auto& version : fs::directory_iterator("/usr/lib/postgresql", ignored)) {
    const fs::path programs = version.path() / "bin";
    const bool has_all = fs::exists(programs / "initdb") && fs::exists(programs / "postgres") &&
                         fs::exists(programs / "psql");
    if (has_all) found.push_back(programs);
  }
  return found.empty() ? fs::path() : *std::max_element(found.begin(), found.end());
}

PostgresServer::PostgresServer() : folder_(MakeFolder()) {
  const Ran made = Run({Programs() / "initdb", "-D", folder_ / "data", "-U", "kestan", "-A",
                        "trust", "-E", "UTF8", "--locale=C", "--no-sync", "--no-instructions"},
                       folder_, "initdb");
  EXPECT_EQ(made.status, 0) << made.err;
  if (made.status == 0) Start();
}

// No port: the server listens in the folder alone.
void PostgresServer::Start() {
  server_ = Spawn({Programs() / "postgres", "-D", folder_ / "data", "-k", folder_, "-c",
                   "listen_addresses=", "-F", "-c", "shared_buffers=16MB", "-c",
                   "max_connections=5", "-c", "autovacuum=off"},
                  folder_, "server");
  EXPECT_GT(server_, 0);
  WaitUntilReady();
}

void PostgresServer::WaitUntilReady() {
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(kSecondsToStart);
  while (Psql("SELECT 1;").status != 0) {
    const bool has_ended = waitpid(server_, nullptr, WNOHANG) == server_;
    if (has_ended || std::chrono::steady_clock::now() > end) {
      ADD_FAILURE() << "no server: " << BytesOf(folder_ / "server.err");
      if (has_ended) server_ = -1;
      return;
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
  }
}

PostgresServer::~PostgresServer() {
  if (server_ > 0) {
    kill(server_, SIGINT);  // it breaks off what goes on, and ends
    EXPECT_EQ(waitpid(server_, nullptr, 0), server_);
  }
  std::error_code ignored;
  fs::remove_all(folder_, ignored);
}

Ran PostgresServer::Psql(const std::string& script) const {
  std::ofstream(folder_ / "script.sql", std::ios::binary) << script;
  return Run({Programs() / "psql", "-h", folder_, "-U", "kestan", "-d", "postgres", "-X", "-q",
              "-t", "-A", "-F", "\t", "-f", "script.sql"},
             folder_, "psql");
}

std::vector<std::string> PostgresServer::Rows(const std::string& query) const {
  const Ran ran = Psql("\\set ON_ERROR_STOP on\n" + query + ";\n");
  EXPECT_EQ(ran.status, 0) << ran.err;
  EXPECT_EQ(ran.err, "");
  std::vector<std::string> rows;
  std::istringstream lines(ran.out);
  for (std::string line; std::getline(lines, line);) rows.push_back(line);
  return rows;
}

}  // namespace kestan_tests
