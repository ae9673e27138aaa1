// SPDX-License-Identifier: GPL-3.0-or-later
// Index files that are read without an engine.
#include <kestan/index_file.h>
#include <kestan/storage/store_error.h>

#include <thread>

#include "tests/query/query_test.h"

namespace kestan_tests {
namespace {

using kestan::IndexFile;
using kestan::StoreError;

// Makes an index of one document `name` with `text` at `path`.
void MakeIndex(const std::string& path, const std::string& name, const std::string& text) {
  Kestan engine;
  ASSERT_EQ(engine.OpenIndex(path.c_str(), 1), 0);
  engine.AddDocumentWords(name.c_str(), text.c_str());
}

class IndexFileTest : public testing::Test {
 protected:
  void SetUp() override {
    MakeIndex(first_, "one", "cat dog cat");
    MakeIndex(second_, "two", "bird");
  }

  TempDir folder_;
  const std::string first_ = folder_ / "first";
  const std::string second_ = folder_ / "second";
};

TEST_F(IndexFileTest, AnswersForItsOwnFile) {
  IndexFile first;
  IndexFile second;
  ASSERT_EQ(first.Open(first_.c_str()), StoreError::kNone);
  ASSERT_EQ(second.Open(second_.c_str()), StoreError::kNone);
  EXPECT_EQ(first.DocumentFrequency("cat"), 1u);
  EXPECT_EQ(second.DocumentFrequency("cat"), 0u);
  EXPECT_EQ(first.NameOf(1), "one");
  EXPECT_EQ(second.NameOf(1), "two");
  EXPECT_EQ(second.CountDocuments().documents, 1u);
}

TEST_F(IndexFileTest, MissingFileIsAnErrorAndIsNotMade) {
  IndexFile file;
  EXPECT_EQ(file.Open((folder_ / "missing").c_str()), StoreError::kFileOpen);
  EXPECT_FALSE(std::filesystem::exists(folder_ / "missing"));
}

TEST_F(IndexFileTest, FileThatIsNoIndexIsAnError) {
  std::filesystem::resize_file(first_, 100);
  IndexFile file;
  EXPECT_NE(file.Open(first_.c_str()), StoreError::kNone);
}

TEST_F(IndexFileTest, SecondFileIsNotOpenedAndTheFirstStays) {
  IndexFile file;
  ASSERT_EQ(file.Open(first_.c_str()), StoreError::kNone);
  EXPECT_EQ(file.Open(second_.c_str()), StoreError::kNotOpen);
  EXPECT_EQ(file.NameOf(1), "one");
  EXPECT_EQ(file.FileError(), StoreError::kNone);
}

TEST_F(IndexFileTest, ReadingChangesNoByte) {
  const Records before = Dump(first_);
  {
    IndexFile file;
    ASSERT_EQ(file.Open(first_.c_str()), StoreError::kNone);
    file.FindWord("cat");
    EXPECT_EQ(file.ForEachWord([](std::string_view, const kestan::WordPostings&) { return true; }),
              StoreError::kNone);
  }
  EXPECT_EQ(Dump(first_), before);
}

TEST_F(IndexFileTest, PostingsOutliveTheFile) {
  kestan::WordPostings postings;
  {
    IndexFile file;
    ASSERT_EQ(file.Open(first_.c_str()), StoreError::kNone);
    postings = file.FindWord("cat");
  }
  kestan::WordPostings::Cursor cursor(postings);
  ASSERT_TRUE(cursor.Next());
  EXPECT_EQ(cursor.positions()[1], 3);
}

TEST_F(IndexFileTest, OpenEngineBesideItIsNotDisturbed) {
  Kestan engine;
  ASSERT_EQ(engine.OpenIndex(first_.c_str(), 0), 0);
  IndexFile file;
  ASSERT_EQ(file.Open(first_.c_str()), StoreError::kNone);
  EXPECT_EQ(file.DocumentFrequency("dog"), 1u);
  EXPECT_STREQ(engine.ListDocuments(), "one\n");
}

// Reads the file at `path` over and over.
//   Returns  how often `word` was found.
int ReadOften(const std::string& path, const char* word) {
  IndexFile file;
  if (file.Open(path.c_str()) != StoreError::kNone) return -1;
  int found = 0;
  for (int i = 0; i < 200; ++i) {
    found += static_cast<int>(file.DocumentFrequency(word));
    file.ForEachWord([](std::string_view, const kestan::WordPostings&) { return true; });
  }
  return found;
}

TEST_F(IndexFileTest, TwoThreadsReadTwoFiles) {
  int of_second = 0;
  std::thread other([&] { of_second = ReadOften(second_, "bird"); });
  EXPECT_EQ(ReadOften(first_, "cat"), 200);
  other.join();
  EXPECT_EQ(of_second, 200);
}

}  // namespace
}  // namespace kestan_tests
