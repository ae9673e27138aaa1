// SPDX-License-Identifier: GPL-3.0-or-later
// Documents with words that were chosen to have one hash of gdbm: more than an index file can hold.
#include <gtest/gtest.h>
#include <kestan/search.h>

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "tests/building/one_hash.h"
#include "tests/support/temp_dir.h"

namespace kestan::search {
namespace {

constexpr std::size_t kMostOfOneHash = 4096;
constexpr std::size_t kTooMany = 5'000;

class WordsOfOneHashTest : public testing::Test {
 protected:
  WordsOfOneHashTest() {
    WriterOptions options;
    options.merge_factor = 2;
    options.threads = 1;
    writer_.emplace(IndexWriter::Open(path_, options));
    EXPECT_TRUE((*writer_).ok());
  }

  // Adds a document of the words from `first` to before `end`, and the word "common".
  void Commit(const std::string& name, std::size_t first, std::size_t end) {
    Document document;
    document.name = name;
    document.words = "common";
    for (std::size_t i = first; i < end; ++i) document.words += " " + words_[i];
    Status status = (*writer_)->Add(std::move(document));
    if (status.ok()) status = (*writer_)->Commit();
    EXPECT_TRUE(status.ok()) << status.ToString();
  }

  std::uint64_t Count(const std::string& query) const {
    const auto reader = IndexReader::Open(path_);
    EXPECT_TRUE(reader.ok());
    return reader->Count(query).ok() ? *reader->Count(query) : 0;
  }

  std::size_t TermsOfOneHash() const {
    return IndexReader::Open(path_)->Terms("").ok()
               ? IndexReader::Open(path_)->Terms("")->size() - 1
               : 0;
  }

  void ExpectSound() const {
    const auto report = CheckIndex(path_);
    ASSERT_TRUE(report.ok());
    EXPECT_EQ(report->faults, 0u);
    for (const IndexFinding& finding : report->findings) {
      EXPECT_FALSE(finding.is_fault) << finding.file << " " << finding.key << " " << finding.text;
    }
  }

  const kestan_tests::TempDir folder_;
  const std::string path_ = folder_ / "index";
  const std::vector<std::string> words_ = kestan_tests::WordsOfOneHash(kTooMany);
  std::optional<Result<IndexWriter>> writer_;
};

TEST_F(WordsOfOneHashTest, AsManyAsFitAreKeptOfADocument) {
  Commit("before", 0, 0);
  Commit("hostile", 0, kTooMany);
  const std::vector<Status> warnings = (*writer_)->TakeWarnings();
  ASSERT_EQ(warnings.size(), 1u);
  EXPECT_EQ(warnings[0].message(), std::to_string(kTooMany - kMostOfOneHash) +
                                       " words are left out: too many words have their hash");
  Commit("after", 0, 0);
  EXPECT_EQ(Count("common"), 3u);
  EXPECT_EQ(TermsOfOneHash(), kMostOfOneHash);
  ExpectSound();
}

TEST_F(WordsOfOneHashTest, SegmentsThatHaveTooManyTogetherAreMerged) {
  Commit("one", 0, kTooMany / 2);
  EXPECT_TRUE((*writer_)->TakeWarnings().empty());
  Commit("two", kTooMany / 2, kTooMany);
  EXPECT_EQ((*writer_)->TakeWarnings().size(), 1u);
  EXPECT_EQ(IndexReader::Open(path_)->Statistics().segments, 1u);
  EXPECT_EQ(Count("common"), 2u);
  EXPECT_EQ(TermsOfOneHash(), kMostOfOneHash);
  ExpectSound();
  ASSERT_TRUE((*writer_)->Remove("one").ok());
  ASSERT_TRUE((*writer_)->Compact().ok());
  ExpectSound();
}

}  // namespace
}  // namespace kestan::search
