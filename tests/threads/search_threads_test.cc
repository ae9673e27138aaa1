// SPDX-License-Identifier: GPL-3.0-or-later
// One writer and many readers of one index, in one process. The preset `tsan` runs this under the
// thread sanitizer.
//
// In the environment, KESTAN_THREADS_ROUNDS=N has the writer commit N times instead of 30, and
// KESTAN_THREADS_SECONDS=N has it begin again with a new index until so many seconds have passed.
#include <gtest/gtest.h>
#include <kestan/search.h>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <string>
#include <thread>
#include <vector>

#include "tests/support/environment.h"
#include "tests/support/temp_dir.h"

namespace kestan_tests {
namespace {

using kestan::search::Document;
using kestan::search::DocumentField;
using kestan::search::DocumentInfo;
using kestan::search::IndexReader;
using kestan::search::IndexWriter;
using kestan::search::Match;
using kestan::search::Status;
using kestan::search::WriterOptions;

constexpr int kDocumentsOfRound = 20;
constexpr unsigned kReaders = 3;  // of each kind

int Rounds() { return NumberFromEnvironment("KESTAN_THREADS_ROUNDS", 30); }

WriterOptions OptionsOf(unsigned threads) {
  WriterOptions options;
  options.threads = threads;
  options.merge_factor = 3;
  return options;
}

// Words have no digits.
std::string InLetters(int number) {
  std::string letters;
  for (const char digit : std::to_string(number)) letters += static_cast<char>('a' + digit - '0');
  return letters;
}

// Each document of a round holds "steady", its own word and, in Greek and with accents, words that
// are transliterated.
Document MakeDocument(int round, int number) {
  Document document;
  document.name = "n" + std::to_string(round) + "." + std::to_string(number);
  document.text = "steady w" + InLetters(number) + " round" + InLetters(round) +
                  " \xce\xb1\xce\xb8\xce\xae\xce\xbd\xce\xb1 caf\xc3\xa9 na\xc3\xafve";
  document.title = "title of " + document.name;
  return document;
}

// Rounds leave one document less than they add: the first of each is removed in the next.
Status DoRound(int round, IndexWriter* writer) {
  Status status;
  for (int i = 0; i < kDocumentsOfRound && status.ok(); ++i) {
    status = writer->Add(MakeDocument(round, i));
  }
  if (round > 0) {
    const std::string earlier = "n" + std::to_string(round - 1) + ".";
    if (status.ok()) status = writer->Remove(earlier + "0");
    if (status.ok()) status = writer->Rename(earlier + "1", earlier + "moved");
    if (status.ok()) status = writer->SetField(earlier + "3", DocumentField::kTitle, "another");
  }
  if (!status.ok()) return status;
  writer->SetProperty("rounds", std::to_string(round + 1));
  return round % 10 == 9 ? writer->Compact() : writer->Commit();
}

// How many documents live after so many rounds.
std::uint64_t LivingAfter(std::uint64_t rounds) {
  return rounds == 0 ? 0 : rounds * kDocumentsOfRound - (rounds - 1);
}

// Asks with functions that lend what they have.
void ExpectOneStateByVisits(const IndexReader& reader, std::uint64_t living) {
  std::uint64_t listed = 0;
  Status status = reader.ForEachDocument([&listed](const DocumentInfo& info) {
    listed += info.name.empty() ? 0 : 1;
    return true;
  });
  EXPECT_TRUE(status.ok()) << status.ToString();
  EXPECT_EQ(listed, living);
  std::uint64_t matches = 0;
  status = reader.ForEachMatch("steady NOT nothing", {}, [&matches](const Match& match) {
    matches += match.name.empty() ? 0 : 1;
    return true;
  });
  EXPECT_TRUE(status.ok()) << status.ToString();
  EXPECT_EQ(matches, living);
}

// Checks that all answers of a reader are those of one state.
void ExpectOneState(const IndexReader& reader) {
  const std::uint64_t living = reader.Statistics().documents;
  const auto count = reader.Count("steady");
  ASSERT_TRUE(count.ok()) << count.status().ToString();
  EXPECT_EQ(*count, living);
  const auto results = reader.Search("wc athena cafe");
  ASSERT_TRUE(results.ok()) << results.status().ToString();
  const auto with_wc = reader.Count("wc");
  ASSERT_TRUE(with_wc.ok());
  EXPECT_EQ(LivingAfter(*with_wc), living);
  const auto prefix = reader.Search("roun* steadi~");
  EXPECT_TRUE(prefix.ok()) << prefix.status().ToString();
  const auto terms = reader.Terms("stead");
  ASSERT_TRUE(terms.ok()) << terms.status().ToString();
  if (living > 0) {
    ASSERT_EQ(terms->size(), 1u);
    EXPECT_EQ(terms->front().documents, living);
    const auto found = reader.FindDocument("n0.2");
    ASSERT_TRUE(found.ok()) << found.status().ToString();
    EXPECT_EQ(found->title, "title of n0.2");
  }
  const auto rounds = reader.Property("rounds");
  ASSERT_TRUE(rounds.ok()) << rounds.status().ToString();
  EXPECT_EQ(LivingAfter(std::stoul(*rounds)), living);
  ASSERT_TRUE(IndexReader::Snippet(*results, "an Ath\xc3\xa8na in a caf\xc3\xa9").ok());
  ExpectOneStateByVisits(reader, living);
}

// What readers met.
struct Met {
  std::atomic<std::uint64_t> refreshed = 0;
  std::atomic<std::uint64_t> asked = 0;
};

// A writer commits, merges and compacts, while threads share a reader of its first state and others
// refresh readers of their own.
void CommitWhileReadersAsk(int rounds, Met* met) {
  const TempDir folder;
  const std::string path = folder / "index";
  auto writer = IndexWriter::Open(path, OptionsOf(4));
  ASSERT_TRUE(writer.ok()) << writer.status().ToString();
  ASSERT_TRUE(DoRound(0, &*writer).ok());
  const auto shared = IndexReader::Open(path);
  ASSERT_TRUE(shared.ok()) << shared.status().ToString();
  std::atomic<bool> is_done = false;
  std::vector<std::thread> readers;
  for (unsigned i = 0; i < kReaders; ++i) {
    readers.emplace_back([&] {
      for (; !is_done && !testing::Test::HasFailure(); ++met->asked) {
        EXPECT_EQ(shared->Statistics().documents, LivingAfter(1));
        ExpectOneState(*shared);
      }
    });
    readers.emplace_back([&] {
      auto own = IndexReader::Open(path);
      ASSERT_TRUE(own.ok()) << own.status().ToString();
      for (; !is_done && !testing::Test::HasFailure(); ++met->asked) {
        const auto changed = own->Refresh();
        ASSERT_TRUE(changed.ok()) << changed.status().ToString();
        met->refreshed += *changed ? 1 : 0;
        ExpectOneState(*own);
      }
    });
  }
  Status status;
  for (int round = 1; round < rounds && status.ok(); ++round) status = DoRound(round, &*writer);
  is_done = true;
  for (std::thread& reader : readers) reader.join();
  EXPECT_TRUE(status.ok()) << status.ToString();
  const auto last = IndexReader::Open(path);
  ASSERT_TRUE(last.ok());
  EXPECT_EQ(last->Statistics().documents, LivingAfter(static_cast<std::uint64_t>(rounds)));
  ExpectOneState(*last);
}

TEST(SearchThreadsTest, ReadersSeeOneStateWhileWriterCommitsMergesAndCompacts) {
  using Clock = std::chrono::steady_clock;
  const Clock::time_point end =
      Clock::now() + std::chrono::seconds(NumberFromEnvironment("KESTAN_THREADS_SECONDS", 0));
  const int rounds = Rounds();
  Met met;
  int sessions = 0;
  do {
    CommitWhileReadersAsk(rounds, &met);
    if (++sessions % 10 == 0) {
      std::printf("%d times %d commits, %llu refreshed, asked %llu times\n", sessions, rounds,
                  static_cast<unsigned long long>(met.refreshed),
                  static_cast<unsigned long long>(met.asked));
      std::fflush(stdout);
    }
  } while (Clock::now() < end && !testing::Test::HasFailure());
  EXPECT_GT(met.refreshed, 0u);
}

TEST(SearchThreadsTest, ThreadsOfWriterAnalyzeAtOnce) {
  const TempDir folder;
  auto options = OptionsOf(4);
  options.memory_budget = std::size_t{4} << 20;  // batches of 64 KB, so that all threads have some
  auto writer = IndexWriter::Open(folder / "index", options);
  ASSERT_TRUE(writer.ok()) << writer.status().ToString();
  constexpr int kDocuments = 600;
  for (int i = 0; i < kDocuments; ++i) {
    Document document = MakeDocument(0, i);
    const std::string text = document.text;
    for (int times = 0; times < 10; ++times) document.text += " " + text;
    document.text += " \xd0\xbf\xd1\x80\xd0\xb8\xd0\xb2\xd0\xb5\xd1\x82" + InLetters(i);
    ASSERT_TRUE(writer->Add(std::move(document)).ok());
  }
  for (int i = 0; i < kDocuments; i += 2) {
    ASSERT_TRUE(writer->Remove("n0." + std::to_string(i)).ok());
  }
  ASSERT_TRUE(writer->Commit().ok());
  const auto reader = IndexReader::Open(folder / "index");
  ASSERT_TRUE(reader.ok());
  const auto count = reader->Count("cafe");
  ASSERT_TRUE(count.ok());
  EXPECT_EQ(*count, kDocuments / 2u);
  const auto terms = reader->Terms("\xd0\xbf\xd1\x80\xd0\xb8\xd0\xb2\xd0\xb5\xd1\x82");
  ASSERT_TRUE(terms.ok());
  EXPECT_EQ(terms->size(), kDocuments / 2u);
}

}  // namespace
}  // namespace kestan_tests
