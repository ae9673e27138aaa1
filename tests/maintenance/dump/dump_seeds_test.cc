// SPDX-License-Identifier: GPL-3.0-or-later
// Dumps of indexes that fuzzing found interesting: damaged files as far as they can be read, and
// files that hold damaged records and odd texts.
#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <vector>

#include "tests/maintenance/dump/dump_test.h"
#include "tests/support/files.h"

namespace kestan_tests {
namespace {

namespace fs = std::filesystem;

const fs::path kSeeds = KESTAN_SOURCE_DIR "/fuzz/seeds";

std::vector<fs::path> FilesBelow(const fs::path& folder) {
  std::vector<fs::path> files;
  for (const auto& entry : fs::recursive_directory_iterator(folder)) {
    if (entry.is_regular_file()) files.push_back(entry.path());
  }
  std::sort(files.begin(), files.end());
  return files;
}

class DumpSeedsTest : public DumpTest {
 protected:
  // Every record that the file's own walk finds and can fetch comes back.
  void ExpectRoundTrip(const std::string& path, const std::string& what) {
    SCOPED_TRACE(what);
    const std::string text = DumpOf(path);
    EXPECT_EQ(Load(text), "");
    EXPECT_EQ(Dump(target_), Dump(path));
    EXPECT_EQ(DumpOf(target_), text);
  }
};

TEST_F(DumpSeedsTest, IndexFilesThatOpenComeBackOrReportWhyNot) {
  int whole = 0;
  int unreadable = 0;
  int unopened = 0;
  for (const fs::path& seed : FilesBelow(kSeeds / "files")) {
    const std::string copy = folder_ / "copy";
    fs::copy_file(seed, copy, fs::copy_options::overwrite_existing);
    Database store;
    if (store.Open(copy.c_str(), 0) != 0) {
      ++unopened;
      continue;
    }
    std::string text;
    const auto error = DumpInto(store, &text);
    store.Close();
    if (error == kestan::StoreError::kNone) {
      ++whole;
      ExpectRoundTrip(copy, seed.filename());
    } else {
      ++unreadable;
      EXPECT_NE(Load(text), "") << seed;
    }
  }
  std::printf("%d came back, %d could not be read, %d not opened\n", whole, unreadable, unopened);
  EXPECT_GE(whole, 5);
}

// Each seed is a record as it is, and a text, a title and a word list.
TEST_F(DumpSeedsTest, IndexesMadeOfEverySeedComeBack) {
  int count = 0;
  for (const fs::path& seed : FilesBelow(kSeeds)) {
    const std::string bytes = kestan_tests::ReadFile(seed);
    const std::string path = folder_ / "made";
    fs::remove(path);
    {
      Kestan engine;
      ASSERT_EQ(engine.OpenIndex(path.c_str(), 1), 0);
      engine.AddDocumentWords(seed.c_str(), bytes.c_str());
      engine.DBPutTitle(seed.c_str(), bytes.c_str());
      engine.DBPutWords("list", bytes.c_str());
    }
    Plant(path, {{bytes.substr(0, 100), bytes}, {"u-" + bytes.substr(0, 10), bytes}});
    ExpectRoundTrip(path, seed);
    ++count;
  }
  std::printf("%d indexes came back\n", count);
  EXPECT_GE(count, 60);
}

}  // namespace
}  // namespace kestan_tests
