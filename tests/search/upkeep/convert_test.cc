// SPDX-License-Identifier: GPL-3.0-or-later
#include <gtest/gtest.h>
#include <kestan/kestan.h>
#include <kestan/search/convert.h>
#include <kestan/search/index_reader.h>
#include <kestan/search/index_writer.h>

#include <filesystem>
#include <random>
#include <string>
#include <vector>

#include "tests/building/plain_documents.h"
#include "tests/search/index/read_index.h"
#include "tests/support/files.h"
#include "tests/support/stored_records.h"
#include "tests/support/temp_dir.h"

namespace kestan::search {
namespace {

using kestan_tests::PlainDocument;
using kestan_tests::PlainDocuments;

class ConvertTest : public testing::Test {
 protected:
  // Makes an index file of documents "n0", "n1", ...
  PlainDocuments AnyDocuments(unsigned seed) {
    std::mt19937 random(seed);
    PlainDocuments documents;
    const auto count = random() % 30;
    for (unsigned i = 0; i < count; ++i) {
      PlainDocument document;
      document.name = "n" + std::to_string(i);
      for (auto words = random() % 40; words > 0; --words) {
        document.text += (random() % 2 == 0 ? "Word" : "w-") + std::to_string(random() % 50) + " ";
      }
      if (random() % 2 == 0) document.side_records[SideRecord::kTitle] = "title";
      if (random() % 2 == 0) document.side_records[SideRecord::kUser] = "host";
      documents.push_back(document);
    }
    return documents;
  }

  void WriteWithEngine(const std::string& path, const PlainDocuments& documents) {
    Kestan engine;
    ASSERT_EQ(engine.OpenIndex(path.c_str(), 1), 0);
    kestan_tests::AddTo(&engine, documents);
    engine.CloseIndex();
  }

  void WriteFolder(const std::string& folder, const PlainDocuments& documents) {
    auto writer = IndexWriter::Open(folder);
    ASSERT_TRUE(writer.ok());
    ASSERT_TRUE(writer->Commit().ok());
    for (const PlainDocument& plain : documents) {
      ASSERT_TRUE(writer->Add({plain.name + "old", "", "old words", "", "", ""}).ok());
      if (plain.name.back() == '3') {
        ASSERT_TRUE(writer->Commit().ok());
      }
    }
    for (const PlainDocument& plain : documents) {
      ASSERT_TRUE(writer->Remove(plain.name + "old").ok());
      Document document;
      document.name = plain.name;
      document.words = plain.text;
      const auto title = plain.side_records.find(SideRecord::kTitle);
      const auto host = plain.side_records.find(SideRecord::kUser);
      if (title != plain.side_records.end()) document.title = title->second;
      if (host != plain.side_records.end()) document.host_data = host->second;
      ASSERT_TRUE(writer->Add(document).ok());
      if (plain.name.back() == '5') {
        ASSERT_TRUE(writer->Commit().ok());
      }
    }
    ASSERT_TRUE(writer->Commit().ok());
  }

  std::string Path(const std::string& name) const { return dir_ / name; }

