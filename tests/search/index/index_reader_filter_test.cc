// SPDX-License-Identifier: GPL-3.0-or-later
// Searches with a filter of the host.
#include <gtest/gtest.h>
#include <kestan/search.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <mutex>
#include <new>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/temp_dir.h"

namespace kestan::search {
namespace {

using Lines = std::vector<std::string>;

Document Named(const std::string& name, const std::string& words, const std::string& title = "",
               const std::string& host_data = "") {
  Document document;
  document.name = name;
  document.words = words;
  document.title = title;
  document.host_data = host_data;
  return document;
}

// Adds `documents` to the index at `path` in one commit: one segment.
void AddTo(const std::string& path, const std::vector<Document>& documents,
           const WriterOptions& options = {}) {
  auto writer = IndexWriter::Open(path, options);
  ASSERT_TRUE(writer.ok());
  for (const Document& document : documents) ASSERT_TRUE(writer->Add(document).ok());
  ASSERT_TRUE(writer->Commit().ok());
}

SearchOptions With(DocumentFilter filter) {
  SearchOptions options;
  options.filter = std::move(filter);
  return options;
}

bool NameIsNotA(const FilteredDocument& document) { return document.name() != "a"; }

class IndexReaderFilterTest : public testing::Test {
 protected:
  IndexReaderFilterTest() {
    AddTo(path_, {Named("a", "cat dog cow", "First", "one"), Named("b", "cat pig", "", "two")});
    AddTo(path_, {Named("c", "dog dog", "Third"), Named("d", "cow", "Fourth", "four")});
  }

  IndexReader Read() const { return std::move(*IndexReader::Open(path_)); }

  SearchResults Search(const std::string& query, const SearchOptions& options) const {
    auto results = Read().Search(query, options);
    EXPECT_TRUE(results.ok()) << results.status().ToString();
    return std::move(*results);
  }

  Lines Names(const std::string& query, const SearchOptions& options) const {
    Lines names;
    for (const Hit& hit : Search(query, options).hits) names.push_back(hit.name);
    return names;
  }

