// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/extract/converter/limited_command.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstddef>
#include <cstring>
#include <thread>

#include "cli/console/interruption.h"
#include "cli/console/message.h"
#include "cli/files/descriptor.h"

namespace kestan_cli {
namespace {

using Clock = std::chrono::steady_clock;

constexpr int kCannotStart = 127;
constexpr std::chrono::microseconds kMaxPause{10000};
constexpr std::size_t kMaxErrorBytes = 4096;  // what is kept of the standard error stream
constexpr std::size_t kMaxQuotedErrorBytes = 200;
constexpr const char* kInterrupted = "was interrupted";

struct Pipe {
  Descriptor reader;
  Descriptor writer;

  bool Open() {
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) return false;
    reader = Descriptor(ends[0]);
    writer = Descriptor(ends[1]);
    return true;
  }
};

// Sets the limits of which the program gets a signal (`soft`) and at which it is killed (`hard`).
// Neither exceeds those of this process.
void Limit(decltype(RLIMIT_AS) resource, std::uint64_t soft, std::uint64_t hard) {
  struct rlimit limit {};
  if (getrlimit(resource, &limit) != 0) return;
  limit.rlim_max = static_cast<rlim_t>(std::min<std::uint64_t>(hard, limit.rlim_max));
  limit.rlim_cur = static_cast<rlim_t>(std::min<std::uint64_t>(soft, limit.rlim_max));
  setrlimit(resource, &limit);
}

// Runs in the child, which shares the memory of the parent until it becomes the program. It must
// not change what the parent holds, and only system calls are safe.
[[noreturn]] void Become(const char* path, char* const* argv, int null, int output, int errors,
                         const CommandLimits& limits) {
  setpgid(0, 0);
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  std::signal(SIGPIPE, SIG_DFL);
  std::signal(SIGXFSZ, SIG_DFL);
  Limit(RLIMIT_CPU, limits.seconds, std::uint64_t{limits.seconds} + 1);
  Limit(RLIMIT_AS, limits.memory_bytes, limits.memory_bytes);
  Limit(RLIMIT_CORE, 0, 0);
  const bool connected = dup2(null, STDIN_FILENO) >= 0 && dup2(output, STDOUT_FILENO) >= 0 &&
                         dup2(errors, STDERR_FILENO) >= 0;
  close_range(STDERR_FILENO + 1, ~0U, 0);
  if (connected) execv(path, argv);
  _exit(kCannotStart);
}

// A running program. The destructor kills it with its process group if it has not ended.
class Child {
 public:
  explicit Child(pid_t id) : id_(id) { setpgid(id_, id_); }
  ~Child() {
    if (id_ > 0) Kill();
  }
  Child(const Child&) = delete;
  Child& operator=(const Child&) = delete;

  // Kills the process group and waits for the end of the child.
  //   Returns  its wait status.
  int Kill() {
    kill(-id_, SIGKILL);
    kill(id_, SIGKILL);
    int status = 0;
    while (waitpid(id_, &status, 0) < 0 && errno == EINTR) {
    }
    id_ = -1;
    return status;
  }

  // Waits until the child ends, but not past `deadline`; then kills what is left of its group.
  //   Returns  whether it ended by itself, with its wait status in `*status`.
  bool WaitUntil(Clock::time_point deadline, int* status) {
    siginfo_t info{};
    std::chrono::microseconds pause(50);  // most have ended, or are about to
    while (true) {
      info.si_pid = 0;
      // The zombie stays, so that no other group can have its number when it is killed.
      const int failed = waitid(P_PID, static_cast<id_t>(id_), &info, WEXITED | WNOHANG | WNOWAIT);
      if (failed == 0 && info.si_pid == id_) break;
      if (Clock::now() >= deadline || Interruption::HasCome()) return false;
      std::this_thread::sleep_for(pause);
      pause = std::min(pause * 2, kMaxPause);
    }
    *status = Kill();
    return true;
  }

 private:
  pid_t id_;
};

struct Streams {
  std::string output;
  std::string errors;
};

int MillisecondsUntil(Clock::time_point deadline) {
  const auto left =
      std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now()).count();
  return static_cast<int>(std::clamp<long long>(left + 1, 0, 60000));
}

// Reads once from `from`, and closes it at its end. Keeps at most `max_bytes` and one piece.
//   Returns  false with errno set if it cannot be read.
bool ReadOnce(Descriptor& from, std::string* into, std::uint64_t max_bytes) {
  static std::array<char, std::size_t{1} << 16> piece;
  const ssize_t bytes = read(from.number(), piece.data(), piece.size());
  if (bytes < 0) return errno == EINTR;
  if (bytes == 0) {
    from.Close();
    return true;
  }
  if (into->size() <= max_bytes) into->append(piece.data(), static_cast<std::size_t>(bytes));
  return true;
}

