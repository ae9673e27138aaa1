// SPDX-License-Identifier: GPL-3.0-or-later
// Indexes whose words the Analyzer has made, from text to answers.
#include <gtest/gtest.h>
#include <kestan/kestan.h>
#include <kestan/search.h>

#include <algorithm>
#include <string>
#include <vector>

#include "search/index/manifest/manifest.h"
#include "tests/search/index/read_index.h"
#include "tests/support/temp_dir.h"

namespace kestan::search {
namespace {

using kestan_tests::MakeOlder;
using kestan_tests::ReadIndex;
using kestan_tests::WordsOf;

class AnalyzedIndexTest : public testing::Test {
 protected:
  // Adds documents whose texts are their names.
  void Add(const std::vector<std::string>& texts) {
    auto writer = IndexWriter::Open(path_);
    ASSERT_TRUE(writer.ok());
    for (const std::string& text : texts) ASSERT_TRUE(writer->Add(Named(text, text)).ok());
    ASSERT_TRUE(writer->Commit().ok());
  }

  static Document Named(const std::string& name, const std::string& text) {
    Document document;
    document.name = name;
    document.text = text;
    return document;
  }

  IndexReader Read() const { return std::move(*IndexReader::Open(path_)); }

  SearchResults Search(const std::string& query, WordsMean words = WordsMean::kBest) const {
    SearchOptions options;
    options.words = words;
    auto results = Read().Search(query, options);
    EXPECT_TRUE(results.ok()) << results.status().ToString();
    return std::move(*results);
  }

  // Returns the names of what is found, in order of their bytes, with " | " between them.
  std::string Found(const std::string& query, WordsMean words = WordsMean::kBest) const {
    std::vector<std::string> names;
    for (const Hit& hit : Search(query, words).hits) names.push_back(hit.name);
    std::sort(names.begin(), names.end());
    std::string joined;
    for (const std::string& name : names) joined += (joined.empty() ? "" : " | ") + name;
    return joined;
  }

  // Returns the snippet of `text` for `query`, with its matches in [brackets].
  std::string Snippet(const std::string& query, const std::string& text) const {
    const auto fragments = IndexReader::Snippet(Search(query), text);
    EXPECT_TRUE(fragments.ok());
    std::string line;
    for (const Fragment& fragment : *fragments) {
      line += fragment.matches ? "[" + fragment.text + "]" : fragment.text;
    }
    return line;
  }

