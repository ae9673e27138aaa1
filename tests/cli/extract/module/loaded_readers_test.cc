// SPDX-License-Identifier: GPL-3.0-or-later
// The command as it is installed, with its module and without.
#include "cli/extract/module/loaded_readers.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>

#include "tests/cli/command_test.h"

namespace kestan_tests {
namespace {

namespace fs = std::filesystem;

const std::string kPage = "<title>Roses</title><p>all about roses";
const std::string kSkipped = "needs kestan-readers.so, which cannot be loaded\n";

// The way from the folder of the command to the module, in the build as where they are installed.
std::string WayToModule() {
  return fs::path(KESTAN_MODULE)
      .lexically_relative(fs::path(KESTAN_COMMAND).parent_path())
      .string();
}

class LoadedReadersTest : public CommandTest {
 protected:
  void SetUp() override {
    fs::create_directories(fs::path(Module()).parent_path());
    fs::create_directories(fs::path(Command()).parent_path());
    fs::create_hard_link(KESTAN_COMMAND, Command());
    UseCommand(Command());
  }

  // The prefix lies in the build, so that the command need not be copied.
  std::string Command(const std::string& prefix = "prefix") const {
    return prefixes_ / prefix + "/a/b/bin/kestan";
  }
  std::string Module(const std::string& prefix = "prefix") const {
    const fs::path folder = fs::path(Command(prefix)).parent_path();
    return (folder / WayToModule()).lexically_normal().string();
  }

  void Install(const std::string& module = KESTAN_MODULE) const {
    fs::copy_file(module, Module(), fs::copy_options::overwrite_existing);
  }

  // The last line of a run that needed the module.
  std::string Line(const std::string& reason) const {
    return "kestan: cannot load '" + Module() +
           "', which reads HTML, packed files and other encodings: " + reason + "\n";
  }

  Outcome Index() { return Run({"index", "--quiet", "my.index", "d"}); }

