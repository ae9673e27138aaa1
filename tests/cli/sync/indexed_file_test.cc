#include "cli/sync/indexed_file.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <string>

#include "tests/cli/command_test.h"

namespace kestan_cli {
namespace {

std::string Parsed(const std::string& record) {
  const auto version = ParseVersion(record);
  if (!version) return "nothing";
  return std::to_string(version->bytes) + " " + std::to_string(version->seconds) + " " +
         std::to_string(version->nanoseconds);
}

class IndexedFileTest : public kestan_tests::CommandTest {
 protected:
  FileVersion VersionOf(const std::string& name) {
    struct stat status {};
    EXPECT_EQ(stat(Path(name).c_str(), &status), 0);
    return {static_cast<std::uint64_t>(status.st_size), status.st_mtim.tv_sec,
            status.st_mtim.tv_nsec};
  }
};

TEST(ParseVersionTest, ReadsSizeAndTime) {
  EXPECT_EQ(Parsed("size=12 mtime=1700000000.000000345"), "12 1700000000 345");
  EXPECT_EQ(Parsed("size=0 mtime=-1.5 hash=xyz\n"), "0 -1 5");
  EXPECT_EQ(Parsed("size=5000000000 mtime=1.2\n"), "5000000000 1 2");
}

TEST(ParseVersionTest, OtherRecordsAreNone) {
  for (const char* record : {"", "size=", "size=12", "size=12 mtime=", "size=12 mtime=3",
                             "size=12 mtime=3.", "size=12 mtime=3.4x", "size=-1 mtime=3.4",
                             "mtime=3.4 size=12", " size=1 mtime=3.4", "hello"}) {
    EXPECT_EQ(Parsed(record), "nothing") << record;
  }
}

TEST_F(IndexedFileTest, UnchangedFileIsRead) {
  Write("a", "text");
  EXPECT_EQ(ReadIfUnchanged(Path("a"), VersionOf("a")), "text");
}

TEST_F(IndexedFileTest, ChangedFileIsNot) {
  Write("a", "text");
  FileVersion version = VersionOf("a");
  ++version.bytes;
  EXPECT_EQ(ReadIfUnchanged(Path("a"), version), std::nullopt);
  version = VersionOf("a");
  ++version.seconds;
  EXPECT_EQ(ReadIfUnchanged(Path("a"), version), std::nullopt);
  version = VersionOf("a");
  version.nanoseconds ^= 1;
  EXPECT_EQ(ReadIfUnchanged(Path("a"), version), std::nullopt);
}

TEST_F(IndexedFileTest, WhatIsNoFileIsNotRead) {
  EXPECT_EQ(ReadIfUnchanged(Path("gone"), {}), std::nullopt);
  ASSERT_EQ(mkfifo(Path("pipe").c_str(), 0644), 0);
  EXPECT_EQ(ReadIfUnchanged(Path("pipe"), VersionOf("pipe")), std::nullopt);
  EXPECT_EQ(ReadIfUnchanged(Path(""), VersionOf("")), std::nullopt);
}

TEST_F(IndexedFileTest, OnlyTheBeginningOfALongFileIsRead) {
  Write("a", std::string(kMaxSnippetSource + 1, 'x'));
  EXPECT_EQ(ReadIfUnchanged(Path("a"), VersionOf("a"))->size(), kMaxSnippetSource);
}

}  // namespace
}  // namespace kestan_cli
