#include "cli/sync/index_batch.h"

#include <gtest/gtest.h>

#include <string>

#include "cli/console/message.h"
#include "cli/index/document_records.h"
#include "tests/cli/command_test.h"

namespace kestan_cli {
namespace {

const std::string kHash = "00112233445566778899aabbccddeeff";

class IndexBatchTest : public kestan_tests::CommandTest {
 protected:
  // Adds `text` as `name`.
  static void Add(IndexBatch& batch, const std::string& name, const std::string& text) {
    batch.Add(name, MakeDocument(text), {{4, 5, 6}, kHash});
  }

  // Whether the index, still open, has the postings of `a` on the disk.
  bool IsSaved() {
    Write("copy", IndexBytes());
    return kestan_tests::Dump(Path("copy"))["cat"] == kestan_tests::Units({1, 1, 1});
  }

  static std::string Complaint(IndexBatch& batch, const std::string& name,
                               const std::string& text) {
    try {
      Add(batch, name, text);
    } catch (const CommandError& error) {
      return error.what();
    }
    return "";
  }

  Kestan engine_;
  OpenedIndex index_{engine_, Path("my.index"), Access::kCreate};
};

TEST_F(IndexBatchTest, CountsNewWords) {
  IndexBatch batch(index_);
  Add(batch, "a", "cat\n");
  EXPECT_EQ(batch.new_words(), 1u);
  Add(batch, "b", "cat dog\n");
  EXPECT_EQ(batch.new_words(), 2u);
  Add(batch, "b", "cat dog\n");
  EXPECT_EQ(batch.new_words(), 2u);
}

TEST_F(IndexBatchTest, SavesWhenEnoughTextHasCome) {
  IndexBatch batch(index_, 4);  // of words: a blank follows
  Add(batch, "a", "cat\n");
  EXPECT_TRUE(IsSaved());
}

TEST_F(IndexBatchTest, DoesNotSaveBefore) {
  IndexBatch batch(index_, 5);
  Add(batch, "a", "cat\n");
  EXPECT_FALSE(IsSaved());
}

TEST_F(IndexBatchTest, StoresTheFingerprint) {
  IndexBatch batch(index_);
  Add(batch, "a", "cat\n");
  EXPECT_EQ(UserRecord(engine_, "a"), "size=4 mtime=5.000000006 hash=" + kHash);
}

TEST_F(IndexBatchTest, KeepsWhatAUserWroteInTheRecord) {
  IndexBatch batch(index_);
  engine_.DBPutUser("a", "my notes");
  Add(batch, "a", "cat\n");
  EXPECT_EQ(UserRecord(engine_, "a"), "size=4 mtime=5.000000006 hash=" + kHash + "\nmy notes");
  batch.UpdateFingerprint("a", {{7, 8, 9}, kHash});
  EXPECT_EQ(UserRecord(engine_, "a"), "size=7 mtime=8.000000009 hash=" + kHash + "\nmy notes");
}

TEST_F(IndexBatchTest, DocumentThatAFullIndexRefusesIsNamed) {
  IndexBatch batch(index_);
  Add(batch, "a", "cat\n");
  index_.Save();
  engine_.CloseIndex();
  kestan_tests::Plant(Path("my.index"), {{"g-code", kestan_tests::Units({65535})}});
  ASSERT_EQ(engine_.OpenIndex(Path("my.index").c_str(), 1), 0);
  EXPECT_EQ(Complaint(batch, "b", "cat dog\n"),
            "index '" + Path("my.index") + "' did not take 'b'");
}

}  // namespace
}  // namespace kestan_cli