  const kestan_tests::TempDir folder_;
  const std::string path_ = folder_ / "index";
};

TEST_F(AnalyzedIndexTest, NumbersCanBeAskedFor) {
  Add({"in 2024", "in 2023", "an 80486", "a 486", "port 8080", "RFC 2616", "RFC 822"});
  EXPECT_EQ(Found("2024"), "in 2024");
  EXPECT_EQ(Found("486"), "a 486");
  EXPECT_EQ(Found("8080"), "port 8080");
  EXPECT_EQ(Found("RFC 2616"), "RFC 2616");
  EXPECT_EQ(Found("20*"), "in 2023 | in 2024");
  EXPECT_EQ(Found("2025~"), "in 2023 | in 2024");
}

TEST_F(AnalyzedIndexTest, MixedWordsAreWords) {
  Add({"an F16", "an F17", "UTF8", "utf-8"});
  EXPECT_EQ(Found("F17"), "an F17");
  EXPECT_EQ(Found("f16"), "an F16");
  EXPECT_EQ(Found("utf8"), "UTF8");
}

TEST_F(AnalyzedIndexTest, WhatHangsTogetherIsAskedForInItsOrder) {
  Add({"COVID-19 spreads", "covid 20", "19 covid", "at 192.168.0.1", "at 168.192.0.1", "foo_bar()",
       "bar foo", "from a.b@example.org", "on 2026-11-20", "I don't"});
  EXPECT_EQ(Found("covid-19"), "COVID-19 spreads");
  EXPECT_EQ(Found("covid-20"), "covid 20");
  EXPECT_EQ(Found("covid-21"), "");
  EXPECT_EQ(Found("192.168.0.1"), "at 192.168.0.1");
  EXPECT_EQ(Found("foo_bar"), "foo_bar()");
  EXPECT_EQ(Found("a.b@example.org"), "from a.b@example.org");
  EXPECT_EQ(Found("example"), "from a.b@example.org");
  EXPECT_EQ(Found("2026-11-20"), "on 2026-11-20");
  EXPECT_EQ(Found("don't"), "I don't");
  EXPECT_EQ(Found("don’t"), "I don't");
}

TEST_F(AnalyzedIndexTest, NamesWithMarksCanBeAskedFor) {
  Add({"vitamin C", "C++ code", "C# code", "the net", ".NET code", "see .bashrc"});
  EXPECT_EQ(Found("c++"), "C++ code");
  EXPECT_EQ(Found("C#"), "C# code");
  EXPECT_EQ(Found("c"), "C# code | C++ code | vitamin C");
  EXPECT_EQ(Found(".NET"), ".NET code");
  EXPECT_EQ(Found("net"), ".NET code | the net");
  EXPECT_EQ(Found("\"c++ code\""), "C++ code");
  EXPECT_EQ(Found(".bashrc"), "see .bashrc");
}

TEST_F(AnalyzedIndexTest, CapitalsAndAccentsDoNotCount) {
  Add({"Zürich", "ZURICH", "Ёлка", "елка", "ΑΘΗΝΑ", "Αθήνα"});
  EXPECT_EQ(Found("zurich"), "ZURICH | Zürich");
  EXPECT_EQ(Found("ZÜRICH"), "ZURICH | Zürich");
  EXPECT_EQ(Found("ЁЛКА"), "Ёлка | елка");
  EXPECT_EQ(Found("αθηνα"), "ΑΘΗΝΑ | Αθήνα");
  EXPECT_EQ(Found("elka"), "");
}

TEST_F(AnalyzedIndexTest, ACapitalDoesNotSwitchWordFormsOff) {
  Add({"two wings", "nothing"});
  EXPECT_EQ(Found("Wing", WordsMean::kAny), "two wings");
}

TEST_F(AnalyzedIndexTest, ChineseWordsAreToldApart) {
  Add({"我爱北京", "背景音乐", "人工智能", "工人", "北方的京城"});
  EXPECT_EQ(Found("北京"), "我爱北京");
  EXPECT_EQ(Found("背景"), "背景音乐");
  EXPECT_EQ(Found("人工"), "人工智能");
  EXPECT_EQ(Found("工人"), "工人");
  EXPECT_EQ(Found("京"), "北方的京城 | 我爱北京");
  EXPECT_EQ(Found("人工智能"), "人工智能");
  EXPECT_EQ(Found("\"爱北京\""), "我爱北京");
}

// Where no document has all of a text without blanks, its parts count.
TEST_F(AnalyzedIndexTest, AQuestionWithoutBlanksFindsWhatHasSomeOfIt) {
  Add({"我爱北京", "背景音乐", "ภาษาไทย", "อาหารไทย"});
  EXPECT_EQ(Found("北京在哪里"), "我爱北京");
  EXPECT_EQ(Found("北京，音乐"), "我爱北京 | 背景音乐");
  EXPECT_EQ(Found("เรียนภาษา"), "ภาษาไทย");
}

TEST_F(AnalyzedIndexTest, PrefixesAndMisspellingsAreOfLetters) {
  Add({"Москва", "московский", "Киев", "北京", "Zürich"});
  EXPECT_EQ(Found("моск*"), "Москва | московский");
  EXPECT_EQ(Found("масква~"), "Москва");
  EXPECT_EQ(Found("Zür*"), "Zürich");
  EXPECT_EQ(Found("zürihc~"), "Zürich");
  EXPECT_EQ(Found("北*"), "北京");
}

TEST_F(AnalyzedIndexTest, SuggestionsNotesAndTermsAreReadable) {
  Add({"Москва", "привет Zürich", "北京"});
  EXPECT_EQ(Search("масква").suggestions, std::vector<std::string>{"москва"});
  EXPECT_EQ(Search("привет масква").notes.back(),
            "no document has 'масква'; did you mean 'москва'?");
  EXPECT_EQ(Search("Привет").matched_terms, std::vector<std::string>{"привет"});
  EXPECT_EQ(Read().Explain("Москва")->part, "москва and its forms");
  EXPECT_EQ(Read().Explain("\"привет Zürich\"")->part, "\"привет zurich\"");
  std::vector<std::string> terms;
  const auto infos = Read().Terms("");
  for (const TermInfo& info : *infos) terms.push_back(info.term);
  EXPECT_EQ(terms, (std::vector<std::string>{"zurich", "москва", "привет", "京", "北京"}));
  EXPECT_EQ(Read().Terms("мос")->size(), 1u);
}

TEST_F(AnalyzedIndexTest, WordsOfDocumentsAreReadable) {
  Add({"Привет, Zürich"});
  std::string words;
  const Status status = Read().ForEachDocumentWithWords(
      [&](const DocumentInfo&, const std::vector<PlacedWord>& placed) {
        for (const PlacedWord& word : placed) {
          words += std::string(word.word) + "@" + std::to_string(word.position) + " ";
        }
        return true;
      });
  EXPECT_TRUE(status.ok());
  EXPECT_EQ(words, "привет@1 zurich@2 ");
}

TEST_F(AnalyzedIndexTest, SnippetsMarkWordsInTheTextAsItStands) {
  Add({"Zürich", "Привет", "我爱北京大学", "C++ .NET", "don't"});
  EXPECT_EQ(Snippet("zurich", "In Zürich today"), "In [Zürich] today");
  EXPECT_EQ(Snippet("привет", "Скажи: «Привет!»"), "Скажи: «[Привет]!»");
  EXPECT_EQ(Snippet("北京大学", "我爱北京大学。"), "我爱[北京大学]。");
  EXPECT_EQ(Snippet("c++ .net", "In C++ or .NET."), "In [C++] or [.NET].");
  EXPECT_EQ(Snippet("don't", "I don't."), "I [don]'[t].");
}

TEST_F(AnalyzedIndexTest, WordsThatTheHostPreparesStayAsTheyAre) {
  auto writer = IndexWriter::Open(path_);
  Document document = Named("a", "Some Text, 2024");
  document.words = "As It Is";
  ASSERT_TRUE(writer->Add(document).ok());
  ASSERT_TRUE(writer->Commit().ok());
  EXPECT_EQ(ReadIndex(path_).at("a").words, WordsOf("some text 2024 As It Is"));
}

// A segment is an index file that class Kestan would have made of the analyzed words.
TEST_F(AnalyzedIndexTest, ClassKestanMakesTheSameRecordsOfTheWords) {
  const std::vector<std::string> texts = {"Zürich: C++ 2024", "北京 Привет, мир", ".NET ภาษาไทย"};
  Add(texts);
  Kestan engine;
  ASSERT_EQ(engine.OpenIndex((folder_ / "file").c_str(), 1), 0);
  for (const std::string& text : texts) {
    engine.AddDocumentWords(text.c_str(), Analyzer().Analyze(text)->c_str());
  }
  engine.CloseIndex();
  const auto file = IndexReader::Open(folder_ / "file");
  ASSERT_TRUE(file.ok());
  const IndexReader reader = Read();
  const auto of_folder = reader.Terms("");
  auto of_file = *file->Terms("");
  for (TermInfo& info : of_file) info.term = *Analyzer::Decode(info.term);
  ASSERT_EQ(of_folder->size(), of_file.size());
  for (std::size_t i = 0; i < of_file.size(); ++i) {
    EXPECT_EQ((*of_folder)[i].term, of_file[i].term);
    EXPECT_EQ((*of_folder)[i].documents, of_file[i].documents);
  }
}

TEST_F(AnalyzedIndexTest, ANewIndexHasTheVersion) {
  Add({"a"});
  EXPECT_EQ(*Read().Property("analyzer"), Analyzer::kVersion);
  auto writer = IndexWriter::Open(path_);
  writer->SetProperty("analyzer", "7");
  ASSERT_TRUE(writer->Commit().ok());
  EXPECT_EQ(*Read().Property("analyzer"), Analyzer::kVersion);
}

TEST_F(AnalyzedIndexTest, AnIndexOfAnotherVersionIsRefused) {
  Add({"a"});
  auto manifest = *ReadManifest(path_);
  manifest.properties["analyzer"] = "2 english";
  ASSERT_TRUE(WriteManifest(path_, manifest).ok());
  for (const Status& status :
       {IndexReader::Open(path_).status(), IndexWriter::Open(path_).status()}) {
    EXPECT_EQ(status.code(), StatusCode::kVersion);
    EXPECT_EQ(status.message(), "its words are of version 2; this program knows version 1");
  }
  manifest.properties["analyzer"] = "1 english";
  ASSERT_TRUE(WriteManifest(path_, manifest).ok());
  EXPECT_TRUE(IndexReader::Open(path_).ok());
}

// ---- Indexes from before the Analyzer ----

class OlderIndexTest : public AnalyzedIndexTest {
 protected:
  void SetUp() override {
    auto writer = IndexWriter::Open(path_);
    Document document;
    document.name = "a";
    document.words = "Hello dont privet F";
    ASSERT_TRUE(writer->Add(document).ok());
    ASSERT_TRUE(writer->Commit().ok());
    MakeOlder(path_);
  }
};

TEST_F(OlderIndexTest, QueriesAreReadAsTheyWere) {
  EXPECT_EQ(Found("hello"), "a");
  EXPECT_EQ(Found("Hello"), "a");
  EXPECT_EQ(Found("HELLO"), "");
  EXPECT_EQ(Found("don't"), "a");
  EXPECT_EQ(Found("Привет"), "");  // Privet, with its capital
  EXPECT_EQ(Found("привет"), "a");
  EXPECT_EQ(Found("F17"), "a");
  EXPECT_EQ(Snippet("don't", "I don't."), "I [don't].");
  EXPECT_EQ(Snippet("привет", "Привет"), "[Привет]");
}

TEST_F(OlderIndexTest, TextIsRefusedAsLongAsThereAreDocuments) {
  auto writer = IndexWriter::Open(path_);
  const Status status = writer->Add(Named("b", "text"));
  EXPECT_EQ(status.code(), StatusCode::kVersion);
  EXPECT_EQ(status.file(), path_);
  EXPECT_NE(status.message().find("removed"), std::string::npos);
  Document prepared;
  prepared.name = "b";
  prepared.words = "words";
  EXPECT_TRUE(writer->Add(prepared).ok());  // nothing is lost by the refusal
  ASSERT_TRUE(writer->Commit().ok());
  EXPECT_EQ(Found("words"), "b");
}

TEST_F(OlderIndexTest, WithoutDocumentsItBecomesOneOfTheAnalyzer) {
  auto writer = IndexWriter::Open(path_);
  ASSERT_TRUE(writer->Remove("a").ok());
  ASSERT_TRUE(writer->Add(Named("b", "in 2024")).ok());
  ASSERT_TRUE(writer->Add(Named("c", "C++")).ok());
  EXPECT_EQ(*Read().Property("analyzer"), "");
  ASSERT_TRUE(writer->Commit().ok());
  EXPECT_EQ(*Read().Property("analyzer"), "1");
  EXPECT_EQ(Found("2024"), "b");
  EXPECT_EQ(Found("c++"), "c");
}

TEST_F(OlderIndexTest, RollbackLeavesItAnOlderOne) {
  auto writer = IndexWriter::Open(path_);
  ASSERT_TRUE(writer->Remove("a").ok());
  ASSERT_TRUE(writer->Add(Named("b", "text")).ok());
  ASSERT_TRUE(writer->Rollback().ok());
  EXPECT_EQ(writer->Add(Named("b", "text")).code(), StatusCode::kVersion);
}

}  // namespace
}  // namespace kestan::search
