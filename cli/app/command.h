// What a command of `kestan` is. Its declaration is the one source of how its arguments are read,
// of its help, its manual page and its completion.
#ifndef KESTAN_CLI_APP_COMMAND_H_
#define KESTAN_CLI_APP_COMMAND_H_

#include <kestan/kestan.h>

#include <map>
#include <string>
#include <vector>

namespace kestan_cli {

// Exit statuses.
constexpr int kDone = 0;
constexpr int kNoHits = 1;  // of a search; also where `check` finds faults
constexpr int kFailed = 2;
constexpr int kBusy = 75;  // somebody else is changing the index: try again later

using Arguments = std::vector<std::string>;

// An argument without dashes.
struct Positional {
  enum class Count { kOne, kOptional, kAny, kOneOrMore };

  std::string name;  // in capitals
  std::string purpose;
  Count count = Count::kOne;
};

struct Option {
  std::string names;  // "-l,--names-only": the long one names it in Values
  std::string value;  // what its value is called; empty for a switch, which takes none
  std::string purpose;
  std::vector<std::string> choices = {};  // the only values that it takes, if any
};

// The arguments of one run of a command, by the names of Positional and the long names of Option.
class Values {
 public:
  void Add(const std::string& name, std::string value) {
    values_[name].push_back(std::move(value));
  }

  bool Has(const std::string& name) const { return values_.count(name) != 0; }

  // Returns all values of `name` in the order given, or the last, or `fallback` where there is
  // none.
  Arguments All(const std::string& name) const;
  std::string Text(const std::string& name, const std::string& fallback = "") const;

  // Reads the last value of `name` as a number.
  //   Returns  `fallback` where it was not given.
  //   Throws   CommandError if it is none from `least` to `most`.
  long long Number(const std::string& name, long long fallback, long long least,
                   long long most) const;

 private:
  std::map<std::string, Arguments> values_;
};

struct Command {
  std::string name;  // two words where it is one of a group: "title get"
  std::string purpose;
  std::vector<Positional> positionals;
  std::vector<Option> options;
  std::string more;    // what its help says at the end
  Arguments examples;  // without the prompt
  int (*run)(Kestan& engine, const Values& values);
  bool takes_dashes = false;  // what begins with one dash is an argument, unless an option is so
  bool hidden = false;        // in no list: for the build alone
};

// Returns what the commands of `group`, whose names begin with that word, are for; an empty string
// where there is no such group.
std::string PurposeOfGroup(const std::string& group);

// Returns the long name of an option: "--null" of "-0,--null".
std::string LongName(const Option& option);

// Returns what the option is for, with the values that it takes.
std::string DescriptionOf(const Option& option);

// Returns the command line in short: "kestan search [OPTIONS] INDEX QUERY...".
std::string UsageOf(const Command& command);

// Options that many commands have.
inline Option JsonOption() { return {"--json", "", "report as one line of JSON"}; }
inline Option QuietOption() { return {"-q,--quiet", "", "say nothing but errors"}; }
inline Option InPlaceOption() {
  return {"--in-place", "",
          "change the index itself, not a copy that takes its place: faster, but whoever ends the "
          "command or fills the disk meanwhile can damage the index"};
}
inline Positional IndexArgument() { return {"INDEX", "the index file"}; }

}  // namespace kestan_cli

#endif  // KESTAN_CLI_APP_COMMAND_H_
