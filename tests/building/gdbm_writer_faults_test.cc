// SPDX-License-Identifier: GPL-3.0-or-later
// What becomes of a file when the system refuses a call, and of one that is very large. The
// library's calls of pwrite64, pread64 and close come here.
#include <kestan/building/gdbm_writer.h>

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>

#include "tests/building/one_hash.h"
#include "tests/support/stored_records.h"
#include "tests/support/temp_dir.h"

namespace {

// How many bytes of a write get through; a negative number refuses it, with errno set.
std::function<ssize_t(std::string_view bytes)> write_rule;
std::function<bool()> read_rule;  // whether a read gets through
int close_error = 0;
const void* hole = nullptr;  // bytes there are passed over by writes, as if they were written

}  // namespace

// NOLINTBEGIN(bugprone-reserved-identifier,readability-identifier-naming,cert-dcl37-c,cert-dcl51-cpp)
extern "C" {

ssize_t __real_pwrite64(int file, const void* bytes, std::size_t count, off64_t offset);
ssize_t __real_pread64(int file, void* bytes, std::size_t count, off64_t offset);
int __real_close(int file);

ssize_t __wrap_pwrite64(int file, const void* bytes, std::size_t count, off64_t offset) {
  if (bytes == hole) return static_cast<ssize_t>(count);
  if (!write_rule) return __real_pwrite64(file, bytes, count, offset);
  const ssize_t allowed = write_rule({static_cast<const char*>(bytes), count});
  if (allowed < 0) return -1;
  return __real_pwrite64(file, bytes, static_cast<std::size_t>(allowed), offset);
}

ssize_t __wrap_pread64(int file, void* bytes, std::size_t count, off64_t offset) {
  if (read_rule && !read_rule()) {
    errno = EIO;
    return -1;
  }
  return __real_pread64(file, bytes, count, offset);
}

int __wrap_close(int file) {
  const int result = __real_close(file);
  if (close_error == 0) return result;
  errno = close_error;
  return -1;
}

}  // extern "C"
// NOLINTEND(bugprone-reserved-identifier,readability-identifier-naming,cert-dcl37-c,cert-dcl51-cpp)

namespace kestan_tests {
namespace {

using kestan::StoreError;
using kestan::gdbm::Writer;

class GdbmWriterFaultsTest : public testing::Test {
 protected:
  void TearDown() override {
    write_rule = nullptr;
    read_rule = nullptr;
    close_error = 0;
    hole = nullptr;
  }

  // Writes some hundred records of 5 MB together, a large one and some of one hash among them.
  StoreError Write() {
    std::filesystem::remove(path_);
    Writer writer;
    EXPECT_EQ(writer.Create(path_.c_str(), 10), StoreError::kNone);
    for (const auto& [key, value] : Written()) {
      writer.Add(key, value);
    }
    return writer.Finish();
  }

  static const Records& Written() {
    static const Records records = [] {
      Records made;
      for (int i = 0; i < 900; ++i) made["key " + std::to_string(i)] = std::string(3000, 'v');
      for (const std::string& key : KeysOfOneHash(3)) made[key] = "value";
      made["large"] = std::string(2 << 20, 'x');
      return made;
    }();
    return records;
  }

  bool IsValid() const {
    GDBM_FILE file = gdbm_open(path_.c_str(), 0, GDBM_READER, 0, nullptr);
    if (file != nullptr) gdbm_close(file);
    return file != nullptr;
  }

