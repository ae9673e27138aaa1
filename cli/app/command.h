// SPDX-License-Identifier: GPL-3.0-or-later
// The declaration of a command. Its arguments are read, and its help, manual page and completion
// are generated, from the declaration alone.
#ifndef KESTAN_CLI_APP_COMMAND_H_
#define KESTAN_CLI_APP_COMMAND_H_

#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "cli/console/exit_status.h"
#include "cli/console/report.h"

namespace kestan_cli {

using Arguments = std::vector<std::string>;

// An argument without dashes.
struct Positional {
  enum class Count { kOne, kOptional, kAny, kOneOrMore };

  std::string name;  // in capitals
  std::string purpose;
  Count count = Count::kOne;
};

struct Option {
  std::string names;  // "-l,--names-only": Values uses the long name
  std::string value;  // the name of its value in help; empty for a switch, which takes none
  std::string purpose;
  Arguments choices = {};  // the only values that it takes; empty for any
};

// The arguments of one run of a command, under the names of Positional and the long names of
// Option.
class Values {
 public:
  void Add(const std::string& name, std::string value) {
    values_[name].push_back(std::move(value));
  }

  bool Has(const std::string& name) const { return values_.count(name) != 0; }

  // Returns all values of `name` in the order given.
  Arguments All(const std::string& name) const;

  // Returns the last value of `name`, or `fallback` if there is none.
  std::string Text(const std::string& name, const std::string& fallback = "") const;

  // Returns the last value of `name` as a number, or `fallback` if there is none.
  //   Throws   CommandError if it is not a number from `least` to `most`.
  long long Number(const std::string& name, long long fallback, long long least,
                   long long most) const;

 private:
  std::map<std::string, Arguments> values_;
};

struct Command {
  std::string name;  // two words for a command of a group: "title get"
  std::string purpose;
  std::vector<Positional> positionals;
  std::vector<Option> options;
  std::string more;                              // the end of its help
  Arguments examples;                            // without the prompt
  std::function<int(const Values& values)> run;  // returns the exit status
  bool takes_dashes = false;       // a word with one dash is an argument unless it is an option
  bool hidden = false;             // left out of help and manual: only the build uses it
  std::string group_purpose = {};  // of a command with two words: the purpose of its group
  Arguments aliases = {};          // other names of a command with one word
  Arguments starts = {};           // what arguments may begin with, for completion: "type:"
};

// Returns the long name of an option: "--null" of "-0,--null".
std::string LongName(const Option& option);

// Returns the purpose of the option, with the values that it takes.
std::string DescriptionOf(const Option& option);

// Returns the synopsis of the command: "kestan search [OPTIONS] INDEX QUERY...".
std::string UsageOf(const Command& command);

// Options and arguments that many commands have.
inline Option JsonOption() { return {"--json", "", "report as one line of JSON"}; }
inline Option QuietOption() { return {"-q,--quiet", "", "say nothing but errors"}; }
inline Positional IndexArgument() { return {"INDEX", "the index"}; }

// Returns the format of the report that `values` ask for.
inline ReportFormat ReportFormatOf(const Values& values) {
  return ReportFormatOf(values.Has("--json"), values.Has("--quiet"));
}

}  // namespace kestan_cli

#endif  // KESTAN_CLI_APP_COMMAND_H_
