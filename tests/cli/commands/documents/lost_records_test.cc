// SPDX-License-Identifier: GPL-3.0-or-later
// No run changes an index of which a part is missing or damaged.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "tests/cli/sync/changed_folder_test.h"

namespace kestan_tests {
namespace {

namespace fs = std::filesystem;

class LostRecordsTest : public ChangedFolderTest {
 protected:
  // Expects that every run refuses to change my.index after `damage`, and says why.
  template <typename Damage>
  void ExpectRefusals(Damage damage) {
    for (const Arguments& change : Changes()) {
      Reset();
      damage();
      const std::string before = FilesOfIndex(Path("my.index"));
      const Outcome outcome = Run(change);
      EXPECT_EQ(outcome.status, 2) << outcome;
      EXPECT_EQ(outcome.out, "");
      EXPECT_EQ(outcome.err.substr(0, 26), "kestan: index 'my.index': ");
      EXPECT_EQ(FilesOfIndex(Path("my.index")), before) << outcome;
    }
  }

  // Changes a bit of the byte at `at` of a file of my.index.
  void ChangeByte(const std::string& name, std::size_t at) {
    std::string bytes = BytesOfFile(Path("my.index/" + name));
    ASSERT_LT(at, bytes.size());
    bytes[at] = static_cast<char>(bytes[at] ^ 4);
    std::ofstream(Path("my.index/" + name), std::ios::binary) << bytes;
  }
};

TEST_F(LostRecordsTest, IndexWithAChangedByteInItsManifestIsNotChanged) {
  const std::size_t bytes = BytesOfFile(Path("my.index/MANIFEST")).size();
  for (std::size_t at = 0; at < bytes; at += 29) {
    ExpectRefusals([&] { ChangeByte("MANIFEST", at); });
  }
}

TEST_F(LostRecordsTest, IndexWithoutItsManifestIsNotTakenForANewOne) {
  ExpectRefusals([&] { fs::remove(Path("my.index/MANIFEST")); });
}

TEST_F(LostRecordsTest, IndexWithoutASegmentIsNotChanged) {
  for (const auto& file : fs::directory_iterator(Path("base.index"))) {
    const std::string name = file.path().filename();
    if (name == "MANIFEST" || name == "writer.lock") continue;
    ExpectRefusals([&] { fs::remove(Path("my.index/" + name)); });
    ExpectRefusals([&] { fs::resize_file(Path("my.index/" + name), file.file_size() - 1); });
  }
}

}  // namespace
}  // namespace kestan_tests
