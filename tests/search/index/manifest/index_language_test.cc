// SPDX-License-Identifier: GPL-3.0-or-later
// The language of an index, from its documents to its answers.
#include "search/index/manifest/index_language.h"

#include <gtest/gtest.h>
#include <kestan/search.h>

#include <algorithm>
#include <string>
#include <vector>

#include "tests/support/temp_dir.h"

namespace kestan::search {
namespace {

class IndexLanguageTest : public testing::Test {
 protected:
  // Adds documents whose names are their texts.
  Status Add(const std::vector<std::string>& texts, const std::string& language = "") {
    WriterOptions options;
    options.language = language;
    auto writer = IndexWriter::Open(path_, options);
    if (!writer.ok()) return writer.status();
    for (const std::string& text : texts) {
      Document document;
      document.name = text;
      document.text = text;
      Status status = writer->Add(std::move(document));
      if (!status.ok()) return status;
    }
    return writer->Commit();
  }

  std::string Language() const { return *IndexReader::Open(path_)->Property("language"); }

  // Returns the names of documents with forms of `word`, in order of their bytes.
  std::vector<std::string> Forms(const std::string& word) const {
    SearchOptions options;
    options.words = WordsMean::kAny;
    auto results = IndexReader::Open(path_)->Search(word, options);
    EXPECT_TRUE(results.ok()) << results.status().ToString();
    std::vector<std::string> names;
    for (const Hit& hit : results->hits) names.push_back(hit.name);
    std::sort(names.begin(), names.end());
    return names;
  }

  using Names = std::vector<std::string>;

  kestan_tests::TempDir directory_;
  const std::string path_ = directory_ / "index";
};

TEST_F(IndexLanguageTest, IsGuessedFromTheFirstDocumentsAndStays) {
  ASSERT_TRUE(Add({"Das ist ein Haus, und es ist nicht aus Holz."}).ok());
  EXPECT_EQ(Language(), "german");
  ASSERT_TRUE(Add({"This is the house that is not of wood, and it was for me.", "and this"}).ok());
  EXPECT_EQ(Language(), "german");
}

TEST_F(IndexLanguageTest, IsEnglishWhereNothingShowsAnother) {
  ASSERT_TRUE(Add({"houses"}).ok());
  EXPECT_EQ(Language(), "english");
  EXPECT_EQ(Forms("house"), Names{"houses"});
}

TEST_F(IndexLanguageTest, CanBeSaidByNameOrCodeAndChanged) {
  ASSERT_TRUE(Add({"häuser", "haus", "houses"}, "de").ok());
  EXPECT_EQ(Language(), "german");
  EXPECT_EQ(Forms("Haus"), (Names{"haus", "häuser"}));
  ASSERT_TRUE(Add({}, "english").ok());
  EXPECT_EQ(Language(), "english");
  EXPECT_EQ(Forms("Haus"), Names{"haus"});
}

TEST_F(IndexLanguageTest, NoneMeansNoForms) {
  ASSERT_TRUE(Add({"house", "houses"}, "none").ok());
  EXPECT_EQ(Language(), "none");
  EXPECT_EQ(Forms("house"), Names{"house"});
}

TEST_F(IndexLanguageTest, AnUnknownOneIsAnError) {
  const Status status = Add({"house"}, "klingon");
  EXPECT_EQ(status.code(), StatusCode::kInvalidArgument);
  EXPECT_EQ(status.message().rfind("no word forms are known of 'klingon', but of arabic, ", 0), 0U);
}

TEST_F(IndexLanguageTest, WordsBeyondAsciiHaveForms) {
  ASSERT_TRUE(Add({"книга", "книгами", "кино", "Книги"}, "russian").ok());
  EXPECT_EQ(Forms("книгу"), (Names{"Книги", "книга", "книгами"}));
}

TEST_F(IndexLanguageTest, FormsThatBeginWithOtherLettersAreFound) {
  ASSERT_TRUE(Add({"كتاب", "الكتاب", "قلم"}, "ar").ok());
  EXPECT_EQ(Forms("كتاب"), (Names{"الكتاب", "كتاب"}));
}

TEST_F(IndexLanguageTest, EachIndexHasItsOwn) {
  ASSERT_TRUE(Add({"häuser"}, "de").ok());
  const std::string german = path_;
  const std::string other = directory_ / "other";
  WriterOptions options;
  options.language = "none";
  auto writer = IndexWriter::Open(other, options);
  ASSERT_TRUE(writer.ok());
  Document document;
  document.name = document.text = "häusern";
  ASSERT_TRUE(writer->Add(document).ok());
  ASSERT_TRUE(writer->Commit().ok());
  SearchOptions any;
  any.words = WordsMean::kAny;
  const auto results = IndexReader::Open({german, other})->Search("haus", any);
  ASSERT_TRUE(results.ok());
  ASSERT_EQ(results->total, 1U);
  EXPECT_EQ(results->hits.front().name, "häuser");
}

TEST_F(IndexLanguageTest, RollbackForgetsTheDocumentsItWasGuessedFrom) {
  auto writer = IndexWriter::Open(path_);
  ASSERT_TRUE(writer.ok());
  Document document;
  document.name = document.text = "Das ist ein Haus, und es ist nicht aus Holz.";
  ASSERT_TRUE(writer->Add(document).ok());
  ASSERT_TRUE(writer->Rollback().ok());
  document.name = document.text = "houses";
  ASSERT_TRUE(writer->Add(document).ok());
  ASSERT_TRUE(writer->Commit().ok());
  EXPECT_EQ(Language(), "english");
}

}  // namespace
}  // namespace kestan::search
