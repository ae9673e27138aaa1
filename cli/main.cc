// The command `kestan`: reads arguments, runs one subcommand, and turns whatever went wrong into
// one line and exit status 2.
#include <kestan/kestan.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <csignal>
#include <cstdio>
#include <exception>
#include <new>
#include <sstream>
#include <string>

#include "commands.h"
#include "message.h"
#include "output.h"

namespace kestan_cli {
namespace {

struct Subcommand {
  const char* name;
  const char* purpose;
  const char* rest;  // the name of the arguments after INDEX; null if it takes none
  const char* rest_purpose;
  const char* more;  // the end of its help: an example
  int (*run)(Kestan& engine, const std::string& index, const Arguments& rest);
};

constexpr std::array kSubcommands{
    Subcommand{"index", "Add text files to an index, which is made where there is none.", "PATH",
               "files, and folders with all that is below them",
               "Example: kestan index my.index /usr/share/doc/bash", RunIndex},
    Subcommand{"search", "Find documents, the best first.", "QUERY",
               "words; side by side they mean AND. Operators, the tightest first: NOT, "
               "NEAR/k (at most k words apart), AND, OR; and parentheses",
               "Exit status: 0 with hits, 1 without, 2 if something is wrong.\n"
               "Example: kestan search my.index 'shell NEAR/3 script NOT (zsh OR fish)'",
               RunSearch},
    Subcommand{"list", "List all documents by name.", nullptr, nullptr,
               "Example: kestan list my.index", RunList},
    Subcommand{"stats", "Tell how much an index holds.", nullptr, nullptr,
               "Example: kestan stats my.index", RunStats},
    Subcommand{"remove", "Remove documents.", "NAME", "names as `kestan list` prints them",
               "Example: kestan remove my.index /usr/share/doc/bash/NEWS", RunRemove},
    Subcommand{"shrink", "Reclaim the room of removed documents.", nullptr, nullptr,
               "Example: kestan shrink my.index", RunShrink},
};

struct Parsed {
  const Subcommand* subcommand = nullptr;
  std::string index;
  Arguments rest;
};

void Declare(CLI::App& app, const Subcommand& subcommand, Parsed* parsed) {
  CLI::App* options = app.add_subcommand(subcommand.name, subcommand.purpose);
  options->footer(subcommand.more);
  options->add_option("INDEX", parsed->index, "the index file")->required();
  if (subcommand.rest != nullptr) {
    options->add_option(subcommand.rest, parsed->rest, subcommand.rest_purpose)->required();
  }
  options->callback([parsed, &subcommand] { parsed->subcommand = &subcommand; });
}

// Returns the arguments after INDEX as they were given: CLI11 has accepted them by now, but takes a
// file named "[a]" for a list and hands out "a". Only "--" is not theirs.
Arguments RestAsGiven(int argc, char** argv) {
  Arguments given(argv + 2, argv + argc);
  const auto mark = std::find(given.begin(), given.end(), "--");
  if (mark != given.end()) given.erase(mark);
  given.erase(given.begin());
  return given;
}

int Complain(const std::string& what) {
  std::fprintf(stderr, "kestan: %s\n", OneLine(what).c_str());
  return kFailed;
}

// Also prints the version; CLI11 knows which of the two was asked for.
int PrintHelp(const CLI::App& app, const CLI::ParseError& request) {
  std::ostringstream text;
  app.exit(request, text, text);
  Print(text.str());
  return kDone;
}

int Run(int argc, char** argv) {
  CLI::App app("Indexes text files and finds words in them.", "kestan");
  app.set_version_flag("--version", "kestan " KESTAN_VERSION);
  app.require_subcommand(1);
  app.get_formatter()->label("TEXT", "");
  app.get_formatter()->label("REQUIRED", "");
  app.get_formatter()->label("OPTIONS", "--help");
  Parsed parsed;
  for (const Subcommand& subcommand : kSubcommands) Declare(app, subcommand, &parsed);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    if (error.get_exit_code() == 0) return PrintHelp(app, error);
    return Complain(std::string(error.what()) + " (see kestan --help)");
  }
  Kestan engine;
  return parsed.subcommand->run(engine, parsed.index, RestAsGiven(argc, argv));
}

int RunAndReport(int argc, char** argv) {
  try {
    return Run(argc, argv);
  } catch (const ReaderLeft&) {
    return kFailed;
  } catch (const std::bad_alloc&) {
    return Complain("out of memory");
  } catch (const std::exception& error) {
    return Complain(error.what());
  }
}

}  // namespace
}  // namespace kestan_cli

int main(int argc, char** argv) {
  const kestan_cli::StandardDescriptors taken;
  // Neither a reader that leaves nor a limit on file sizes may end the process amid a change.
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGXFSZ, SIG_IGN);
  return kestan_cli::RunAndReport(argc, argv);
}
