// What the tests of the library share: a folder that vanishes, a look at the stored bytes that does
// not go through the library, and records spelled as numbers.
#ifndef KESTAN_TESTS_SUPPORT_INDEX_TEST_H_
#define KESTAN_TESTS_SUPPORT_INDEX_TEST_H_

#include <gdbm.h>
#include <gtest/gtest.h>
#include <kestan/kestan.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <initializer_list>
#include <map>
#include <string>
#include <string_view>

namespace kestan_tests {

// A new folder for temporary files, removed with all that it holds. It lies in memory where the
// system has a place for that, because every flush waits for the disk.
class TempDir {
 public:
  TempDir() {
    const std::filesystem::path memory = "/dev/shm";
    const bool in_memory = access(memory.c_str(), W_OK) == 0;
    const auto parent = in_memory ? memory : std::filesystem::temp_directory_path();
    std::string pattern = (parent / "kestan-XXXXXX").string();
    EXPECT_NE(mkdtemp(pattern.data()), nullptr);
    path_ = pattern;
  }
  ~TempDir() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  TempDir(const TempDir&) = delete;
  TempDir& operator=(const TempDir&) = delete;

  // Returns the path of `name` in the folder; the file need not be there.
  std::string operator/(std::string_view name) const { return path_ + "/" + std::string(name); }

 private:
  std::string path_;
};

// Every key of a gdbm file with its value.
using Records = std::map<std::string, std::string>;

// Reads the file at `path` with plain gdbm calls. No other handle in any process may be writing it.
inline Records Dump(const std::string& path) {
  Records records;
  GDBM_FILE file = gdbm_open(path.c_str(), 0, GDBM_READER, 0, nullptr);
  EXPECT_NE(file, nullptr) << path << ": " << gdbm_strerror(gdbm_errno);
  if (file == nullptr) return records;
  datum key = gdbm_firstkey(file);
  while (key.dptr != nullptr) {
    const datum value = gdbm_fetch(file, key);
    records[std::string(key.dptr, static_cast<std::size_t>(key.dsize))] =
        std::string(value.dptr, static_cast<std::size_t>(value.dsize));
    std::free(value.dptr);
    const datum next = gdbm_nextkey(file, key);
    std::free(key.dptr);
    key = next;
  }
  gdbm_close(file);
  return records;
}

// Writes `records` into the file at `path` with plain gdbm calls, creating it where it is missing.
inline void Plant(const std::string& path, const Records& records) {
  GDBM_FILE file = gdbm_open(path.c_str(), 512, GDBM_WRCREAT, 0644, nullptr);
  ASSERT_NE(file, nullptr) << path << ": " << gdbm_strerror(gdbm_errno);
  for (const auto& [key, value] : records) {
    const datum k{const_cast<char*>(key.data()), static_cast<int>(key.size())};
    const datum v{const_cast<char*>(value.data()), static_cast<int>(value.size())};
    EXPECT_EQ(gdbm_store(file, k, v, GDBM_REPLACE), 0) << gdbm_strerror(gdbm_errno);
  }
  gdbm_close(file);
}

// Spells a record of 16-bit little-endian units.
inline std::string Units(std::initializer_list<unsigned> units) {
  std::string bytes;
  for (unsigned unit : units) {
    bytes += static_cast<char>(unit & 0xff);
    bytes += static_cast<char>(unit >> 8 & 0xff);
  }
  return bytes;
}

// The bytes of a datum.
inline std::string Bytes(const DBDatum& datum) { return std::string(datum.data, datum.size); }

// A datum around the bytes of `text`, which must outlive it.
inline DBDatum Datum(std::string_view text) {
  return DBDatum(text.data(), static_cast<std::uint32_t>(text.size()));
}

// Runs `action` and returns what it wrote to the standard error stream.
template <typename Action>
std::string StandardErrorOf(Action action) {
  testing::internal::CaptureStderr();
  action();
  return testing::internal::GetCapturedStderr();
}

// Gives each test an engine with a new index open for writing.
class IndexTest : public testing::Test {
 protected:
  void SetUp() override { ASSERT_EQ(engine_.OpenIndex(path_.c_str(), 1), 0); }

  // Closes the index and reads it with plain gdbm calls.
  Records Stored() {
    engine_.CloseIndex();
    return Dump(path_);
  }

  // Closes the index, replaces `records` in its file, and opens it again.
  void PlantAndReopen(const Records& records) {
    engine_.CloseIndex();
    Plant(path_, records);
    ASSERT_EQ(engine_.OpenIndex(path_.c_str(), 1), 0);
  }

  // Lists the set of `id` and frees it.
  std::string Listing(int id) {
    const std::string lines = engine_.QueryResults(id);
    engine_.FreeQueryResult(id);
    return lines;
  }

  TempDir folder_;
  const std::string path_ = folder_ / "index";
  Kestan engine_;
};

}  // namespace kestan_tests

#endif  // KESTAN_TESTS_SUPPORT_INDEX_TEST_H_
