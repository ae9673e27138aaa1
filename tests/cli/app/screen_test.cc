// SPDX-License-Identifier: GPL-3.0-or-later
// What the command prints if one of its streams is a terminal.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <map>
#include <nlohmann/json.hpp>
#include <regex>
#include <set>
#include <string>
#include <vector>

#include "cli/commands/commands.h"
#include "cli/console/control_characters.h"
#include "tests/cli/index_folder_test.h"

namespace kestan_tests {
namespace {

using kestan_cli::Command;
using kestan_cli::Option;
using kestan_cli::Positional;
using Arguments = std::vector<std::string>;

class ScreenTest : public CommandTest {
 protected:
  // Runs the command with `streams` at a terminal. Returns what that got.
  std::string Shown(
      const std::vector<int>& streams, const Arguments& arguments, const InChild& prepare = [] {}) {
    const int screen = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
    EXPECT_EQ(grantpt(screen), 0);
    EXPECT_EQ(unlockpt(screen), 0);
    const int line = open(ptsname(screen), O_RDWR | O_NOCTTY | O_CLOEXEC);
    EXPECT_GE(line, 0);
    termios mode{};
    tcgetattr(line, &mode);
    cfmakeraw(&mode);  // the terminal itself adds nothing
    tcsetattr(line, TCSANOW, &mode);
    const TempDir files;
    const pid_t child = Start(arguments, files, [&] {
      for (const int stream : streams) dup2(line, stream);
      prepare();
    });
    close(line);
    const std::string shown = ReadToEnd(screen);
    EXPECT_EQ(waitpid(child, nullptr, 0), child);
    return shown;
  }

  std::string Shown(int stream, const Arguments& arguments) {
    return Shown(std::vector<int>{stream}, arguments);
  }

