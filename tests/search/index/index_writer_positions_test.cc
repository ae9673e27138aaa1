// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/search/check.h>
#include <kestan/search/index_reader.h>
#include <kestan/search/index_writer.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <utility>

#include "search/index/manifest/manifest.h"
#include "tests/search/index/read_index.h"
#include "tests/support/temp_dir.h"

namespace kestan::search {
namespace {

using kestan_tests::FilesIn;
using kestan_tests::NamedFiles;
using kestan_tests::ReadIndex;

// An index of three segments, with removals, edits and a property.
class IndexWriterPositionsTest : public testing::Test {
 protected:
  IndexWriterPositionsTest() : writer_(Open()) {
    Add("a", "cat and dog");
    Commit();
    Add("b", "dog then Cat");
    Add("c", "cat");
    Commit();
    Add("d", "horse");
    EXPECT_TRUE(writer_.Remove("c").ok());
    EXPECT_TRUE(writer_.Rename("a", "z").ok());
    writer_.SetProperty("key", "before");
    Commit();
  }

  void Add(const std::string& name, const std::string& words) {
    Document document;
    document.name = name;
    document.title = "title of " + name;
    document.words = words;
    EXPECT_TRUE(writer_.Add(std::move(document)).ok());
  }

  void Commit() { EXPECT_TRUE(writer_.Commit().ok()); }

  IndexReader Read() const { return std::move(*IndexReader::Open(path_)); }

  std::uint64_t Count(const std::string& query) const { return *Read().Count(query); }

  const kestan_tests::TempDir folder_;
  const std::string path_ = folder_ / "index";
  bool goes_on_ = true;
  IndexWriter writer_;

 private:
  IndexWriter Open() {
    WriterOptions options;
    options.progress = [this](const WriterProgress& progress) {
      EXPECT_LE(progress.done_bytes, progress.all_bytes);
      return goes_on_;
    };
    return std::move(*IndexWriter::Open(path_, options));
  }
};

TEST_F(IndexWriterPositionsTest, DroppedPositionsLeaveEverythingElse) {
  const auto before = ReadIndex(path_);
  EXPECT_EQ(Count("\"cat and dog\""), 1u);
  EXPECT_EQ(Count("\"dog and cat\""), 0u);
  ASSERT_TRUE(writer_.DropPositions().ok());
  EXPECT_EQ(Count("\"dog and cat\""), 1u);
  EXPECT_EQ(Count("Cat"), 2u);  // capitals do not count
  EXPECT_FALSE(Read().Statistics().with_positions);
  EXPECT_EQ(*Read().Property("key"), "before");
  auto after = ReadIndex(path_);
  for (const auto& [name, document] : before) {
    EXPECT_EQ(after[name].title, document.title) << name;
    EXPECT_EQ(after[name].words.size(), document.words.size()) << name;
  }
  EXPECT_EQ(after.size(), before.size());
  EXPECT_EQ(FilesIn(path_), NamedFiles(path_));
  EXPECT_EQ(CheckIndex(path_)->faults, 0u);
}

TEST_F(IndexWriterPositionsTest, ChangesBeforeAreCommittedAndLaterOnesHaveNone) {
  Add("e", "cat fish");
  ASSERT_TRUE(writer_.Remove("b").ok());
  writer_.SetProperty("key", "after");
  ASSERT_TRUE(writer_.DropPositions().ok());
  EXPECT_EQ(Count("\"fish cat\""), 1u);
  EXPECT_EQ(*Read().Property("key"), "after");
  Add("f", "fish bird");
  Commit();
  EXPECT_EQ(Count("\"bird fish\""), 1u);
  ASSERT_TRUE(writer_.Compact().ok());
  EXPECT_EQ(ReadIndex(path_).size(), 4u);
  EXPECT_EQ(CheckIndex(path_)->faults, 0u);
}

TEST_F(IndexWriterPositionsTest, PositionsAreDroppedOnce) {
  ASSERT_TRUE(writer_.DropPositions().ok());
  const std::uint64_t generation = ReadManifest(path_)->generation;
  ASSERT_TRUE(writer_.DropPositions().ok());
  EXPECT_EQ(ReadManifest(path_)->generation, generation);
  writer_.SetProperty("key", "after");
  ASSERT_TRUE(writer_.DropPositions().ok());
  EXPECT_EQ(*Read().Property("key"), "after");
}

TEST_F(IndexWriterPositionsTest, AnIndexWithoutDocumentsHasNoneToDrop) {
  for (const char* name : {"z", "b", "d"}) ASSERT_TRUE(writer_.Remove(name).ok());
  ASSERT_TRUE(writer_.DropPositions().ok());
  Add("a", "cat dog");
  Commit();
  EXPECT_EQ(Count("\"dog cat\""), 1u);
}

TEST_F(IndexWriterPositionsTest, AnInterruptionLeavesTheIndexAsItWas) {
  const auto before = ReadIndex(path_);
  const auto files = FilesIn(path_);
  writer_.SetProperty("key", "after");
  goes_on_ = false;
  EXPECT_EQ(writer_.DropPositions().code(), StatusCode::kInterrupted);
  EXPECT_EQ(ReadIndex(path_), before);
  EXPECT_EQ(FilesIn(path_), files);
  EXPECT_EQ(*Read().Property("key"), "before");
  EXPECT_EQ(writer_.Commit().code(), StatusCode::kInterrupted);
  goes_on_ = true;
  ASSERT_TRUE(writer_.Rollback().ok());
  ASSERT_TRUE(writer_.DropPositions().ok());
  EXPECT_EQ(Count("\"dog and cat\""), 1u);
}

}  // namespace
}  // namespace kestan::search
