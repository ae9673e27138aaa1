// SPDX-License-Identifier: GPL-3.0-or-later
// Names of files and of members that would do harm if anything took them for more than names.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <set>
#include <string>

#include "tests/cli/sync/run_index_test.h"
#include "tests/support/packed.h"

namespace kestan_cli {
namespace {

namespace fs = std::filesystem;

class BadNamesTest : public RunIndexTest {
 protected:
  // Returns all that is at and below the folder of the test, but for the index.
  std::set<std::string> Everything() const {
    std::set<std::string> paths;
    for (const auto& entry : fs::recursive_directory_iterator(Path(""))) {
      const std::string path = entry.path().string();
      if (path.find("my.index") == std::string::npos) paths.insert(path);
    }
    return paths;
  }

  // Has `kestan index` convert .pdf files with a program that prints them.
  kestan_tests::Outcome IndexWithTemporaryFolder() {
    return Run({"index", "my.index", "d", "--archives", "--converter", "pdf=cat {}", "--converter",
                "sh=sh {}"},
               [] { setenv("TMPDIR", (fs::current_path() / "tmp").c_str(), 1); });
  }
};

TEST_F(BadNamesTest, NamesOfFilesNeverReachAShell) {
  for (const char* name : {"$(touch x).pdf", "`touch x`.pdf", "; touch x;.pdf", "|touch x|.pdf",
                           "-o.pdf", "--help.pdf", "a b.pdf", "*.pdf", "'.pdf", "\".pdf", "{}.pdf",
                           "&touch x&.pdf", "\\.pdf", "-", "> x.pdf"}) {
    Write(std::string("d/") + name, "walrus");
  }
  fs::create_directory("tmp");
  const auto before = Everything();
  const kestan_tests::Outcome outcome = IndexWithTemporaryFolder();
  EXPECT_EQ(outcome.status, 0) << outcome;
  EXPECT_EQ(Everything(), before);
  EXPECT_EQ(kestan_tests::DocumentsOfIndex("my.index").size(), 15u);
}

TEST_F(BadNamesTest, FileWhoseNameHoldsALineFeedIsReported) {
  Write("d/a\nb.pdf", "walrus");
  Write("d/good", "walrus");
  const kestan_tests::Outcome outcome = IndexWithTemporaryFolder();
  EXPECT_EQ(outcome.status, 1);
  EXPECT_NE(outcome.err.find("its name holds a line feed"), std::string::npos) << outcome;
}

TEST_F(BadNamesTest, MembersAreWrittenNowhereButToATemporaryFolderThatGoes) {
  const kestan_tests::PackedMembers members{
      {"../up.pdf", "walrus"},          {"../../../../up.txt", "walrus"},
      {Path("absolute.pdf"), "walrus"}, {"$(touch x).pdf", "walrus"},
      {"; touch x;.pdf", "walrus"},     {"-o.pdf", "walrus"},
      {"pwd.sh", "echo $PWD walrus"},   {"in.docx", "PK\x03\x04"}};
  Write("d/a.zip", kestan_tests::Archive("zip", "none", members));
  Write("d/a.tar", kestan_tests::Archive("pax", "none", members));
  Write("d/a.tgz", kestan_tests::Archive("gnutar", "gzip", members));
  fs::create_directory("tmp");
  const auto before = Everything();
  const kestan_tests::Outcome outcome = IndexWithTemporaryFolder();
  EXPECT_EQ(outcome.status, 1) << outcome;  // for in.docx
  EXPECT_EQ(Everything(), before);
  EXPECT_EQ(kestan_tests::DocumentsOfIndex("my.index").size(), 21u);
}

}  // namespace
}  // namespace kestan_cli
