// SPDX-License-Identifier: GPL-3.0-or-later
// An index file of class Kestan, searched like an index folder.
#include <gtest/gtest.h>
#include <kestan/kestan.h>
#include <kestan/search/index_reader.h>
#include <kestan/search/index_writer.h>

#include <cstdio>
#include <filesystem>
#include <map>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "tests/search/index/read_index.h"
#include "tests/support/environment.h"
#include "tests/support/files.h"
#include "tests/support/temp_dir.h"

namespace kestan::search {
namespace {

// Does at random what a host of class Kestan may do, and keeps the living documents.
class EngineHistory {
 public:
  struct Living {
    std::string words;
    std::string title;
  };

  EngineHistory(std::string path, unsigned seed, bool with_positions)
      : path_(std::move(path)), random_(seed) {
    EXPECT_EQ(engine_.OpenIndex(path_.c_str(), 1), 0);
    if (with_positions) return;
    EXPECT_EQ(engine_.SetOptionFlag(1), 0);
    EXPECT_EQ(engine_.PutOptions(), 0);
  }

  void Step() {
    const unsigned kind = Below(20);
    if (kind < 11) return Add();
    if (kind < 15) return Remove();
    if (kind < 19) return Rename();
    EXPECT_EQ(engine_.ShrinkIndex(), 0);
  }

  void Close() { engine_.CloseIndex(); }
  const std::map<std::string, Living>& living() const { return living_; }

  std::string Word() {
    const std::vector<std::string> words = {"cat", "Cat", "cats", "CATS", "dog", "flow", "Flows"};
    return Below(3) == 0 ? "w" + std::to_string(Below(300)) : words[Below(7)];
  }

  std::string Query() {
    switch (Below(11)) {
      case 0:
        return Word().substr(0, 2) + "*";
      case 1:
        return Word() + "~";
      case 2:
        return Word() + " AND " + Word();
      case 3:
        return Word() + " OR " + Word();
      case 4:
        return Word() + " NEAR/3 " + Word();
      case 5:
        return "\"" + Word() + " " + Word() + "\"";
      case 6:
        return "NOT " + Word();
      case 7:
        return Word() + " NOT " + Word();
      case 8:
        return "(" + Query() + ") OR (" + Query() + ")";
      case 9:
        return Word();
      default:
        return Word() + " " + Word() + " " + Word();
    }
  }

 private:
  unsigned Below(unsigned end) { return static_cast<unsigned>(random_() % end); }
  std::string Name() { return "n" + std::to_string(Below(40)); }

  void Add() {
    const std::string name = Name();
    Living& document = living_[name];
    document = {};
    for (unsigned count = Below(30); count > 0; --count) document.words += Word() + " ";
    document.title = "title " + std::to_string(Below(1000));
    engine_.AddDocumentWords(name.c_str(), document.words.c_str());
    EXPECT_EQ(engine_.DBPutTitle(name.c_str(), document.title.c_str()), 0);
  }

  void Remove() {
    const std::string name = Name();
    if (living_.erase(name) == 0) return;
    EXPECT_EQ(engine_.RemoveDocumentWords(name.c_str()), 0);
    EXPECT_EQ(engine_.DBDelTitle(name.c_str()), 0);
  }

  void Rename() {
    const std::string from = Name();
    const std::string to = Name();
    if (living_.count(from) == 0 || living_.count(to) != 0) return;
    EXPECT_EQ(engine_.MoveDocumentWords(from.c_str(), to.c_str()), 0);
    living_[to] = living_[from];
    living_.erase(from);
    EXPECT_EQ(engine_.DBDelTitle(from.c_str()), 0);
    EXPECT_EQ(engine_.DBPutTitle(to.c_str(), living_[to].title.c_str()), 0);
  }