 private:
  // Reads while the command runs: a terminal buffers little.
  static std::string ReadToEnd(int screen) {
    std::string shown;
    std::array<char, 4096> bytes{};
    ssize_t count = 0;
    while ((count = read(screen, bytes.data(), bytes.size())) > 0) {
      shown.append(bytes.data(), static_cast<std::size_t>(count));
    }
    close(screen);
    return shown;
  }
};

TEST_F(ScreenTest, ControlCharactersInNamesAreEscaped) {
  Add("a\x1b[2J", "cat\n");
  EXPECT_EQ(Shown(STDOUT_FILENO, {"list", "my.index"}), "a\\x1b[2J\n");
  EXPECT_EQ(Shown(STDOUT_FILENO, {"search", "-l", "my.index", "cat"}), "a\\x1b[2J\n");
  EXPECT_EQ(Run({"list", "my.index"}), Success("a\x1b[2J\n"));
}

TEST_F(ScreenTest, TextsKeepTheirLineFeeds) {
  Add("a", "cat\n");
  ASSERT_EQ(Run({"title", "set", "my.index", "a", "one\n\ttwo\r\x9b\xc3\xa9"}).status, 0);
  EXPECT_EQ(Shown(STDOUT_FILENO, {"title", "get", "my.index", "a"}),
            "one\n\ttwo\\x0d\\x9b\xc3\xa9\n");
  EXPECT_EQ(Run({"title", "get", "my.index", "a"}), Success("one\n\ttwo\r\x9b\xc3\xa9\n"));
}

TEST_F(ScreenTest, IndexingShowsABarUnlessQuiet) {
  Write("slow", "#!/bin/sh\nsleep 0.3\necho text\n");
  ASSERT_EQ(chmod(Path("slow").c_str(), 0700), 0);
  for (const char* name : {"d/a.zz", "d/b.zz"}) Write(name, std::string("a\0b", 3));
  const Arguments index{"index", "my.index",    "d",
                        "--all", "--converter", "zz=" + Path("slow") + " {}"};
  const std::string shown = Shown(STDERR_FILENO, index);
  EXPECT_EQ(shown.substr(0, 3), "\r[#") << shown;
  EXPECT_NE(shown.find("1/2 files"), std::string::npos) << shown;
  Arguments quiet = index;
  quiet.emplace_back("-q");
  EXPECT_EQ(Shown(STDERR_FILENO, quiet), "");
}

TEST_F(ScreenTest, HelpAndErrorsFitTheTerminal) {
  const std::string help = Shown(STDOUT_FILENO, {"search", "--help"});
  EXPECT_NE(help.find("or, where\n                            no document has all, some."),
            std::string::npos)
      << help;
  EXPECT_NE(Run({"search", "--help"}).out.find("where no document has all, some."),
            std::string::npos);
  const std::string name(75, 'a');
  EXPECT_EQ(Shown(STDERR_FILENO, {"list", name}),
            "kestan: cannot open index\n  '" + name +
                "':\n"
                "  no such file or folder; kestan index makes one\n");
  EXPECT_EQ(Run({"list", name}).err, "kestan: cannot open index '" + name +
                                         "': no such file or folder; kestan index makes one\n");
}

// ---- Every command ----

// All bytes that a terminal could treat as a command, except white space, which ends a word.
std::string Orders() {
  std::string text = "\x1b[2J\x1b]0;t\a\b";
  for (int byte = 1; byte < 0xa0; ++byte) {
    const bool is_white = byte >= '\t' && byte <= '\r';
    if (byte < 0x20 ? !is_white : byte >= 0x7f) text += static_cast<char>(byte);
  }
  for (int byte = 0x80; byte < 0xa0; ++byte) text += {'\xc2', static_cast<char>(byte)};
  return text + "\xe2\x80\xaa\xe2\x80\xae\xe2\x81\xa6\xe2\x81\xa9\xff\xe2\x80";
}

// The same with the white space that is no line feed.
std::string MoreOrders() { return Orders() + "\r\v\f" + Orders(); }

// Returns `shown` without the terminal controls of the command itself: the progress bar and,
// if `coloured`, in which colours.
std::string WithoutOwnOrders(const std::string& shown, bool coloured) {
  const std::string rest = std::regex_replace(shown, std::regex("\r[ -~]*\x1b\\[K"), "");
  if (!coloured) return rest;
  return std::regex_replace(rest, std::regex("\x1b\\[(2|36|1;31|0)m"), "");
}

void ExpectHarmless(const std::string& text, const Arguments& arguments) {
  for (std::size_t at = 0; at < text.size();) {
    const auto next = kestan_cli::FirstCharacter(std::string_view(text).substr(at));
    const bool is_blank = text[at] == '\n' || text[at] == '\t';
    if (next.is_control && !is_blank) {
      ADD_FAILURE() << testing::PrintToString(arguments) << " shows "
                    << testing::PrintToString(text.substr(at, 40));
      return;
    }
    at += next.bytes;
  }
}

// Each test runs with a `base.index` of either kind.
enum class Kind { kFolder, kFile };

class TerminalControlsTest : public ScreenTest, public testing::WithParamInterface<Kind> {
 protected:
  void SetUp() override {
    Write(name_, "cat " + MoreOrders() + "\ncat\n" + MoreOrders() + "cat\n");
    Write("files/" + Orders() + ".txt", "cat\n");
    Write("files/" + Orders() + ".pdf", "%PDF-1\n");
    Write("files/" + Orders() + "\n", "cat\n");
    Write("list", name_ + '\0' + Orders() + '\0');
    Write("words", "red " + std::string("\x1b[2J\a") + "\n");
    ASSERT_EQ(Run({"index", "folder.index", name_}).status, 0);
    FillFolder();
    if (IsFolder()) {
      std::filesystem::rename(Path("folder.index"), Path("base.index"));
    } else {
      MakeFile();
    }
    Write("dump", Run({"dump", "base.index"}).out + MoreOrders() + "\n");
    ASSERT_EQ(setenv("NO_COLOR", "1", 1), 0);
  }

  static bool IsFolder() { return GetParam() == Kind::kFolder; }

  // What stands for an argument where it is to be a good one.
  std::string Good(const Command& command, const std::string& argument) const {
    const std::map<std::string, std::string> values = {
        {"INDEX", "my.index"},
        {"PATH", "files"},
        {"QUERY", "cat"},
        {"NAME", command.name == "export" ? "target" : name_},
        {"TEXT", MoreOrders()},
        {"LIST", Orders()},
        {"WORD", "\x1b[2J\a"},
        {"FLAGS", "2"},
        {"OLD", name_},
        {"NEW", command.name == "move" ? "new" + Orders() : "new.index"},
        {"DAMAGED", "my.index"},
        {"FILE", "dump"},
        {"FORM", "json"},
        {"SHELL", "bash"},
        {"COMMAND", "search"},
        {"QUERIES", "dump"},
        {"FOLDER", "."},
        {"--index", "my.index"},
        {"--one-file", "one.index"},
        {"--include", "*"},
        {"--exclude", "*" + Orders() + ".txt"},
        {"--converter", "pdf=false {} " + Orders()},
        {"--stop-words", "english"},
        {"--language", "german"},
        {"--limit", "1"},
        {"--at-least", "1"},
        {"--at-most", "9"}};
    const auto found = values.find(argument);
    EXPECT_NE(found, values.end()) << "what is a good " << argument << "? Say so above";
    return found != values.end() ? found->second : "";
  }

