// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/console/interruption.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <functional>
#include <initializer_list>

namespace kestan_cli {
namespace {

constexpr int kKept = 0;

// Runs `action` in a process of its own, for signals belong to the process.
//   Returns  its exit status, or minus the signal that ended it.
int EndOf(const std::function<int()>& action) {
  const pid_t child = fork();
  if (child == 0) {
    alarm(60);  // a lost signal ends the test, not the patience of whoever runs it
    _exit(action());
  }
  int status = 0;
  EXPECT_EQ(waitpid(child, &status, 0), child);
  return WIFSIGNALED(status) ? -WTERMSIG(status) : WEXITSTATUS(status);
}

TEST(InterruptionTest, EachSignalIsKeptInMind) {
  for (const int signal : {SIGHUP, SIGINT, SIGTERM}) {
    EXPECT_EQ(EndOf([signal] {
                const Interruption interruption;
                if (Interruption::HasCome()) return 1;
                std::raise(signal);
                _exit(Interruption::HasCome() ? kKept : 2);
              }),
              kKept)
        << signal;
  }
}

TEST(InterruptionTest, CheckThrowsTheSignalThatCame) {
  EXPECT_EQ(EndOf([] {
              const Interruption interruption;
              Interruption::Check();
              std::raise(SIGTERM);
              try {
                Interruption::Check();
              } catch (const Interrupted& interrupted) {
                return interrupted.signal();
              }
              return 1;
            }),
            SIGTERM);
}

TEST(InterruptionTest, FirstOfSeveralIsTheOneThatCounts) {
  EXPECT_EQ(EndOf([] {
              const Interruption outer;
              { const Interruption inner; }
              std::raise(SIGINT);
              { const Interruption inner; }
              if (!Interruption::HasCome()) return 1;
              _exit(Interruption::HasCome() ? kKept : 2);
            }),
            kKept);
  EXPECT_EQ(EndOf([] {
              {
                const Interruption outer;
                const Interruption inner;
                std::raise(SIGINT);
              }
              return 1;
            }),
            -SIGINT);
}

TEST(InterruptionTest, SecondSignalEndsTheProcessWhicheverItIs) {
  for (const int second : {SIGINT, SIGTERM}) {
    EXPECT_EQ(EndOf([second] {
                const Interruption interruption;
                std::raise(SIGINT);
                std::raise(second);
                return 1;
              }),
              -second);
  }
}

TEST(InterruptionTest, SignalsThatAreIgnoredStayIgnored) {
  EXPECT_EQ(EndOf([] {
              std::signal(SIGHUP, SIG_IGN);
              const Interruption interruption;
              std::raise(SIGHUP);
              return Interruption::HasCome() ? 1 : kKept;
            }),
            kKept);
}

TEST(InterruptionTest, AfterItsEndSignalsDoWhatTheyDidBefore) {
  EXPECT_EQ(EndOf([] {
              { const Interruption interruption; }
              std::raise(SIGINT);
              return 1;
            }),
            -SIGINT);
}

TEST(InterruptionTest, SignalThatNobodyWasToldOfEndsTheProcessAtItsEnd) {
  EXPECT_EQ(EndOf([] {
              {
                const Interruption interruption;
                std::raise(SIGTERM);
              }
              return 1;
            }),
            -SIGTERM);
}

TEST(InterruptionTest, NextOneForgetsTheSignalOfTheLast) {
  EXPECT_EQ(EndOf([] {
              try {
                const Interruption interruption;
                std::raise(SIGINT);
                Interruption::Check();
              } catch (const Interrupted&) {
              }
              const Interruption interruption;
              return Interruption::HasCome() ? 1 : kKept;
            }),
            kKept);
}

TEST(InterruptionTest, CallsThatWaitGoOnAfterASignal) {
  EXPECT_EQ(EndOf([] {
              const Interruption interruption;
              int ends[2];
              if (pipe(ends) != 0) return 1;
              const pid_t parent = getpid();
              const pid_t child = fork();
              if (child == 0) {
                usleep(50'000);
                kill(parent, SIGINT);
                usleep(50'000);
                _exit(write(ends[1], "x", 1) == 1 ? 0 : 1);
              }
              char byte = 0;
              const bool has_read = read(ends[0], &byte, 1) == 1;
              _exit(has_read && Interruption::HasCome() ? kKept : 2);
            }),
            kKept);
}

}  // namespace
}  // namespace kestan_cli
