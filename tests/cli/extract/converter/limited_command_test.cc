// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/extract/converter/limited_command.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <string>
#include <thread>

#include "cli/console/interruption.h"
#include "tests/cli/command_test.h"

namespace kestan_cli {
namespace {

class LimitedCommandTest : public kestan_tests::CommandTest {
 protected:
  // Runs a shell script in place of the program.
  static CommandOutcome Shell(const std::string& script, const CommandLimits& limits = {}) {
    return RunLimited("/bin/sh", {"sh", "-c", script}, limits);
  }
};

TEST_F(LimitedCommandTest, OutputIsWhatItWrote) {
  const CommandOutcome outcome = Shell("echo one; echo error >&2; echo two");
  EXPECT_EQ(outcome.output, "one\ntwo\n");
  EXPECT_EQ(outcome.failure, "");
}

TEST_F(LimitedCommandTest, ArgumentsArriveAsTheyAre) {
  EXPECT_EQ(RunLimited("/bin/echo", {"echo", "a b", "$HOME", "'"}, {}).output, "a b $HOME '\n");
}

TEST_F(LimitedCommandTest, LongOutputArrivesWhole) {
  EXPECT_EQ(Shell("head -c 1000000 /dev/zero").output, std::string(1000000, '\0'));
}

TEST_F(LimitedCommandTest, NothingIsToBeRead) { EXPECT_EQ(Shell("cat; echo end").output, "end\n"); }

TEST_F(LimitedCommandTest, NoDescriptorIsInherited) {
  const int leaked = dup(STDERR_FILENO);
  EXPECT_EQ(Shell("for f in /proc/self/fd/*; do n=${f##*/}; [ $n -gt 2 ] && [ -e $f ] && "
                  "readlink $f | grep -v /proc; done; true")
                .output,
            "");
  close(leaked);
}

TEST_F(LimitedCommandTest, FailureIsReportedWithItsFirstLine) {
  const CommandOutcome outcome = Shell("echo partial; echo bad file >&2; echo more >&2; exit 3");
  EXPECT_EQ(outcome.failure, "ended with status 3: bad file");
  EXPECT_EQ(outcome.output, "");
}

TEST_F(LimitedCommandTest, FailureWithoutAWordIsReported) {
  EXPECT_EQ(Shell("exit 1").failure, "ended with status 1");
}

TEST_F(LimitedCommandTest, SignalIsReported) {
  EXPECT_EQ(Shell("kill -SEGV $$").failure, "was ended by signal 11");
}

TEST_F(LimitedCommandTest, BrokenPipesEndAProgramAsUsual) {
  signal(SIGPIPE, SIG_IGN);
  EXPECT_EQ(Shell("kill -PIPE $$; echo alive").failure, "was ended by signal 13");
}

TEST_F(LimitedCommandTest, MissingProgramIsReported) {
  EXPECT_EQ(RunLimited(Path("none"), {"none"}, {}).failure, "could not be started");
}

TEST_F(LimitedCommandTest, OutputUpToTheLimitIsTaken) {
  CommandLimits limits;
  limits.output_bytes = 5;
  EXPECT_EQ(Shell("printf 12345", limits).output, "12345");
  EXPECT_EQ(Shell("printf 123456", limits).failure, "wrote more than 5 bytes");
}

TEST_F(LimitedCommandTest, EndlessOutputIsCutOff) {
  CommandLimits limits;
  limits.output_bytes = 1 << 20;
  EXPECT_EQ(Shell("yes", limits).failure, "wrote more than 1048576 bytes");
}

TEST_F(LimitedCommandTest, SleeperIsEnded) {
  CommandLimits limits;
  limits.seconds = 1;
  EXPECT_EQ(Shell("sleep 100", limits).failure, "took more than 1 second");
}

TEST_F(LimitedCommandTest, SleeperWithClosedStreamsIsEnded) {
  CommandLimits limits;
  limits.seconds = 1;
  EXPECT_EQ(Shell("exec sleep 100 >&- 2>&-", limits).failure, "took more than 1 second");
}

TEST_F(LimitedCommandTest, SpinnerIsEnded) {
  CommandLimits limits;
  limits.seconds = 1;
  const std::string failure = Shell("while :; do :; done", limits).failure;
  EXPECT_EQ(failure.substr(0, 23), "took more than 1 second");
}

TEST_F(LimitedCommandTest, MemoryIsLimited) {
  CommandLimits limits;
  limits.memory_bytes = std::uint64_t{1} << 26;
  EXPECT_EQ(Shell("ulimit -v", limits).output, "65536\n");
  EXPECT_NE(Shell("head -c 200000000 /dev/zero | sort", limits).failure, "");
}

// Its parent is long gone, but it belongs to the group.
TEST_F(LimitedCommandTest, WhatAProgramLeavesBehindIsEnded) {
  const std::string file = Path("alive");
  const CommandOutcome outcome =
      Shell("(sleep 1; touch '" + file + "') >/dev/null 2>&1 & echo done");
  EXPECT_EQ(outcome.output, "done\n");
  std::this_thread::sleep_for(std::chrono::milliseconds(1500));
  EXPECT_FALSE(std::filesystem::exists(file));
}

TEST_F(LimitedCommandTest, SignalToThisProcessEndsTheProgram) {
  for (const char* script : {"sleep 100", "exec sleep 100 >&- 2>&-"}) {
    const Interruption interruption;
    std::raise(SIGTERM);
    EXPECT_EQ(Shell(script).failure, "was interrupted");
    EXPECT_THROW(Interruption::Check(), Interrupted);
  }
}

TEST_F(LimitedCommandTest, NoDescriptorsAndNoProcessesAreLeft) {
  const auto count = [] {
    std::size_t open = 0;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
      open += entry.path().empty() ? 0 : 1;
    }
    return open;
  };
  const std::size_t before = count();
  CommandLimits limits;
  limits.output_bytes = 1;
  for (const char* script : {"true", "exit 1", "yes"}) Shell(script, limits);
  EXPECT_EQ(count(), before);
  EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1);
}

}  // namespace
}  // namespace kestan_cli
