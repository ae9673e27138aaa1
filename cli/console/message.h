// SPDX-License-Identifier: GPL-3.0-or-later
// Errors that end the command, and the text that messages are made of. A message stays on one line,
// whatever the names in it hold.
#ifndef KESTAN_CLI_CONSOLE_MESSAGE_H_
#define KESTAN_CLI_CONSOLE_MESSAGE_H_

#include <stdexcept>
#include <string>
#include <string_view>

#include "cli/console/exit_status.h"

namespace kestan_cli {

// Ends the command with `status` after main() has reported "kestan: WHAT".
class CommandError : public std::runtime_error {
 public:
  explicit CommandError(const std::string& what, int status = kFailed)
      : std::runtime_error(what), status_(status) {}

  int status() const { return status_; }

 private:
  int status_;
};

// Returns `text` with control characters and bytes that are not UTF-8 escaped (\n, \x1b), so that
// it stays on one line and a terminal obeys nothing in it.
std::string OneLine(std::string_view text);

// Does the same for a text of several lines: keeps line feeds and tabs.
std::string Readable(std::string_view text);

// Returns `text` on one line, in single quotes.
std::string Quoted(std::string_view text);

// Returns the system's description of the error number `error`, to end a sentence with.
std::string ReasonOf(int error);

// Returns "1 document" or "2 documents": `count` and `noun`, with an s where it needs one.
std::string Counted(unsigned long long count, const std::string& noun);

// Returns `number` with a comma before every three digits: "1,023".
std::string WithCommas(unsigned long long number);

// Returns the items one after the other with `separator` between them.
template <typename Items>
std::string Joined(const Items& items, std::string_view separator) {
  std::string text;
  for (const auto& item : items) {
    if (&item != &*items.begin()) text += separator;
    text += item;
  }
  return text;
}

}  // namespace kestan_cli

#endif  // KESTAN_CLI_CONSOLE_MESSAGE_H_
