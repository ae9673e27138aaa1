#include "cli/app/manual.h"

namespace kestan_cli {
namespace {

constexpr const char* kStatuses =
    ".SH EXIT STATUS\n.TP\n0\ndone; a search has found something\n.TP\n1\na search has found "
    "nothing, a check faults; not all files could be indexed, not all documents saved\n.TP\n2\n"
    "something is wrong: the message says what\n.TP\n75\n"
    "another process is changing the index: try again later\n";

// Spells what roff would take for something else.
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

std::string Head(const std::string& name, const std::string& purpose) {
  return ".TH " + Roff(name) + " 1\n.SH NAME\n" + Roff(name) + " \\- " + Roff(purpose) + "\n";
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

// What the page of a single command says of it.
std::string Body(const Command& command) {
  return ".SH DESCRIPTION\n" + Description(command) + ".SH OPTIONS\n" + Items(command) +
         ".SH EXAMPLES\n" + Examples(command);
}

// What the page of a group says of one of its commands.
std::string SectionOf(const Command& command) {
  return ".SH kestan " + Roff(command.name) + "\n" + Description(command) + Items(command) +
         ".PP\n" + Examples(command);
}

std::string FirstWord(const std::string& name) { return name.substr(0, name.find(' ')); }

std::string SecondWord(const std::string& name) {
  const std::size_t blank = name.find(' ');
  return blank == std::string::npos ? "" : name.substr(blank + 1);
}

std::string PageName(const Command& command) { return "kestan-" + FirstWord(command.name); }

std::string Overview(const std::vector<Command>& commands) {
  std::string page = Head("kestan", "index text files and find words in them") +
                     ".SH SYNOPSIS\nkestan COMMAND [OPTIONS] INDEX ...\n.SH COMMANDS\n";
  for (const Command& command : commands) {
    if (!command.hidden) page += Item("kestan " + command.name, command.purpose);
  }
  page += ".PP\nEach has a page of its own: kestan\\-search(1), for one.\n.SH OPTIONS\n" +
          Item("--help", "after a command: what it takes, with an example");
  return page + Item("--version", "print the version") + kStatuses;
}

// The commands that stand behind one first word, in the order of the list.
struct Group {
  std::string name;
  std::vector<const Command*> commands;
};

std::vector<Group> GroupsOf(const std::vector<Command>& commands) {
  std::vector<Group> groups;
  for (const Command& command : commands) {
    if (command.hidden) continue;
    const std::string name = FirstWord(command.name);
    if (groups.empty() || groups.back().name != name) groups.push_back({name, {}});
    groups.back().commands.push_back(&command);
  }
  return groups;
}

bool IsGroup(const Group& group) { return !SecondWord(group.commands.front()->name).empty(); }

std::string PurposeOf(const Group& group) {
  return IsGroup(group) ? PurposeOfGroup(group.name) : group.commands.front()->purpose;
}

std::string Joined(const std::vector<std::string>& words) {
  std::string text;
  for (const std::string& word : words) text += (text.empty() ? "" : " ") + word;
  return text;
}

// "--null -0": the names of a command's options, for a list of words.
std::string OptionWords(const Command& command) {
  std::string words = "--help";
  for (const Option& option : command.options) {
    std::string names = option.names;
    const std::size_t comma = names.find(',');
    if (comma != std::string::npos) names[comma] = ' ';
    words += " " + names;
  }
  return words;
}

std::string SecondWords(const Group& group) {
  std::vector<std::string> words;
  for (const Command* command : group.commands) words.push_back(SecondWord(command->name));
  return Joined(words);
}

// Spells `text` between single quotes, for zsh and fish.
std::string ShellQuoted(const std::string& text) {
  std::string quoted = "'";
  for (const char letter : text)
    quoted += letter == '\'' ? std::string("'\\''") : std::string(1, letter);
  return quoted + "'";
}

// A shell function body, which bash and zsh both read, that sets `words` to what may stand next:
// $1 and $2 are the first words after the name of the program.
std::string CasesOf(const std::vector<Group>& groups) {
  std::string cases = "  case \"$1 $2\" in\n";
  for (const Group& group : groups) {
    for (const Command* command : group.commands) {
      const std::string pattern = IsGroup(group) ? command->name : command->name + " *";
      const std::string quoted = IsGroup(group) ? "\"" + pattern + "\"" : command->name + "\\ *";
      cases += "    " + quoted + ") echo \"" + OptionWords(*command) + "\" ;;\n";
    }
    if (IsGroup(group)) {
      cases += "    " + group.name + "\\ *) echo \"" + SecondWords(group) + "\" ;;\n";
    }
  }
  return cases + "  esac\n";
}

// A case of the same kind, of what may follow an option: $1 is the first word, $2 the option.
std::string CasesOfValues(const std::vector<Group>& groups) {
  std::string cases = "  case \"$1 $2\" in\n";
  for (const Group& group : groups) {
    for (const Command* command : group.commands) {
      for (const Option& option : command->options) {
        if (option.choices.empty()) continue;
        cases += "    " + group.name + "\\ " + LongName(option) + ") echo \"" +
                 Joined(option.choices) + "\" ;;\n";
      }
    }
  }
  return cases + "  esac\n";
}

std::string NamesOf(const std::vector<Group>& groups) {
  std::string names;
  for (const Group& group : groups) names += group.name + " ";
  return names + "--help --version";
}

// " -l order -x -a 'best name' -d 'how ...'"
std::string FishOption(const Option& option) {
  std::string text = " -l " + LongName(option).substr(2);
  if (option.names[1] != '-') text += std::string(" -s ") + option.names[1];
  if (!option.choices.empty()) {
    text += " -x -a " + ShellQuoted(Joined(option.choices));
  } else if (!option.value.empty()) {
    text += " -r";
  }
  return text + " -d " + ShellQuoted(option.purpose);
}

}  // namespace

std::map<std::string, std::string> ManualPages(const std::vector<Command>& commands) {
  std::map<std::string, std::string> pages{{"kestan.1", Overview(commands)}};
  for (const Group& group : GroupsOf(commands)) {
    std::string page = Head(PageName(*group.commands.front()), PurposeOf(group));
    page += ".SH SYNOPSIS\n";
    for (const Command* command : group.commands) {
      page += (command != group.commands.front() ? ".br\n" : "") + Roff(UsageOf(*command)) + "\n";
    }
    for (const Command* command : group.commands) {
      page += IsGroup(group) ? SectionOf(*command) : Body(*command);
    }
    pages[PageName(*group.commands.front()) + ".1"] = page + kStatuses;
  }
  return pages;
}

std::string BashCompletion(const std::vector<Command>& commands) {
  const std::vector<Group> groups = GroupsOf(commands);
  return "_kestan_words() {\n" + CasesOf(groups) + "}\n_kestan_values() {\n" +
         CasesOfValues(groups) +
         "}\n"
         "_kestan() {\n"
         "  local now=${COMP_WORDS[COMP_CWORD]} words values\n"
         "  values=$(_kestan_values \"${COMP_WORDS[1]}\" \"${COMP_WORDS[COMP_CWORD-1]}\")\n"
         "  words=$(_kestan_words \"${COMP_WORDS[1]}\" \"${COMP_WORDS[2]}\")\n"
         "  [ \"$COMP_CWORD\" -gt 1 ] || words='" +
         NamesOf(groups) +
         "'\n"
         "  if [ \"$COMP_CWORD\" -gt 2 ] || [ \"${words#--}\" != \"$words\" ]; then\n"
         "    [ \"${now#-}\" != \"$now\" ] || words=$values\n"
         "  fi\n"
         "  mapfile -t COMPREPLY < <(compgen -W \"$words\" -- \"$now\")\n"
         "}\n"
         "complete -o default -F _kestan kestan\n";
}

std::string ZshCompletion(const std::vector<Command>& commands) {
  const std::vector<Group> groups = GroupsOf(commands);
  std::string names;
  for (const Group& group : groups) {
    names += "    " + ShellQuoted(group.name + ":" + PurposeOf(group)) + "\n";
  }
  return "#compdef kestan\n_kestan_words() {\n" + CasesOf(groups) + "}\n_kestan_values() {\n" +
         CasesOfValues(groups) +
         "}\n"
         "_kestan() {\n"
         "  local -a names next values\n"
         "  names=(\n" +
         names +
         "  )\n"
         "  if (( CURRENT == 2 )); then _describe 'command' names; return; fi\n"
         "  values=(${=\"$(_kestan_values \"$words[2]\" \"$words[CURRENT-1]\")\"})\n"
         "  if (( $#values )); then compadd -a values; return; fi\n"
         "  next=(${=\"$(_kestan_words \"$words[2]\" \"$words[3]\")\"})\n"
         "  if [[ \"$next[1]\" != --* && CURRENT -eq 3 ]]; then compadd -a next; return; fi\n"
         "  if [[ \"$PREFIX\" == -* ]]; then compadd -a next; else _files; fi\n"
         "}\n"
         "compdef _kestan kestan\n";
}

std::string FishCompletion(const std::vector<Command>& commands) {
  std::string lines;
  for (const Group& group : GroupsOf(commands)) {
    lines += "complete -c kestan -n __fish_use_subcommand -f -a " + group.name + " -d " +
             ShellQuoted(PurposeOf(group)) + "\n";
    const std::string seen = "'__fish_seen_subcommand_from " + group.name + "'";
    if (IsGroup(group)) {
      lines += "complete -c kestan -f -n " + seen + "'; and not __fish_seen_subcommand_from " +
               SecondWords(group) + "' -a '" + SecondWords(group) + "'\n";
    }
    for (const Command* command : group.commands) {
      for (const Option& option : command->options) {
        lines += "complete -c kestan -n " + seen + FishOption(option) + "\n";
      }
    }
  }
  return lines;
}

}  // namespace kestan_cli
