#include "arguments.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <memory>
#include <sstream>

#include "message.h"

namespace kestan_cli {
namespace {

// CLI11 takes an argument in brackets for a list, and hands out what it holds. A byte in front,
// which is taken off again, keeps it whole.
constexpr char kGuard = '\x01';

bool IsOption(const Command& command, const std::string& argument) {
  return std::any_of(command.options.begin(), command.options.end(), [&](const Option& option) {
    return option.names.substr(0, option.names.find(',')) == argument;
  });
}

// `command` is the one that the arguments are for, null where that is not known.
bool NeedsGuard(const std::string& argument, const Command* command) {
  if (argument.empty()) return false;
  if (argument.front() == '[' || argument.front() == kGuard) return true;
  const bool has_one_dash = argument.size() > 1 && argument[0] == '-' && argument[1] != '-';
  return has_one_dash && command != nullptr && command->takes_dashes &&
         !IsOption(*command, argument);
}

std::string Guarded(const std::string& argument, const Command* command) {
  return NeedsGuard(argument, command) ? kGuard + argument : argument;
}

const Command* CommandNamed(const std::vector<Command>& commands, const std::string& name) {
  const auto found = std::find_if(commands.begin(), commands.end(),
                                  [&](const Command& command) { return command.name == name; });
  return found != commands.end() ? &*found : nullptr;
}

std::string Unguarded(std::string argument) {
  return !argument.empty() && argument.front() == kGuard ? argument.substr(1) : argument;
}

// What CLI11 puts the values of one argument into.
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

CLI::App* GroupOf(CLI::App* app, const std::string& group) {
  const auto is_group = [&group](const CLI::App* added) { return added->get_name() == group; };
  const std::vector<CLI::App*> found = app->get_subcommands(is_group);
  if (!found.empty()) return found.front();
  CLI::App* made = app->add_subcommand(group, PurposeOfGroup(group));
  made->require_subcommand(1);
  return made;
}

CLI::App* AddTo(CLI::App* app, const Command& command) {
  const std::size_t blank = command.name.find(' ');
  if (blank != std::string::npos) app = GroupOf(app, command.name.substr(0, blank));
  const std::string name =
      blank == std::string::npos ? command.name : command.name.substr(blank + 1);
  return app->add_subcommand(name, command.purpose);
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
  if (option.value.empty()) return app->add_flag(option.names)->description(DescriptionOf(option));
  CLI::Option* added = app->add_option(option.names, *values, DescriptionOf(option));
  added->type_name(option.value)->expected(1)->take_all()->allow_extra_args(false);
  if (!option.choices.empty()) added->check(CLI::IsMember(option.choices).description(""));
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
  app->set_version_flag("--version", "kestan " KESTAN_VERSION);
  app->require_subcommand(1);
  app->get_formatter()->label("TEXT", "");
  app->get_formatter()->label("REQUIRED", "");
  app->get_formatter()->label("OPTIONS", "OPTIONS");
  app->get_formatter()->column_width(28);
}

// Also makes the text of the version; CLI11 knows which of the two was asked for.
std::string HelpText(const CLI::App& app, const CLI::ParseError& request) {
  std::ostringstream text;
  app.exit(request, text, text);
  return text.str();
}

}  // namespace

Request ReadArguments(const std::vector<Command>& commands, const Arguments& arguments) {
  CLI::App app("Indexes text files and finds words in them.", "kestan");
  Prepare(&app);
  std::vector<Declared> all;
  all.reserve(commands.size());
  for (const Command& command : commands) all.push_back(Declare(&app, command));
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
    if (error.get_exit_code() != 0) {
      throw CommandError(std::string(error.what()) + " (see kestan --help)");
    }
    request.text = HelpText(app, error);
    return request;
  }
  for (const Declared& declared : all) {
    if (!declared.app->parsed()) continue;
    request.command = declared.command;
    request.values = ValuesOf(declared);
  }
  return request;
}

}  // namespace kestan_cli
