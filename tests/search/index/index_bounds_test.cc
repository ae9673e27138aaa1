// SPDX-License-Identifier: GPL-3.0-or-later
// What merging promises, on real indexes with random histories: how many segments there are, how
// many bytes are written in all, and how many the folder has.
//
// In the environment, KESTAN_BOUNDS_HISTORIES=N tries N histories instead of 3.
#include <gtest/gtest.h>
#include <kestan/search.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "search/index/manifest/manifest.h"
#include "search/index/merging/merge_policy.h"
#include "search/segment/segment.h"
#include "tests/support/environment.h"
#include "tests/support/temp_dir.h"

namespace kestan::search {
namespace {

// Returns how many bytes the process has written, into whatever files.
std::uint64_t BytesWritten() {
  std::ifstream io("/proc/self/io");
  for (std::string word; io >> word;) {
    std::uint64_t bytes = 0;
    if (word == "wchar:" && io >> bytes) return bytes;
  }
  return 0;
}

std::uint64_t BytesOfFolder(const std::string& path) {
  std::uint64_t bytes = 0;
  for (const auto& file : std::filesystem::directory_iterator(path)) bytes += file.file_size();
  return bytes;
}

IndexWriter Open(const std::string& path, unsigned merge_factor) {
  WriterOptions options;
  options.sync = false;
  options.threads = 1;
  options.merge_factor = merge_factor;
  auto writer = IndexWriter::Open(path, options);
  EXPECT_TRUE(writer.ok()) << writer.status().ToString();
  return std::move(*writer);
}

// Returns how many terms all segments have together.
std::uint64_t TermsOfSegments(const std::string& path) {
  std::uint64_t terms = 0;
  const Manifest manifest = *ReadManifest(path);
  for (const SegmentInfo& info : manifest.segments) {
    terms += (*Segment::Open(path, info, true))->terms().size();
  }
  return terms;
}

// An index that is changed at random, and what it has cost.
class RandomHistory {
 public:
  RandomHistory(const std::string& folder, unsigned seed)
      : folder_(folder),
        random_(seed),
        writer_(Open(path(), MergePolicy().factor)),
        unmerged_(Open(folder + "/unmerged", 1'000'000)) {}

  void Run() {
    const unsigned commits = 20 + Random() % 150;
    const unsigned most_bits = 1 + Random() % 8;
    const bool removes = Random() % 3 != 0;
    words_of_document_ = 10 + Random() % 300;
    for (unsigned i = 0; i < commits && !testing::Test::HasFailure(); ++i) {
      AddDocuments(1 + Random() % (1U << Random() % most_bits));
      if (removes && Random() % 8 == 0) RemoveDocuments(Random() % 40);
      Commit();
      CheckSegments();
    }
  }

  // Checks the bytes of the folder: beside those of removed documents, it has more than a fresh
  // index for terms that stand in several segments alone.
  //   Returns  them as a multiple of those of an index made at once.
  double CheckFolder() {
    IndexWriter fresh = Open(folder_ + "/fresh", MergePolicy().factor);
    for (const auto& [name, document] : living_) EXPECT_TRUE(fresh.Add(document).ok());
    EXPECT_TRUE(fresh.Commit().ok());
    const auto bytes = static_cast<double>(BytesOfFolder(path()));
    const auto fresh_bytes = static_cast<double>(BytesOfFolder(folder_ + "/fresh"));
    const std::uint64_t repeated = TermsOfSegments(path()) - TermsOfSegments(folder_ + "/fresh");
    EXPECT_LE(bytes,
              kMostForRemoved * fresh_bytes +
                  static_cast<double>(kBytesOfTerm * repeated + kBytesOfSegment * segments_));
    return bytes / fresh_bytes;
  }

  // Checks the bytes that were written.
  //   Returns  them as a multiple of the bytes of all records that were added.
  double CheckWritten() const {
    const std::uint64_t tiers = TierOf(largest_, {}) + 1;
    EXPECT_GT(added_, 0u) << "the system does not count what is written";
    EXPECT_LE(written_, (1 + tiers) * added_ + 3 * removed_);
    return static_cast<double>(written_) / static_cast<double>(added_);
  }

  std::uint64_t tiers() const { return TierOf(largest_, {}) + 1; }
  std::uint64_t segments() const { return segments_; }

