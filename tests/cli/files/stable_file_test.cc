// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/files/stable_file.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <chrono>
#include <filesystem>
#include <functional>
#include <string>

#include "cli/files/skip.h"
#include "tests/cli/command_test.h"

namespace kestan_cli {
namespace {

class StableFileTest : public kestan_tests::CommandTest {
 protected:
  // Reads the file `name`, with `meanwhile` done after its first piece.
  //   Returns  what was read, or the reason why not.
  std::string Read(
      const std::string& name, const std::function<void()>& meanwhile = [] {}) {
    try {
      StableFile file(Path(name));
      std::string text;
      std::string_view piece;
      while (file.Read(&piece)) {
        text += piece;
        meanwhile();
      }
      fingerprint_ = file.Finish();
      return text;
    } catch (const SkipFile& skip) {
      return KeyOf(skip.kind()) + ": " + skip.what();
    }
  }

  Fingerprint fingerprint_;
};

TEST_F(StableFileTest, ReadingGoesOnWhereItIsAskedTo) {
  Write("a", "0123456789");
  StableFile file(Path("a"));
  std::string_view piece;
  for (const std::size_t at : {std::size_t{7}, std::size_t{0}, std::size_t{10}}) {
    file.MoveTo(at);
    std::string text;
    while (file.Read(&piece)) text += piece;
    EXPECT_EQ(text, std::string("0123456789").substr(at));
  }
  file.CheckUnchanged();
  Write("a", "other");
  EXPECT_THROW(file.CheckUnchanged(), SkipFile);
}

TEST_F(StableFileTest, AllBytesAreReadAndHashed) {
  const std::string text = std::string(300000, 'x') + "\r\n\xff" + std::string(1, '\0');
  Write("a", text);
  EXPECT_EQ(Read("a"), text);
  ContentHash hash;
  hash.Add(text);
  EXPECT_EQ(fingerprint_.hash, hash.Digits());
  EXPECT_EQ(fingerprint_.state.bytes, text.size());
}

TEST_F(StableFileTest, EmptyFileIsRead) {
  Write("a", "");
  EXPECT_EQ(Read("a"), "");
  EXPECT_EQ(fingerprint_.state.bytes, 0u);
}

TEST_F(StableFileTest, TimeIsThatOfTheFile) {
  Write("a", "text");
  const timespec times[] = {{0, 0}, {1000000000, 123456789}};
  ASSERT_EQ(utimensat(AT_FDCWD, Path("a").c_str(), times, 0), 0);
  Read("a");
  EXPECT_EQ(fingerprint_.state, (FileState{4, 1000000000, 123456789}));
}

TEST_F(StableFileTest, MissingFileIsReported) {
  EXPECT_EQ(Read("a"), "unreadable: no such file or folder");
}

TEST_F(StableFileTest, FileThatGrowsIsReported) {
  Write("a", "text");
  EXPECT_EQ(Read("a", [this] { Write("a", "longer text"); }),
            "changing: changed while it was read");
}

TEST_F(StableFileTest, FileThatShrinksIsReported) {
  Write("a", std::string(300000, 'x'));
  EXPECT_EQ(Read("a", [this] { Write("a", "x"); }), "changing: changed while it was read");
}

TEST_F(StableFileTest, FileOverwrittenInItsLengthIsReported) {
  Write("a", "text");
  EXPECT_EQ(Read("a", [this] { Write("a", "tex2"); }), "changing: changed while it was read");
}

TEST_F(StableFileTest, FileThatVanishesIsReported) {
  Write("a", "text");
  EXPECT_EQ(Read("a", [this] { std::filesystem::remove(Path("a")); }),
            "changing: vanished while it was read");
}

TEST_F(StableFileTest, FileThatIsReplacedIsReported) {
  Write("a", "text");
  Write("b", "text");
  std::filesystem::last_write_time(Path("b"), std::filesystem::last_write_time(Path("a")));
  EXPECT_EQ(Read("a", [this] { std::filesystem::rename(Path("b"), Path("a")); }),
            "changing: changed while it was read");
}

TEST_F(StableFileTest, PipeInAFilesPlaceIsNotWaitedFor) {
  ASSERT_EQ(mkfifo(Path("a").c_str(), 0644), 0);
  EXPECT_EQ(Read("a"), "changing: not a file");
}

TEST_F(StableFileTest, FolderInAFilesPlaceIsReported) {
  std::filesystem::create_directory(Path("a"));
  EXPECT_EQ(Read("a"), "changing: not a file");
}

// Without the wait, the second version could have the time of the first.
TEST_F(StableFileTest, ChangeRightAfterReadingShowsInTheTime) {
  for (int i = 0; i < 20; ++i) {
    Write("a", "text");
    ASSERT_EQ(Read("a"), "text");
    const FileState before = fingerprint_.state;
    Write("a", "tex2");
    ASSERT_EQ(Read("a"), "tex2");
    EXPECT_NE(fingerprint_.state, before);
  }
}

TEST_F(StableFileTest, OldFilesAndThoseOfTheFutureAreNotWaitedFor) {
  Write("a", "text");
  for (const long seconds : {1000000000L, 2000000000L}) {
    const timespec times[] = {{0, 0}, {seconds, 0}};
    ASSERT_EQ(utimensat(AT_FDCWD, Path("a").c_str(), times, 0), 0);
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < 100; ++i) Read("a");
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(1000));
  }
}

}  // namespace
}  // namespace kestan_cli