// Reads both streams to their ends, or until a signal asks this process to end.
//   Returns  why it stopped before; an empty string if it did not.
std::string ReadStreams(Pipe& output, Pipe& errors, const CommandLimits& limits,
                        Clock::time_point deadline, Streams* streams) {
  while (output.reader.is_open() || errors.reader.is_open()) {
    std::array<pollfd, 2> waiting{
        {{output.reader.number(), POLLIN, 0},  // NOLINT(misc-include-cleaner)
         {errors.reader.number(), POLLIN, 0}}};
    if (Interruption::HasCome()) return kInterrupted;
    const int ready = poll(waiting.data(), waiting.size(), MillisecondsUntil(deadline));
    const bool is_read =
        (waiting[0].revents == 0 ||
         ReadOnce(output.reader, &streams->output, limits.output_bytes)) &&
        (waiting[1].revents == 0 || ReadOnce(errors.reader, &streams->errors, kMaxErrorBytes));
    if (!is_read) return "could not be read from: " + ReasonOf(errno);
    if (streams->output.size() > limits.output_bytes) {
      return "wrote more than " + std::to_string(limits.output_bytes) + " bytes";
    }
    if (ready <= 0 && Clock::now() >= deadline) {
      return "took more than " + Counted(limits.seconds, "second");
    }
  }
  return "";
}

// Returns the start of the first line that the program wrote to its standard error stream.
std::string Said(const std::string& errors) {
  const std::size_t start = errors.find_first_not_of(" \t\r\n");
  if (start == std::string::npos) return "";
  const std::string line = errors.substr(start, errors.find_first_of("\r\n", start) - start);
  return ": " + OneLine(line.substr(0, kMaxQuotedErrorBytes));
}

std::string FailureOf(int status, const Streams& streams, const CommandLimits& limits) {
  if (WIFSIGNALED(status)) {
    const int signal = WTERMSIG(status);
    if (signal == SIGXCPU) {
      return "took more than " + Counted(limits.seconds, "second") + " of processor time";
    }
    return "was ended by signal " + std::to_string(signal) + Said(streams.errors);
  }
  if (WEXITSTATUS(status) == 0) return "";
  if (WEXITSTATUS(status) == kCannotStart) return "could not be started" + Said(streams.errors);
  return "ended with status " + std::to_string(WEXITSTATUS(status)) + Said(streams.errors);
}

pid_t Start(const std::string& path, const std::vector<std::string>& arguments, const Pipe& output,
            const Pipe& errors, const CommandLimits& limits) {
  std::vector<char*> argv;
  argv.reserve(arguments.size() + 1);
  for (const std::string& argument : arguments) {
    argv.push_back(const_cast<char*>(argument.c_str()));
  }
  argv.push_back(nullptr);
  const Descriptor null(open("/dev/null", O_RDONLY | O_CLOEXEC));
  if (!null.is_open()) return -1;
  // Not fork(): it would copy the tables of all memory that the index takes, for every file. Nor
  // posix_spawn(), which does the same but sets no limits.
  const pid_t id = vfork();  // NOLINT(clang-analyzer-security.insecureAPI.vfork)
  if (id == 0) {
    // NOLINTNEXTLINE(clang-analyzer-unix.Vfork)
    Become(path.c_str(), argv.data(), null.number(), output.writer.number(), errors.writer.number(),
           limits);
  }
  return id;
}

}  // namespace

CommandOutcome RunLimited(const std::string& path, const std::vector<std::string>& arguments,
                          const CommandLimits& limits) {
  CommandOutcome outcome;
  Pipe output;
  Pipe errors;
  const bool connected = output.Open() && errors.Open();
  const pid_t id = connected ? Start(path, arguments, output, errors, limits) : -1;
  if (id < 0) {
    outcome.failure = "could not be started: " + ReasonOf(errno);
    return outcome;
  }
  Child child(id);
  output.writer.Close();
  errors.writer.Close();
  const auto deadline = Clock::now() + std::chrono::seconds(limits.seconds);
  Streams streams;
  outcome.failure = ReadStreams(output, errors, limits, deadline, &streams);
  if (!outcome.failure.empty()) return outcome;
  int status = 0;
  if (child.WaitUntil(deadline, &status)) {
    outcome.failure = FailureOf(status, streams, limits);
  } else {
    outcome.failure = Interruption::HasCome()
                          ? kInterrupted
                          : "took more than " + Counted(limits.seconds, "second");
  }
  if (outcome.failure.empty()) outcome.output = std::move(streams.output);
  return outcome;
}

}  // namespace kestan_cli