  const std::string path_;
  std::mt19937 random_;
  Kestan engine_;
  std::map<std::string, Living> living_;
};

// Writes the documents as an index folder.
void WriteFolder(const std::string& folder, const EngineHistory& history, bool with_positions) {
  WriterOptions options;
  options.with_positions = with_positions;
  auto writer = IndexWriter::Open(folder, options);
  ASSERT_TRUE(writer.ok()) << writer.status().ToString();
  for (const auto& [name, living] : history.living()) {
    Document document;
    document.name = name;
    document.words = living.words;
    document.title = living.title;
    ASSERT_TRUE(writer->Add(document).ok());
  }
  ASSERT_TRUE(writer->Commit().ok());
}

std::string Printed(const SearchResults& results) {
  std::string text = std::to_string(results.total) + " found\n";
  for (const Hit& hit : results.hits) {
    char score[40];
    std::snprintf(score, sizeof score, "%.12g", hit.score);
    text += hit.name + " '" + hit.title + "' " + score + " " + std::to_string(hit.percent) + "\n";
  }
  for (const std::string& note : results.notes) text += "note " + note + "\n";
  for (const std::string& suggestion : results.suggestions) text += "try " + suggestion + "\n";
  for (const std::string& term : results.matched_terms) text += "term " + term + "\n";
  return text;
}

std::string PrintedDocuments(const IndexReader& reader) {
  std::map<std::string, std::string> documents;
  const Status status = reader.ForEachDocument([&](const DocumentInfo& info) {
    documents[info.name] = info.title + ", " + std::to_string(info.words) + " words";
    return true;
  });
  EXPECT_TRUE(status.ok()) << status.ToString();
  std::string text;
  for (const auto& [name, line] : documents) text += name + ": " + line + "\n";
  return text;
}

class OneFileIndexTest : public testing::Test {
 protected:
  void ExpectAnswersOfAFolder(unsigned seed, bool with_positions) {
    const kestan_tests::TempDir dir;
    EngineHistory history(dir / "index", seed, with_positions);
    for (unsigned i = 0; i < 20 + seed % 80; ++i) history.Step();
    history.Close();
    WriteFolder(dir / "folder", history, with_positions);
    kestan_tests::MakeOlder(dir / "folder");
    const auto file = IndexReader::Open(dir / "index");
    ASSERT_TRUE(file.ok()) << file.status().ToString();
    const auto folder = IndexReader::Open(dir / "folder");
    ASSERT_TRUE(folder.ok()) << folder.status().ToString();
    EXPECT_EQ(file->Statistics().documents, history.living().size());
    EXPECT_EQ(file->Statistics().with_positions, with_positions);
    if (with_positions) {
      EXPECT_EQ(PrintedDocuments(*file), PrintedDocuments(*folder));
    }
    for (int i = 0; i < 60; ++i) ExpectSameAnswer(history.Query(), *file, *folder, with_positions);
  }

  // Without positions, the lengths of documents are not known, and left out of scores.
  static void ExpectSameAnswer(const std::string& query, const IndexReader& file,
                               const IndexReader& folder, bool with_scores) {
    SearchOptions options;
    options.limit = 0;
    if (!with_scores) options.b = 0;  // lengths do not count then
    const auto of_file = file.Search(query, options);
    const auto of_folder = folder.Search(query, options);
    ASSERT_TRUE(of_file.ok()) << query << ": " << of_file.status().ToString();
    ASSERT_TRUE(of_folder.ok()) << query << ": " << of_folder.status().ToString();
    EXPECT_EQ(Printed(*of_file), Printed(*of_folder)) << query;
    EXPECT_EQ(*file.Count(query), of_folder->total) << query;
  }

