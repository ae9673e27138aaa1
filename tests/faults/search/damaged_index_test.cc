// SPDX-License-Identifier: GPL-3.0-or-later
// Files of an index that were changed, cut, lost or exchanged, read and written through the public
// interface: the answers are right, or there is an error, and what is not damaged is not lost.
//
// In the environment, KESTAN_HOSTILE_BYTES=all flips each bit of each byte instead of one.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "tests/faults/search/asked_index.h"
#include "tests/support/files.h"
#include "tests/support/temp_dir.h"

namespace kestan_faults {
namespace {

using kestan::search::IndexReader;
using kestan::search::Status;
using kestan::search::StatusCode;
using kestan_tests::ReadFile;
using kestan_tests::WriteFile;

using Answers = std::vector<std::string>;

std::vector<unsigned> MasksAt(std::size_t offset) {
  const char* const bits = std::getenv("KESTAN_HOSTILE_BYTES");
  if (bits == nullptr || std::string(bits) != "all") return {1U << (offset % 8)};
  return {1, 2, 4, 8, 16, 32, 64, 128, 255};
}

// Returns how many bytes to go on by from one damage of so many bytes to the next.
std::size_t Step(std::size_t bytes) {
  const char* const bits = std::getenv("KESTAN_HOSTILE_BYTES");
  if (bits != nullptr && std::string(bits) == "all") return 1;
  return std::max<std::size_t>(bytes, 7);
}

class DamagedIndexTest : public testing::Test {
 protected:
  DamagedIndexTest() {
    MakeIndex(original_);
    before_ = Ask(original_);
    std::filesystem::copy(original_, work_);
    auto writer = OpenWriter(work_);
    EXPECT_TRUE(writer.ok() && ChangeIndex(&*writer).ok());
    after_ = Ask(work_);
  }

  // The files that say what stands in the index: not the segments, whose postings have no checksum
  // of their own.
  std::vector<std::string> Files() const {
    std::vector<std::string> files;
    for (const auto& file : std::filesystem::directory_iterator(original_)) {
      const std::string name = file.path().filename().string();
      const bool is_read_whole = name != "writer.lock" && file.path().extension() != ".segment";
      if (is_read_whole) files.push_back(name);
    }
    return files;
  }

  // Checks each answer on its own.
  //   Returns  how many were refused.
  static int ExpectRightOrRefused(const Answers& answers, const Answers& right) {
    int refused = 0;
    for (std::size_t i = 0; i < answers.size(); ++i) {
      if (IsRefused(answers[i])) {
        ++refused;
      } else {
        EXPECT_EQ(answers[i], right[i]) << "question " << i;
      }
    }
    return refused;
  }

  // Reads the index with `bytes` in place of a file, and gives the file its bytes back.
  int Read(const std::string& file, const std::string& bytes) const {
    const std::string path = original_ + "/" + file;
    const std::string good = ReadFile(path);
    WriteFile(path, bytes);
    const int refused = ExpectRightOrRefused(Ask(original_), before_);
    WriteFile(path, good);
    return refused;
  }

  // Changes a copy of the index with `bytes` in place of a file, and reads what came of it, both as
  // it is and with the file whole again, where it still is of the index.
  void Write(const std::string& file, const std::string& bytes) const {
    std::filesystem::remove_all(work_);
    std::filesystem::copy(original_, work_);
    WriteFile(work_ + "/" + file, bytes);
    Status status;
    {
      auto writer = OpenWriter(work_);
      status = writer.ok() ? ChangeIndex(&*writer) : writer.status();
    }
    if (!status.ok()) {
      EXPECT_TRUE(IsRefused(RefusalOf(status))) << RefusalOf(status);
    }
    const Answers damaged = Ask(work_);
    if (file != "MANIFEST" || !status.ok()) {
      WriteFile(work_ + "/" + file, ReadFile(original_ + "/" + file));
    }
    // An error of the merge that follows a commit comes after it.
    const Answers whole = Ask(work_);
    EXPECT_EQ(whole, !status.ok() && whole == before_ ? before_ : after_);
    ExpectRightOrRefused(damaged, whole);
  }