  // The command with good arguments for all positionals, or for those it needs.
  Arguments Line(const Command& command, bool all) const {
    Arguments line;
    const std::size_t blank = command.name.find(' ');
    line.push_back(command.name.substr(0, blank));
    if (blank != std::string::npos) line.push_back(command.name.substr(blank + 1));
    for (const Positional& positional : command.positionals) {
      const bool needed = positional.count == Positional::Count::kOne ||
                          positional.count == Positional::Count::kOneOrMore;
      if (needed || all) line.push_back(Good(command, positional.name));
    }
    return line;
  }

  // The command with each of its options, one at a time, with good values and a bad one.
  std::vector<Arguments> LinesWithOptions(const Command& command) const {
    std::vector<Arguments> lines;
    for (const Option& option : command.options) {
      Arguments values = option.choices;
      if (option.value.empty()) values = {""};
      if (values.empty()) values.push_back(Good(command, LongName(option)));
      if (!option.value.empty()) values.push_back(MoreOrders());
      for (const std::string& value : values) {
        lines.push_back(Line(command, true));
        lines.back().push_back(LongName(option) + (value.empty() ? "" : "=" + value));
      }
    }
    return lines;
  }

  // Ways to run the command that together show all that it has to say.
  std::vector<Arguments> Lines(const Command& command) const {
    std::vector<Arguments> lines = LinesWithOptions(command);
    lines.push_back(Line(command, true));
    lines.push_back(Line(command, false));
    const std::size_t words = lines.back().size() - CountNeeded(command);
    for (std::size_t i = words; i < lines[lines.size() - 2].size(); ++i) {
      lines.push_back(Line(command, true));
      lines.back()[i] = MoreOrders();
    }
    lines.push_back(Line(command, true));
    lines.back().push_back("--" + MoreOrders());
    return lines;
  }

  // Returns what a terminal gets of both streams, with a fresh index.
  std::string Screen(const Arguments& arguments) {
    for (const char* made : {"my.index", "new.index", "one.index"}) {
      std::filesystem::remove_all(Path(made));
    }
    CopyBase();
    const bool is_list = arguments.back() == "--stdin0";
    return Shown({STDOUT_FILENO, STDERR_FILENO}, arguments,
                 [&] { dup2(open(is_list ? "list" : "words", O_RDONLY), STDIN_FILENO); });
  }

  void CopyBase() const {
    std::filesystem::copy(Path("base.index"), Path("my.index"),
                          std::filesystem::copy_options::recursive);
  }

  const std::string name_ = "name" + Orders();

 private:
  static std::size_t CountNeeded(const Command& command) {
    std::size_t needed = 0;
    for (const Positional& positional : command.positionals) {
      needed += positional.count == Positional::Count::kOne ||
                positional.count == Positional::Count::kOneOrMore;
    }
    return needed;
  }

  // Adds another document to the index, of words that `kestan index` would not make, and texts.
  void FillFolder() const {
    kestan::search::IndexWriter writer = WriterOf(Path("folder.index"));
    const std::string stored = std::filesystem::canonical(Path(name_)).string();
    const auto reader = ReaderOfFolder(Path("folder.index"));
    const std::string user = reader.FindDocument(stored)->host_data;  // with it goes the snippet
    kestan::search::Document other;
    other.name = "other" + name_;
    other.words = "cat x" + Orders();
    ASSERT_TRUE(writer.Add(other).ok());
    using Field = kestan::search::DocumentField;
    for (const std::string& name : {stored, other.name}) {
      ASSERT_TRUE(writer.SetField(name, Field::kTitle, MoreOrders()).ok());
      ASSERT_TRUE(writer.SetField(name, Field::kSummary, MoreOrders()).ok());
    }
    ASSERT_TRUE(writer.SetField(stored, Field::kHostData, user + "\n" + MoreOrders()).ok());
    writer.SetProperty("wordlist:" + Orders(), "red\n" + Orders() + "\n");
    ASSERT_TRUE(writer.Commit().ok());
  }

