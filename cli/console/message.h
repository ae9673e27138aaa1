// What the command says when something is wrong: one line, whatever the names in it hold.
#ifndef KESTAN_CLI_CONSOLE_MESSAGE_H_
#define KESTAN_CLI_CONSOLE_MESSAGE_H_

#include <stdexcept>
#include <string>
#include <string_view>

namespace kestan_cli {

// Ends the command with `status` and one line, "kestan: WHAT", on the standard error stream.
class CommandError : public std::runtime_error {
 public:
  explicit CommandError(const std::string& what, int status = 2)
      : std::runtime_error(what), status_(status) {}

  int status() const { return status_; }

 private:
  int status_;
};

// Returns `text` with control characters and bytes that are not UTF-8 spelled out (\n, \x1b), so
// that it stays on one line and cannot steer a terminal.
std::string OneLine(std::string_view text);

// Returns the same of a text of several lines, which keeps its line feeds and tabs.
std::string Readable(std::string_view text);

// Returns `text` on one line, between single quotes.
std::string Quoted(std::string_view text);

// Returns the system's text for the error number `error`, as the second half of a sentence.
std::string ReasonOf(int error);

// Returns "1 document" or "2 documents": `count` and `noun`, with an s where it needs one.
std::string Counted(unsigned long long count, const std::string& noun);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_CONSOLE_MESSAGE_H_