  const TempDir prefixes_{fs::path(KESTAN_COMMAND).parent_path()};
};

TEST_F(LoadedReadersTest, CommandReadsPagesWithTheModuleOfItsPrefix) {
  Install();
  Write("d/a.html", kPage);
  Write("d/b.html", "<meta charset=windows-1251>\xf0\xee\xe7\xfb");
  EXPECT_EQ(Index(), Success(""));
  EXPECT_EQ(Run({"search", "--names-only", "my.index", "roses"}), Success("d/a.html\n"));
  EXPECT_EQ(Run({"search", "--names-only", "my.index", "розы"}), Success("d/b.html\n"));
}

TEST_F(LoadedReadersTest, PrefixMayBeMovedAndTheCommandLinkedTo) {
  Install();
  Write("d/a.html", kPage);
  fs::rename(prefixes_ / "prefix", prefixes_ / "moved");
  fs::create_symlink(Command("moved"), Path("kestan"));
  UseCommand(Path("kestan"));
  EXPECT_EQ(Index(), Success(""));
}

TEST_F(LoadedReadersTest, WithoutItPagesAreSkippedAndOneLineSaysWhatIsMissing) {
  Write("d/a.html", kPage);
  Write("d/b.txt", "roses");
  Write("d/c.html", kPage);
  const Outcome outcome = Run({"index", "my.index", "d"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.out,
            "added 1, updated 0, moved 0, removed 0, unchanged 0, skipped 2 (2 unreadable), "
            "1 document in 1 segment\n"
            "  2 unreadable: install kestan-readers.so again: the last line says what is wrong "
            "with it\n");
  EXPECT_EQ(outcome.err, "kestan: skipped 'd/a.html': " + kSkipped +
                             "kestan: skipped 'd/c.html': " + kSkipped +
                             Line("no such file or folder"));
}

TEST_F(LoadedReadersTest, WhatTheIndexHoldsOfSuchPagesIsKept) {
  Install();
  Write("d/a.html", kPage);
  Write("d/b.html", kPage);
  ASSERT_EQ(Index(), Success(""));
  fs::remove(Module());
  Write("d/a.html", kPage + " and violets");
  const Outcome outcome = Index();
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.err,
            "kestan: skipped 'd/a.html': " + kSkipped + Line("no such file or folder"));
  EXPECT_EQ(Run({"search", "--names-only", "my.index", "roses"}), Success("d/a.html\nd/b.html\n"));
  Install();
  EXPECT_EQ(Index(), Success(""));
  EXPECT_EQ(Run({"search", "--names-only", "my.index", "violets"}), Success("d/a.html\n"));
}

TEST_F(LoadedReadersTest, RunOfPagesAloneSaysWhyThereIsNothingToIndex) {
  Write("d/a.html", kPage);
  EXPECT_EQ(Index(), (Outcome{2, "",
                              "kestan: skipped 'd/a.html': " + kSkipped +
                                  "kestan: nothing to index: no text files, 0 binary files, 0 "
                                  "links, 1 unreadable\n" +
                                  Line("no such file or folder")}));
}

TEST_F(LoadedReadersTest, SearchWithoutItShowsHitsWithoutSnippets) {
  Install();
  Write("d/a.html", kPage);
  Write("d/b.html", kPage);
  ASSERT_EQ(Index(), Success(""));
  const std::vector<std::string> search = {"search", "--snippets", "my.index", "roses"};
  const Outcome with = Run(search);
  EXPECT_NE(with.out.find("all about [roses]"), std::string::npos) << with;
  EXPECT_EQ(with.err, "");
  fs::remove(Module());
  const Outcome without = Run(search);
  EXPECT_EQ(without.status, 0);
  EXPECT_NE(without.out.find("d/a.html"), std::string::npos) << without;
  EXPECT_NE(without.out.find("d/b.html"), std::string::npos) << without;
  EXPECT_EQ(without.err, Line("no such file or folder"));
}

TEST_F(LoadedReadersTest, TextsNeedNoModule) {
  Write("d/ascii.txt", "roses");
  Write("d/utf8.txt", "r\u00f6ses \u0440\u043e\u0437\u044b");
  Write("d/latin1.txt", "r\xf6ses");
  Write("d/utf16.txt", std::string("\xff\xfer\0\xf6\0", 6));
  Write("d/page.md", "# R\xf6ses\n\n<p>text");
  Write("d/empty.html", "");
  EXPECT_EQ(Index(), Success(""));
  EXPECT_EQ(Run({"search", "--names-only", "my.index", "text"}), Success("d/page.md\n"));
  EXPECT_EQ(Run({"list", "my.index"}).err, "");
}

TEST_F(LoadedReadersTest, ModuleOfAnotherVersionIsRefused) {
  Install(KESTAN_OTHER_MODULE);
  Write("d/a.html", kPage);
  Write("d/b.txt", "roses");
  const Outcome outcome = Index();
  EXPECT_EQ(outcome.status, 1);
  const std::string version = KestanReaders()->version;
  EXPECT_EQ(outcome.err, "kestan: skipped 'd/a.html': " + kSkipped +
                             Line("it is of version 0.0.0-other, this command of " + version));
}

// Where only what the loader does not need is missing, the page is read.
TEST_F(LoadedReadersTest, ModuleThatEndsEarlyCrashesNothing) {
  const std::string bytes = BytesOfFile(KESTAN_MODULE);
  Write("d/a.html", kPage);
  int refused = 0;
  for (std::size_t size = 0; size < bytes.size(); size += bytes.size() / 40 + 1) {
    WriteFile(Module(), bytes.substr(0, size));
    const Outcome outcome = Run({"index", "--quiet", "--all", "my.index", "d"});
    if (outcome == Success("")) continue;
    ++refused;
    EXPECT_EQ(outcome.status, 2) << size << outcome;
    EXPECT_NE(outcome.err.find(Module()), std::string::npos) << size << outcome;
  }
  EXPECT_GT(refused, 2);
}

TEST_F(LoadedReadersTest, NothingIsLoadedFromTheCurrentFolderOrTheEnvironment) {
  Write("d/a.html", kPage);
  for (const char* folder : {"", "lib/kestan/", "kestan/"}) {
    fs::create_directories(Path(folder));
    fs::copy_file(KESTAN_MODULE, Path(folder) + "kestan-readers.so");
  }
  const std::string here = Path("");
  const Outcome outcome = Run({"index", "--quiet", "my.index", "d"}, [&] {
    for (const char* name : {"PATH", "KESTAN_READERS", "HOME", "PWD"}) {
      setenv(name, here.c_str(), 1);
    }
    const char* const set = getenv("LD_LIBRARY_PATH");
    setenv("LD_LIBRARY_PATH", (here + (set != nullptr ? std::string(":") + set : "")).c_str(), 1);
  });
  EXPECT_EQ(outcome.status, 2);
  EXPECT_NE(outcome.err.find(Line("no such file or folder")), std::string::npos) << outcome;
}

TEST_F(LoadedReadersTest, ModuleThatEverybodyMayWriteIsNotLoaded) {
  Install();
  fs::permissions(Module(), fs::perms(0666));
  Write("d/a.html", kPage);
  EXPECT_NE(Index().err.find(Line("every user may write it")), std::string::npos);
}

}  // namespace
}  // namespace kestan_tests
