// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/sync/index_change.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <set>
#include <string>

#include "cli/console/message.h"
#include "cli/index/index_errors.h"
#include "tests/cli/command_test.h"
#include "tests/cli/index_folder.h"
#include "tests/cli/traced_command.h"

namespace kestan_cli {
namespace {

namespace fs = std::filesystem;

const Fingerprint kPrint{{4, 5, 6}, "00112233445566778899aabbccddeeff"};
const std::string kLine = "size=4 mtime=5.000000006 hash=" + kPrint.hash;

class IndexChangeTest : public kestan_tests::CommandTest {
 protected:
  void SetUp() override { fs::current_path(Path("")); }
  void TearDown() override { fs::current_path("/"); }

  // Adds a document and commits.
  static void Add(const std::string& name, const std::string& text) {
    IndexChange change("my.index", ProgressStyle::kNone);
    change.Add(name, MakeDocument(text), kPrint, "");
    change.Commit();
  }

  static kestan::search::DocumentInfo Info(const std::string& name) {
    return kestan_tests::DocumentsOfIndex("my.index")[name];
  }

  static void SetRecord(const std::string& name, const std::string& record) {
    kestan_tests::ChangeIndex("my.index", [&](kestan::search::IndexWriter& writer) {
      using kestan::search::DocumentField;
      EXPECT_TRUE(writer.SetField(name, DocumentField::kHostData, record).ok());
    });
  }
};

TEST_F(IndexChangeTest, MakesTheIndexWithTheFirstChange) {
  IndexChange change("my.index", ProgressStyle::kNone);
  EXPECT_EQ(change.before(), nullptr);
  EXPECT_TRUE(change.Documents().empty());
  EXPECT_FALSE(change.HasChanges());
  EXPECT_FALSE(fs::exists("my.index"));
  change.Add("/a", MakeDocument("Title\nsummary\n"), kPrint, "");
  EXPECT_TRUE(change.HasChanges());
  change.Commit();
  EXPECT_EQ(Info("/a").title, "Title");
  EXPECT_EQ(Info("/a").summary, "summary");
  EXPECT_EQ(Info("/a").host_data, kLine);
}

TEST_F(IndexChangeTest, NameOfANewIndexIsPutOnTheDisk) {
  Write("text", "words");
  fs::create_directory("below");
  for (const char* index : {"my.index", "below/my.index", "below/other///"}) {
    const kestan_tests::TempDir streams;
    const pid_t child = Start({"index", index, "text"}, streams, kestan_tests::BeTraced);
    std::set<std::string> synced;
    kestan_tests::StopBefore(child, [&](const kestan_tests::Call& call) {
      if (call.number != SYS_fsync) return false;
      const std::string files = "/proc/" + std::to_string(child) + "/fd/";
      synced.insert(fs::read_symlink(files + std::to_string(call.Argument(0))));
      return false;
    });
    EXPECT_TRUE(fs::exists(index));
    const bool is_below = std::string(index).find('/') != std::string::npos;
    EXPECT_EQ(synced.count(fs::canonical(is_below ? "below" : ".")), 1u) << index;
  }
}

TEST_F(IndexChangeTest, WithoutCommitNoIndexIsMade) {
  {
    IndexChange change("my.index", ProgressStyle::kNone);
    change.Add("/a", MakeDocument("cat"), kPrint, "");
    EXPECT_TRUE(fs::exists("my.index"));
  }
  EXPECT_FALSE(fs::exists("my.index"));
}

TEST_F(IndexChangeTest, WithoutCommitAnIndexStaysAsItWas) {
  Add("/a", "cat");
  const std::string before = kestan_tests::FilesOfIndex("my.index");
  {
    IndexChange change("my.index", ProgressStyle::kNone);
    change.Add("/b", MakeDocument("dog"), kPrint, "");
    change.Remove("/a");
    change.SetProperty("x", "y");
  }
  EXPECT_EQ(kestan_tests::FilesOfIndex("my.index"), before);
}

TEST_F(IndexChangeTest, EmptyFolderThatWasThereStays) {
  fs::create_directory("my.index");
  {
    IndexChange change("my.index", ProgressStyle::kNone);
    EXPECT_EQ(change.before(), nullptr);
    EXPECT_TRUE(fs::is_empty("my.index"));
    change.Add("/b", MakeDocument("dog"), kPrint, "");
  }
  EXPECT_TRUE(fs::is_directory("my.index"));
}

TEST_F(IndexChangeTest, SecondOneIsToldThatTheIndexIsBusy) {
  Add("/a", "cat");
  const IndexChange first("my.index", ProgressStyle::kNone);
  try {
    const auto second = kestan::search::IndexWriter::Open("my.index");
    CheckStatus(second.status(), "my.index");
    FAIL();
  } catch (const CommandError& error) {
    EXPECT_EQ(error.status(), kBusy);
  }
}

TEST_F(IndexChangeTest, DocumentsComeInOrderOfTheirNames) {
  Add("/b", "cat");
  Add("/a", "dog");
  SetRecord("/b", "no fingerprint");
  const IndexChange change("my.index", ProgressStyle::kNone);
  const auto documents = change.Documents();
  ASSERT_EQ(documents.size(), 2u);
  EXPECT_EQ(documents[0].name, "/a");
  ASSERT_TRUE(documents[0].fingerprint.has_value());
  EXPECT_EQ(documents[0].fingerprint->hash, kPrint.hash);
  EXPECT_EQ(documents[1].name, "/b");
  EXPECT_FALSE(documents[1].fingerprint.has_value());
}

TEST_F(IndexChangeTest, LinesOfTheUserStay) {
  Add("/a", "cat");
  SetRecord("/a", "mine");
  {
    IndexChange change("my.index", ProgressStyle::kNone);
    change.UpdateFingerprint("/a", kPrint, "/a");
    change.Commit();
  }
  EXPECT_EQ(Info("/a").host_data, kLine + "\nmine");
  {
    IndexChange change("my.index", ProgressStyle::kNone);
    change.Move("/a", "/b", kPrint);
    change.Commit();
  }
  EXPECT_EQ(Info("/b").host_data, kLine + "\nmine");
  {
    IndexChange change("my.index", ProgressStyle::kNone);
    change.Add("/c", MakeDocument("dog"), kPrint, "/b");
    change.Commit();
  }
  EXPECT_EQ(Info("/c").host_data, kLine + "\nmine");
  EXPECT_EQ(kestan_tests::ListOfIndex("my.index", "/"), "c\n");
}

}  // namespace
}  // namespace kestan_cli
