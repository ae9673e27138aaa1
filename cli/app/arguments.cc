// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/app/arguments.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <memory>
#include <sstream>

#include "cli/app/command_groups.h"
#include "cli/app/help_text.h"
#include "cli/app/suggestion.h"
#include "cli/console/message.h"

namespace kestan_cli {
namespace {

// CLI11 takes an argument in brackets for a list and splits it. A byte in front prevents that; it
// is removed afterwards.
constexpr char kGuard = '\x01';

bool IsSwitch(const Command& command, char letter) {
  const std::string name = {'-', letter, ','};
  return letter == 'h' ||
         std::any_of(command.options.begin(), command.options.end(), [&](const Option& option) {
           return option.value.empty() && option.names.compare(0, name.size(), name) == 0;
         });
}

// Returns whether `argument` is a dash and letters of switches only: "-l0".
bool AreSwitches(const Command& command, const std::string& argument) {
  return std::all_of(argument.begin() + 1, argument.end(),
                     [&](char letter) { return IsSwitch(command, letter); });
}

// Returns whether `argument` is a dash and the letter of an option with a value, which comes next.
bool TakesValue(const Command& command, const std::string& argument) {
  return std::any_of(command.options.begin(), command.options.end(), [&](const Option& option) {
    return !option.value.empty() && option.names.rfind(argument + ",", 0) == 0;
  });
}

// The argument is one of `command`, which is null if it is not known.
bool NeedsGuard(const std::string& argument, const Command* command) {
  if (argument.empty()) return false;
  if (argument.front() == '[' || argument.front() == kGuard) return true;
  const bool has_one_dash = argument.size() > 1 && argument[0] == '-' && argument[1] != '-';
  return has_one_dash && command != nullptr && command->takes_dashes &&
         !AreSwitches(*command, argument) && !TakesValue(*command, argument);
}

std::string Guarded(const std::string& argument, const Command* command) {
  return NeedsGuard(argument, command) ? kGuard + argument : argument;
}

bool IsNameOf(const Command& command, const std::string& name) {
  return command.name == name ||
         std::count(command.aliases.begin(), command.aliases.end(), name) != 0;
}

const Command* CommandNamed(const std::vector<Command>& commands, const std::string& name) {
  const auto found = std::find_if(commands.begin(), commands.end(),
                                  [&](const Command& command) { return IsNameOf(command, name); });
  return found != commands.end() ? &*found : nullptr;
}

std::string Unguarded(std::string argument) {
  return !argument.empty() && argument.front() == kGuard ? argument.substr(1) : argument;
}

// One declared argument, and the place where CLI11 stores its values.
struct Slot {
  std::string name;
  bool is_switch = false;
  CLI::Option* option = nullptr;
  std::unique_ptr<Arguments> values = std::make_unique<Arguments>();  // where CLI11 writes
};

struct Declared {
  const Command* command;
  CLI::App* app;
  std::vector<Slot> slots;
};

constexpr const char* kVersionFlag = "--version";
constexpr const char* kShortVersionFlag = "-V";
constexpr const char* kCommands = "Commands";  // the heading above them in the help

// Returns the group `group`, added with `purpose` unless it is there.
CLI::App* GroupOf(CLI::App* app, const std::string& group, const std::string& purpose) {
  const auto is_group = [&group](const CLI::App* added) { return added->get_name() == group; };
  const std::vector<CLI::App*> found = app->get_subcommands(is_group);
  if (!found.empty()) return found.front();
  CLI::App* made = app->add_subcommand(group, purpose)->group(kCommands);
  made->require_subcommand(1);
  made->footer("Each has --help with an example.");
  return made;
}

CLI::App* AddTo(CLI::App* app, const Command& command) {
  const std::size_t blank = command.name.find(' ');
  if (blank != std::string::npos) {
    app = GroupOf(app, command.name.substr(0, blank), command.group_purpose);
  }
  const std::string name =
      blank == std::string::npos ? command.name : command.name.substr(blank + 1);
  app = app->add_subcommand(name, command.purpose)->group(kCommands);
  for (const std::string& alias : command.aliases) app->alias(alias);
  return app;
}

std::string FooterOf(const Command& command) {
  std::string footer = command.more;
  for (const std::string& example : command.examples) {
    footer += (footer.empty() ? "" : "\n") + std::string("Example: ") + example;
  }
  return footer;
}

CLI::Option* AddPositional(CLI::App* app, const Positional& positional, Arguments* values) {
  using Count = Positional::Count;
  CLI::Option* option = app->add_option(positional.name, *values, positional.purpose);
  const bool many = positional.count == Count::kAny || positional.count == Count::kOneOrMore;
  const bool required = positional.count == Count::kOne || positional.count == Count::kOneOrMore;
  if (!many) option->expected(1)->allow_extra_args(false);
  return option->required(required);
}

CLI::Option* AddOption(CLI::App* app, const Option& option, Arguments* values) {
  if (option.value.empty()) {
    return app->add_flag(option.names)->description(DescriptionOf(option))->disable_flag_override();
  }
  CLI::Option* added = app->add_option(option.names, *values, DescriptionOf(option));
  added->type_name(option.value)->expected(1)->take_all()->allow_extra_args(false);
  return added;
}

Declared Declare(CLI::App* app, const Command& command) {
  Declared declared{&command, AddTo(app, command), {}};
  if (command.hidden) declared.app->group("");
  declared.app->footer(FooterOf(command));
  for (const Positional& positional : command.positionals) {
    Slot slot{positional.name};
    slot.option = AddPositional(declared.app, positional, slot.values.get());
    declared.slots.push_back(std::move(slot));
  }
  for (const Option& option : command.options) {
    Slot slot{LongName(option), option.value.empty()};
    slot.option = AddOption(declared.app, option, slot.values.get());
    declared.slots.push_back(std::move(slot));
  }
  return declared;
}

void CheckChoice(const Option& option, const Values& values) {
  const std::string name = LongName(option);
  if (option.choices.empty() || !values.Has(name)) return;
  const std::string value = values.Text(name);
  if (std::count(option.choices.begin(), option.choices.end(), value) != 0) return;
  std::string choices;
  for (const std::string& choice : option.choices)
    choices += (choices.empty() ? "" : ", ") + choice;
  throw CommandError(name + " takes one of " + choices + ", not " + Quoted(value));
}

Values ValuesOf(const Declared& declared) {
  Values values;
  for (const Slot& slot : declared.slots) {
    if (slot.option->count() == 0) continue;
    for (const std::string& value : slot.option->results()) {
      values.Add(slot.name, slot.is_switch ? "" : Unguarded(value));
    }
  }
  return values;
}

void Prepare(CLI::App* app) {
  app->set_help_flag("-h,--help", "print this help");
  app->set_version_flag("-V,--version", "kestan " KESTAN_VERSION, "print the version");
  app->require_subcommand(1);
  app->footer("Each has --help with an example, and a manual page: man kestan-search.");
  app->get_formatter()->label("TEXT", "");
  app->get_formatter()->label("REQUIRED", "");
  app->get_formatter()->label("OPTIONS", "OPTIONS");
  app->get_formatter()->label("SUBCOMMAND", "COMMAND");
  app->get_formatter()->column_width(kHelpColumn);
}

// Returns the help or the version, whichever `request` is for.
std::string HelpText(const CLI::App& app, const CLI::ParseError& request) {
  std::ostringstream text;
  app.exit(request, text, text);
  return text.str();
}

bool LooksLikeOption(const std::string& argument) {
  return argument.size() > 1 && argument.front() == '-';
}

std::string NoSuchCommand(const std::string& name, const Arguments& known) {
  return "no command " + Quoted(name) + DidYouMean(name, known);
}

Arguments LongNamesOf(const CLI::App& app) {
  Arguments names;
  for (const CLI::Option* option : app.get_options()) {
    for (const std::string& name : option->get_lnames()) names.push_back("--" + name);
  }
  return names;
}

// Describes an argument of `app` that looks like an option and is none of its own.
std::string NoSuchOption(const CLI::App& app, const std::string& option) {
  const std::string meant = DidYouMean(option.substr(0, option.find('=')), LongNamesOf(app));
  return "no option " + Quoted(option) +
         (meant.empty() ? "; put -- before what only looks like one" : meant);
}

// Describes `error`, of the command or the group `last`, in the terms of the help.
std::string Describe(const CLI::App& app, const CLI::App& last, const CLI::ParseError& error) {
  Arguments left = app.remaining(true);  // the arguments that no slot took
  left.erase(std::remove(left.begin(), left.end(), "--"), left.end());
  const auto option = std::find_if(left.begin(), left.end(), LooksLikeOption);
  if (option != left.end()) return NoSuchOption(last, *option);
  const bool is_group = !last.get_subcommands([](const CLI::App*) { return true; }).empty();
  if (is_group) return left.empty() ? "no command" : NoSuchCommand(left.front(), {});
  if (!left.empty()) return "one argument too many: " + Quoted(Unguarded(left.back()));
  std::string what = error.what();
  if (error.get_name() != "ArgumentMismatch") return what;
  const std::string name = what.substr(0, what.find_first_of(": "));  // of a switch, without dashes
  return LooksLikeOption(name) ? name + " needs a value" : "--" + name + " takes no value";
}

// Returns the error with a reference to the help of the command.
CommandError Refusal(const CLI::App& app, const CLI::ParseError& error) {
  std::string called = app.get_name();
  const CLI::App* last = &app;
  while (!last->get_subcommands().empty()) {
    last = last->get_subcommands().front();
    called += " " + last->get_name();
  }
  return CommandError(Describe(app, *last, error) + " (see " + called + " --help)");
}

// Returns whether `word` is the name of the command or of its group, or an alias.
bool IsNamed(const Command& command, const std::string& word) {
  return command.name.substr(0, command.name.find(' ')) == word ||
         std::count(command.aliases.begin(), command.aliases.end(), word) != 0;
}

// Returns the words that may follow `first` in the names of `commands`; with "", those that may be
// the first.
Arguments WordsAfter(const std::vector<Command>& commands, const std::string& first) {
  Arguments words;
  for (const CommandGroup& group : GroupsOf(commands)) {
    for (const std::string& word : FirstWords(group)) {
      if (first.empty()) words.push_back(word);
    }
    if (group.name != first || !HasSecondWords(group)) continue;
    for (const Command* command : group.commands) words.push_back(SecondWord(*command));
  }
  return words;
}

// Refuses a name of no command: otherwise --help after it would be the help on all of them.
void CheckName(const std::vector<Command>& commands, const Arguments& arguments) {
  std::string called;
  for (const std::string& word : arguments) {
    const Arguments known = WordsAfter(commands, called);
    const bool is_hidden = called.empty() && CommandNamed(commands, word) != nullptr;
    if (known.empty() || is_hidden || LooksLikeOption(word)) return;
    if (std::count(known.begin(), known.end(), word) == 0) {
      const std::string place = called.empty() ? "" : called + " ";
      throw CommandError(NoSuchCommand(word, known) + " (see kestan " + place + "--help)");
    }
    if (!called.empty()) return;
    called = word;
  }
}

// Returns the commands that have to be declared, which takes time: the one that the arguments name,
// or the group; none for the version; else all, for the help to list.
std::vector<const Command*> CommandsFor(const std::vector<Command>& commands,
                                        const Arguments& arguments) {
  std::vector<const Command*> needed;
  if (arguments == Arguments{kVersionFlag} || arguments == Arguments{kShortVersionFlag}) {
    return needed;
  }
  const std::string first = arguments.empty() ? "" : arguments.front();
  for (const Command& command : commands) {
    if (IsNamed(command, first)) needed.push_back(&command);
  }
  if (!needed.empty()) return needed;
  for (const Command& command : commands) needed.push_back(&command);
  return needed;
}

}  // namespace

Request ReadArguments(const std::vector<Command>& commands, const Arguments& arguments) {
  CheckName(commands, arguments);
  CLI::App app("Indexes text files and finds words in them.", "kestan");
  Prepare(&app);
  std::vector<Declared> all;
  for (const Command* command : CommandsFor(commands, arguments)) {
    all.push_back(Declare(&app, *command));
  }
  const Command* const meant =
      arguments.empty() ? nullptr : CommandNamed(commands, arguments.front());
  Arguments reversed;  // the order that CLI11 reads
  for (auto argument = arguments.rbegin(); argument != arguments.rend(); ++argument) {
    reversed.push_back(Guarded(*argument, meant));
  }
  Request request;
  try {
    app.parse(std::move(reversed));
  } catch (const CLI::ParseError& error) {
    if (error.get_exit_code() != 0) throw Refusal(app, error);
    request.text = HelpText(app, error);
    return request;
  }
  for (const Declared& declared : all) {
    if (!declared.app->parsed()) continue;
    request.command = declared.command;
    request.values = ValuesOf(declared);
    for (const Option& option : declared.command->options) CheckChoice(option, request.values);
  }
  return request;
}

}  // namespace kestan_cli