  kestan_tests::TempDir dir_;
};

TEST_F(OneFileIndexTest, AnswersLikeAFolderOfItsLivingDocuments) {
  const unsigned seeds =
      static_cast<unsigned>(kestan_tests::NumberFromEnvironment("KESTAN_ONE_FILE_HISTORIES", 40));
  for (unsigned seed = 1; seed <= seeds && !HasFailure(); ++seed) {
    SCOPED_TRACE(seed);
    ExpectAnswersOfAFolder(seed, true);
  }
}

TEST_F(OneFileIndexTest, AnswersLikeAFolderWithoutPositions) {
  for (unsigned seed = 1; seed <= 15 && !HasFailure(); ++seed) {
    SCOPED_TRACE(seed);
    ExpectAnswersOfAFolder(seed, false);
  }
}

// Adds a document to the index file at `path`.
void AddToFile(const std::string& path, const char* name, const char* words) {
  Kestan engine;
  ASSERT_EQ(engine.OpenIndex(path.c_str(), 1), 0);
  engine.AddDocumentWords(name, words);
  engine.CloseIndex();
}

TEST_F(OneFileIndexTest, WordsThatLookLikeOtherRecordsAreLeftOut) {
  AddToFile(dir_ / "index", "a", "t-shirt d-day e-mail plain");
  const auto reader = IndexReader::Open(dir_ / "index");
  ASSERT_TRUE(reader.ok());
  EXPECT_EQ(reader->Terms("")->size(), 1u);
  EXPECT_EQ(reader->FindDocument("a")->words, 4u);  // the last position
}

TEST_F(OneFileIndexTest, LengthsPastTheHighestPositionAreCounted) {
  std::string words;
  for (int i = 0; i < 70'000; ++i) words += i % 2 == 0 ? "Hello " : "world ";
  AddToFile(dir_ / "index", "a", words.c_str());
  const auto reader = IndexReader::Open(dir_ / "index");
  ASSERT_TRUE(reader.ok()) << reader.status().ToString();
  EXPECT_EQ(reader->FindDocument("a")->words, 70'000u);
}

TEST_F(OneFileIndexTest, AnIndexThatNeverHadADocumentFindsNothing) {
  Kestan engine;
  ASSERT_EQ(engine.OpenIndex((dir_ / "index").c_str(), 1), 0);
  engine.CloseIndex();
  const auto reader = IndexReader::Open(dir_ / "index");
  ASSERT_TRUE(reader.ok()) << reader.status().ToString();
  EXPECT_EQ(reader->Search("NOT cat")->total, 0u);
  EXPECT_EQ(reader->Statistics().documents, 0u);
}

TEST_F(OneFileIndexTest, RefreshSeesAFileThatTookItsPlace) {
  AddToFile(dir_ / "index", "a", "one");
  AddToFile(dir_ / "other", "b", "two");
  auto reader = IndexReader::Open(dir_ / "index");
  ASSERT_TRUE(reader.ok());
  EXPECT_FALSE(*reader->Refresh());
  std::filesystem::rename(dir_ / "other", dir_ / "index");
  EXPECT_EQ(*reader->Count("one"), 1u);
  EXPECT_TRUE(*reader->Refresh());
  EXPECT_EQ(*reader->Count("one"), 0u);
  EXPECT_EQ(*reader->Count("two"), 1u);
}

TEST_F(OneFileIndexTest, StandsBesideAFolderInOneReader) {
  AddToFile(dir_ / "index", "a", "one");
  auto writer = IndexWriter::Open(dir_ / "folder");
  Document document;
  document.name = "b";
  document.words = "one";
  ASSERT_TRUE(writer->Add(document).ok());
  ASSERT_TRUE(writer->Commit().ok());
  const auto reader = IndexReader::Open({dir_ / "index", dir_ / "folder"});
  ASSERT_TRUE(reader.ok());
  EXPECT_EQ(*reader->Count("one"), 2u);
}

TEST_F(OneFileIndexTest, OtherFilesAreNoIndex) {
  kestan_tests::WriteFile(dir_ / "text", "just a text");
  kestan_tests::WriteFile(dir_ / "empty", "");
  EXPECT_EQ(IndexReader::Open(dir_ / "text").status().code(), StatusCode::kDamaged);
  EXPECT_EQ(IndexReader::Open(dir_ / "empty").status().code(), StatusCode::kDamaged);
  EXPECT_EQ(IndexReader::Open(dir_ / "missing").status().code(), StatusCode::kNotFound);
}

// No answer can be told from a right one where text was changed, so only calls are made here.
TEST_F(OneFileIndexTest, ChangedAndCutFilesGiveErrorsOrAnswers) {
  for (const char* name : {"a", "b", "c", "d"}) {
    AddToFile(dir_ / "index", name, "some words for each document and more");
  }
  const std::string good = kestan_tests::ReadFile(dir_ / "index");
  std::size_t errors = 0;
  const auto stride =
      static_cast<std::size_t>(kestan_tests::NumberFromEnvironment("KESTAN_DAMAGE_STRIDE", 7));
  const auto try_bytes = [&](const std::string& bytes) {
    kestan_tests::WriteFile(dir_ / "bad", bytes);
    const auto reader = IndexReader::Open(dir_ / "bad");
    if (!reader.ok()) ++errors;
    if (!reader.ok()) return;
    for (const char* query : {"some words", "doc*", "words~", "NOT more"}) {
      const auto results = reader->Search(query);
      if (!results.ok()) ++errors;
    }
  };
  for (std::size_t i = 0; i < good.size(); i += good[i] == 0 ? 29 * stride : stride) {
    std::string bad = good;
    bad[i] = static_cast<char>(bad[i] ^ 0x55);
    try_bytes(bad);
    try_bytes(good.substr(0, i));
  }
  EXPECT_GT(errors, 0u);
}

}  // namespace
}  // namespace kestan::search
