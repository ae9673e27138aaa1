// SPDX-License-Identifier: GPL-3.0-or-later
#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <string>
#include <vector>

#include "tests/cli/command_test.h"

namespace kestan_tests {
namespace {

using MainTest = CommandTest;

TEST_F(MainTest, VersionIsPrinted) {
  const Outcome outcome = Run({"--version"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.out.substr(0, 7), "kestan ");
  EXPECT_EQ(outcome.err, "");
}

TEST_F(MainTest, VersionHasAShortOption) { EXPECT_EQ(Run({"-V"}), Run({"--version"})); }

TEST_F(MainTest, HelpNamesEveryCommand) {
  const Outcome outcome = Run({"--help"});
  EXPECT_EQ(outcome.status, 0);
  for (const char* name : {"index", "search", "list", "words", "stats", "remove", "move", "compact",
                           "convert", "copy", "check", "repair", "dump", "load", "export"}) {
    const std::size_t at = outcome.out.find(std::string("\n  ") + name);
    ASSERT_NE(at, std::string::npos) << name;
    EXPECT_TRUE(outcome.out[at + 3 + std::string(name).size()] == ' ' ||
                name == std::string("compact"))
        << name;
  }
}

TEST_F(MainTest, HelpOfEveryCommandHasAnExample) {
  for (const char* name : {"index", "search", "list", "words", "stats", "remove", "move", "compact",
                           "convert", "copy", "check", "repair", "dump", "load", "export"}) {
    const Outcome outcome = Run({name, "--help"});
    EXPECT_EQ(outcome.status, 0);
    const std::size_t at = outcome.out.find(std::string("\nExample: kestan ") + name + " ");
    ASSERT_NE(at, std::string::npos) << outcome;
    EXPECT_NE(outcome.out.find("my.index", at), std::string::npos) << outcome;
  }
}

TEST_F(MainTest, WrongArgumentsAreReportedOnOneLine) {
  const std::vector<std::vector<std::string>> wrong = {{},
                                                       {"sing"},
                                                       {"search"},
                                                       {"search", "my.index"},
                                                       {"list"},
                                                       {"list", "a", "b"},
                                                       {"index", "a"},
                                                       {"list", "--loud", "a"},
                                                       {"remove", "a"},
                                                       {"--\n"}};
  for (const auto& arguments : wrong) {
    const Outcome outcome = Run(arguments);
    EXPECT_EQ(outcome.status, 2) << outcome;
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err.substr(0, 8), "kestan: ");
    EXPECT_EQ(outcome.err.find('\n'), outcome.err.size() - 1) << outcome;
  }
}

TEST_F(MainTest, WrongArgumentsAreReportedWithTheHelpToRead) {
  const std::string search = " (see kestan search --help)";
  EXPECT_EQ(Run({}), Failure("no command (see kestan --help)"));
  EXPECT_EQ(Run({"sing"}), Failure("no command 'sing' (see kestan --help)"));
  EXPECT_EQ(Run({"title", "sing"}), Failure("no command 'sing' (see kestan title --help)"));
  EXPECT_EQ(Run({"title", "get", "a"}), Failure("NAME is required (see kestan title get --help)"));
  EXPECT_EQ(Run({"search", "--limit"}), Failure("--limit needs a value" + search));
  EXPECT_EQ(Run({"search", "a", "b", "--json=no"}), Failure("--json takes no value" + search));
  EXPECT_EQ(Run({"list", "a", "b"}),
            Failure("one argument too many: 'b' (see kestan list --help)"));
  EXPECT_EQ(Run({"title", "get", "--", "a"}),
            Failure("NAME is required (see kestan title get --help)"));
  EXPECT_EQ(Run({"search", "a", "b", "--order", "x\n"}),
            Failure("--order takes one of best, name, not 'x\\n'"));
}

TEST_F(MainTest, MisspelledCommandsAndOptionsAreAnsweredWithASuggestion) {
  EXPECT_EQ(Run({"idnex", "a", "b"}),
            Failure("no command 'idnex'; did you mean 'index'? (see kestan --help)"));
  EXPECT_EQ(Run({"idnex", "--help"}), Run({"idnex"}));
  EXPECT_EQ(Run({"title", "sett", "a", "b", "c"}),
            Failure("no command 'sett'; did you mean 'set'? (see kestan title --help)"));
  const Outcome limit =
      Failure("no option '--limt=3'; did you mean '--limit'? (see kestan search --help)");
  EXPECT_EQ(Run({"search", "a", "b", "--limt=3"}), limit);
  EXPECT_EQ(Run({"--versoin"}),
            Failure("no option '--versoin'; did you mean '--version'? (see kestan --help)"));
  EXPECT_EQ(Run({"manaul"}), Failure("no command 'manaul' (see kestan --help)"));  // not for users
}

TEST_F(MainTest, UnknownOptionIsReportedBeforeMissingArguments) {
  const std::string hint = "; put -- before what only looks like one (see kestan ";
  EXPECT_EQ(Run({"search", "a", "--loud"}),
            Failure("no option '--loud'" + hint + "search --help)"));
  EXPECT_EQ(Run({"title", "set", "a", "b", "-dash"}),
            Failure("no option '-dash'" + hint + "title set --help)"));
}

TEST_F(MainTest, SwitchesOfOneLetterMayShareADash) {
  Add("a", "cat\n");
  EXPECT_EQ(Run({"search", "my.index", "-l0", "cat"}), Success(std::string("a\0", 2)));
  EXPECT_EQ(Run({"search", "my.index", "cat", "-h"}).out.substr(0, 5), "Find ");
}

TEST_F(MainTest, WhyPrintsReasonsIfNothingCouldBeIndexed) {
  Write("d/a", std::string("a\0b", 3));
  const std::string expected = "kestan: nothing to index: no text files, 1 binary file, 0 links\n";
  EXPECT_EQ(Run({"index", "my.index", "d", "--why"}),
            (Outcome{2, "skipped 'd/a': binary file\n", expected}));
  const Outcome json = Run({"index", "my.index", "d", "--json"});
  EXPECT_EQ(json.status, 2);
  EXPECT_EQ(json.err, expected);
  EXPECT_EQ(json.out.substr(0, 11), "{\"schema\":1");
}

TEST_F(MainTest, TwoDashesEndTheOptions) {
  Write("-a", "cat\n");
  EXPECT_EQ(Run({"index", "my.index", "-a"}).status, 2);
  EXPECT_EQ(Run({"index", "my.index", "--", "-a"}).status, 0);
  EXPECT_EQ(Run({"list", "my.index"}), Success("./-a\n"));
}

TEST_F(MainTest, WordsOfAQueryMayBeginWithADash) {
  Add("a", "cat dog\n");
  Add("b", "cat\n");
  EXPECT_EQ(Run({"search", "my.index", "cat", "-dog"}), Success("100 b\n"));
  EXPECT_EQ(Run({"search", "my.index", "cat", "-(dog OR cow)", "-l"}), Success("b\n"));
  EXPECT_EQ(Run({"search", "my.index", "-hello"}).status, 0);
  EXPECT_EQ(Run({"search", "my.index", "--hello"}).status, 2);
  EXPECT_EQ(Run({"list", "my.index", "-hello"}).status, 0);  // -h, and the help
}

TEST_F(MainTest, HelpNamesTheValuesOfAnOption) {
  const std::string help = Run({"search", "--help"}).out;
  EXPECT_NE(help.find("best, name"), std::string::npos) << help;
}

TEST_F(MainTest, FullDiskOfTheOutputIsReported) {
  Add("a", "cat\n");
  const auto full = [] { dup2(open("/dev/full", O_WRONLY | O_CLOEXEC), STDOUT_FILENO); };
  const Outcome expected = Failure("cannot write to the standard output: no space left on device");
  EXPECT_EQ(Run({"search", "my.index", "cat"}, full), expected);
  EXPECT_EQ(Run({"list", "my.index"}, full), expected);
  EXPECT_EQ(Run({"--help"}, full), expected);
}

// Runs in the child: nobody reads its output.
void CloseReader() {
  int ends[2];
  if (pipe(ends) != 0) _exit(127);
  dup2(ends[1], STDOUT_FILENO);
  close(ends[0]);
  close(ends[1]);
}

TEST_F(MainTest, ReaderThatClosesThePipeIsNoError) {
  Add("a", "cat\n");
  const std::vector<std::vector<std::string>> lists = {{"list", "my.index"},
                                                       {"list", "my.index", "--json"},
                                                       {"search", "my.index", "cat"},
                                                       {"search", "-l", "my.index", "cat"},
                                                       {"search", "--snippets", "my.index", "cat"},
                                                       {"search", "--json", "my.index", "cat"},
                                                       {"search", "--count", "my.index", "cat"},
                                                       {"words", "my.index"},
                                                       {"stats", "my.index"},
                                                       {"check", "my.index"},
                                                       {"title", "get", "my.index", "a"},
                                                       {"dump", "my.index"},
                                                       {"export", "my.index", "json"},
                                                       {"export", "my.index", "sql"},
                                                       {"index", "my.index"},
                                                       {"completion", "bash"},
                                                       {"search", "--help"},
                                                       {"--version"},
                                                       {"--help"}};
  for (const auto& arguments : lists) {
    EXPECT_EQ(Run(arguments, CloseReader), Success("")) << testing::PrintToString(arguments);
  }
}

TEST_F(MainTest, ReaderMayCloseThePipeInTheMiddle) {
  std::string words;
  for (int i = 0; i < 50000; ++i)
    words += "w" + std::string(1, static_cast<char>('a' + i % 26)) +
             std::string(1, static_cast<char>('a' + i / 26 % 26)) +
             std::string(1, static_cast<char>('a' + i / 676 % 26)) +
             std::string(1, static_cast<char>('a' + i / 17576)) + " ";
  Add("a", words);
  const std::string line = "set -o pipefail; " KESTAN_COMMAND " words '" + Path("my.index") +
                           "' 2>&1 | head -n 1 > '" + Path("first") + "'";
  EXPECT_EQ(std::system(("bash -c \"" + line + "\"").c_str()), 0);
  EXPECT_EQ(ReadFile(Path("first")), "waaaa\n");
}

TEST_F(MainTest, StatusOfWorkStandsWithoutAReader) {
  Add("a", "cat\n");
  Write("b.zz", "dog\n");
  EXPECT_EQ(Run({"index", "my.index", "a", "b.zz", "--converter", "zz=false {}", "-q", "--why"},
                CloseReader),
            (Outcome{1, "", ""}));
  Write("my.index/1.documents", "changed");
  EXPECT_EQ(Run({"check", "my.index"}, CloseReader), (Outcome{1, "", ""}));
  EXPECT_EQ(Run({"repair", "my.index", "new.index", "--all"}, CloseReader), Success(""));
  EXPECT_EQ(Run({"search", "new.index", "cat"}), Success("100 a\n"));
}

// Writes a converter `slow` that starts another program, and waits for that.
class ConverterSignalTest : public CommandTest {
 protected:
  void SetUp() override {
    Write("slow",
          "#!/bin/sh\nif [ -e quick ]; then cat $1; exit; fi\nsleep 60 &\necho $! > id.new\n"
          "mv id.new id\nwait\n");
    ASSERT_EQ(chmod(Path("slow").c_str(), 0700), 0);
    Write("a.zz", "cat\n");
  }

