// SPDX-License-Identifier: GPL-3.0-or-later
#include <gtest/gtest.h>
#include <kestan/kestan.h>
#include <kestan/search.h>
#include <sys/stat.h>

#include <atomic>
#include <filesystem>
#include <string>
#include <thread>

#include "search/index/manifest/manifest.h"
#include "tests/search/index/read_index.h"
#include "tests/support/files.h"
#include "tests/support/stored_records.h"
#include "tests/support/temp_dir.h"

namespace kestan::search {
namespace {

namespace fs = std::filesystem;

using kestan_tests::ReadFile;
using kestan_tests::ReadIndex;

class CopyTest : public testing::Test {
 protected:
  // Makes an index of three segments with edits.
  void SetUp() override {
    auto writer = IndexWriter::Open(folder_);
    ASSERT_TRUE(writer.ok());
    for (int i = 0; i < 9; ++i) {
      Add(&*writer, i);
      if (i % 3 == 2) {
        ASSERT_TRUE(writer->Commit().ok());
      }
    }
    ASSERT_TRUE(writer->Remove("n1").ok());
    writer->SetProperty("key", "value");
    ASSERT_TRUE(writer->Commit().ok());
  }

  static void Add(IndexWriter* writer, int number) {
    Document document;
    document.name = "n" + std::to_string(number);
    document.words = "hello e-mail x" + std::to_string(number);
    document.title = "Title";
    ASSERT_TRUE(writer->Add(document).ok());
  }

  static void WriteOneFile(const std::string& path) {
    Kestan engine;
    ASSERT_EQ(engine.OpenIndex(path.c_str(), 1), 0);
    for (int i = 0; i < 1500; ++i) {
      engine.AddDocumentWords(("n" + std::to_string(i)).c_str(), "some e-mail");
    }
    engine.DBPutWords("colours", "red green");
    engine.CloseIndex();
  }

  static mode_t ModeOf(const std::string& path) {
    struct stat status = {};
    EXPECT_EQ(stat(path.c_str(), &status), 0) << path;
    return status.st_mode & 07777;
  }

  std::string Path(const std::string& name) const { return dir_ / name; }

