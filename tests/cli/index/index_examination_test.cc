// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/index/index_examination.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <string>

#include "cli/console/message.h"
#include "tests/cli/both_kinds_test.h"

namespace kestan_tests {
namespace {

constexpr const char* kIndex = "my.index";

class IndexExaminationTest : public CommandTest {
 protected:
  // Makes `my.index` with one document.
  void MakeIndex() {
    Document document;
    document.name = "a";
    document.text = "some words";
    AddToFile(Path(kIndex), {document});
  }

  // Returns why the file `name` cannot be opened, after "cannot open index 'PATH': "; all of the
  // message if it says something else, "" if the file is an index. Expects the file to keep its
  // bytes.
  std::string Reason(const std::string& name, int status = kestan_cli::kFailed) const {
    const std::string before = BytesOfFile(Path(name));
    const std::string start = "cannot open index '" + Path(name) + "': ";
    std::string reason;
    try {
      kestan::IndexFile file;
      kestan_cli::OpenIndexFile(file, Path(name));
    } catch (const kestan_cli::CommandError& error) {
      EXPECT_EQ(error.status(), status);
      reason = error.what();
    }
    EXPECT_EQ(BytesOfFile(Path(name)), before);
    return reason.rfind(start, 0) == 0 ? reason.substr(start.size()) : reason;
  }

  void RemoveRecord(const std::string& key) {
    Database store;
    ASSERT_EQ(store.Open(Path(kIndex).c_str(), 1), 0);
    ASSERT_EQ(store.Del(Datum(key)), 0);
  }
};

TEST_F(IndexExaminationTest, IndexIsOpenedForReading) {
  MakeIndex();
  kestan::IndexFile file;
  kestan_cli::OpenIndexFile(file, Path(kIndex));
  EXPECT_EQ(file.CodeOf("a"), 1);
  EXPECT_EQ(file.FileError(), kestan::StoreError::kNone);
}

TEST_F(IndexExaminationTest, IndexWithoutDocumentsIsOne) {
  {
    Kestan engine;
    ASSERT_EQ(engine.OpenIndex(Path(kIndex).c_str(), 1), 0);
  }
  EXPECT_EQ(Reason(kIndex), "");
}

TEST_F(IndexExaminationTest, ShortTextIsNoIndex) {
  Write("note", "buy milk\n");
  EXPECT_EQ(Reason("note"),
            "not an index file (Unexpected end of file); if it was one, see kestan repair");
}

TEST_F(IndexExaminationTest, LongTextIsNoIndex) {
  Write("book", std::string(100000, 'x'));
  EXPECT_EQ(Reason("book"),
            "not an index file (Bad magic number); if it was one, see kestan repair");
}

TEST_F(IndexExaminationTest, EmptyFileIsNoIndex) {
  Write("empty", "");
  EXPECT_EQ(Reason("empty"),
            "not an index file (Empty database); if it was one, see kestan repair");
}

TEST_F(IndexExaminationTest, FileOfAnotherProgramIsNoIndex) {
  Plant(Path("other"), {{"key", "value"}});
  EXPECT_EQ(Reason("other"), "not an index file; if it was one, see kestan repair");
}

TEST_F(IndexExaminationTest, TruncatedIndexIsNoIndex) {
  MakeIndex();
  Write("part", IndexBytes().substr(0, IndexBytes().size() / 2));
  EXPECT_EQ(Reason("part"),
            "not an index file (Malformed database file header); if it was one, see kestan repair");
}

TEST_F(IndexExaminationTest, IndexThatAnotherProcessWritesIsLocked) {
  MakeIndex();
  const std::string before = IndexBytes();
  Database holder;
  ASSERT_EQ(holder.Open(Path(kIndex).c_str(), 1), 0);
  EXPECT_EQ(Reason(kIndex, kestan_cli::kBusy), "another process is changing it; try again later");
  EXPECT_EQ(Run({"stats", kIndex}),
            (Outcome{75, "",
                     "kestan: cannot open index 'my.index': another process is changing it; try "
                     "again later\n"}));
}

TEST_F(IndexExaminationTest, UnreadableIndexIsAnError) {
  MakeIndex();
  OpenFolderToAll(0755);
  ASSERT_EQ(chmod(Path(kIndex).c_str(), 0), 0);
  EXPECT_EQ(Run({"stats", kIndex}, GiveUpPrivileges),
            Failure("cannot open index 'my.index': permission denied"));
}

TEST_F(IndexExaminationTest, ReadOnlyIndexCanBeRead) {
  MakeIndex();
  OpenFolderToAll(0555);
  ASSERT_EQ(chmod(Path(kIndex).c_str(), 0444), 0);
  EXPECT_EQ(Run({"stats", kIndex}, GiveUpPrivileges).status, 0);
  OpenFolderToAll(0755);
}

TEST_F(IndexExaminationTest, UnreadableFolderHidesItsIndex) {
  Write("closed/index", "");
  ASSERT_EQ(chmod(Path("closed").c_str(), 0), 0);
  OpenFolderToAll(0755);
  EXPECT_EQ(Run({"stats", "closed/index"}, GiveUpPrivileges),
            Failure("cannot open index 'closed/index': permission denied"));
  ASSERT_EQ(chmod(Path("closed").c_str(), 0755), 0);
}

TEST_F(IndexExaminationTest, DamagedCountersAreRead) {
  MakeIndex();
  Plant(Path(kIndex), {{"g-code", "\x05"}, {"g-avail", "abc"}});
  EXPECT_EQ(Reason(kIndex), "");
}

TEST_F(IndexExaminationTest, IndexWithoutItsCounterIsDamaged) {
  MakeIndex();
  RemoveRecord("g-code");
  EXPECT_EQ(Reason(kIndex),
            "its counter of documents is lost; kestan repair saves what it still holds");
}

TEST_F(IndexExaminationTest, IndexWithoutItsOptionFlagsIsTakenForAnotherFile) {
  MakeIndex();
  RemoveRecord("g-opts");
  EXPECT_EQ(Reason(kIndex), "not an index file; if it was one, see kestan repair");
}

}  // namespace
}  // namespace kestan_tests
