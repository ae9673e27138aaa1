// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/app/manual.h"

#include <algorithm>
#include <utility>

#include "cli/app/command_groups.h"
#include "cli/app/roff.h"
#include "cli/console/message.h"

namespace kestan_cli {
namespace {

constexpr const char* kStatuses =
    ".SH EXIT STATUS\n.TP\n0\ndone; a search has found something\n.TP\n1\na search has found "
    "nothing, a check faults; not all files could be indexed, not all documents saved\n.TP\n2\n"
    "something is wrong: the message says what\n.TP\n75\n"
    "another process is changing the index: try again later\n";

// The first of `names` is the title of the page.
std::string Head(const Arguments& names, const char* section, const std::string& purpose,
                 const ManualEdition& edition) {
  return ".TH " + Roff(names.front()) + " " + section + " " + Roff(edition.date) + " \"kestan " +
         Roff(edition.version) + "\" \"Kestan manual\"\n.SH NAME\n" + Roff(Joined(names, ", ")) +
         " \\- " + Roff(purpose) + "\n";
}

std::string Item(const std::string& term, const std::string& text) {
  return RoffItem(term, Roff(text));
}

// Returns the section that refers to `pages`, "kestan-query(7)", without the one it stands in.
std::string SeeAlso(Arguments pages, const std::string& own) {
  pages.erase(std::remove(pages.begin(), pages.end(), own), pages.end());
  std::string section = ".SH SEE ALSO\n";
  for (const std::string& page : pages) {
    const std::size_t number = page.find('(');
    section += ".BR " + Roff(page.substr(0, number)) + " " + page.substr(number) +
               (&page != &pages.back() ? " ,\n" : "\n");
  }
  return section;
}

const Arguments kMainPages = {"kestan(1)", "kestan-index(1)", "kestan-search(1)",
                              "kestan-query(7)"};

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

std::string Overview(const std::vector<Command>& commands, const ManualEdition& edition) {
  std::string page = Head({"kestan"}, "1", "index text files and find words in them", edition) +
                     ".SH SYNOPSIS\nkestan COMMAND [OPTIONS] INDEX ...\n.SH COMMANDS\n";
  for (const Command& command : commands) {
    if (!command.hidden) page += Item("kestan " + command.name, command.purpose);
  }
  page += ".PP\nEach has a page of its own: kestan\\-search(1), for one.\n.SH OPTIONS\n" +
          Item("-h, --help", "after a command: what it takes, with an example") +
          Item("-V, --version", "print the version") + kStatuses;
  Arguments others;
  for (const CommandGroup& group : GroupsOf(commands))
    others.push_back(PageNames(group)[0] + "(1)");
  others.emplace_back("kestan-query(7)");
  return page + SeeAlso(std::move(others), "");
}

}  // namespace

std::map<std::string, std::string> ManualPages(const std::vector<Command>& commands,
                                               const ManualEdition& edition) {
  std::map<std::string, std::string> pages{{"kestan.1", Overview(commands, edition)}};
  for (const CommandGroup& group : GroupsOf(commands)) {
    const Arguments names = PageNames(group);
    std::string page = Head(names, "1", PurposeOf(group), edition);
    page += ".SH SYNOPSIS\n";
    for (const Command* command : group.commands) {
      page += (command != group.commands.front() ? ".br\n" : "") + Roff(UsageOf(*command)) + "\n";
    }
    for (const Command* command : group.commands) {
      page += HasSecondWords(group) ? SectionOf(*command) : Body(*command);
    }
    page += kStatuses + SeeAlso(kMainPages, names.front() + "(1)");
    for (const std::string& name : names) pages[name + ".1"] = page;
  }
  return pages;
}

std::string QueryPage(const std::string& markdown, const ManualEdition& edition) {
  return Head({"kestan-query"}, "7", "the language of queries of kestan search", edition) +
         RoffOfMarkdown(markdown) + SeeAlso(kMainPages, "kestan-query(7)");
}

}  // namespace kestan_cli
