// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/search/document_cursor.h>

#include <gtest/gtest.h>
#include <kestan/search/index_reader.h>
#include <kestan/search/index_writer.h>

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/temp_dir.h"

namespace kestan::search {
namespace {

class DocumentCursorTest : public testing::Test {
 protected:
  // Commits documents of these names.
  void Add(const std::string& index, const std::vector<std::string>& names) {
    auto writer = IndexWriter::Open(folder_ / index);
    ASSERT_TRUE(writer.ok()) << writer.status().ToString();
    for (const std::string& name : names) {
      ASSERT_TRUE(writer->Add({name, "cat " + name, "", "T" + name, "S" + name, "D"}).ok());
    }
    ASSERT_TRUE(writer->Commit().ok());
  }

  void Remove(const std::string& index, const std::string& name) {
    auto writer = IndexWriter::Open(folder_ / index);
    ASSERT_TRUE(writer.ok() && writer->Remove(name).ok() && writer->Commit().ok());
  }

  IndexReader Opened(const std::vector<std::string>& indexes) {
    std::vector<std::string> paths;
    for (const std::string& index : indexes) paths.push_back(folder_ / index);
    auto reader = IndexReader::Open(paths);
    EXPECT_TRUE(reader.ok()) << reader.status().ToString();
    return std::move(*reader);
  }

  // The names that are left, each with a blank after it.
  static std::string Rest(DocumentCursor* cursor) {
    std::string names;
    for (auto next = cursor->Next(); next.ok() && *next != nullptr; next = cursor->Next()) {
      names += (*next)->name + " ";
    }
    return names;
  }

  kestan_tests::TempDir folder_;
};

TEST_F(DocumentCursorTest, GivesAllThatIsKnownOfEachDocument) {
  Add("a", {"1"});
  DocumentCursor cursor = Opened({"a"}).Documents();
  const auto document = cursor.Next();
  ASSERT_TRUE(document.ok());
  EXPECT_EQ((*document)->name, "1");
  EXPECT_EQ((*document)->title, "T1");
  EXPECT_EQ((*document)->summary, "S1");
  EXPECT_EQ((*document)->host_data, "D");
  EXPECT_EQ((*document)->words, 2U);
}

TEST_F(DocumentCursorTest, GoesThroughTheLivingDocumentsInTheOrderOfForEachDocument) {
  Add("a", {"3", "1", "2"});
  Add("a", {"0"});
  Add("b", {"9", "8"});
  Remove("a", "1");
  const IndexReader reader = Opened({"a", "b"});
  std::string visited;
  ASSERT_TRUE(reader
                  .ForEachDocument([&](const DocumentInfo& document) {
                    visited += document.name + " ";
                    return true;
                  })
                  .ok());
  EXPECT_EQ(visited, "3 2 0 9 8 ");
  DocumentCursor cursor = reader.Documents();
  EXPECT_EQ(Rest(&cursor), visited);
}

TEST_F(DocumentCursorTest, EndStaysTheEnd) {
  Add("a", {"1"});
  DocumentCursor cursor = Opened({"a"}).Documents();
  EXPECT_EQ(Rest(&cursor), "1 ");
  for (int i = 0; i < 2; ++i) {
    const auto next = cursor.Next();
    ASSERT_TRUE(next.ok());
    EXPECT_EQ(*next, nullptr);
  }
}

TEST_F(DocumentCursorTest, IndexWithoutDocumentsIsAtItsEnd) {
  Add("a", {});
  DocumentCursor cursor = Opened({"a"}).Documents();
  EXPECT_EQ(Rest(&cursor), "");
}

TEST_F(DocumentCursorTest, KeepsItsSnapshotWhenTheReaderTakesAnotherOrEnds) {
  Add("a", {"1", "2"});
  std::optional<IndexReader> reader = Opened({"a"});
  DocumentCursor before = reader->Documents();
  Remove("a", "2");
  Add("a", {"3"});
  ASSERT_TRUE(*reader->Refresh());
  DocumentCursor after = reader->Documents();
  reader.reset();
  EXPECT_EQ(Rest(&before), "1 2 ");
  EXPECT_EQ(Rest(&after), "1 3 ");
}

TEST_F(DocumentCursorTest, CanBeMovedWhereItStands) {
  Add("a", {"1", "2"});
  const IndexReader reader = Opened({"a"});
  DocumentCursor cursor = reader.Documents();
  ASSERT_TRUE(cursor.Next().ok());
  DocumentCursor moved = std::move(cursor);
  cursor = reader.Documents();
  EXPECT_EQ(Rest(&moved), "2 ");
  EXPECT_EQ(Rest(&cursor), "1 2 ");
}

}  // namespace
}  // namespace kestan::search
