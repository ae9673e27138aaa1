// SPDX-License-Identifier: GPL-3.0-or-later
// IndexReader::ForEachMatch(), beside Search() without a limit.
#include <kestan/search/index_reader.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <string>
#include <tuple>
#include <vector>

#include "tests/support/files.h"
#include "tests/support/temp_dir.h"

namespace kestan::search {
namespace {

class IndexReaderMatchesTest : public testing::Test {
 protected:
  using Matches = std::map<std::string, std::tuple<double, std::size_t>>;  // score, index

  void Index(const std::string& folder, const std::map<std::string, std::string>& documents) {
    auto writer = IndexWriter::Open(dir_ / folder);
    ASSERT_TRUE(writer.ok());
    for (const auto& [name, words] : documents) {
      Document document;
      document.name = name;
      document.words = words;
      ASSERT_TRUE(writer->Add(document).ok());
    }
    ASSERT_TRUE(writer->Commit().ok());
  }

  static Matches Visited(const IndexReader& reader, const std::string& query,
                         const SearchOptions& options = {}) {
    Matches matches;
    const Status status = reader.ForEachMatch(query, options, [&](const Match& match) {
      EXPECT_TRUE(matches.emplace(match.name, std::tuple(match.score, match.index)).second);
      return true;
    });
    EXPECT_TRUE(status.ok()) << status.ToString();
    return matches;
  }

  static Matches Listed(const IndexReader& reader, const std::string& query,
                        SearchOptions options = {}) {
    options.limit = 0;
    Matches matches;
    const auto results = reader.Search(query, options);
    EXPECT_TRUE(results.ok());
    for (const Hit& hit : results->hits) matches[hit.name] = {hit.score, hit.index};
    return matches;
  }

  const kestan_tests::TempDir dir_;
};

TEST_F(IndexReaderMatchesTest, VisitsWhatSearchListsWithItsScores) {
  Index("1", {{"a", "x y"}, {"b", "x x x"}, {"c", "y"}});
  Index("1", {{"d", "y x"}, {"e", "z"}, {"a", "x y z"}});
  Index("2", {{"f", "x"}, {"g", "y z x"}});
  const auto reader = IndexReader::Open({dir_ / "1", dir_ / "2"});
  ASSERT_TRUE(reader.ok());
  for (const char* const query : {"x", "x y", "x OR z", "x -y", "-x", "\"x y\"", "missing", ""}) {
    for (const WordsMean words : {WordsMean::kAll, WordsMean::kAny, WordsMean::kBest}) {
      SearchOptions options;
      options.words = words;
      EXPECT_EQ(Visited(*reader, query, options), Listed(*reader, query, options)) << query;
    }
  }
  EXPECT_EQ(Visited(*reader, "x").size(), 5u);
}

TEST_F(IndexReaderMatchesTest, WordsThatNoDocumentHasTogetherMeanAnyOfThem) {
  Index("1", {{"a", "x"}, {"b", "y"}, {"c", "z"}});
  const auto reader = IndexReader::Open(dir_ / "1");
  ASSERT_TRUE(reader.ok());
  EXPECT_EQ(Visited(*reader, "x y").size(), 2u);
  SearchOptions all;
  all.words = WordsMean::kAll;
  EXPECT_TRUE(Visited(*reader, "x y", all).empty());
}

TEST_F(IndexReaderMatchesTest, EndsWhenTheVisitorHasEnough) {
  Index("1", {{"a", "x"}, {"b", "x"}, {"c", "x"}});
  const auto reader = IndexReader::Open(dir_ / "1");
  ASSERT_TRUE(reader.ok());
  int visits = 0;
  EXPECT_TRUE(reader->ForEachMatch("x", {}, [&visits](const Match&) { return ++visits < 2; }).ok());
  EXPECT_EQ(visits, 2);
}

void PutByte(const std::string& path, std::uintmax_t at, char byte) {
  std::fstream file(path, std::ios::in | std::ios::out | std::ios::binary);
  file.seekp(static_cast<std::streamoff>(at));
  file.put(byte);
}

TEST_F(IndexReaderMatchesTest, DamagedNamesAreAnErrorAndNoMatches) {
  Index("1", {{"a", "x"}, {"b", "x"}});
  const std::string table = dir_ / "1/1.documents";
  PutByte(table, std::filesystem::file_size(table) - 1, '?');
  const auto reader = IndexReader::Open(dir_ / "1");
  ASSERT_TRUE(reader.ok());
  int visits = 0;
  const Status status =
      reader->ForEachMatch("x", {}, [&visits](const Match&) { return ++visits > 0; });
  EXPECT_EQ(status.code(), StatusCode::kDamaged);
  EXPECT_EQ(visits, 0);
}

// They are read when scores are computed, and not when the index is opened.
TEST_F(IndexReaderMatchesTest, DamagedNumbersOfWordsAreAnErrorAndNoScores) {
  std::map<std::string, std::string> documents;
  for (int i = 0; i < 2000; ++i) documents[std::to_string(i)] = "x";
  Index("1", documents);
  const std::string table = dir_ / "1/1.documents";
  const std::string two_documents_of_one_word("\1\0\0\0\1\0\0\0", 8);
  PutByte(table, kestan_tests::ReadFile(table).find(two_documents_of_one_word), '\2');
  const auto reader = IndexReader::Open(dir_ / "1");
  ASSERT_TRUE(reader.ok());
  EXPECT_EQ(*reader->Count("x"), 2000u);
  EXPECT_EQ(reader->Search("x").status().code(), StatusCode::kDamaged);
  const auto any = [](const Match&) { return true; };
  EXPECT_EQ(reader->ForEachMatch("x", {}, any).code(), StatusCode::kDamaged);
}

}  // namespace
}  // namespace kestan::search
