// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/search/index_writer.h>

#include <gtest/gtest.h>
#include <kestan/search/check.h>
#include <kestan/search/index_reader.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "search/files/numbers.h"
#include "search/index/manifest/manifest.h"
#include "tests/search/index/read_index.h"
#include "tests/support/files.h"
#include "tests/support/temp_dir.h"

namespace kestan::search {
namespace {

using kestan_tests::FilesIn;
using kestan_tests::NamedFiles;
using kestan_tests::ReadIndex;
using kestan_tests::WordsOf;

class IndexWriterTest : public testing::Test {
 protected:
  IndexWriter Open(WriterOptions options = {}) {
    auto writer = IndexWriter::Open(path_, std::move(options));
    EXPECT_TRUE(writer.ok()) << writer.status().ToString();
    return std::move(*writer);
  }

  static Document Named(const std::string& name, const std::string& words = "some words") {
    Document document;
    document.name = name;
    document.words = words;
    return document;
  }

  std::set<std::string> Names() const {
    std::set<std::string> names;
    for (const auto& [name, document] : ReadIndex(path_)) names.insert(name);
    return names;
  }

  std::size_t Segments() const { return ReadManifest(path_)->segments.size(); }

  const kestan_tests::TempDir folder_;
  const std::string path_ = folder_ / "index";
};

TEST_F(IndexWriterTest, MakesAnIndexWithoutDocuments) {
  Open();
  EXPECT_TRUE(ReadIndex(path_).empty());
  EXPECT_EQ(FilesIn(path_), (std::set<std::string>{"MANIFEST", "writer.lock"}));
}

TEST_F(IndexWriterTest, ADocumentIsThereAfterACommit) {
  IndexWriter writer = Open();
  Document document = Named("a", "kept As Is");
  document.text = "Z\xc3\xbcrich's e-mail";
  document.title = "T";
  document.summary = "S";
  document.host_data = std::string("H\0", 2);
  ASSERT_TRUE(writer.Add(document).ok());
  EXPECT_TRUE(ReadIndex(path_).empty());
  ASSERT_TRUE(writer.Commit().ok());
  const auto read = ReadIndex(path_).at("a");
  EXPECT_EQ(read.title, "T");
  EXPECT_EQ(read.summary, "S");
  EXPECT_EQ(read.host_data, std::string("H\0", 2));
  EXPECT_EQ(read.words, WordsOf("zurich s e mail kept As Is"));
}

TEST_F(IndexWriterTest, ACommitThatDoesNotWaitForTheDiskIsThereForOtherProcesses) {
  WriterOptions options;
  options.sync = false;
  IndexWriter writer = Open(options);
  for (const std::string name : {"a", "b"}) {
    ASSERT_TRUE(writer.Add(Named(name)).ok());
    ASSERT_TRUE(writer.Commit().ok());
  }
  ASSERT_TRUE(writer.Remove("a").ok());
  ASSERT_TRUE(writer.Compact().ok());
  EXPECT_EQ(Names(), std::set<std::string>{"b"});
  EXPECT_EQ(FilesIn(path_), NamedFiles(path_));
}

TEST_F(IndexWriterTest, ChangesWithoutACommitAreLost) {
  {
    IndexWriter writer = Open();
    ASSERT_TRUE(writer.Add(Named("a")).ok());
    ASSERT_TRUE(writer.Commit().ok());
    ASSERT_TRUE(writer.Add(Named("b")).ok());
    ASSERT_TRUE(writer.Remove("a").ok());
  }
  EXPECT_EQ(Names(), (std::set<std::string>{"a"}));
  EXPECT_EQ(FilesIn(path_), NamedFiles(path_));
}

TEST_F(IndexWriterTest, ADocumentReplacesTheOneOfItsName) {
  IndexWriter writer = Open();
  for (const char* words : {"first", "second", "third"}) {
    ASSERT_TRUE(writer.Add(Named("a", words)).ok());
    ASSERT_TRUE(writer.Add(Named("a", words)).ok());
    ASSERT_TRUE(writer.Commit().ok());
    EXPECT_EQ(ReadIndex(path_).at("a").words, WordsOf(words));
    EXPECT_EQ(Segments(), 1u);  // those without living documents go
  }
}

TEST_F(IndexWriterTest, PendingDocumentsAreChangedLikeCommittedOnes) {
  IndexWriter writer = Open();
  for (const bool is_committed : {false, true}) {
    ASSERT_TRUE(writer.Add(Named("a", "x")).ok());
    ASSERT_TRUE(writer.Add(Named("gone")).ok());
    if (is_committed) {
      ASSERT_TRUE(writer.Commit().ok());
    }
    EXPECT_TRUE(writer.Remove("gone").ok());
    EXPECT_TRUE(writer.SetField("a", DocumentField::kTitle, "title").ok());
    EXPECT_TRUE(writer.Rename("a", "b").ok());
    EXPECT_TRUE(writer.SetField("b", DocumentField::kSummary, "summary").ok());
    EXPECT_EQ(writer.Remove("a").code(), StatusCode::kNotFound);
    ASSERT_TRUE(writer.Commit().ok());
    EXPECT_EQ(Names(), (std::set<std::string>{"b"}));
    EXPECT_EQ(ReadIndex(path_).at("b").title, "title");
    EXPECT_EQ(ReadIndex(path_).at("b").summary, "summary");
    ASSERT_TRUE(writer.Remove("b").ok());
    ASSERT_TRUE(writer.Commit().ok());
  }
}

TEST_F(IndexWriterTest, ErrorsOfTheCallerChangeNothing) {
  IndexWriter writer = Open();
  ASSERT_TRUE(writer.Add(Named("a")).ok());
  ASSERT_TRUE(writer.Add(Named("b")).ok());
  EXPECT_EQ(writer.Add(Named("")).code(), StatusCode::kInvalidArgument);
  EXPECT_EQ(writer.Add(Named(std::string("a\0b", 3))).code(), StatusCode::kInvalidArgument);
  EXPECT_EQ(writer.Add(Named(std::string(4097, 'x'))).code(), StatusCode::kInvalidArgument);
  EXPECT_EQ(writer.Remove("c").code(), StatusCode::kNotFound);
  EXPECT_EQ(writer.Rename("c", "d").code(), StatusCode::kNotFound);
  EXPECT_EQ(writer.Rename("a", "b").code(), StatusCode::kAlreadyExists);
  EXPECT_EQ(writer.Rename("a", "").code(), StatusCode::kInvalidArgument);
  EXPECT_EQ(writer.SetField("c", DocumentField::kTitle, "x").code(), StatusCode::kNotFound);
  ASSERT_TRUE(writer.Add(Named(std::string(4096, 'x'))).ok());
  ASSERT_TRUE(writer.Commit().ok());
  EXPECT_EQ(Names(), (std::set<std::string>{"a", "b", std::string(4096, 'x')}));
}

TEST_F(IndexWriterTest, RollbackForgetsEverything) {
  IndexWriter writer = Open();
  ASSERT_TRUE(writer.Add(Named("a")).ok());
  writer.SetProperty("key", "old");
  ASSERT_TRUE(writer.Commit().ok());
  ASSERT_TRUE(writer.Add(Named("b")).ok());
  ASSERT_TRUE(writer.Remove("a").ok());
  writer.SetProperty("key", "new");
  ASSERT_TRUE(writer.Rollback().ok());
  ASSERT_TRUE(writer.Commit().ok());
  EXPECT_EQ(Names(), (std::set<std::string>{"a"}));
  EXPECT_EQ(ReadManifest(path_)->properties.at("key"), "old");
}

TEST_F(IndexWriterTest, ACommitWithoutChangesWritesNothing) {
  IndexWriter writer = Open();
  ASSERT_TRUE(writer.Add(Named("a")).ok());
  ASSERT_TRUE(writer.Commit().ok());
  const std::string manifest = kestan_tests::ReadFile(ManifestPath(path_));
  ASSERT_TRUE(writer.Commit().ok());
  EXPECT_EQ(kestan_tests::ReadFile(ManifestPath(path_)), manifest);
}

TEST_F(IndexWriterTest, ASecondWriterIsToldWhoIsTheFirst) {
  IndexWriter writer = Open();
  const auto second = IndexWriter::Open(path_);
  EXPECT_EQ(second.status().code(), StatusCode::kBusy);
  EXPECT_NE(second.status().message().find(std::to_string(getpid())), std::string::npos);
}

TEST_F(IndexWriterTest, WhereThereIsNoIndexNoneIsMadeUnasked) {
  WriterOptions options;
  options.create = false;
  EXPECT_EQ(IndexWriter::Open(path_, options).status().code(), StatusCode::kNotFound);
  EXPECT_FALSE(std::filesystem::exists(path_));
}

TEST_F(IndexWriterTest, AFolderOfOtherFilesIsLeftAlone) {
  kestan_tests::WriteFile(folder_ / "file", "x");
  EXPECT_EQ(IndexWriter::Open(folder_ / "").status().code(), StatusCode::kInvalidArgument);
  EXPECT_EQ(IndexWriter::Open(folder_ / "file").status().code(), StatusCode::kInvalidArgument);
}

TEST_F(IndexWriterTest, SegmentsWithoutAManifestAreNotTakenForLeftovers) {
  {
    IndexWriter writer = Open();
    ASSERT_TRUE(writer.Add(Named("a")).ok());
    ASSERT_TRUE(writer.Commit().ok());
  }
  std::filesystem::remove(ManifestPath(path_));
  EXPECT_EQ(IndexWriter::Open(path_).status().code(), StatusCode::kDamaged);
  EXPECT_TRUE(std::filesystem::exists(path_ + "/1.segment"));
}

TEST_F(IndexWriterTest, SmallSegmentsAreMerged) {
  IndexWriter writer = Open();
  std::set<std::string> names;
  for (int i = 0; i < 100; ++i) {
    names.insert("n" + std::to_string(i));
    ASSERT_TRUE(writer.Add(Named("n" + std::to_string(i))).ok());
    ASSERT_TRUE(writer.Commit().ok());
    EXPECT_LT(Segments(), 16u);
  }
  EXPECT_EQ(Names(), names);
  ASSERT_TRUE(writer.Remove("n7").ok());
  names.erase("n7");
  ASSERT_TRUE(writer.Compact().ok());
  EXPECT_EQ(Segments(), 1u);
  EXPECT_EQ(ReadManifest(path_)->segments[0].removed, 0u);
  EXPECT_EQ(Names(), names);
  EXPECT_EQ(FilesIn(path_), NamedFiles(path_));
}

// Changes the last byte of a file, in a file of its own: the old one may be mapped.
void ChangeLastByte(const std::string& path) {
  std::string bytes = kestan_tests::ReadFile(path);
  bytes.back() = static_cast<char>(bytes.back() ^ 1);
  std::filesystem::remove(path);
  kestan_tests::WriteFile(path, bytes);
}

TEST_F(IndexWriterTest, ChangedBytesAreNotMerged) {
  IndexWriter writer = Open();
  for (const char* name : {"a", "b"}) {
    ASSERT_TRUE(writer.Add(Named(name)).ok());
    ASSERT_TRUE(writer.Commit().ok());
  }
  ChangeLastByte(path_ + "/1.segment");
  const Status status = writer.Compact();
  EXPECT_EQ(status.code(), StatusCode::kDamaged);
  EXPECT_EQ(status.file(), path_ + "/1.segment");
  EXPECT_EQ(Segments(), 2u);
}

TEST_F(IndexWriterTest, ADamagedSegmentIsLeftOutOfMergingAndNamedOnce) {
  WriterOptions options;
  options.merge_factor = 3;
  IndexWriter writer = Open(options);
  for (const char* name : {"a", "b"}) {
    ASSERT_TRUE(writer.Add(Named(name)).ok());
    ASSERT_TRUE(writer.Commit().ok());
  }
  ChangeLastByte(path_ + "/1.segment");
  EXPECT_TRUE(writer.TakeWarnings().empty());
  ASSERT_TRUE(writer.Add(Named("c")).ok());
  ASSERT_TRUE(writer.Commit().ok());
  const std::vector<Status> warnings = writer.TakeWarnings();
  ASSERT_EQ(warnings.size(), 1u);
  EXPECT_EQ(warnings[0].code(), StatusCode::kDamaged);
  EXPECT_EQ(warnings[0].file(), path_ + "/1.segment");
  for (int i = 0; i < 20; ++i) {
    ASSERT_TRUE(writer.Add(Named("n" + std::to_string(i))).ok());
    ASSERT_TRUE(writer.Commit().ok());
    EXPECT_LE(Segments(), 6u);
  }
  EXPECT_TRUE(writer.TakeWarnings().empty());
  EXPECT_EQ(ReadManifest(path_)->segments[0].number, 1u);
  const auto report = CheckIndex(path_);
  ASSERT_TRUE(report.ok());
  EXPECT_EQ(report->faults, 1u);
  EXPECT_EQ(report->documents, 23u);
  EXPECT_EQ(writer.Compact().file(), path_ + "/1.segment");
  EXPECT_EQ(Segments(), 2u);
}

TEST_F(IndexWriterTest, ACompactionMergesAroundADamagedSegmentAndReturnsTheError) {
  IndexWriter writer = Open();
  for (const char* name : {"a", "b", "c", "d", "e"}) {
    Document document = Named(name);
    // No other segment has files of the same sizes: those are compared before they are read.
    if (document.name == "c") document.title = std::string(1000, 'c');
    ASSERT_TRUE(writer.Add(std::move(document)).ok());
    ASSERT_TRUE(writer.Commit().ok());
  }
  ChangeLastByte(path_ + "/3.segment");
  const Status status = writer.Compact();
  EXPECT_EQ(status.code(), StatusCode::kDamaged);
  EXPECT_EQ(status.file(), path_ + "/3.segment");
  EXPECT_EQ(Segments(), 2u);
  const auto reader = IndexReader::Open(path_);
  ASSERT_TRUE(reader.ok()) << reader.status().ToString();
  EXPECT_EQ(reader->Statistics().documents, 5u);
  EXPECT_TRUE(writer.TakeWarnings().empty());
  ASSERT_TRUE(writer.Add(Named("f")).ok());
  EXPECT_TRUE(writer.Commit().ok());
}

TEST_F(IndexWriterTest, TheSameDocumentsMakeTheSameSegments) {
  std::vector<std::string> manifests;
  for (int run = 0; run < 2; ++run) {
    std::filesystem::remove_all(path_);
    WriterOptions options;
    options.threads = 3;
    options.memory_budget = 4 << 20;
    IndexWriter writer = Open(options);
    for (int i = 0; i < 8'000; ++i) {
      std::string words;
      for (int word = 0; word < 50; ++word) words += "w" + std::to_string(i * word % 9973) + " ";
      ASSERT_TRUE(writer.Add(Named("n" + std::to_string(i), words)).ok());
    }
    ASSERT_TRUE(writer.Commit().ok());
    std::string manifest;
    const Manifest read = *ReadManifest(path_);
    for (const SegmentInfo& info : read.segments) {
      // All but what the dictionary says of the index file, which has times in it.
      const std::string terms = kestan_tests::ReadFile(path_ + "/" + TermsFile(info));
      manifest += std::to_string(info.number) + " " + std::to_string(info.documents) + " " +
                  std::to_string(ChecksumOf(terms.substr(0, terms.size() - 16))) + "\n";
    }
    manifests.push_back(manifest);
    EXPECT_EQ(Names().size(), 8'000u);
  }
  EXPECT_EQ(manifests[0], manifests[1]);
}

TEST_F(IndexWriterTest, ProgressMayInterruptACommit) {
  WriterOptions options;
  bool goes_on = true;
  options.progress = [&goes_on](const WriterProgress& progress) {
    EXPECT_LE(progress.done_bytes, progress.all_bytes);
    return goes_on;
  };
  IndexWriter writer = Open(options);
  ASSERT_TRUE(writer.Add(Named("a")).ok());
  ASSERT_TRUE(writer.Commit().ok());
  ASSERT_TRUE(writer.Add(Named("b")).ok());
  goes_on = false;
  EXPECT_EQ(writer.Commit().code(), StatusCode::kInterrupted);
  EXPECT_EQ(writer.Add(Named("c")).code(), StatusCode::kInterrupted);
  EXPECT_EQ(FilesIn(path_), NamedFiles(path_));
  goes_on = true;
  ASSERT_TRUE(writer.Rollback().ok());
  ASSERT_TRUE(writer.Add(Named("c")).ok());
  ASSERT_TRUE(writer.Commit().ok());
  EXPECT_EQ(Names(), (std::set<std::string>{"a", "c"}));
}

TEST_F(IndexWriterTest, AnInterruptedMergeKeepsWhatWasCommitted) {
  WriterOptions options;
  options.merge_factor = 2;
  options.progress = [](const WriterProgress& progress) {
    return progress.phase == WriterProgress::Phase::kWriting;
  };
  IndexWriter writer = Open(options);
  ASSERT_TRUE(writer.Add(Named("a")).ok());
  ASSERT_TRUE(writer.Commit().ok());
  ASSERT_TRUE(writer.Add(Named("b")).ok());
  EXPECT_EQ(writer.Commit().code(), StatusCode::kInterrupted);
  EXPECT_EQ(Names(), (std::set<std::string>{"a", "b"}));
  EXPECT_EQ(FilesIn(path_), NamedFiles(path_));
  EXPECT_TRUE(writer.Add(Named("c")).ok());
}

// Lets files grow to `bytes` bytes, in this process.
void LimitFiles(rlim_t bytes) {
  rlimit limit = {};
  getrlimit(RLIMIT_FSIZE, &limit);
  limit.rlim_cur = std::min(bytes, limit.rlim_max);
  setrlimit(RLIMIT_FSIZE, &limit);
}

TEST_F(IndexWriterTest, AFullDiskLosesNothingThatWasCommitted) {
  std::signal(SIGXFSZ, SIG_IGN);
  IndexWriter writer = Open();
  ASSERT_TRUE(writer.Add(Named("a")).ok());
  ASSERT_TRUE(writer.Commit().ok());
  bool is_full = true;
  int failures = 0;
  for (rlim_t bytes = 0; is_full; bytes += 100) {
    std::string words;
    for (int word = 0; word < 1000; ++word) words += "w" + std::to_string(word) + " ";
    LimitFiles(bytes);
    Status status = writer.Add(Named("b", words));
    if (status.ok()) status = writer.Commit();
    LimitFiles(RLIM_INFINITY);
    is_full = !status.ok();
    if (!is_full) break;
    ++failures;
    ASSERT_EQ(status.code(), StatusCode::kSystem) << status.ToString();
    ASSERT_EQ(FilesIn(path_), NamedFiles(path_));
    ASSERT_EQ(Names(), (std::set<std::string>{"a"}));
    ASSERT_TRUE(writer.Rollback().ok());
  }
  EXPECT_GT(failures, 10);
  EXPECT_EQ(Names(), (std::set<std::string>{"a", "b"}));
}

}  // namespace
}  // namespace kestan::search