  kestan_tests::TempDir dir_;
};

TEST_F(ConvertTest, AFolderBecomesTheFileThatTheEngineWouldMake) {
  for (unsigned seed = 0; seed < 20; ++seed) {
    const std::string at = std::to_string(seed);
    const PlainDocuments documents = AnyDocuments(seed);
    WriteWithEngine(Path("engine" + at), documents);
    WriteFolder(Path("folder" + at), documents);
    const Status status = WriteIndexFile(Path("folder" + at), Path("file" + at));
    ASSERT_TRUE(status.ok()) << status.ToString();
    EXPECT_EQ(kestan_tests::WithoutTimes(kestan_tests::Dump(Path("file" + at))),
              kestan_tests::WithoutTimes(kestan_tests::Dump(Path("engine" + at))))
        << seed;
    EXPECT_FALSE(std::filesystem::exists(Path("file" + at + ".new")));
  }
}

TEST_F(ConvertTest, AFileBecomesAFolderWithAllThatItHas) {
  Kestan engine;
  ASSERT_EQ(engine.OpenIndex(Path("file").c_str(), 1), 0);
  engine.AddDocumentWords("gone", "hello gone");
  engine.AddDocumentWords("a", "Hello world");
  engine.AddDocumentWords("b", "world e-mail");
  engine.RemoveDocumentWords("gone");
  engine.DBPutTitle("a", "Title");
  engine.DBPutSummary("b", "Summary");
  engine.DBPutUser("b", "host data");
  engine.DBPutTitle("nobody", "Title of none");
  engine.DBPutWords("colours", "red green");
  engine.SetOptionFlag(8);
  engine.PutOptions();
  engine.CloseIndex();
  ConversionReport report;
  const Status status = ConvertIndexFile(Path("file"), Path("folder/"), &report);
  ASSERT_TRUE(status.ok()) << status.ToString();
  EXPECT_EQ(report.words_left_out, 1u);
  EXPECT_EQ(report.texts_left_out, 1u);
  const auto read = kestan_tests::ReadIndex(Path("folder"));
  ASSERT_EQ(read.size(), 2u);
  EXPECT_EQ(read.at("a").words, kestan_tests::WordsOf("Hello world"));
  EXPECT_EQ(read.at("a").title, "Title");
  EXPECT_EQ(read.at("b").words, kestan_tests::WordsOf("world"));
  EXPECT_EQ(read.at("b").summary, "Summary");
  EXPECT_EQ(read.at("b").host_data, "host data");
  const auto reader = IndexReader::Open(Path("folder"));
  EXPECT_EQ(*reader->Property("wordlist:colours"), "red\ngreen\n");
  EXPECT_EQ(*reader->Property("option-flags"), "8");
  EXPECT_TRUE(IndexWriter::Open(Path("folder")).ok());
  EXPECT_FALSE(std::filesystem::exists(Path("folder.new")));
}

TEST_F(ConvertTest, AnEmptyFileBecomesAnEmptyFolderAndBack) {
  WriteWithEngine(Path("file"), {});
  ASSERT_TRUE(ConvertIndexFile(Path("file"), Path("folder")).ok());
  EXPECT_TRUE(kestan_tests::ReadIndex(Path("folder")).empty());
  ASSERT_TRUE(WriteIndexFile(Path("folder"), Path("again")).ok());
  EXPECT_EQ(kestan_tests::Dump(Path("again")), kestan_tests::Dump(Path("file")));
}

TEST_F(ConvertTest, WhatIsThereStays) {
  WriteWithEngine(Path("file"), {{"a", "words", {}}});
  WriteFolder(Path("folder"), {{"a", "words", {}}});
  kestan_tests::WriteFile(Path("taken"), "text");
  EXPECT_EQ(ConvertIndexFile(Path("file"), Path("taken")).code(), StatusCode::kAlreadyExists);
  EXPECT_EQ(ConvertIndexFile(Path("file"), Path("folder")).code(), StatusCode::kAlreadyExists);
  EXPECT_EQ(WriteIndexFile(Path("folder"), Path("taken")).code(), StatusCode::kAlreadyExists);
  EXPECT_EQ(kestan_tests::ReadFile(Path("taken")), "text");
  EXPECT_EQ(ConvertIndexFile(Path("missing"), Path("new")).code(), StatusCode::kNotFound);
  EXPECT_EQ(WriteIndexFile(Path("missing"), Path("new")).code(), StatusCode::kNotFound);
  EXPECT_FALSE(std::filesystem::exists(Path("new")));
  EXPECT_FALSE(std::filesystem::exists(Path("new.new")));
}

TEST_F(ConvertTest, WhatAnEarlierTryLeftIsReplaced) {
  WriteWithEngine(Path("file"), {{"a", "words", {}}});
  std::filesystem::create_directory(Path("folder.new"));
  for (const char* const name : {"1.segment", "MANIFEST", "staging.lock"}) {
    kestan_tests::WriteFile(Path("folder.new/") + name, "half of it");
  }
  ASSERT_TRUE(ConvertIndexFile(Path("file"), Path("folder")).ok());
  EXPECT_EQ(kestan_tests::ReadIndex(Path("folder")).size(), 1u);
}

TEST_F(ConvertTest, FilesOfOthersInTheWayStay) {
  WriteWithEngine(Path("file"), {{"a", "words", {}}});
  std::filesystem::create_directory(Path("folder.new"));
  kestan_tests::WriteFile(Path("folder.new/letter.txt"), "mine");
  EXPECT_EQ(ConvertIndexFile(Path("file"), Path("folder")).code(), StatusCode::kAlreadyExists);
  EXPECT_EQ(kestan_tests::ReadFile(Path("folder.new/letter.txt")), "mine");
}

TEST_F(ConvertTest, DamagedFilesAreNotConverted) {
  WriteFolder(Path("folder"), {{"a", "words", {}}});
  for (const auto& file : std::filesystem::directory_iterator(Path("folder"))) {
    if (file.path().extension() != ".segment") continue;
    std::string bytes = kestan_tests::ReadFile(file.path().string());
    bytes.back() = static_cast<char>(bytes.back() ^ 1);
    kestan_tests::WriteFile(file.path().string(), bytes);
  }
  EXPECT_EQ(WriteIndexFile(Path("folder"), Path("file")).code(), StatusCode::kDamaged);
  EXPECT_FALSE(std::filesystem::exists(Path("file")));
}

}  // namespace
}  // namespace kestan::search
