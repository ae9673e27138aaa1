// Holds back what the engine and the store print on the standard error stream.
#ifndef KESTAN_CLI_INDEX_CAPTURED_STDERR_H_
#define KESTAN_CLI_INDEX_CAPTURED_STDERR_H_

#include "cli/files/descriptor.h"

namespace kestan_cli {

// Captures everything that the process writes to the standard error stream from here on. The engine
// prints a line for each record that a full disk refuses, where one line for all is enough, and
// prints keys without escaping them. Only one object may exist at a time.
class CapturedStderr {
 public:
  CapturedStderr();
  // Prints what was captured, with control characters escaped, unless it was dropped. So does the
  // end of the process.
  ~CapturedStderr();
  CapturedStderr(const CapturedStderr&) = delete;
  CapturedStderr& operator=(const CapturedStderr&) = delete;

  // Forgets what was captured.
  void Drop() { dropped_ = true; }

 private:
  static void ReleaseAtExit();
  void Release();

  static CapturedStderr* current_;
  bool dropped_ = false;
  Descriptor stream_;  // the standard error stream itself, meanwhile
  Descriptor held_;    // what was captured
};

}  // namespace kestan_cli

#endif  // KESTAN_CLI_INDEX_CAPTURED_STDERR_H_