  // Interrupts the command when the converter waits. Returns the signal that ended the command, and
  // expects that the program, which belongs to neither, ends too.
  int InterruptedBy(int signal, std::vector<std::string> arguments) {
    for (const char* more : {"--converter", "zz=./slow {}"}) arguments.emplace_back(more);
    const TempDir streams;
    const pid_t child = Start(arguments, streams);
    while (!std::filesystem::exists(Path("id"))) usleep(1000);
    kill(child, signal);
    int status = 0;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    const pid_t program = std::stoi(ReadFile(Path("id")));
    for (int i = 0; i < 5000 && kill(program, 0) == 0; ++i) usleep(1000);
    EXPECT_NE(kill(program, 0), 0);
    std::filesystem::remove(Path("id"));
    EXPECT_EQ(BytesOfFile(streams / "out") + BytesOfFile(streams / "err"), "");
    return WIFSIGNALED(status) ? WTERMSIG(status) : -1;
  }
};

TEST_F(ConverterSignalTest, EndsIndexingAndWhatAConverterHasStarted) {
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    EXPECT_EQ(InterruptedBy(signal, {"index", "my.index", "a.zz"}), signal);
    EXPECT_FALSE(std::filesystem::exists(Path("my.index")));
  }
}

TEST_F(ConverterSignalTest, EndsASearchAndWhatAConverterHasStarted) {
  Write("quick", "");
  ASSERT_EQ(Run({"index", "my.index", "a.zz", "--converter", "zz=./slow {}"}).status, 0);
  std::filesystem::remove(Path("quick"));
  EXPECT_EQ(InterruptedBy(SIGINT, {"search", "--snippets", "my.index", "cat"}), SIGINT);
}

TEST_F(MainTest, DiagnosticsForAClosedStreamNeverReachTheIndex) {
  Add("a", "cat\n");
  Write("b.zz", "dog\n");
  const std::vector<std::string> index{"index", "my.index",    "b.zz",
                                       "a",     "--converter", "zz=false {}"};
  EXPECT_EQ(Run(index, [] { close(STDERR_FILENO); }).status, 1);
  for (const auto& file : std::filesystem::directory_iterator(Path("my.index"))) {
    EXPECT_EQ(BytesOfFile(file.path().string()).find("skipped"), std::string::npos) << file.path();
  }
  EXPECT_NE(Run(index).err.find("skipped"), std::string::npos);
}

TEST_F(MainTest, CommandWorksWithAllStreamsClosed) {
  Write("a", "cat\n");
  const auto closed = [] {
    for (int descriptor : {0, 1, 2}) close(descriptor);
  };
  EXPECT_EQ(Run({"index", "my.index", "a"}, closed).status, 2);  // it cannot report anything
  EXPECT_EQ(Run({"search", "my.index", "cat"}), Success("100 a\n"));
}

TEST_F(MainTest, ClosedOutputIsReported) {
  Add("a", "cat\n");
  EXPECT_EQ(Run({"list", "my.index"}, [] { close(STDOUT_FILENO); }),
            Failure("cannot write to the standard output: bad file descriptor"));
}

}  // namespace
}  // namespace kestan_tests
