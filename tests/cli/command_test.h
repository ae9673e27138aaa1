// SPDX-License-Identifier: GPL-3.0-or-later
// Running the command as a user does, and looking at everything that comes back.
#ifndef KESTAN_TESTS_CLI_COMMAND_TEST_H_
#define KESTAN_TESTS_CLI_COMMAND_TEST_H_

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <string>
#include <vector>

#include "tests/support/files.h"
#include "tests/support/index_test.h"

namespace kestan_tests {

struct Outcome {
  int status = -1;  // the exit status; -1 if a signal ended the command
  std::string out;
  std::string err;
};

inline bool operator==(const Outcome& left, const Outcome& right) {
  return left.status == right.status && left.out == right.out && left.err == right.err;
}

inline std::ostream& operator<<(std::ostream& stream, const Outcome& outcome) {
  return stream << "status " << outcome.status << "\nout: " << outcome.out
                << "\nerr: " << outcome.err;
}

// What a command that succeeds, or that fails, is expected to leave.
inline Outcome Success(const std::string& out) { return {0, out, ""}; }
inline Outcome Failure(const std::string& what) { return {2, "", "kestan: " + what + "\n"}; }

inline std::string BytesOfFile(const std::string& path) { return ReadFile(path); }

// Runs in the child, between its start and the command. Gives up a superuser's right to pass over
// permissions; anyone else has none to give up.
inline void GiveUpPrivileges() {
  if (geteuid() != 0) return;
  if (setgid(65534) != 0 || setuid(65534) != 0) _exit(127);
}

// Leaves the child's files room for `bytes` each. Where a limit ends a process, the command must
// see to it that it does not.
inline auto FileSizeLimit(rlim_t bytes) {
  return [bytes] {
    const rlimit limit{bytes, bytes};
    if (setrlimit(RLIMIT_FSIZE, &limit) != 0) _exit(127);
  };
}

// Gives each test a folder of its own, in which the command runs, so that names are short.
class CommandTest : public testing::Test {
 protected:
  using InChild = std::function<void()>;

  // Runs another copy of the command from now on.
  void UseCommand(const std::string& path) { command_ = path; }

  // Runs `kestan` with `arguments`; `prepare` runs in the child before.
  Outcome Run(
      const std::vector<std::string>& arguments, const InChild& prepare = [] {}) {
    const TempDir streams;
    const pid_t child = Start(arguments, streams, prepare);
    int status = 0;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, BytesOfFile(streams / "out"),
            BytesOfFile(streams / "err")};
  }

  // Starts `kestan` with `arguments`, and its output into the files `out` and `err` of `streams`.
  // Returns the child, for which the caller waits.
  pid_t Start(
      const std::vector<std::string>& arguments, const TempDir& streams,
      const InChild& prepare = [] {}) {
    const pid_t child = fork();
    if (child == 0) Become(arguments, streams / "out", streams / "err", prepare);
    return child;
  }

  std::string Path(const std::string& name) const { return folder_ / name; }

  // Writes a file, and the folders that its name needs.
  void Write(const std::string& name, const std::string& text) {
    std::filesystem::create_directories(std::filesystem::path(Path(name)).parent_path());
    std::ofstream file(Path(name), std::ios::binary);
    file << text;
    ASSERT_TRUE(file.good()) << name;
  }

  // Counts the files whose names begin with `start`.
  int CountFiles(const std::string& start) const {
    int count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(Path(""))) {
      if (entry.path().filename().string().rfind(start, 0) == 0) ++count;
    }
    return count;
  }

  // Writes a text and adds it to the index `my.index`.
  void Add(const std::string& name, const std::string& text) {
    Write(name, text);
    ASSERT_EQ(Run({"index", "my.index", name}).status, 0);
  }

  std::string IndexBytes() const { return BytesOfFile(Path("my.index")); }

  // Lets other users look into the folder, for tests that give up privileges.
  void OpenFolderToAll(mode_t mode) { ASSERT_EQ(chmod(Path("").c_str(), mode), 0); }

 private:
  [[noreturn]] void Become(const std::vector<std::string>& arguments, const std::string& out,
                           const std::string& err, const InChild& prepare) {
    // Opened before it gives up privileges: the other user may have no access to the build folder.
    const int command = open(command_.c_str(), O_RDONLY | O_CLOEXEC);
    std::vector<char*> argv{const_cast<char*>("kestan")};
    for (const std::string& argument : arguments)
      argv.push_back(const_cast<char*>(argument.c_str()));
    argv.push_back(nullptr);
    dup2(open(out.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600), STDOUT_FILENO);
    dup2(open(err.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600), STDERR_FILENO);
    if (chdir(Path("").c_str()) != 0) _exit(127);
    prepare();
    fexecve(command, argv.data(), environ);
    _exit(127);
  }

  TempDir folder_;
  std::string command_ = KESTAN_COMMAND;
};

}  // namespace kestan_tests

#endif  // KESTAN_TESTS_CLI_COMMAND_TEST_H_