  const kestan_tests::TempDir folder_;
  const std::string original_ = folder_ / "original";
  const std::string work_ = folder_ / "work";
  Answers before_;
  Answers after_;
};

TEST_F(DamagedIndexTest, ChangedByteIsNeverBelievedByReaders) {
  int refused = 0;
  for (const std::string& file : Files()) {
    const std::string good = ReadFile(original_ + "/" + file);
    for (std::size_t i = 0; i < good.size(); ++i) {
      for (const unsigned mask : MasksAt(i)) {
        SCOPED_TRACE(file + " byte " + std::to_string(i) + " mask " + std::to_string(mask));
        std::string bytes = good;
        bytes[i] = static_cast<char>(static_cast<unsigned char>(bytes[i]) ^ mask);
        refused += Read(file, bytes);
        if (HasFailure()) return;
      }
    }
  }
  EXPECT_GT(refused, 0);
}

TEST_F(DamagedIndexTest, CutFileIsRefusedByReaders) {
  for (const std::string& file : Files()) {
    const std::string good = ReadFile(original_ + "/" + file);
    for (std::size_t size = 0; size < good.size(); ++size) {
      SCOPED_TRACE(file + " cut to " + std::to_string(size));
      ASSERT_EQ(static_cast<std::size_t>(Read(file, good.substr(0, size))), before_.size());
    }
    ASSERT_EQ(static_cast<std::size_t>(Read(file, good + "x")), before_.size());
  }
}

TEST_F(DamagedIndexTest, WriterNeverMakesIndexWorse) {
  for (const std::string& file : Files()) {
    const std::string good = ReadFile(original_ + "/" + file);
    for (std::size_t i = 0; i < good.size(); ++i) {
      for (const unsigned mask : MasksAt(i)) {
        SCOPED_TRACE(file + " byte " + std::to_string(i) + " mask " + std::to_string(mask));
        std::string bytes = good;
        bytes[i] = static_cast<char>(static_cast<unsigned char>(bytes[i]) ^ mask);
        Write(file, bytes);
        if (HasFailure()) return;
      }
    }
    for (std::size_t size = 0; size < good.size(); size += 5) {
      SCOPED_TRACE(file + " cut to " + std::to_string(size));
      Write(file, good.substr(0, size));
      if (HasFailure()) return;
    }
  }
}

TEST_F(DamagedIndexTest, MissingFileIsNamed) {
  for (const auto& entry : std::filesystem::directory_iterator(original_)) {
    const std::string file = entry.path().filename().string();
    if (file == "writer.lock" || file == "MANIFEST") continue;
    std::filesystem::remove_all(work_);
    std::filesystem::copy(original_, work_);
    std::filesystem::remove(work_ + "/" + file);
    const auto reader = IndexReader::Open(work_);
    ASSERT_FALSE(reader.ok());
    EXPECT_EQ(RefusalOf(reader.status()), "kDamaged");
    EXPECT_EQ(reader.status().file(), work_ + "/" + file);
    const auto writer = OpenWriter(work_);
    ASSERT_FALSE(writer.ok());
    EXPECT_EQ(RefusalOf(writer.status()), "kDamaged");
    EXPECT_EQ(writer.status().file(), work_ + "/" + file);
  }
}

TEST_F(DamagedIndexTest, MissingManifestIsNoReasonToBeginAnew) {
  std::filesystem::remove(original_ + "/MANIFEST");
  EXPECT_EQ(RefusalOf(IndexReader::Open(original_).status()), "kDamaged");
  EXPECT_EQ(RefusalOf(OpenWriter(original_).status()), "kDamaged");
}

TEST_F(DamagedIndexTest, ManifestOfAnotherVersionIsRefused) {
  std::string manifest = ReadFile(original_ + "/MANIFEST");
  manifest.replace(manifest.find(" 1\n"), 2, " 2");
  WriteFile(original_ + "/MANIFEST", manifest);
  EXPECT_EQ(RefusalOf(IndexReader::Open(original_).status()), "kVersion");
  EXPECT_EQ(RefusalOf(OpenWriter(original_).status()), "kVersion");
}

// Returns `good` with blocks of it cut out, doubled, blanked, or exchanged with the next one.
std::vector<std::string> Spliced(const std::string& good, std::size_t at, std::size_t bytes) {
  const std::string before = good.substr(0, at);
  const std::string block = good.substr(at, bytes);
  const std::string after = good.substr(std::min(at + bytes, good.size()));
  const std::string next = after.substr(0, bytes);
  return {before + after, before + block + block + after,
          before + std::string(block.size(), '\0') + after,
          before + next + block + after.substr(next.size())};
}

TEST_F(DamagedIndexTest, SplicedFileIsNeverBelieved) {
  int refused = 0;
  int trials = 0;
  for (const std::string& file : Files()) {
    const std::string good = ReadFile(original_ + "/" + file);
    for (const std::size_t bytes : {std::size_t{1}, std::size_t{8}, std::size_t{61}}) {
      for (std::size_t at = 0; at < good.size(); at += Step(bytes)) {
        SCOPED_TRACE(file + " at " + std::to_string(at) + ", " + std::to_string(bytes));
        for (const std::string& spliced : Spliced(good, at, bytes)) {
          if (spliced == good) continue;
          ++trials;
          refused += Read(file, spliced) > 0 ? 1 : 0;
        }
        if (HasFailure()) return;
      }
    }
  }
  std::printf("%d spliced files: %d refused\n", trials, refused);
  EXPECT_GT(refused, 0);
}

// The beginning of a file goes on as another one of its kind: that of the other segment, or that of
// the next commit.
TEST_F(DamagedIndexTest, FileThatGoesOnAsAnotherIsNeverBelieved) {
  const std::string later = folder_ / "later";
  std::filesystem::copy(original_, later);
  auto writer = OpenWriter(later);
  ASSERT_TRUE(writer.ok());
  ASSERT_TRUE(writer->SetField("a4", kestan::search::DocumentField::kTitle, "later title").ok());
  ASSERT_TRUE(writer->Commit().ok());
  const std::vector<std::pair<std::string, std::string>> pairs = {
      {"MANIFEST", later + "/MANIFEST"},           {"1.terms", original_ + "/2.terms"},
      {"2.terms", original_ + "/1.terms"},         {"1.documents", original_ + "/2.documents"},
      {"2.documents", original_ + "/1.documents"}, {"1-1.edits", later + "/1-2.edits"}};
  int trials = 0;
  for (const auto& [file, other_path] : pairs) {
    const std::string good = ReadFile(original_ + "/" + file);
    const std::string other = ReadFile(other_path);
    ASSERT_FALSE(other.empty()) << other_path;
    for (std::size_t at = 0; at < std::min(good.size(), other.size()); at += Step(1)) {
      const std::string spliced = good.substr(0, at) + other.substr(at);
      const std::string same_size =
          (spliced + good.substr(std::min(spliced.size(), good.size()))).substr(0, good.size());
      for (const std::string& bytes : {spliced, same_size}) {
        if (bytes == good) continue;
        SCOPED_TRACE(file + " goes on as another at " + std::to_string(at));
        ++trials;
        EXPECT_GT(Read(file, bytes), 0);
        if (HasFailure()) return;
      }
    }
  }
  std::printf("%d files that go on as others\n", trials);
}

// Segments of the same words in another order, and of the same names, have files of one size.
// What stands beside an index file says which one, whatever the sizes are.
TEST_F(DamagedIndexTest, FilesOfAnotherIndexOfTheSameSizeAreRefused) {
  for (const char* const words : {"cold river bank", "river bank cold"}) {
    auto writer = OpenWriter(folder_ / std::string(1, *words));
    ASSERT_TRUE(writer.ok());
    kestan::search::Document document;
    document.name = "a";
    document.words = words;
    ASSERT_TRUE(writer->Add(document).ok());
    ASSERT_TRUE(writer->Commit().ok());
  }
  for (const char* const kind : {".terms", ".documents"}) {
    const std::string other = ReadFile(folder_ / "r/1" + kind);
    std::filesystem::remove_all(work_);
    std::filesystem::copy(folder_ / "c", work_);
    ASSERT_EQ(ReadFile(work_ + "/1" + kind).size(), other.size());
    WriteFile(work_ + "/1" + kind, other);
    const Status status = IndexReader::Open(work_).status();
    EXPECT_EQ(status.ToString(), work_ + "/1" + kind + ": it belongs to another segment");
    EXPECT_EQ(RefusalOf(OpenWriter(work_).status()), "kDamaged");
  }
}

TEST_F(DamagedIndexTest, ExchangedFilesAreRefused) {
  const std::string alike = folder_ / "alike";
  {
    auto writer = OpenWriter(alike);
    ASSERT_TRUE(writer.ok());
    for (const char* const name : {"a", "b"}) {
      for (int i = 0; i < 3; ++i) {
        kestan::search::Document document;
        document.name = name + std::to_string(i);
        document.words = *name == 'a' ? "cold river bank" : "river bank cold";
        ASSERT_TRUE(writer->Add(document).ok());
      }
      ASSERT_TRUE(writer->Commit().ok());
    }
  }
  const std::vector<std::string> kinds = {".segment", ".terms", ".documents"};
  for (const char* const kind : {".segment", ".terms", ".documents"}) {
    EXPECT_EQ(ReadFile(alike + "/1" + kind).size(), ReadFile(alike + "/2" + kind).size());
  }
  for (const std::string& index : {original_, alike}) {
    for (unsigned chosen = 1; chosen < 1U << kinds.size(); ++chosen) {
      SCOPED_TRACE(index + " " + std::to_string(chosen));
      std::filesystem::remove_all(work_);
      std::filesystem::copy(index, work_);
      bool differs = false;
      for (std::size_t i = 0; i < kinds.size(); ++i) {
        if ((chosen >> i & 1) == 0) continue;
        const std::string first = ReadFile(work_ + "/1" + kinds[i]);
        const std::string second = ReadFile(work_ + "/2" + kinds[i]);
        differs = differs || first != second;
        WriteFile(work_ + "/1" + kinds[i], second);
        WriteFile(work_ + "/2" + kinds[i], first);
      }
      const auto reader = IndexReader::Open(work_);
      EXPECT_EQ(reader.ok(), !differs);
      if (!reader.ok()) {
        EXPECT_EQ(RefusalOf(reader.status()), "kDamaged");
      }
      const auto writer = OpenWriter(work_);
      EXPECT_EQ(writer.ok(), !differs);
    }
  }
}

}  // namespace
}  // namespace kestan_faults