  const kestan_tests::TempDir dir_;
  const std::string path_ = dir_ / "index";
};

TEST_F(IndexReaderFilterTest, DocumentForWhichItReturnsFalseIsAsIfItDidNotMatch) {
  const SearchOptions options = With(NameIsNotA);
  EXPECT_EQ(Names("dog", {}), (Lines{"c", "a"}));
  EXPECT_EQ(Names("dog", options), Lines{"c"});
  EXPECT_EQ(Search("dog", options).total, 1u);
  EXPECT_EQ(*Read().Count("dog", options), 1u);
  Lines visited;
  const auto visit = [&visited](const Match& match) {
    visited.emplace_back(match.name);
    return true;
  };
  EXPECT_TRUE(Read().ForEachMatch("dog", options, visit).ok());
  EXPECT_EQ(visited, Lines{"c"});
}

TEST_F(IndexReaderFilterTest, TheBestOfThoseThatPassHasAHundredPercent) {
  const SearchResults results =
      Search("dog", With([](const FilteredDocument& document) { return document.name() == "a"; }));
  ASSERT_EQ(results.hits.size(), 1u);
  EXPECT_EQ(results.hits[0].percent, 100);
  EXPECT_EQ(results.hits[0].score, Search("dog", {}).hits[1].score);
}

TEST_F(IndexReaderFilterTest, DocumentsWithSomeWordsAnswerWhereNoneThatPassesHasAll) {
  const SearchResults results = Search("dog cow", With(NameIsNotA));
  EXPECT_EQ(results.total, 2u);
  EXPECT_EQ(results.notes,
            Lines{"no document that passes the filters has all of these words; these have some of "
                  "them"});
  EXPECT_EQ(*Read().Count("dog cow", With(NameIsNotA)), 2u);
  EXPECT_EQ(Search("dog cow", {}).notes, Lines());
}

TEST_F(IndexReaderFilterTest, BlankQueryFindsAllThatPassInOrderOfNames) {
  for (const char* const query : {"", " \n"}) {
    EXPECT_EQ(Names(query, With(NameIsNotA)), (Lines{"b", "c", "d"}));
    EXPECT_EQ(*Read().Count(query, With(NameIsNotA)), 3u);
    EXPECT_EQ(Search(query, With(NameIsNotA)).notes, Lines());
  }
  SearchOptions two = With(NameIsNotA);
  two.limit = 2;
  EXPECT_EQ(Names("", two), (Lines{"b", "c"}));
  EXPECT_EQ(Search("", two).total, 3u);
}

TEST_F(IndexReaderFilterTest, BlankQueryFindsNothingWhereNothingPasses) {
  const SearchOptions none = With([](const FilteredDocument&) { return false; });
  EXPECT_EQ(Search("", none).total, 0u);
  EXPECT_EQ(*Read().Count("", none), 0u);
}

TEST_F(IndexReaderFilterTest, BlankQueryWithoutAFilterFindsNothing) {
  EXPECT_EQ(Search("", {}).total, 0u);
}

TEST_F(IndexReaderFilterTest, QueryWithoutLettersFindsNothingWithAFilterEither) {
  EXPECT_EQ(Search("?!", With(NameIsNotA)).total, 0u);
}

TEST_F(IndexReaderFilterTest, SeesAllThatTheIndexKeepsOfADocument) {
  std::map<std::string, Lines> seen;
  const auto see = [&seen](const FilteredDocument& document) {
    EXPECT_GT(document.added(), 1'700'000'000u);
    EXPECT_EQ(document.index(), 0u);
    seen[std::string(document.name())] = {document.title(), document.summary(),
                                          document.host_data()};
    return true;
  };
  EXPECT_EQ(Names("cat", With(see)).size(), 2u);
  EXPECT_EQ(seen,
            (std::map<std::string, Lines>{{"a", {"First", "", "one"}}, {"b", {"", "", "two"}}}));
}

TEST_F(IndexReaderFilterTest, SeesNewNamesAndTextsAndNoRemovedDocuments) {
  auto writer = IndexWriter::Open(path_);
  ASSERT_TRUE(writer->Rename("a", "z").ok());
  ASSERT_TRUE(writer->SetField("z", DocumentField::kTitle, "Last").ok());
  ASSERT_TRUE(writer->Remove("b").ok());
  ASSERT_TRUE(writer->Commit().ok());
  Lines seen;
  const auto see = [&seen](const FilteredDocument& document) {
    seen.push_back(std::string(document.name()) + " " + document.title());
    return true;
  };
  EXPECT_EQ(Names("cat", With(see)), Lines{"z"});
  EXPECT_EQ(seen, Lines{"z Last"});
}

TEST_F(IndexReaderFilterTest, TellsWhichOfSeveralIndexesHasADocument) {
  AddTo(dir_ / "other", {Named("e", "cat")});
  const auto reader = IndexReader::Open({path_, dir_ / "other"});
  const auto of_second = [](const FilteredDocument& document) { return document.index() == 1; };
  const auto results = reader->Search("cat", With(of_second));
  ASSERT_EQ(results->hits.size(), 1u);
  EXPECT_EQ(results->hits[0].name, "e");
}

TEST_F(IndexReaderFilterTest, WhatItThrowsIsAnError) {
  const SearchOptions options =
      With([](const FilteredDocument&) -> bool { throw std::runtime_error("enough"); });
  const Status status = Read().Search("dog", options).status();
  EXPECT_EQ(status.code(), StatusCode::kSystem);
  EXPECT_EQ(status.message(), "enough");
  EXPECT_EQ(Read().Count("dog", options).status().code(), StatusCode::kSystem);
  const SearchOptions full = With([](const FilteredDocument&) -> bool { throw std::bad_alloc(); });
  EXPECT_EQ(Read().Search("dog", full).status().code(), StatusCode::kOutOfMemory);
}

TEST_F(IndexReaderFilterTest, DamageOfWhatItLooksAtIsAnErrorWhateverItSays) {
  const std::string table = path_ + "/1.documents";
  std::fstream file(table, std::ios::in | std::ios::out | std::ios::binary);
  file.seekp(static_cast<std::streamoff>(std::filesystem::file_size(table) - 1));
  file.put('?').flush();
  for (const bool passes : {false, true}) {
    const auto look = [passes](const FilteredDocument& document) {
      return document.host_data() == "x" || document.name().size() > 9 || passes;
    };
    EXPECT_EQ(Read().Search("cat", With(look)).status().code(), StatusCode::kDamaged);
    EXPECT_EQ(Read().Count("cat", With(look)).status().code(), StatusCode::kDamaged);
  }
}

TEST_F(IndexReaderFilterTest, ExplanationTellsHowManyPass) {
  const auto explained = Read().Explain("dog", With(NameIsNotA));
  ASSERT_TRUE(explained.ok());
  EXPECT_EQ(explained->part, "FILTER");
  EXPECT_EQ(explained->documents, 1u);
  ASSERT_EQ(explained->parts.size(), 1u);
  EXPECT_EQ(explained->parts[0].part, "dog and its forms");
  EXPECT_EQ(explained->parts[0].documents, 2u);
}

TEST_F(IndexReaderFilterTest, ExplanationIsOfTheReadingWhoseDocumentsPass) {
  const auto explained = Read().Explain("dog cow", With(NameIsNotA));
  ASSERT_EQ(explained->parts.size(), 1u);
  EXPECT_EQ(explained->parts[0].part, "OR");
  EXPECT_EQ(explained->documents, 2u);
  EXPECT_EQ(Read().Explain("", With(NameIsNotA))->documents, 3u);
  EXPECT_TRUE(Read().Explain("", With(NameIsNotA))->parts.empty());
}

TEST(LargeFilteredIndexTest, SeveralThreadsMayCallItAndChangeNoAnswer) {
  const kestan_tests::TempDir dir;
  const std::string path = dir / "index";
  for (int part = 0; part < 2; ++part) {
    std::vector<Document> documents;
    for (int i = 0; i < 51'000; ++i) documents.push_back(Named(std::to_string(2 * i + part), "x"));
    AddTo(path, documents);
  }
  std::mutex mutex;
  std::size_t calls = 0;
  SearchOptions options = With([&](const FilteredDocument& document) {
    const std::lock_guard<std::mutex> lock(mutex);
    ++calls;
    return document.name().back() == '7';
  });
  const auto results = IndexReader::Open(path)->Search("x", options);
  ASSERT_TRUE(results.ok());
  EXPECT_EQ(results->total, 10'200u);
  EXPECT_EQ(calls, 102'000u);
}

// ---- The slow, plain twin: all that is found, and then the filter ----

using Hits = std::vector<std::pair<std::string, double>>;

Hits HitsOf(const IndexReader& reader, const std::string& query, SearchOptions options) {
  const auto results = reader.Search(query, options);
  RC_ASSERT(results.ok());
  Hits hits;
  for (const Hit& hit : results->hits) hits.emplace_back(hit.name, hit.score);
  return hits;
}

Hits Filtered(Hits hits, const std::string& digits) {
  const auto is_unwanted = [&](const auto& hit) {
    return digits.find(hit.first.back()) == std::string::npos;
  };
  hits.erase(std::remove_if(hits.begin(), hits.end(), is_unwanted), hits.end());
  return hits;
}

Hits Expected(const IndexReader& reader, const std::string& query, const std::string& digits,
              WordsMean words) {
  SearchOptions options;
  options.limit = 0;
  options.opening_bonus = 0;
  options.words = words == WordsMean::kBest ? WordsMean::kAll : words;
  Hits hits = Filtered(HitsOf(reader, query, options), digits);
  if (words != WordsMean::kBest || !hits.empty()) return hits;
  options.words = WordsMean::kAny;
  return Filtered(HitsOf(reader, query, options), digits);
}

// Without forms of words, the first documents that answer are those of WordsMean::kAll.
void AddRandomDocuments(const std::string& path) {
  WriterOptions options;
  options.language = "none";
  int number = 0;
  for (int segment = *rc::gen::inRange(1, 4); segment > 0; --segment) {
    std::vector<Document> documents;
    for (int i = *rc::gen::inRange(1, 30); i > 0; --i) {
      std::string words;
      for (int left = *rc::gen::inRange(0, 6); left > 0; --left) {
        words += *rc::gen::element<std::string>("cat ", "dog ", "cow ", "pig ", "cats ");
      }
      documents.push_back(Named("n" + std::to_string(number++), words));
    }
    AddTo(path, documents, options);
  }
}

RC_GTEST_PROP(FilteredSearchPropertiesTest, FindsWhatASearchAndAFilterByHandFind, ()) {
  const kestan_tests::TempDir dir;
  AddRandomDocuments(dir / "index");
  const auto reader = IndexReader::Open(dir / "index");
  RC_ASSERT(reader.ok());
  for (int i = 0; i < 10; ++i) {
    const auto query = *rc::gen::element<std::string>("cat", "cat dog", "cat dog cow", "pig OR cow",
                                                      "cat -dog", "-cat", "\"cat dog\"", "ca*",
                                                      "cat NEAR/2 cow", "missing", "missing cat");
    const auto digits = *rc::gen::element<std::string>("", "0", "13579", "0123456789", "27");
    SearchOptions options;
    options.opening_bonus = 0;  // where it counts depends on `words`
    options.words = *rc::gen::element(WordsMean::kBest, WordsMean::kAll, WordsMean::kAny);
    options.limit = *rc::gen::element<std::size_t>(0, 1, 3, 10);
    options.filter = [digits](const FilteredDocument& document) {
      return digits.find(document.name().back()) != std::string::npos;
    };
    Hits expected = Expected(*reader, query, digits, options.words);
    RC_ASSERT(*reader->Count(query, options) == expected.size());
    RC_ASSERT(reader->Search(query, options)->total == expected.size());
    if (options.limit > 0 && expected.size() > options.limit) expected.resize(options.limit);
    RC_ASSERT(HitsOf(*reader, query, options) == expected);
  }
}

}  // namespace
}  // namespace kestan::search
