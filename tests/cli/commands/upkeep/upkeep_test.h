// SPDX-License-Identifier: GPL-3.0-or-later
// Indexes of both kinds for the commands that keep them up.
#ifndef KESTAN_TESTS_CLI_COMMANDS_UPKEEP_UPKEEP_TEST_H_
#define KESTAN_TESTS_CLI_COMMANDS_UPKEEP_UPKEEP_TEST_H_

#include <kestan/kestan.h>
#include <kestan/search.h>

#include <map>
#include <string>

#include "tests/cli/command_test.h"

namespace kestan_tests {

// Each test has the index folder `my.index` and the index file `one.index`, of documents "a" (cat
// dog) and "b" (cat).
class UpkeepTest : public CommandTest {
 protected:
  using Files = std::map<std::string, std::string>;  // their bytes, by name

  void SetUp() override {
    AddDocument("a", "cat dog");
    AddDocument("b", "cat");
    Kestan engine;
    ASSERT_EQ(engine.OpenIndex(Path("one.index").c_str(), 1), 0);
    engine.AddDocumentWords("a", "cat dog");
    engine.AddDocumentWords("b", "cat");
    engine.CloseIndex();
  }

  // Adds a document in a segment of its own.
  void AddDocument(const std::string& name, const std::string& words) {
    auto writer = kestan::search::IndexWriter::Open(Path("my.index"));
    ASSERT_TRUE(writer.ok());
    kestan::search::Document document;
    document.name = name;
    document.words = words;
    document.title = "Title of " + name;
    ASSERT_TRUE(writer->Add(document).ok());
    ASSERT_TRUE(writer->Commit().ok());
  }

  void RemoveDocument(const std::string& name) {
    auto writer = kestan::search::IndexWriter::Open(Path("my.index"));
    ASSERT_TRUE(writer->Remove(name).ok());
    ASSERT_TRUE(writer->Commit().ok());
  }

  // Changes a byte in the middle of a file.
  void Damage(const std::string& name) {
    std::string bytes = BytesOfFile(Path(name));
    bytes[bytes.size() / 2] = static_cast<char>(bytes[bytes.size() / 2] ^ 1);
    Write(name, bytes);
  }

  Files FilesIn(const std::string& folder) const {
    Files files;
    for (const auto& entry : std::filesystem::directory_iterator(Path(folder))) {
      files[entry.path().filename().string()] = BytesOfFile(entry.path().string());
    }
    return files;
  }

  std::uint64_t CountDocuments(const std::string& index) const {
    const auto reader = kestan::search::IndexReader::Open(Path(index));
    return reader.ok() ? reader->Statistics().documents : UINT64_MAX;
  }

  std::uint64_t CountMatches(const std::string& index, const std::string& query) const {
    const auto reader = kestan::search::IndexReader::Open(Path(index));
    const auto count = reader.ok() ? reader->Count(query) : reader.status();
    return count.ok() ? *count : UINT64_MAX;
  }
};

}  // namespace kestan_tests

#endif  // KESTAN_TESTS_CLI_COMMANDS_UPKEEP_UPKEEP_TEST_H_
