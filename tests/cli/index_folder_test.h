// SPDX-License-Identifier: GPL-3.0-or-later
// Index folders that the tests of commands work on.
#ifndef KESTAN_TESTS_CLI_INDEX_FOLDER_TEST_H_
#define KESTAN_TESTS_CLI_INDEX_FOLDER_TEST_H_

#include <gtest/gtest.h>
#include <kestan/search.h>

#include <filesystem>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "tests/cli/command_test.h"

namespace kestan_tests {

// Returns the writer of the index folder at `path`, which is made if there is none.
inline kestan::search::IndexWriter WriterOf(const std::string& path) {
  auto writer = kestan::search::IndexWriter::Open(path);
  EXPECT_TRUE(writer.ok()) << writer.status().ToString();
  return std::move(*writer);
}

inline kestan::search::IndexReader ReaderOfFolder(const std::string& path) {
  auto reader = kestan::search::IndexReader::Open(path);
  EXPECT_TRUE(reader.ok()) << reader.status().ToString();
  return std::move(*reader);
}

// Returns the names of all documents, in the order of the index.
inline std::vector<std::string> NamesOf(const std::string& path) {
  std::vector<std::string> names;
  const auto status = ReaderOfFolder(path).ForEachDocument([&](const auto& document) {
    names.push_back(document.name);
    return true;
  });
  EXPECT_TRUE(status.ok()) << status.ToString();
  return names;
}

// Gives each test an index folder `my.index` and an index `one.index` of one file.
class IndexFolderTest : public CommandTest {
 protected:
  // Adds a document with its texts to `my.index`.
  void AddDocument(const std::string& name, const std::string& text = "cat",
                   const std::string& title = "The title") {
    kestan::search::Document document;
    document.name = name;
    document.text = text;
    document.title = title;
    document.summary = "the summary";
    document.host_data = "the record";
    kestan::search::IndexWriter writer = WriterOf(Path("my.index"));
    ASSERT_TRUE(writer.Add(std::move(document)).ok());
    const auto status = writer.Commit();
    ASSERT_TRUE(status.ok()) << status.ToString();
  }

  // Makes `one.index` with the document "a".
  void MakeOneFileIndex() {
    Kestan engine;
    ASSERT_EQ(engine.OpenIndex(Path("one.index").c_str(), 1), 0);
    ASSERT_STREQ(engine.AddDocumentWords("a", "cat"), "cat\n");
    engine.CloseIndex();
  }

  kestan::search::IndexReader Read() const { return ReaderOfFolder(Path("my.index")); }

  kestan::search::DocumentInfo Find(const std::string& name) const {
    auto found = Read().FindDocument(name);
    EXPECT_TRUE(found.ok()) << name;
    return found.ok() ? std::move(*found) : kestan::search::DocumentInfo();
  }

  std::vector<std::string> StoredNames() const { return NamesOf(Path("my.index")); }

  // Returns the bytes of all files of `my.index`.
  std::map<std::string, std::string> FolderBytes() const {
    std::map<std::string, std::string> files;
    for (const auto& entry : std::filesystem::directory_iterator(Path("my.index"))) {
      files[entry.path().filename().string()] = BytesOfFile(entry.path().string());
    }
    return files;
  }

  // What a command that changes indexes says of `one.index`.
  static Outcome OneFileIsReadOnly() {
    return Failure(
        "cannot change index 'one.index': an index of one file is only read; kestan convert FILE "
        "FOLDER makes a folder of it");
  }
};

}  // namespace kestan_tests

#endif  // KESTAN_TESTS_CLI_INDEX_FOLDER_TEST_H_
