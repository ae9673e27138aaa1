// SPDX-License-Identifier: GPL-3.0-or-later
// Reading commands, each on an index folder and on an index file of class Kestan.
#ifndef KESTAN_TESTS_CLI_BOTH_KINDS_TEST_H_
#define KESTAN_TESTS_CLI_BOTH_KINDS_TEST_H_

#include <kestan/kestan.h>
#include <kestan/search.h>

#include <string>
#include <vector>

#include "tests/cli/command_test.h"

namespace kestan_tests {

using kestan::search::Document;

// Adds `documents` to the index folder at `path`, or makes it.
inline void AddToFolder(const std::string& path, const std::vector<Document>& documents) {
  auto writer = kestan::search::IndexWriter::Open(path);
  ASSERT_TRUE(writer.ok()) << writer.status().ToString();
  for (const Document& document : documents) ASSERT_TRUE(writer->Add(document).ok());
  ASSERT_TRUE(writer->Commit().ok());
}

// Adds `documents` to the index file at `path`, or makes it.
inline void AddToFile(const std::string& path, const std::vector<Document>& documents) {
  Kestan engine;
  ASSERT_EQ(engine.OpenIndex(path.c_str(), 1), 0);
  for (const Document& document : documents) {
    const char* const name = document.name.c_str();
    const auto words = kestan::search::KeepWords(*kestan::search::ToAscii(document.text));
    ASSERT_TRUE(words.ok());
    engine.AddDocumentWords(name, words->c_str());
    if (!document.title.empty()) engine.DBPutTitle(name, document.title.c_str());
    if (!document.summary.empty()) engine.DBPutSummary(name, document.summary.c_str());
    if (!document.host_data.empty()) engine.DBPutUser(name, document.host_data.c_str());
  }
}

enum class Kind { kFolder, kFile };

// Runs each test with `my.index` of either kind.
class BothKindsTest : public CommandTest, public testing::WithParamInterface<Kind> {
 protected:
  bool IsFolder() const { return GetParam() == Kind::kFolder; }

  // Adds documents to `index`, or makes it of the kind that is tested.
  void AddTo(const std::string& index, const std::vector<Document>& documents) {
    if (IsFolder()) {
      AddToFolder(Path(index), documents);
    } else {
      AddToFile(Path(index), documents);
    }
  }

  // Adds a document to `my.index`.
  void Add(const std::string& name, const std::string& text) {
    AddTo("my.index", {Named(name, text)});
  }

  // Makes `my.index` without documents. It can then not be changed to keep positions.
  void MakeEmpty(bool with_positions = true) {
    if (IsFolder()) {
      kestan::search::WriterOptions options;
      options.with_positions = with_positions;
      auto writer = kestan::search::IndexWriter::Open(Path("my.index"), options);
      ASSERT_TRUE(writer.ok());
      ASSERT_TRUE(writer->Commit().ok());
      return;
    }
    Kestan engine;
    ASSERT_EQ(engine.OpenIndex(Path("my.index").c_str(), 1), 0);
    if (with_positions) return;
    ASSERT_EQ(engine.SetOptionFlag(1), 0);
    ASSERT_EQ(engine.PutOptions(), 0);
  }

  void Remove(const std::string& name) {
    if (IsFolder()) {
      auto writer = kestan::search::IndexWriter::Open(Path("my.index"));
      ASSERT_TRUE(writer.ok());
      ASSERT_TRUE(writer->Remove(name).ok());
      ASSERT_TRUE(writer->Commit().ok());
      return;
    }
    Kestan engine;
    ASSERT_EQ(engine.OpenIndex(Path("my.index").c_str(), 1), 0);
    ASSERT_EQ(engine.RemoveDocumentWords(name.c_str()), 0);
  }

  static Document Named(const std::string& name, const std::string& text) {
    Document document;
    document.name = name;
    document.text = text;
    return document;
  }
};

inline std::string NameOfKind(const testing::TestParamInfo<Kind>& info) {
  return info.param == Kind::kFolder ? "Folder" : "File";
}

inline const auto kBothKinds = testing::Values(Kind::kFolder, Kind::kFile);

}  // namespace kestan_tests

#endif  // KESTAN_TESTS_CLI_BOTH_KINDS_TEST_H_
