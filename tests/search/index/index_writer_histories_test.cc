// SPDX-License-Identifier: GPL-3.0-or-later
// Random histories of a writer, against a map.
#include <gtest/gtest.h>
#include <kestan/search/index_writer.h>

#include <optional>
#include <random>
#include <string>
#include <utility>

#include "search/index/manifest/manifest.h"
#include "tests/search/index/read_index.h"
#include "tests/support/environment.h"
#include "tests/support/temp_dir.h"

namespace kestan::search {
namespace {

using kestan_tests::ReadDocument;
using kestan_tests::ReadDocuments;
using kestan_tests::ReadIndex;

// Does at random what a host may do, and the same to a map.
class History {
 public:
  History(std::string path, unsigned seed) : path_(std::move(path)), random_(seed) { Reopen(); }

  void Step() {
    const unsigned kind = Below(100);
    if (kind < 50) return Add();
    if (kind < 62) return Remove();
    if (kind < 72) return Rename();
    if (kind < 82) return SetField();
    if (kind < 90) return Commit();
    if (kind < 93) return Rollback();
    if (kind < 96) return Compact();
    if (kind < 98) return AddMany();
    Reopen();
  }

  void Commit() {
    ASSERT_TRUE(writer_->Commit().ok());
    committed_ = documents_;
    Check();
  }

 private:
  unsigned Below(unsigned end) { return static_cast<unsigned>(random_() % end); }
  std::string Name() { return "n" + std::to_string(Below(60)); }

  std::string Words(unsigned most) {
    std::string words;
    for (unsigned count = Below(most); count > 0; --count) {
      words += "W" + std::to_string(Below(Below(2) == 0 ? 20 : 2000)) + " ";
    }
    return words;
  }

  void AddOne(const std::string& name, unsigned most_words) {
    Document document;
    document.name = name;
    document.words = Words(most_words);
    document.title = Words(3);
    document.summary = Words(3);
    document.host_data = Words(3);
    documents_[name] = {document.title, document.summary, document.host_data,
                        kestan_tests::WordsOf(document.words)};
    ASSERT_TRUE(writer_->Add(std::move(document)).ok());
  }

  void Add() { AddOne(Name(), 30); }

  // Enough for several batches, so that documents lie with threads when they are changed.
  void AddMany() {
    for (int i = 0; i < 30; ++i) {
      AddOne(Name(), 1000);
      Rename();
      Remove();
      SetField();
    }
  }

  void Remove() {
    const std::string name = Name();
    const StatusCode expected =
        documents_.erase(name) > 0 ? StatusCode::kOk : StatusCode::kNotFound;
    ASSERT_EQ(writer_->Remove(name).code(), expected);
  }

  void Rename() {
    const std::string from = Name();
    const std::string to = Name();
    StatusCode expected = StatusCode::kOk;
    if (documents_.count(from) == 0) {
      expected = StatusCode::kNotFound;
    } else if (documents_.count(to) != 0) {
      expected = StatusCode::kAlreadyExists;
    } else {
      documents_[to] = std::move(documents_[from]);
      documents_.erase(from);
    }
    ASSERT_EQ(writer_->Rename(from, to).code(), expected);
  }

  void SetField() {
    const std::string name = Name();
    const auto field = static_cast<DocumentField>(Below(3));
    const std::string value = Words(4);
    const auto found = documents_.find(name);
    if (found != documents_.end()) {
      ReadDocument& document = found->second;
      (field == DocumentField::kTitle     ? document.title
       : field == DocumentField::kSummary ? document.summary
                                          : document.host_data) = value;
    }
    ASSERT_EQ(writer_->SetField(name, field, value).code(),
              found != documents_.end() ? StatusCode::kOk : StatusCode::kNotFound);
  }

  void Rollback() {
    ASSERT_TRUE(writer_->Rollback().ok());
    documents_ = committed_;
    Check();
  }

  void Compact() {
    ASSERT_TRUE(writer_->Compact().ok());
    committed_ = documents_;
    Check();
    const Result<Manifest> manifest = ReadManifest(path_);
    ASSERT_TRUE(manifest.ok());
    ASSERT_EQ(manifest->segments.size(), documents_.empty() ? 0u : 1u);
    ASSERT_TRUE(documents_.empty() || manifest->segments[0].removed == 0);
  }

  void Reopen() {
    writer_.reset();
    documents_ = committed_;
    WriterOptions options;
    options.threads = 1 + Below(3);
    options.merge_factor = 2 + Below(7);
    options.memory_budget = Below(2) == 0 ? 1 << 20 : 64 << 20;
    auto writer = IndexWriter::Open(path_, options);
    ASSERT_TRUE(writer.ok()) << writer.status().ToString();
    writer_ = std::move(*writer);
    Check();
  }

  // What is committed is there, and nothing else, but for files of segments that are pending.
  void Check() {
    ASSERT_NO_THROW(ASSERT_TRUE(ReadIndex(path_) == committed_));
    ASSERT_EQ(kestan_tests::FilesIn(path_), kestan_tests::NamedFiles(path_));
  }

  const std::string path_;
  std::mt19937 random_;
  ReadDocuments documents_;
  ReadDocuments committed_;
  std::optional<IndexWriter> writer_;
};

// KESTAN_HISTORIES=N runs so many instead of 10.
TEST(IndexWriterHistoriesTest, LeaveWhatAMapWouldHold) {
  const auto histories =
      static_cast<unsigned>(kestan_tests::NumberFromEnvironment("KESTAN_HISTORIES", 10));
  for (unsigned seed = 0; seed < histories; ++seed) {
    SCOPED_TRACE("history " + std::to_string(seed));
    const kestan_tests::TempDir folder;
    History history(folder / "index", seed);
    for (int step = 0; step < 200; ++step) {
      history.Step();
      if (testing::Test::HasFatalFailure()) return;
    }
    history.Commit();
  }
}

}  // namespace
}  // namespace kestan::search
