// Commands that change an index, and whether the index is whole after one of them went wrong.
#ifndef KESTAN_TESTS_CLI_SYNC_CHANGED_INDEX_TEST_H_
#define KESTAN_TESTS_CLI_SYNC_CHANGED_INDEX_TEST_H_

#include <filesystem>
#include <string>
#include <vector>

#include "tests/cli/command_test.h"

namespace kestan_tests {

// Gives each test an index of three documents, one of them removed, and files to add.
class ChangedIndexTest : public CommandTest {
 protected:
  using Arguments = std::vector<std::string>;

  void SetUp() override {
    Write("old/a", "Title of a\nsome words of the first document\n");
    Write("old/b", "Title of b\nsome other words\n");
    Write("old/c", "Title of c\nwords to go\n");
    ASSERT_EQ(Run({"index", "base.index", "old"}).status, 0);
    ASSERT_EQ(Run({"remove", "base.index", "old/c"}).status, 0);
    for (char name = 'd'; name <= 'h'; ++name) {
      Write(std::string("new/") + name, std::string(200, name) + " grows " + name + " here\n");
    }
    Reset();
  }

  // Every command that changes an index, at work on my.index.
  static std::vector<Arguments> Changes() {
    return {{"index", "my.index", "new"},
            {"remove", "my.index", "old/a"},
            {"move", "my.index", "old/a", "old/z"},
            {"title", "set", "my.index", "old/a", "Another title"},
            {"wordlist", "put", "my.index", "colours", "red", "green"},
            {"option", "set", "my.index", "1"},
            {"shrink", "my.index"}};
  }

  // Puts my.index back as it was, and nothing beside it.
  void Reset() {
    for (const auto& entry : std::filesystem::directory_iterator(Path(""))) {
      const std::string name = entry.path().filename();
      if (name.rfind("my.index", 0) == 0) std::filesystem::remove_all(entry.path());
    }
    std::filesystem::copy_file(Path("base.index"), Path("my.index"));
  }

  // Returns what stands beside my.index because of it.
  std::vector<std::string> Leftovers() const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(Path(""))) {
      const std::string name = entry.path().filename();
      if (name.rfind("my.index", 0) == 0 && name != "my.index") names.push_back(name);
    }
    return names;
  }

  // Returns the records of the index, except for the times in them.
  Records RecordsOf(const std::string& name) const {
    Records records = Dump(Path(name));
    for (auto& [key, value] : records) {
      if (key.rfind("d-", 0) == 0 && value.size() >= 4) value.erase(0, 4);
      if (key.rfind("u-", 0) == 0) value.clear();
    }
    return records;
  }
};

}  // namespace kestan_tests

#endif  // KESTAN_TESTS_CLI_SYNC_CHANGED_INDEX_TEST_H_
