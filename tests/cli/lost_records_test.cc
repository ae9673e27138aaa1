// No command changes an index in which look-ups do not find what a walk shows, or whose records
// would be overwritten.
#include <gtest/gtest.h>
#include <kestan/maintenance/gdbm_layout.h>

#include <cstring>
#include <fstream>
#include <string>

#include "tests/cli/changed_index_test.h"

namespace kestan_tests {
namespace {

using LostRecordsTest = ChangedIndexTest;

// Has the bucket element of the index at `path` for `key` give other first bytes of the key. A walk
// shows the record, a look-up does not find it.
void HideRecord(const std::string& path, const std::string& key) {
  namespace gdbm = kestan::gdbm;
  std::string bytes = BytesOfFile(path);
  const std::string original = bytes;
  const gdbm::Bytes file(original);
  for (std::size_t at = 512; at + sizeof(gdbm::Element) <= bytes.size(); ++at) {
    gdbm::Element element{};
    file.Read(at, &element);
    if (!file.IsSound(element)) continue;
    const auto key_bytes = static_cast<gdbm::Offset>(element.key_bytes);
    if (file.View(element.data, key_bytes) == key) bytes[at + sizeof element.hash] ^= 4;
  }
  EXPECT_NE(bytes, original) << key;
  std::ofstream(path, std::ios::binary) << bytes;
}

TEST_F(LostRecordsTest, AnIndexWithARecordThatNoLookUpFindsStaysAsItIs) {
  for (const std::string key : {"some", "d-old/a"}) {
    for (const Arguments& change : Changes()) {
      Reset();
      HideRecord(Path("my.index"), key);
      const std::string before = IndexBytes();
      EXPECT_EQ(Run(change), Failure("cannot change index 'my.index': damaged (" + key +
                                     ": no look-up finds the record); kestan repair saves what it "
                                     "still holds"))
          << change.front();
      EXPECT_EQ(IndexBytes(), before) << change.front();
    }
  }
}

// Has the header of the index at `path` name the bytes of its first record as its only free space.
void FreeFirstRecord(const std::string& path) {
  namespace gdbm = kestan::gdbm;
  std::string bytes = BytesOfFile(path);
  const gdbm::Bytes file(bytes);
  gdbm::Element element{};
  std::size_t at = 512;
  do {
    file.Read(at++, &element);
  } while (!file.IsSound(element));
  gdbm::Header header{};
  file.Read(0, &header);
  const bool is_extended = header.magic == gdbm::kExtendedMagic;
  const std::size_t list = sizeof header + (is_extended ? gdbm::kExtensionBytes : 0);
  gdbm::FreeList head{};
  file.Read(list, &head);
  head.count = 1;
  const gdbm::FreeSpace space{element.key_bytes + element.value_bytes, element.data};
  std::memcpy(&bytes[list], &head, sizeof head);
  std::memcpy(&bytes[list + sizeof head], &space, sizeof space);
  std::ofstream(path, std::ios::binary) << bytes;
}

TEST_F(LostRecordsTest, AnIndexThatTakesARecordForFreeSpaceStaysAsItIs) {
  for (const Arguments& change : Changes()) {
    Reset();
    FreeFirstRecord(Path("my.index"));
    const std::string before = IndexBytes();
    EXPECT_EQ(Run(change), Failure("cannot change index 'my.index': damaged (index file: free "
                                   "space that is in use: 1); kestan repair saves what it still "
                                   "holds"))
        << change.front();
    EXPECT_EQ(IndexBytes(), before) << change.front();
  }
}

TEST_F(LostRecordsTest, AnIndexThatLostItsCounterIsNoNewOne) {
  for (const Arguments& change : Changes()) {
    Reset();
    HideRecord(Path("my.index"), "g-code");
    const std::string before = IndexBytes();
    EXPECT_EQ(Run(change), Failure("cannot open index 'my.index': its counter of documents is "
                                   "lost; kestan repair saves what it still holds"))
        << change.front();
    EXPECT_EQ(IndexBytes(), before) << change.front();
  }
  EXPECT_EQ(Run({"list", "my.index"}).status, 2);
}

}  // namespace
}  // namespace kestan_tests