 private:
  // A quarter of the documents of a segment may be removed ones.
  static constexpr double kMostForRemoved = 1.34;
  // What a term takes once more in another segment: a record with its key, an element of a bucket
  // that is not full, an entry of the dictionary.
  static constexpr std::uint64_t kBytesOfTerm = 64;
  static constexpr std::uint64_t kBytesOfSegment = 4096;  // whatever it holds

  std::string path() const { return folder_ + "/index"; }

  unsigned Random() { return static_cast<unsigned>(random_()); }

  // Few words are frequent, and many are rare.
  std::string RandomWords() {
    std::string words;
    for (unsigned i = 1 + Random() % words_of_document_; i > 0; --i) {
      const double chance = static_cast<double>(Random() % 1'000'000 + 1) / 1e6;
      words += "w" + std::to_string(static_cast<unsigned>(std::pow(30'000.0, chance))) + " ";
    }
    return words;
  }

  void AddDocuments(unsigned count) {
    for (; count > 0; --count) {
      Document document;
      document.name = "folder/document-" + std::to_string(++documents_);
      document.words = RandomWords();
      document.title = "title of " + document.name;
      EXPECT_TRUE(unmerged_.Add(document).ok());
      EXPECT_TRUE(writer_.Add(document).ok());
      living_[document.name] = std::move(document);
    }
  }

  void RemoveDocuments(unsigned percent) {
    for (auto next = living_.begin(); next != living_.end();) {
      const bool is_removed = Random() % 100 < percent;
      if (is_removed) {
        EXPECT_TRUE(writer_.Remove(next->first).ok());
        removed_ += added_ / documents_;
      }
      next = is_removed ? living_.erase(next) : std::next(next);
    }
  }

  // Commits, and counts what is written of segments: all bytes but those of MANIFEST.
  void Commit() {
    added_ += CommitTo(&unmerged_, folder_ + "/unmerged");
    written_ += CommitTo(&writer_, path());
  }

  static std::uint64_t CommitTo(IndexWriter* writer, const std::string& path) {
    const std::uint64_t before = BytesWritten();
    const std::uint64_t generation = ReadManifest(path)->generation;
    EXPECT_TRUE(writer->Commit().ok());
    const std::uint64_t all = BytesWritten() - before;
    const std::uint64_t manifests = ReadManifest(path)->generation - generation;
    const std::uint64_t manifest_bytes = std::filesystem::file_size(ManifestPath(path));
    return all - std::min(all, manifests * manifest_bytes);
  }

  void CheckSegments() {
    const Manifest manifest = *ReadManifest(path());
    std::map<unsigned, unsigned> in_tier;
    for (const SegmentInfo& info : manifest.segments) {
      ASSERT_FALSE(IsFull(info));
      EXPECT_LE(++in_tier[TierOf(info, {})], 8u);
      if (info.segment.bytes > largest_.segment.bytes) largest_ = info;
    }
    segments_ = manifest.segments.size();
  }

  const std::string folder_;
  std::mt19937 random_;
  IndexWriter writer_;
  IndexWriter unmerged_;  // the same documents, none removed, nothing merged
  std::map<std::string, Document> living_;
  std::uint64_t documents_ = 0;
  unsigned words_of_document_ = 0;
  std::uint64_t added_ = 0;    // bytes of records, as they were written first
  std::uint64_t removed_ = 0;  // bytes of removed documents, about
  std::uint64_t written_ = 0;
  std::uint64_t segments_ = 0;
  SegmentInfo largest_;
};

TEST(IndexBoundsTest, HoldForRandomHistories) {
  const int histories = kestan_tests::NumberFromEnvironment("KESTAN_BOUNDS_HISTORIES", 3);
  for (int i = 0; i < histories && !HasFailure(); ++i) {
    SCOPED_TRACE("history " + std::to_string(i));
    const kestan_tests::TempDir folder;
    RandomHistory history(folder / ".", static_cast<unsigned>(i));
    history.Run();
    const double written = history.CheckWritten();
    const double folder_share = history.CheckFolder();
    std::printf(
        "history %d: %llu tiers, written %.2f of the records; %llu segments, %.2f of fresh\n", i,
        static_cast<unsigned long long>(history.tiers()), written,
        static_cast<unsigned long long>(history.segments()), folder_share);
  }
}

}  // namespace
}  // namespace kestan::search