  TempDir folder_;
  const std::string path_ = folder_ / "file";
};

TEST_F(GdbmWriterFaultsTest, EveryWriteThatFailsIsReportedWithItsReason) {
  int writes = 0;
  write_rule = [&](std::string_view bytes) {
    ++writes;
    return static_cast<ssize_t>(bytes.size());
  };
  ASSERT_EQ(Write(), StoreError::kNone);
  ASSERT_TRUE(Dump(path_) == Written());
  const int all = writes;
  ASSERT_GT(all, 4);
  for (int failing = 1; failing <= all; ++failing) {
    writes = 0;
    write_rule = [&](std::string_view bytes) -> ssize_t {
      if (++writes != failing) return static_cast<ssize_t>(bytes.size());
      errno = ENOSPC;
      return -1;
    };
    errno = 0;
    EXPECT_EQ(Write(), StoreError::kFileWrite) << failing;
    EXPECT_EQ(errno, ENOSPC);
    EXPECT_EQ(writes, failing) << "nothing is written after an error";
    EXPECT_FALSE(IsValid()) << failing;
  }
}

TEST_F(GdbmWriterFaultsTest, DiskThatFillsUpIsReported) {
  ASSERT_EQ(Write(), StoreError::kNone);
  const auto bytes = static_cast<ssize_t>(std::filesystem::file_size(path_));
  for (ssize_t room = 0; room < bytes; room += 100'003) {
    ssize_t left = room;
    write_rule = [&](std::string_view piece) -> ssize_t {
      if (left == 0) errno = ENOSPC;
      const ssize_t taken = std::min(left, static_cast<ssize_t>(piece.size()));
      left -= taken;
      return taken != 0 ? taken : -1;
    };
    EXPECT_EQ(Write(), StoreError::kFileWrite) << room;
    EXPECT_EQ(errno, ENOSPC);
    EXPECT_FALSE(IsValid()) << room;
  }
}

TEST_F(GdbmWriterFaultsTest, LimitOnTheSizeOfFilesIsReported) {
  rlimit before{};
  getrlimit(RLIMIT_FSIZE, &before);
  const auto handler = std::signal(SIGXFSZ, SIG_IGN);
  for (const rlim_t limit : {0u, 512u, 2'000'000u, 4'000'000u}) {
    const rlimit limited{limit, before.rlim_max};
    setrlimit(RLIMIT_FSIZE, &limited);
    const StoreError error = Write();
    const int reason = errno;
    setrlimit(RLIMIT_FSIZE, &before);
    EXPECT_EQ(error, StoreError::kFileWrite) << limit;
    EXPECT_EQ(reason, EFBIG);
    EXPECT_FALSE(IsValid());
  }
  std::signal(SIGXFSZ, handler);
}

TEST_F(GdbmWriterFaultsTest, ShortAndInterruptedWritesGoOn) {
  int writes = 0;
  write_rule = [&](std::string_view bytes) -> ssize_t {
    errno = EINTR;
    if (++writes % 3 == 0) return -1;
    return static_cast<ssize_t>(bytes.size() / 2 + 1);
  };
  ASSERT_EQ(Write(), StoreError::kNone);
  EXPECT_TRUE(Dump(path_) == Written());
}

TEST_F(GdbmWriterFaultsTest, KeysThatCannotBeReadBackAreAnError) {
  int reads = 0;
  read_rule = [&] { return ++reads != 0; };
  ASSERT_EQ(Write(), StoreError::kNone);
  const int all = reads;
  ASSERT_EQ(all, 3);  // the keys of one hash
  for (int failing = 1; failing <= all; ++failing) {
    reads = 0;
    read_rule = [&] { return ++reads != failing; };
    EXPECT_EQ(Write(), StoreError::kFileRead) << failing;
    EXPECT_EQ(errno, EIO);
    EXPECT_FALSE(IsValid());
  }
}

TEST_F(GdbmWriterFaultsTest, FailureToCloseIsAnError) {
  close_error = EDQUOT;
  EXPECT_EQ(Write(), StoreError::kFileClose);
  EXPECT_EQ(errno, EDQUOT);
}

TEST_F(GdbmWriterFaultsTest, WriterGoesOnWithAnotherFileAfterAnError) {
  Writer writer;
  ASSERT_EQ(writer.Create(path_.c_str(), 10), StoreError::kNone);
  write_rule = [](std::string_view) -> ssize_t {
    errno = ENOSPC;
    return -1;
  };
  EXPECT_EQ(writer.Add("large", std::string(2 << 20, 'x')).offset, 0u);
  EXPECT_EQ(writer.Add("key", "value").offset, 0u);
  EXPECT_FALSE(writer.Contains("large", 1));
  EXPECT_EQ(writer.Finish(), StoreError::kFileWrite);
  write_rule = nullptr;
  ASSERT_EQ(writer.Create((folder_ / "other").c_str(), 10), StoreError::kNone);
  writer.Add("key", "value");
  EXPECT_EQ(writer.Finish(), StoreError::kNone);
  EXPECT_EQ(Dump(folder_ / "other"), (Records{{"key", "value"}}));
}

// What is never written is a hole in the file, which takes no space and reads as zeros.
TEST_F(GdbmWriterFaultsTest, RecordsBeyondFourGigabytesAreFound) {
  const std::string zeros(std::size_t{32} << 20, '\0');
  hole = zeros.data();
  Writer writer;
  ASSERT_EQ(writer.Create(path_.c_str(), 10), StoreError::kNone);
  kestan::RecordPlace place;
  for (int i = 0; i < 140; ++i) {
    writer.Add("zeros " + std::to_string(i), zeros);
    place = writer.Add("key " + std::to_string(i), "value " + std::to_string(i));
  }
  EXPECT_GT(place.offset, std::uint64_t{1} << 32);
  ASSERT_EQ(writer.Finish(), StoreError::kNone);
  GDBM_FILE file = OpenGdbm(path_, GDBM_WRITER | GDBM_NOMMAP);  // too large for 32-bit addresses
  for (int i = 0; i < 140; ++i) {
    const datum value = gdbm_fetch(file, GdbmDatum("key " + std::to_string(i)));
    ASSERT_NE(value.dptr, nullptr) << i;
    EXPECT_EQ(GdbmBytes(value), "value " + std::to_string(i));
    std::free(value.dptr);
  }
  EXPECT_EQ(gdbm_exists(file, GdbmDatum("zeros 139")), 1);
  EXPECT_EQ(gdbm_store(file, GdbmDatum("key 7"), GdbmDatum(zeros.substr(0, 100'000)), GDBM_REPLACE),
            0);
  gdbm_close(file);
}

}  // namespace
}  // namespace kestan_tests
