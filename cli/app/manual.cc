#include "cli/app/manual.h"

#include "cli/app/command_groups.h"
#include "cli/console/message.h"

namespace kestan_cli {
namespace {

constexpr const char* kStatuses =
    ".SH EXIT STATUS\n.TP\n0\ndone; a search has found something\n.TP\n1\na search has found "
    "nothing, a check faults; not all files could be indexed, not all documents saved\n.TP\n2\n"
    "something is wrong: the message says what\n.TP\n75\n"
    "another process is changing the index: try again later\n";

// Escapes what roff would take for markup.
std::string Roff(const std::string& text) {
  std::string escaped;
  bool at_start = true;
  for (const char letter : text) {
    if (letter == '\\') {
      escaped += "\\e";
    } else if (letter == '-') {
      escaped += "\\-";
    } else {
      if (at_start && (letter == '.' || letter == '\'')) escaped += "\\&";
      escaped += letter;
    }
    at_start = letter == '\n';
  }
  return escaped;
}

// The first of `names` is the title of the page.
std::string Head(const Arguments& names, const std::string& purpose) {
  return ".TH " + Roff(names.front()) + " 1\n.SH NAME\n" + Roff(Joined(names, ", ")) + " \\- " +
         Roff(purpose) + "\n";
}

std::string Item(const std::string& term, const std::string& text) {
  return ".TP\n.B " + Roff(term) + "\n" + Roff(text) + "\n";
}

std::string TermOf(const Option& option) {
  std::string term = option.names;
  const std::size_t comma = term.find(',');
  if (comma != std::string::npos) term.insert(comma + 1, " ");
  return option.value.empty() ? term : term + " " + option.value;
}

std::string Examples(const Command& command) {
  std::string text;
  for (const std::string& example : command.examples) {
    text += (text.empty() ? ".nf\n" : ".PP\n.nf\n") + Roff(example) + "\n.fi\n";
  }
  return text;
}

std::string Description(const Command& command) {
  std::string text = Roff(command.purpose) + "\n";
  if (!command.more.empty()) text += ".PP\n" + Roff(command.more) + "\n";
  return text;
}

std::string Items(const Command& command) {
  std::string items;
  for (const Positional& positional : command.positionals) {
    items += Item(positional.name, positional.purpose);
  }
  for (const Option& option : command.options) items += Item(TermOf(option), DescriptionOf(option));
  return items;
}

// Returns the part of a page that describes its one command.
std::string Body(const Command& command) {
  return ".SH DESCRIPTION\n" + Description(command) + ".SH OPTIONS\n" + Items(command) +
         ".SH EXAMPLES\n" + Examples(command);
}

// Returns the section on one command of a group.
std::string SectionOf(const Command& command) {
  return ".SH kestan " + Roff(command.name) + "\n" + Description(command) + Items(command) +
         ".PP\n" + Examples(command);
}

Arguments PageNames(const CommandGroup& group) {
  Arguments names = FirstWords(group);
  for (std::string& name : names) name.insert(0, "kestan-");
  return names;
}

std::string Overview(const std::vector<Command>& commands) {
  std::string page = Head({"kestan"}, "index text files and find words in them") +
                     ".SH SYNOPSIS\nkestan COMMAND [OPTIONS] INDEX ...\n.SH COMMANDS\n";
  for (const Command& command : commands) {
    if (!command.hidden) page += Item("kestan " + command.name, command.purpose);
  }
  page += ".PP\nEach has a page of its own: kestan\\-search(1), for one.\n.SH OPTIONS\n" +
          Item("--help", "after a command: what it takes, with an example");
  return page + Item("--version", "print the version") + kStatuses;
}

}  // namespace

std::map<std::string, std::string> ManualPages(const std::vector<Command>& commands) {
  std::map<std::string, std::string> pages{{"kestan.1", Overview(commands)}};
  for (const CommandGroup& group : GroupsOf(commands)) {
    std::string page = Head(PageNames(group), PurposeOf(group));
    page += ".SH SYNOPSIS\n";
    for (const Command* command : group.commands) {
      page += (command != group.commands.front() ? ".br\n" : "") + Roff(UsageOf(*command)) + "\n";
    }
    for (const Command* command : group.commands) {
      page += HasSecondWords(group) ? SectionOf(*command) : Body(*command);
    }
    for (const std::string& name : PageNames(group)) pages[name + ".1"] = page + kStatuses;
  }
  return pages;
}

}  // namespace kestan_cli
