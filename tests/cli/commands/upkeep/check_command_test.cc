// SPDX-License-Identifier: GPL-3.0-or-later
#include <gtest/gtest.h>

#include "tests/cli/commands/upkeep/upkeep_test.h"

namespace kestan_tests {
namespace {

class CheckCommandTest : public UpkeepTest {};

TEST_F(CheckCommandTest, GoodIndexHasNoFaults) {
  for (const char* index : {"one.index", "my.index"}) {
    EXPECT_EQ(Run({"check", index}), Success("0 faults, 0 notes\n"));
    EXPECT_EQ(Run({"check", index, "--json"}),
              Success("{\"schema\":1,\"faults\":0,\"notes\":0,\"lines\":[]}\n"));
  }
}

TEST_F(CheckCommandTest, FaultsAreNamedAndTheStatusIsOne) {
  Plant(Path("one.index"), {{"g-code", Units({1})}});
  EXPECT_EQ(
      Run({"check", "one.index"}),
      (Outcome{1, "g-code: the counter 1 is below code 2, which is in use\n1 fault, 0 notes\n",
               ""}));
  EXPECT_EQ(Run({"check", "-q", "one.index"}), (Outcome{1, "", ""}));
}

TEST_F(CheckCommandTest, ChangedFileOfAFolderIsNamed) {
  Damage("my.index/1.terms");
  Write("my.index/99.terms", "");
  const std::string fault = "1.terms: its bytes have changed since it was written";
  const std::string note = "99.terms: note: MANIFEST does not name it; the next writer removes it";
  for (const char* index : {"my.index", "my.index/"}) {
    EXPECT_EQ(Run({"check", index}), (Outcome{1, fault + "\n" + note + "\n1 fault, 1 note\n", ""}));
  }
  EXPECT_EQ(Run({"check", "--json", "my.index"}),
            (Outcome{1,
                     "{\"schema\":1,\"faults\":1,\"notes\":1,\"lines\":[\"" + fault + "\",\"" +
                         note + "\"]}\n",
                     ""}));
}

TEST_F(CheckCommandTest, RecordOfAFolderIsNamedWithItsFile) {
  Plant(Path("my.index/1.segment"), {{"g-code", Units({0})}});
  const Outcome outcome = Run({"check", "my.index"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_NE(outcome.out.find("\n1.segment: g-code: the counter 0 is below code 1"),
            std::string::npos)
      << outcome;
}

TEST_F(CheckCommandTest, DamagedManifestIsAFault) {
  Damage("my.index/MANIFEST");
  EXPECT_EQ(Run({"check", "my.index"}),
            (Outcome{1, "MANIFEST: it is damaged\n1 fault, 0 notes\n", ""}));
}

TEST_F(CheckCommandTest, LostManifestIsAFault) {
  std::filesystem::remove(Path("my.index/MANIFEST"));
  EXPECT_EQ(Run({"check", "my.index"}),
            (Outcome{1,
                     "MANIFEST: it is missing, but there are segments of an index\n"
                     "1 fault, 0 notes\n",
                     ""}));
}

TEST_F(CheckCommandTest, OtherFilesAndFoldersAreNoIndexes) {
  Write("text", "no index");
  std::filesystem::create_directory(Path("folder"));
  const Outcome text = Run({"check", "text"});
  EXPECT_EQ(text.status, 2);
  EXPECT_EQ(text.err.rfind("kestan: cannot open index 'text': not an index file (", 0), 0u) << text;
  EXPECT_EQ(Run({"check", "folder"}).status, 2);
  EXPECT_EQ(Run({"check", "nowhere"}),
            Failure("cannot open index 'nowhere': no such file or folder; kestan index makes one"));
}

}  // namespace
}  // namespace kestan_tests