  // Makes the same as one file, with a record that is damaged.
  void MakeFile() {
    Kestan engine;
    ASSERT_EQ(engine.OpenIndex(Path("base.index").c_str(), 1), 0);
    const auto reader = ReaderOfFolder(Path("folder.index"));
    const auto status = reader.ForEachDocument([&](const auto& document) {
      const bool is_other = document.name == "other" + name_;
      const std::string name = is_other ? document.name : name_;
      engine.AddDocumentWords(name.c_str(), is_other ? ("cat " + Orders()).c_str() : "cat");
      engine.DBPutTitle(name.c_str(), document.title.c_str());
      engine.DBPutSummary(name.c_str(), document.summary.c_str());
      if (!is_other) engine.DBPutUser(name.c_str(), document.host_data.c_str());
      return true;
    });
    ASSERT_TRUE(status.ok());
    for (const auto put : {&Kestan::DBPutTitle, &Kestan::DBPutSummary}) {
      (engine.*put)(("no" + name_).c_str(), MoreOrders().c_str());
    }
    engine.DBPutWords(Orders().c_str(), "red");  // with others it would be no list of words
    engine.CloseIndex();
    Plant(Path("base.index"), {{"z-" + Orders(), "?"}});
  }
};

std::string NameOfKind(const testing::TestParamInfo<Kind>& kind) {
  return kind.param == Kind::kFolder ? "Folder" : "File";
}

INSTANTIATE_TEST_SUITE_P(BothKinds, TerminalControlsTest,
                         testing::Values(Kind::kFolder, Kind::kFile), NameOfKind);

// Covers a command that comes later, as long as Good() knows its arguments.
TEST_P(TerminalControlsTest, OfFilesAndIndexesDoNotReachTheTerminal) {
  for (const Command& command : kestan_cli::AllCommands()) {
    for (const Arguments& line : Lines(command)) {
      const bool coloured = line.back() == "--color=always";
      ExpectHarmless(WithoutOwnOrders(Screen(line), coloured), line);
    }
  }
}

TEST_P(TerminalControlsTest, AreShownEscaped) {
  std::set<std::string> shown_by = {"list",     "search",       "words", "title get", "summary get",
                                    "user get", "wordlist get", "dump",  "export"};
  if (IsFolder()) shown_by.insert({"move", "remove"});
  if (!IsFolder()) shown_by.erase("wordlist get");  // its words are in ASCII
  if (!IsFolder()) shown_by.insert("check");        // it names the records that are damaged
  for (const Command& command : kestan_cli::AllCommands()) {
    if (shown_by.count(command.name) == 0) continue;
    Arguments line = Line(command, true);
    if (command.name == "move" || command.name == "remove") line.back() = "no" + Orders();
    if (command.name == "move") line[2] = "no" + Orders();
    const std::string screen = Screen(line);
    EXPECT_NE(screen.find("1b[2J"), std::string::npos) << command.name << ": " << screen;
  }
}

TEST_P(TerminalControlsTest, OfColoursAreOnlyTheCommandsOwn) {
  const Arguments line = {"search", "--color=always", "my.index", "cat"};
  const std::string shown = Screen(line);
  EXPECT_NE(shown.find("\x1b[1;31mcat\x1b[0m"), std::string::npos) << shown;
  ExpectHarmless(WithoutOwnOrders(shown, true), line);
}

TEST_P(TerminalControlsTest, ReachProgramsUnchanged) {
  CopyBase();
  for (const char* record : {"title", "summary"}) {
    EXPECT_EQ(Run({record, "get", "my.index", name_}), Success(MoreOrders() + "\n")) << record;
  }
  EXPECT_EQ(Run({"list", "my.index"}), Success(name_ + "\nother" + name_ + "\n"));
  EXPECT_NE(Run({"words", "my.index"}).out.find(Orders() + "\n"), std::string::npos);
}

TEST_P(TerminalControlsTest, LeaveJsonValid) {
  CopyBase();
  std::vector<Arguments> lines{{"list", "my.index"},
                               {"search", "--snippets", "my.index", "cat"},
                               {"words", "my.index"},
                               {"title", "get", "my.index", name_},
                               {"wordlist", "get", "my.index", Orders()}};
  if (!IsFolder()) lines.push_back({"check", "my.index"});
  for (const Arguments& line : lines) {
    Arguments with_json = line;
    with_json.emplace_back("--json");
    const std::string shown = Shown(STDOUT_FILENO, with_json);
    EXPECT_EQ(shown, Run(with_json).out);
    const auto json = nlohmann::json::parse(shown, nullptr, false);
    EXPECT_FALSE(json.is_discarded()) << shown;
    EXPECT_NE(json.dump(-1, ' ', true).find("1b[2J"), std::string::npos) << shown;
  }
}

}  // namespace
}  // namespace kestan_tests
