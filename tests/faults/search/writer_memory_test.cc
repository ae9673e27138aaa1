// SPDX-License-Identifier: GPL-3.0-or-later
// A writer keeps within its memory budget. All that the process allocates is counted while
// documents with names, titles and many different words are added; files that are mapped are not.
#include <gtest/gtest.h>
#include <kestan/search.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <random>
#include <string>
#include <thread>

#include "tests/support/heap.h"
#include "tests/support/temp_dir.h"

namespace kestan_faults {
namespace {

using kestan::search::Document;
using kestan::search::IndexWriter;
using kestan::search::WriterOptions;

constexpr std::size_t kBudget = std::size_t{24} << 20;
constexpr double kMostOfBudget = 1.25;
constexpr int kDocuments = 30'000;

// Returns how many bytes of memory that is no file's the process has resident.
std::size_t ResidentBytes() {
  std::ifstream status("/proc/self/status");
  for (std::string word; status >> word;) {
    std::size_t kilobytes = 0;
    if (word == "RssAnon:" && status >> kilobytes) return kilobytes << 10;
  }
  return 0;
}

// Asks again and again how much memory is allocated, in a thread of its own.
class PeakOfHeap {
 public:
  PeakOfHeap() : start_(kestan_tests::HeapBytes()), thread_([this] { Watch(); }) {}
  ~PeakOfHeap() { Stop(); }
  PeakOfHeap(const PeakOfHeap&) = delete;
  PeakOfHeap& operator=(const PeakOfHeap&) = delete;

  // Returns how many bytes more than at the start were resident at most. Only after Stop().
  std::size_t resident() const { return resident_ - resident_start_; }

  // Returns how many bytes were allocated at most, more than at the start.
  std::size_t Stop() {
    is_done_ = true;
    if (thread_.joinable()) thread_.join();
    return peak_ - start_;
  }

 private:
  void Watch() {
    while (!is_done_) {
      peak_ = std::max(peak_, kestan_tests::HeapBytes());
      resident_ = std::max(resident_, ResidentBytes());
      std::this_thread::sleep_for(std::chrono::microseconds(500));
    }
  }

  const std::size_t start_;
  std::size_t peak_ = start_;
  const std::size_t resident_start_ = ResidentBytes();
  std::size_t resident_ = resident_start_;
  std::atomic<bool> is_done_ = false;
  std::thread thread_;
};

// Returns a document of 150 words, of which every tenth is one of many and most are of few.
Document MakeDocument(int number, std::mt19937* random) {
  const auto word = [random](unsigned among) {
    std::string letters = "w";
    for (auto value = (*random)() % among; value > 0; value /= 26) {
      letters += static_cast<char>('a' + value % 26);
    }
    return letters;
  };
  Document document;
  document.name = "/some/folder/with/a/name/document-" + std::to_string(number) + ".txt";
  for (int i = 0; i < 150; ++i) document.text += word(i % 10 == 0 ? 3'000'000 : 5'000) + " ";
  document.title = "The title of document " + std::to_string(number);
  return document;
}

class WriterMemoryTest : public testing::TestWithParam<unsigned> {};

TEST_P(WriterMemoryTest, StaysWithinBudget) {
  const kestan_tests::TempDir folder;
  std::mt19937 random(14);  // NOLINT(cert-msc32-c,cert-msc51-cpp)
  PeakOfHeap peak;
  WriterOptions options;
  options.memory_budget = kBudget;
  options.threads = GetParam();
  auto writer = IndexWriter::Open(folder / "index", options);
  ASSERT_TRUE(writer.ok()) << writer.status().ToString();
  for (int i = 0; i < kDocuments; ++i) ASSERT_TRUE(writer->Add(MakeDocument(i, &random)).ok());
  ASSERT_TRUE(writer->Commit().ok());
  const double share = static_cast<double>(peak.Stop()) / static_cast<double>(kBudget);
  const double resident = static_cast<double>(peak.resident()) / static_cast<double>(kBudget);
  std::printf("%u threads: %.2f of the budget, %.2f resident\n", GetParam(), share, resident);
  EXPECT_LE(share, kMostOfBudget);
  EXPECT_GT(share, 0.5);
}

INSTANTIATE_TEST_SUITE_P(Threads, WriterMemoryTest, testing::Values(1u, 4u));

}  // namespace
}  // namespace kestan_faults
