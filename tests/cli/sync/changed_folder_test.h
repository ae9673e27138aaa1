// SPDX-License-Identifier: GPL-3.0-or-later
// Runs that change an index, and whether the index is whole after one of them went wrong.
#ifndef KESTAN_TESTS_CLI_SYNC_CHANGED_FOLDER_TEST_H_
#define KESTAN_TESTS_CLI_SYNC_CHANGED_FOLDER_TEST_H_

#include <filesystem>
#include <string>
#include <vector>

#include "tests/cli/command_test.h"
#include "tests/cli/index_folder.h"

namespace kestan_tests {

// Gives each test an index of two documents in two segments, where a third one was removed, and
// files to add.
class ChangedFolderTest : public CommandTest {
 protected:
  using Arguments = std::vector<std::string>;

  void SetUp() override {
    Write("old/a", "Title of a\nsome words of the first document\n");
    Write("old/c", "Title of c\nwords to go\n");
    ASSERT_EQ(Run({"index", "base.index", "old"}).status, 0);
    Write("old/b", "Title of b\nsome other words\n");
    ASSERT_EQ(Run({"index", "base.index", "old"}).status, 0);
    std::filesystem::remove(Path("old/c"));
    ASSERT_EQ(Run({"index", "base.index", "old", "--prune"}).status, 0);
    for (char name = 'd'; name <= 'h'; ++name) {
      Write(std::string("new/") + name, std::string(200, name) + " grows " + name + " here\n");
    }
    Reset();
  }

  // Runs of all kinds, at work on my.index.
  static std::vector<Arguments> Changes() {
    return {{"index", "my.index", "new"},
            {"index", "my.index", "old", "--all"},
            {"index", "my.index", "old", "--exclude", "z"},
            {"index", "my.index", "old", "--forget", "--prune"},
            {"index", "my.index", "new", "old", "--all", "--stop-words", "english", "--prune"},
            {"remove", "my.index", "old/a"},
            {"move", "my.index", "old/a", "old/z"},
            {"title", "set", "my.index", "old/b", "Another title"},
            {"option", "set", "my.index", "2"},
            {"compact", "my.index"}};
  }

  // Puts my.index back as it was.
  void Reset() {
    std::filesystem::remove_all(Path("my.index"));
    std::filesystem::copy(Path("base.index"), Path("my.index"),
                          std::filesystem::copy_options::recursive);
  }

  // Returns all that readers see of an index, except for when documents were added; "none" where
  // there is no index.
  std::string Visible(const std::string& name) const {
    const auto reader = kestan::search::IndexReader::Open(Path(name));
    if (reader.status().code() == kestan::search::StatusCode::kNotFound) return "none";
    EXPECT_TRUE(reader.ok()) << reader.status().ToString();
    if (!reader.ok()) return "damaged";
    std::string text;
    for (const auto& [document, info] : DocumentsOfIndex(Path(name))) {
      text += document + "|" + std::to_string(info.words) + "|" + info.title + "|" + info.summary +
              "|" + info.host_data + "\n";
    }
    const auto terms = reader->Terms("");
    for (const auto& term : *terms) {
      text += term.term + " " + std::to_string(term.documents) + "\n";
    }
    return text + *reader->Property("roots") + *reader->Property("option-flags");
  }

  // Returns what is wrong with an index, or left over in it; "" if nothing is.
  std::string FindingsIn(const std::string& name) const {
    const auto report = kestan::search::CheckIndex(Path(name));
    if (!report.ok()) return report.status().ToString();
    std::string text;
    for (const auto& finding : report->findings) text += finding.text + "\n";
    return text;
  }
};

}  // namespace kestan_tests

#endif  // KESTAN_TESTS_CLI_SYNC_CHANGED_FOLDER_TEST_H_
