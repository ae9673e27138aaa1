// SPDX-License-Identifier: GPL-3.0-or-later
// A host outlives every damaged index file: it may be refused or read nonsense, but it is not ended
// by a signal, ends in time, and takes no more memory than the file can account for.
//
// Each damaged file is opened twice, for reading and for writing, each time as a new copy and in a
// child process. For more of them than the default:
//   KESTAN_HOSTILE_FLIPS=20000 hostile_tests --gtest_filter='HostileFiles.*'
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>

#include "tests/hostile/file_damage.h"
#include "tests/hostile/file_session.h"
#include "tests/hostile/gdbm_activity.h"
#include "tests/support/environment.h"
#include "tests/support/index_test.h"

namespace kestan_hostile {
namespace {

using kestan_tests::NumberFromEnvironment;

constexpr long kMostDiskBytes = 72L << 20;

// What a file takes on the disk; a hole in it takes nothing. 0 if there is none.
long DiskBytes(const std::string& path) {
  constexpr long kCountedBytes = 512;
  struct stat file {};
  return stat(path.c_str(), &file) == 0 ? file.st_blocks * kCountedBytes : 0;
}

class HostileFilesTest : public testing::Test {
 protected:
  // Opens each of `files`, for reading and for writing; or each so many, where that takes too long.
  void Survive(const std::vector<Damaged>& files) {
    const int stride = NumberFromEnvironment("KESTAN_HOSTILE_STRIDE", 1);
    base_kib_ = kestan_faults::RunInChild([](kestan_faults::Transcript*) {}).peak_kib;
    for (std::size_t i = 0; i < files.size(); i += static_cast<std::size_t>(stride)) {
      const Damaged& file = files[i];
      const long most_kib = MostKib(base_kib_, file.bytes.size());
      Put(file.bytes);
      Judge(ReadInChild(path_), most_kib, file.what + ", read");
      Put(file.bytes);
      Judge(WriteInChild(path_), most_kib, file.what + ", written");
    }
  }

  const std::string good_ = GoodFile();

 private:
  void Put(const std::string& bytes) {
    ForgetGdbmActivity();
    std::filesystem::remove(path_ + ".copy");
    WriteFile(path_, bytes);
  }

  void Judge(const kestan_faults::Outcome& outcome, long most_kib, const std::string& what) {
    std::string complaint = Complaint(outcome, most_kib);
    const long disk_bytes = DiskBytes(path_) + DiskBytes(path_ + ".copy");
    if (disk_bytes > kMostDiskBytes)
      complaint += " took " + std::to_string(disk_bytes) + " bytes of the disk";
    EXPECT_EQ(complaint, "") << what << "\nin gdbm's " << GdbmActivity() << "\n"
                             << Describe(outcome);
  }

  const kestan_tests::TempDir folder_;
  const std::string path_ = folder_ / "index";
  long base_kib_ = 0;  // what a child takes that does nothing
};

TEST_F(HostileFilesTest, AGoodFileIsReadAndWrittenToTheEnd) {
  EXPECT_GT(good_.size(), 20000U);
  EXPECT_LT(good_.size(), 60000U);
  Survive({{"good", good_}});
}

TEST_F(HostileFilesTest, FlippedInTheFirstBlock) { Survive(FlippedInTheFirstBlock(good_)); }

TEST_F(HostileFilesTest, FlippedAnywhere) {
  const int flips = NumberFromEnvironment("KESTAN_HOSTILE_FLIPS", 600);
  Survive(FlippedAnywhere(good_, static_cast<std::size_t>(flips)));
}

TEST_F(HostileFilesTest, Cut) { Survive(Cut(good_)); }

TEST_F(HostileFilesTest, BlocksOfZeros) { Survive(BlocksOfZeros(good_)); }

TEST_F(HostileFilesTest, BlocksOfNoise) { Survive(BlocksOfNoise(good_)); }

TEST_F(HostileFilesTest, BlocksSwapped) { Survive(BlocksSwapped(good_)); }

TEST_F(HostileFilesTest, DirectoryEntriesRepeated) { Survive(DirectoryEntriesRepeated(good_)); }

TEST_F(HostileFilesTest, ThatNeverWereAnIndex) { Survive(Strangers(good_)); }

}  // namespace
}  // namespace kestan_hostile
