// No command changes an index in which look-ups do not find what a walk shows, or whose records
// would be overwritten.
#include <gtest/gtest.h>
#include <kestan/maintenance/salvage/gdbm_layout.h>

#include <cstring>
#include <fstream>
#include <string>

#include "tests/cli/sync/changed_index_test.h"

namespace kestan_tests {
namespace {

using LostRecordsTest = ChangedIndexTest;

namespace gdbm = kestan::gdbm;

// Calls `visit(at, element)` for each bucket element for `key` in the file `bytes`, also of buckets
// that are no longer in use.
template <typename Visit>
void ForEachElement(const std::string& bytes, const std::string& key, Visit visit) {
  const gdbm::Bytes file(bytes);
  bool is_found = false;
  for (std::size_t at = 512; at + sizeof(gdbm::Element) <= bytes.size(); ++at) {
    gdbm::Element element{};
    file.Read(at, &element);
    if (!file.IsValid(element)) continue;
    if (file.View(element.data, static_cast<gdbm::Offset>(element.key_bytes)) != key) continue;
    visit(at, element);
    is_found = true;
  }
  EXPECT_TRUE(is_found) << key;
}

// Has the bucket element of the index at `path` for `key` give other first bytes of the key. A walk
// shows the record, a look-up does not find it.
void HideRecord(const std::string& path, const std::string& key) {
  const std::string original = BytesOfFile(path);
  std::string bytes = original;
  ForEachElement(original, key, [&](std::size_t at, const gdbm::Element& element) {
    bytes[at + sizeof element.hash] ^= 4;
  });
  std::ofstream(path, std::ios::binary) << bytes;
}

// Has the header of the index at `path` name the bytes of the record of `key`, which never moves,
// as its only free space.
void FreeRecord(const std::string& path, const std::string& key) {
  std::string bytes = BytesOfFile(path);
  gdbm::FreeSpace space{};
  ForEachElement(bytes, key, [&](std::size_t, const gdbm::Element& element) {
    space = {element.key_bytes + element.value_bytes, element.data};
  });
  const gdbm::Bytes file(bytes);
  gdbm::Header header{};
  file.Read(0, &header);
  const bool is_extended = header.magic == gdbm::kExtendedMagic;
  const std::size_t list = sizeof header + (is_extended ? gdbm::kExtensionBytes : 0);
  gdbm::FreeList head{};
  file.Read(list, &head);
  head.count = 1;
  std::memcpy(&bytes[list], &head, sizeof head);
  std::memcpy(&bytes[list + sizeof head], &space, sizeof space);
  std::ofstream(path, std::ios::binary) << bytes;
}

TEST_F(LostRecordsTest, IndexWithARecordThatNoKeyFindsIsNotChanged) {
  for (const std::string key : {"some", "d-old/a"}) {
    for (const Arguments& change : Changes()) {
      Reset();
      HideRecord(Path("my.index"), key);
      const std::string before = IndexBytes();
      EXPECT_EQ(Run(change), Failure("cannot change index 'my.index': damaged (" + key +
                                     ": no look-up finds the record); kestan repair saves what it "
                                     "still holds"))
          << change.front();
      EXPECT_TRUE(IndexBytes() == before) << change.front();
    }
  }
}

TEST_F(LostRecordsTest, IndexWithARecordInFreeSpaceIsNotChanged) {
  for (const Arguments& change : Changes()) {
    Reset();
    FreeRecord(Path("my.index"), "g-opts");
    const std::string before = IndexBytes();
    EXPECT_EQ(Run(change), Failure("cannot change index 'my.index': damaged (index file: free "
                                   "space that is in use: 1); kestan repair saves what it still "
                                   "holds"))
        << change.front();
    EXPECT_TRUE(IndexBytes() == before) << change.front();
  }
}

TEST_F(LostRecordsTest, IndexWithoutItsCounterIsNotTakenForANewOne) {
  for (const Arguments& change : Changes()) {
    Reset();
    HideRecord(Path("my.index"), "g-code");
    const std::string before = IndexBytes();
    EXPECT_EQ(Run(change), Failure("cannot open index 'my.index': its counter of documents is "
                                   "lost; kestan repair saves what it still holds"))
        << change.front();
    EXPECT_TRUE(IndexBytes() == before) << change.front();
  }
  EXPECT_EQ(Run({"list", "my.index"}).status, 2);
}

}  // namespace
}  // namespace kestan_tests
