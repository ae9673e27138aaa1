// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/search/index_reader.h>

#include <gtest/gtest.h>
#include <kestan/kestan.h>

#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/temp_dir.h"

namespace kestan::search {
namespace {

class IndexReaderTest : public testing::Test {
 protected:
  // Adds documents, with titles "T" and their names, to the index folder `name`.
  void Add(const std::string& name, const std::vector<Document>& documents) {
    auto writer = IndexWriter::Open(folder_ / name);
    ASSERT_TRUE(writer.ok()) << writer.status().ToString();
    for (Document document : documents) {
      document.title = "T" + document.name;
      ASSERT_TRUE(writer->Add(document).ok());
    }
    ASSERT_TRUE(writer->Commit().ok());
  }

  static Document Named(const std::string& name, const std::string& text,
                        const std::string& host_data = "") {
    Document document;
    document.name = name;
    document.text = text;
    document.host_data = host_data;
    return document;
  }

  IndexReader Opened(const std::vector<std::string>& names) {
    std::vector<std::string> paths;
    for (const std::string& name : names) paths.push_back(folder_ / name);
    auto reader = IndexReader::Open(paths);
    EXPECT_TRUE(reader.ok()) << reader.status().ToString();
    return std::move(*reader);
  }

  // Returns "NAME: WORD@POSITION ..." of each document.
  static std::string WordsOf(const IndexReader& reader) {
    std::string text;
    const auto status = reader.ForEachDocumentWithWords(
        [&](const DocumentInfo& document, const std::vector<PlacedWord>& words) {
          text += document.name + ":";
          for (const PlacedWord& word : words) {
            text += " " + std::string(word.word) + "@" + std::to_string(word.position);
          }
          text += "\n";
          return true;
        });
    EXPECT_TRUE(status.ok()) << status.ToString();
    return text;
  }

