// SPDX-License-Identifier: GPL-3.0-or-later
// Signals that ask the process to end.
#ifndef KESTAN_CLI_CONSOLE_INTERRUPTION_H_
#define KESTAN_CLI_CONSOLE_INTERRUPTION_H_

#include <csignal>
#include <exception>

namespace kestan_cli {

// A signal asked the process to end. main() ends it by this signal, after everything that was begun
// is cleaned up.
class Interrupted : public std::exception {
 public:
  explicit Interrupted(int signal) : signal_(signal) {}

  int signal() const { return signal_; }

 private:
  int signal_;
};

// While one exists, SIGHUP, SIGINT and SIGTERM are kept in mind instead of ending the process, so
// that what was begun can be cleaned up. A second one ends the process at once, and so does the end
// of the object if nobody was told of the signal. Signals that the process ignores stay ignored.
// Of several at a time, the first to begin is the last to end, and the others do nothing.
class Interruption {
 public:
  Interruption();
  ~Interruption();
  Interruption(const Interruption&) = delete;
  Interruption& operator=(const Interruption&) = delete;

  // Returns whether a signal has come.
  static bool HasCome();

  // Throws Interrupted if a signal has come.
  static void Check();
};

}  // namespace kestan_cli

#endif  // KESTAN_CLI_CONSOLE_INTERRUPTION_H_
