#include "cli/index/document_records.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "cli/console/message.h"
#include "tests/cli/command_test.h"

namespace kestan_cli {
namespace {

const std::string kHash = "00112233445566778899aabbccddeeff";

class DocumentRecordsTest : public kestan_tests::CommandTest {
 protected:
  Kestan engine_;
  OpenedIndex index_{engine_, Path("my.index"), Access::kCreate};
};

TEST_F(DocumentRecordsTest, DocumentsAreInOrderWithTheirFingerprints) {
  engine_.AddDocumentWords("b", "cat");
  engine_.AddDocumentWords("a", "cat");
  engine_.DBPutUser("a", ("size=1 mtime=2.000000003 hash=" + kHash).c_str());
  engine_.DBPutUser("b", "my notes");
  const auto documents = IndexedDocuments(engine_);
  ASSERT_EQ(documents.size(), 2u);
  EXPECT_EQ(documents[0].name, "a");
  ASSERT_TRUE(documents[0].fingerprint.has_value());
  EXPECT_EQ(documents[0].fingerprint->state, (FileState{1, 2, 3}));
  EXPECT_EQ(documents[1].name, "b");
  EXPECT_FALSE(documents[1].fingerprint.has_value());
}

// The end of the file is gone for a moment, as when a disk fails.
TEST_F(DocumentRecordsTest, UnreadableDocumentIsNotRemoved) {
  engine_.AddDocumentWords("a", "cat");
  engine_.FlushIndex();
  std::filesystem::resize_file(Path("my.index"), 512);
  EXPECT_THROW(RemoveDocument(index_, "a"), CommandError);
}

TEST_F(DocumentRecordsTest, EmptyIndexHasNoDocuments) {
  EXPECT_TRUE(IndexedDocuments(engine_).empty());
}

TEST_F(DocumentRecordsTest, MoveReplacesOldSideRecordsOfTheNewName) {
  engine_.AddDocumentWords("a", "cat");
  engine_.DBPutTitle("a", "Title");
  engine_.DBPutTitle("b", "Old title");
  engine_.DBPutSummary("b", "Old summary");
  MoveDocument(index_, "a", "b");
  EXPECT_STREQ(engine_.DBGetTitle("b"), "Title");
  EXPECT_EQ(engine_.DBGetSummary("b"), nullptr);
  EXPECT_EQ(engine_.DBGetTitle("a"), nullptr);
  EXPECT_STREQ(engine_.ListDocuments(), "b\n");
}

TEST_F(DocumentRecordsTest, MoveOfAnUnknownDocumentIsAnError) {
  EXPECT_THROW(MoveDocument(index_, "a", "b"), CommandError);
}

}  // namespace
}  // namespace kestan_cli