  kestan_tests::TempDir folder_;
};

TEST_F(IndexReaderTest, TitlesOfHitsAreReadUnlessUnwanted) {
  Add("a", {Named("1", "cat")});
  const IndexReader reader = Opened({"a"});
  EXPECT_EQ(reader.Search("cat")->hits[0].title, "T1");
  SearchOptions options;
  options.with_titles = false;
  EXPECT_EQ(reader.Search("cat", options)->hits[0].title, "");
  EXPECT_EQ(reader.Search("cat", options)->hits[0].name, "1");
}

TEST_F(IndexReaderTest, DocumentOfAHitIsThatOfItsIndex) {
  Add("a", {Named("1", "cat", "of a")});
  Add("b", {Named("1", "cat", "of b")});
  const IndexReader reader = Opened({"a", "b"});
  const auto results = reader.Search("cat");
  ASSERT_EQ(results->hits.size(), 2u);
  for (const Hit& hit : results->hits) {
    EXPECT_EQ(reader.FindDocument(hit)->host_data, hit.index == 0 ? "of a" : "of b");
  }
  Hit gone = results->hits[0];
  gone.name = "2";
  EXPECT_EQ(reader.FindDocument(gone).status().code(), StatusCode::kNotFound);
}

TEST_F(IndexReaderTest, WordsOfDocumentsComeBackInTheirOrder) {
  Add("a", {Named("1", "The cat saw The dog"), Named("2", "")});
  Add("a", {Named("3", "a cat")});
  EXPECT_EQ(WordsOf(Opened({"a"})), "1: the@1 cat@2 saw@3 the@4 dog@5\n2:\n3: a@1 cat@2\n");
}

TEST_F(IndexReaderTest, WordsOfRemovedDocumentsAreLeftOutAndRenamedOnesHaveTheirNewNames) {
  Add("a", {Named("1", "cat"), Named("2", "dog"), Named("3", "hen")});
  auto writer = IndexWriter::Open(folder_ / "a");
  ASSERT_TRUE(writer->Remove("1").ok());
  ASSERT_TRUE(writer->Rename("2", "two").ok());
  ASSERT_TRUE(writer->Commit().ok());
  EXPECT_EQ(WordsOf(Opened({"a"})), "two: dog@1\n3: hen@1\n");
}

TEST_F(IndexReaderTest, WalkOverWordsEndsWhenItIsToldTo) {
  Add("a", {Named("1", "cat"), Named("2", "dog")});
  Add("a", {Named("3", "hen")});
  int documents = 0;
  const auto status = Opened({"a"}).ForEachDocumentWithWords(
      [&](const DocumentInfo&, const std::vector<PlacedWord>&) { return ++documents < 2; });
  EXPECT_TRUE(status.ok());
  EXPECT_EQ(documents, 2);
}

TEST_F(IndexReaderTest, ExplanationIsOfTheReadingThatAnswers) {
  Add("a", {Named("1", "cat"), Named("2", "dog")});
  const IndexReader reader = Opened({"a"});
  EXPECT_EQ(reader.Explain("cat")->part, "cat and its forms");
  EXPECT_EQ(reader.Explain("cat")->documents, 1u);
  EXPECT_EQ(reader.Explain("cat dog")->part, "OR");  // no document has both
  EXPECT_EQ(reader.Explain("cat dog")->documents, 2u);
  SearchOptions all;
  all.words = WordsMean::kAll;
  EXPECT_EQ(reader.Explain("cat dog", all)->part, "AND");
  EXPECT_EQ(reader.Explain("?!")->part, "");
}

TEST_F(IndexReaderTest, IndexWithoutPositionsSaysWhatNearAndQuotesMean) {
  WriterOptions options;
  options.with_positions = false;
  ASSERT_TRUE(IndexWriter::Open(folder_ / "a", options)->Commit().ok());
  EXPECT_FALSE(Opened({"a"}).Statistics().with_positions);
  Add("a", {Named("1", "dog cat")});
  const IndexReader reader = Opened({"a"});
  const std::vector<std::string> notes = {
      "the index keeps no positions, so NEAR and quotes are taken for AND"};
  EXPECT_EQ(reader.Search("\"cat dog\"")->notes, notes);
  EXPECT_EQ(reader.Search("dog OR (cat NEAR/1 dog)")->notes, notes);
  EXPECT_TRUE(reader.Search("cat dog")->notes.empty());
}

TEST_F(IndexReaderTest, AnotherIndexInItsPlaceIsAChange) {
  Add("index", {Named("a", "red")});
  IndexReader reader = Opened({"index"});
  const auto before = reader.Refresh();
  ASSERT_TRUE(before.ok()) << before.status().ToString();
  EXPECT_FALSE(*before);
  std::filesystem::remove_all(folder_ / "index");
  Add("index", {Named("b", "red"), Named("c", "red")});  // one commit old, as the first
  const auto after = reader.Refresh();
  ASSERT_TRUE(after.ok()) << after.status().ToString();
  EXPECT_TRUE(*after);
  EXPECT_EQ(reader.Statistics().documents, 2u);
}

TEST_F(IndexReaderTest, BytesAreThoseOfTheFiles) {
  Add("a", {Named("1", "cat")});
  Add("a", {Named("2", "cat"), Named("3", "cat"), Named("4", "cat")});
  auto writer = IndexWriter::Open(folder_ / "a");
  ASSERT_TRUE(writer->Rename("1", "one").ok());
  ASSERT_TRUE(writer->Commit().ok());
  const IndexStatistics statistics = Opened({"a"}).Statistics();
  std::map<std::string, std::uint64_t> sizes;  // by extension
  for (const auto& file : std::filesystem::directory_iterator(folder_ / "a")) {
    sizes[file.path().extension()] += file.file_size();
  }
  EXPECT_EQ(statistics.segment_bytes, sizes[".segment"]);
  EXPECT_EQ(statistics.term_dictionary_bytes, sizes[".terms"]);
  EXPECT_EQ(statistics.document_table_bytes, sizes[".documents"]);
  EXPECT_EQ(statistics.edit_bytes, sizes[".edits"]);
  EXPECT_GT(statistics.edit_bytes, 0u);
  EXPECT_EQ(statistics.bytes, sizes[".segment"] + sizes[".terms"] + sizes[".documents"] +
                                  sizes[".edits"] +
                                  std::filesystem::file_size(folder_ / "a/MANIFEST"));
}

// An index file of class Kestan.
class IndexFileReaderTest : public IndexReaderTest {
 protected:
  template <typename Change>
  void Make(const Change& change) {
    Kestan engine;
    ASSERT_EQ(engine.OpenIndex((folder_ / "f").c_str(), 1), 0);
    change(engine);
  }
};

TEST_F(IndexFileReaderTest, WordListsAndFlagsAreProperties) {
  Make([](Kestan& engine) {
    engine.AddDocumentWords("1", "w-boson cat");
    ASSERT_EQ(engine.DBPutWords("colours", "red green"), 0);
    ASSERT_EQ(engine.SetOptionFlag(8), 0);
    ASSERT_EQ(engine.PutOptions(), 0);
  });
  const IndexReader reader = Opened({"f"});
  EXPECT_EQ(*reader.Property("wordlist:colours"), "red\ngreen\n");
  EXPECT_EQ(*reader.Property("wordlist:boson"), "");
  EXPECT_EQ(*reader.Property("wordlist:"), "");
  EXPECT_EQ(*reader.Property("option-flags"), "8");
  EXPECT_EQ(*reader.Property("roots"), "");
}

TEST_F(IndexFileReaderTest, FlagThatTheLibraryKnowsIsNoProperty) {
  Make([](Kestan& engine) {
    ASSERT_EQ(engine.SetOptionFlag(1), 0);
    ASSERT_EQ(engine.PutOptions(), 0);
  });
  EXPECT_EQ(*Opened({"f"}).Property("option-flags"), "");
  EXPECT_FALSE(Opened({"f"}).Statistics().with_positions);
}

TEST_F(IndexFileReaderTest, WordsComeBackInTheirOrder) {
  Make([](Kestan& engine) {
    engine.AddDocumentWords("1", "The cat");
    engine.AddDocumentWords("2", "gone");
    engine.AddDocumentWords("3", "a dog a");
    engine.RemoveDocumentWords("2");
  });
  EXPECT_EQ(WordsOf(Opened({"f"})), "1: The@1 cat@2\n3: a@1 dog@2 a@3\n");
}

TEST_F(IndexFileReaderTest, DocumentMayHaveAnEmptyName) {
  Make([](Kestan& engine) {
    engine.AddDocumentWords("", "cat");
    engine.AddDocumentWords("1", "cat");
    engine.DBPutTitle("", "title");
  });
  const IndexReader reader = Opened({"f"});
  EXPECT_EQ(reader.Search("cat")->total, 2u);
  EXPECT_EQ(reader.FindDocument("")->title, "title");
  int matches = 0;
  EXPECT_TRUE(reader.ForEachMatch("cat", {}, [&](const Match&) { return ++matches < 9; }).ok());
  EXPECT_EQ(matches, 2);
}

}  // namespace
}  // namespace kestan::search
