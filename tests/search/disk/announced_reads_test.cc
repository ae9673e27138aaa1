// SPDX-License-Identifier: GPL-3.0-or-later
// What the library announces to the system before it reads: with nothing of an index in memory, a
// page that was not announced is waited for by itself.
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <kestan/search.h>
#include <sys/mman.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "tests/support/temp_dir.h"

namespace {

struct Announcements {
  std::size_t calls = 0;
  std::size_t bytes = 0;
};

Announcements announced;

}  // namespace

// NOLINTBEGIN(bugprone-reserved-identifier,cert-dcl50-cpp)
extern "C" int madvise(void* address, std::size_t bytes, int advice) noexcept {
  static auto* const next =
      reinterpret_cast<int (*)(void*, std::size_t, int)>(dlsym(RTLD_NEXT, "madvise"));
  if (advice == MADV_WILLNEED) {
    ++announced.calls;
    announced.bytes += bytes;
  }
  return next(address, bytes, advice);
}
// NOLINTEND(bugprone-reserved-identifier,cert-dcl50-cpp)

namespace kestan::search {
namespace {

constexpr std::size_t kDocuments = 20'000;

class AnnouncedReadsTest : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    dir_ = new kestan_tests::TempDir;
    WriterOptions writer_options;
    writer_options.threads = 1;  // one segment
    auto writer = IndexWriter::Open(Folder(), writer_options);
    ASSERT_TRUE(writer.ok());
    for (std::size_t i = 0; i < kDocuments; ++i) {
      Document document;
      document.name = "a/folder/with/a/long/name/" + std::to_string(i * 7919 % 1'000'003);
      document.title = "Title " + std::to_string(i);
      document.words = "common " + Word(i % 997) + " rare" + Word(i);
      ASSERT_TRUE(writer->Add(std::move(document)).ok());
    }
    ASSERT_TRUE(writer->Commit().ok());
  }

  static void TearDownTestSuite() {
    delete dir_;
    dir_ = nullptr;
  }

  void SetUp() override {
    if (sizeof(void*) < 8) GTEST_SKIP() << "files are not mapped";
    announced = {};
  }

  // A word for each number.
  static std::string Word(std::size_t number) {
    std::string word = "w";
    for (; number > 0; number /= 26) word += static_cast<char>('a' + number % 26);
    return word;
  }

  static std::string Folder() { return *dir_ / "index"; }

  static IndexReader Open() { return std::move(*IndexReader::Open(Folder())); }

  static kestan_tests::TempDir* dir_;
};

kestan_tests::TempDir* AnnouncedReadsTest::dir_ = nullptr;

TEST_F(AnnouncedReadsTest, OpeningAnnouncesLittle) {
  Open();
  EXPECT_GT(announced.calls, 0u);
  EXPECT_LE(announced.calls, 10u);
  EXPECT_LT(announced.bytes, 200'000u);
}

TEST_F(AnnouncedReadsTest, TheNamesAndTitlesOfTheBestAreAnnounced) {
  const IndexReader reader = Open();
  announced = {};
  const auto results = reader.Search(Word(5));
  ASSERT_TRUE(results.ok());
  ASSERT_EQ(results->hits.size(), 10u);
  EXPECT_GE(announced.calls, 10u);
  EXPECT_LE(announced.calls, 60u);
  EXPECT_LT(announced.bytes, 1'000'000u);
}

TEST_F(AnnouncedReadsTest, NothingIsAnnouncedTwiceOfTheDocumentTable) {
  const IndexReader reader = Open();
  SearchOptions options;
  options.with_titles = false;
  ASSERT_TRUE(reader.Search(Word(5), options).ok());
  announced = {};
  ASSERT_TRUE(reader.Search(Word(5), options).ok());
  EXPECT_LE(announced.calls, 2u);  // posting records
}

TEST_F(AnnouncedReadsTest, AWalkOverAllNamesAnnouncesManyPagesAtOnce) {
  const IndexReader reader = Open();
  announced = {};
  std::size_t matches = 0;
  ASSERT_TRUE(reader
                  .ForEachMatch("common", {},
                                [&](const Match&) {
                                  ++matches;
                                  return true;
                                })
                  .ok());
  EXPECT_EQ(matches, kDocuments);
  EXPECT_LE(announced.calls, 2 + announced.bytes / 100'000);
}

TEST_F(AnnouncedReadsTest, AWalkOverAllTermsAnnouncesManyPagesAtOnce) {
  const IndexReader reader = Open();
  announced = {};
  ASSERT_TRUE(reader.Count("rarewcb~").ok());
  EXPECT_GT(announced.calls, 0u);
  EXPECT_LE(announced.calls, 30u);
}

}  // namespace
}  // namespace kestan::search