  kestan_tests::TempDir dir_;
  const std::string folder_ = dir_ / "index";
};

TEST_F(CopyTest, ACopyOfAFolderHasTheSameFiles) {
  ASSERT_TRUE(CopyIndex(folder_ + "/", Path("copy/")).ok());
  auto files = kestan_tests::NamedFiles(folder_);
  files.erase("writer.lock");
  EXPECT_EQ(kestan_tests::FilesIn(Path("copy")), files);
  for (const std::string& file : files) {
    EXPECT_TRUE(ReadFile(Path("copy/") + file) == ReadFile(folder_ + "/" + file)) << file;
  }
  EXPECT_FALSE(fs::exists(Path("copy.new")));
  EXPECT_TRUE(IndexWriter::Open(Path("copy")).ok());
}

TEST_F(CopyTest, ACopyOfAFileHasTheSameRecords) {
  WriteOneFile(Path("file"));
  ASSERT_TRUE(CopyIndex(Path("file"), Path("copy")).ok());
  EXPECT_EQ(kestan_tests::Dump(Path("copy")), kestan_tests::Dump(Path("file")));
  EXPECT_FALSE(fs::exists(Path("copy.new")));
}

TEST_F(CopyTest, CopiesWhileAWriterCommitsAreStatesOfTheIndex) {
  std::atomic<bool> ends = false;
  std::thread changes([&] {
    WriterOptions options;
    options.sync = false;
    options.merge_factor = 2;
    auto writer = IndexWriter::Open(folder_, options);
    for (int i = 100; !ends; ++i) {
      Add(&*writer, i);
      EXPECT_TRUE(writer->Commit().ok());
    }
  });
  for (int i = 0; i < 30; ++i) {
    const std::string copy = Path("copy" + std::to_string(i));
    const Status status = CopyIndex(folder_, copy);
    EXPECT_TRUE(status.ok()) << status.ToString();
    const auto read = ReadIndex(copy);
    EXPECT_EQ(read.count("n1"), 0u);
    for (std::size_t n = 100; n < 100 + read.size() - 8; ++n) {
      EXPECT_EQ(read.count("n" + std::to_string(n)), 1u) << n;
    }
    auto files = kestan_tests::NamedFiles(copy);
    files.erase("writer.lock");
    EXPECT_EQ(kestan_tests::FilesIn(copy), files);
  }
  ends = true;
  changes.join();
}

TEST_F(CopyTest, ChangedAndMissingFilesAreNotCopied) {
  auto names = kestan_tests::NamedFiles(folder_);
  names.erase("writer.lock");
  for (const std::string& name : names) {
    const std::string path = folder_ + "/" + name;
    const std::string good = ReadFile(path);
    std::string bad = good;
    bad[bad.size() / 2] = static_cast<char>(bad[bad.size() / 2] ^ 1);
    kestan_tests::WriteFile(path, bad);
    const Status changed = CopyIndex(folder_, Path("copy"));
    EXPECT_EQ(changed.code(), StatusCode::kDamaged) << name;
    EXPECT_EQ(changed.file(), path);
    fs::remove(path);
    const Status missing = CopyIndex(folder_, Path("copy"));
    EXPECT_EQ(missing.code(), name == "MANIFEST" ? StatusCode::kNotFound : StatusCode::kDamaged);
    EXPECT_EQ(missing.file(), path);
    kestan_tests::WriteFile(path, good);
    EXPECT_FALSE(fs::exists(Path("copy")));
    EXPECT_FALSE(fs::exists(Path("copy.new")));
  }
}

TEST_F(CopyTest, WhatIsThereStays) {
  kestan_tests::WriteFile(Path("taken"), "text");
  EXPECT_EQ(CopyIndex(folder_, Path("taken")).code(), StatusCode::kAlreadyExists);
  EXPECT_EQ(ReadFile(Path("taken")), "text");
  EXPECT_EQ(CopyIndex(Path("missing"), Path("new")).code(), StatusCode::kNotFound);
  EXPECT_EQ(CopyIndex(Path("taken"), Path("new")).code(), StatusCode::kDamaged);
  EXPECT_FALSE(fs::exists(Path("new")));
  EXPECT_FALSE(fs::exists(Path("new.new")));
}

TEST_F(CopyTest, ThePrivateStaysPrivate) {
  WriteOneFile(Path("file"));
  ASSERT_EQ(chmod(Path("file").c_str(), 0640), 0);
  ASSERT_TRUE(CopyIndex(Path("file"), Path("file2")).ok());
  EXPECT_EQ(ModeOf(Path("file2")), 0640u);
  ASSERT_TRUE(ConvertIndexFile(Path("file"), Path("folder")).ok());
  EXPECT_EQ(ModeOf(Path("folder")), 0750u);
  EXPECT_EQ(ModeOf(Path("folder/MANIFEST")), 0640u);
  ASSERT_EQ(chmod(Path("folder").c_str(), 0700), 0);
  ASSERT_TRUE(CopyIndex(Path("folder"), Path("folder2")).ok());
  EXPECT_EQ(ModeOf(Path("folder2")), 0700u);
  EXPECT_EQ(ModeOf(Path("folder2/1.segment")), 0600u);
  ASSERT_TRUE(WriteIndexFile(Path("folder2"), Path("file3")).ok());
  EXPECT_EQ(ModeOf(Path("file3")), 0600u);
}

TEST_F(CopyTest, ItEndsWhereTheHostSays) {
  WriteOneFile(Path("file"));
  for (const std::string& path : {folder_, Path("file")}) {
    int calls = 0;
    const Status status = CopyIndex(path, Path("copy"), [&](std::uint64_t done, std::uint64_t all) {
      EXPECT_LE(done, all);
      return ++calls < 1;
    });
    EXPECT_EQ(status.code(), StatusCode::kInterrupted);
    EXPECT_EQ(calls, 1);
    EXPECT_FALSE(fs::exists(Path("copy")));
    EXPECT_FALSE(fs::exists(Path("copy.new")));
  }
}

// ---- Measuring ----

TEST_F(CopyTest, ACompactionIsMeasuredToTheByte) {
  const std::string manifest = ReadFile(folder_ + "/MANIFEST");
  const auto measure = MeasureCompaction(folder_);
  ASSERT_TRUE(measure.ok()) << measure.status().ToString();
  EXPECT_EQ(ReadFile(folder_ + "/MANIFEST"), manifest);
  EXPECT_EQ(measure->bytes_before, IndexReader::Open(folder_)->Statistics().bytes);
  EXPECT_EQ(measure->segments_before, 3u);
  ASSERT_TRUE(IndexWriter::Open(folder_)->Compact().ok());
  EXPECT_EQ(measure->bytes_after, IndexReader::Open(folder_)->Statistics().bytes);
  EXPECT_EQ(measure->segments_after, 1u);
  EXPECT_EQ(MeasureCompaction(folder_)->bytes_after, measure->bytes_after);
}

TEST_F(CopyTest, OnlyFoldersAreMeasured) {
  WriteOneFile(Path("file"));
  EXPECT_EQ(MeasureCompaction(Path("file")).status().code(), StatusCode::kInvalidArgument);
  EXPECT_EQ(MeasureCompaction(Path("missing")).status().code(), StatusCode::kNotFound);
}

}  // namespace
}  // namespace kestan::search
