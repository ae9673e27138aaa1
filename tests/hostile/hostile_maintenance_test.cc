// SPDX-License-Identifier: GPL-3.0-or-later
// Checking, dumping, counting and repairing outlive every damaged file too: no signal, an end in
// time, and no more memory than the file can account for, however large it is and whatever it was
// made for.
#include <gdbm.h>
#include <gtest/gtest.h>
#include <kestan/maintenance.h>
#include <kestan/maintenance/salvage/gdbm_layout.h>

#include <cstring>
#include <filesystem>

#include "tests/hostile/file_damage.h"
#include "tests/hostile/file_session.h"
#include "tests/hostile/gdbm_activity.h"
#include "tests/support/index_test.h"

namespace kestan_hostile {
namespace {

namespace gdbm = kestan::gdbm;

using kestan_faults::Transcript;
using kestan_tests::Units;

using Work = void (*)(const std::string& path);

void CheckIt(const std::string& path) {
  Database store;
  if (store.Open(path.c_str(), 0) == 0) kestan::CheckIndex(store, [](std::string_view) {});
}

void DumpIt(const std::string& path) {
  Database store;
  if (store.Open(path.c_str(), 0) == 0) kestan::DumpIndex(store, [](std::string_view) {});
}

void CountIt(const std::string& path) {
  Database store;
  if (store.Open(path.c_str(), 0) == 0) kestan::ReadStatistics(store);
}

void RepairIt(const std::string& path) {
  kestan::RepairResult result;
  const std::string repaired = path + ".new";
  kestan::RepairIndex(
      path.c_str(), repaired.c_str(), [](std::string_view) {}, &result);
}

void DoEverything(const std::string& path) {
  for (const Work work : {CheckIt, DumpIt, CountIt, RepairIt}) work(path);
}

class HostileMaintenanceTest : public testing::Test {
 protected:
  void SetUp() override {
    base_kib_ = kestan_faults::RunInChild([](Transcript*) {}).peak_kib;
  }

  // Does the work on a file of these bytes.
  void Survive(Work work, const std::string& bytes, const std::string& what) {
    WriteFile(path_, bytes);
    ForgetGdbmActivity();
    std::filesystem::remove(path_ + ".new");
    const auto outcome = kestan_faults::RunInChild([&](Transcript*) {
      LimitThisProcess();
      work(path_);
    });
    EXPECT_EQ(Complaint(outcome, MostKib(base_kib_, bytes.size())), "")
        << what << "\nin gdbm's " << GdbmActivity() << "\n"
        << kestan_faults::Describe(outcome);
  }

  void SurviveEverything(const std::string& bytes, const std::string& what) {
    Survive(CheckIt, bytes, what + ", checked");
    Survive(DumpIt, bytes, what + ", dumped");
    Survive(CountIt, bytes, what + ", counted");
    Survive(RepairIt, bytes, what + ", repaired");
  }

  void SurviveEach(const std::vector<Damaged>& files, std::size_t step) {
    for (std::size_t i = 0; i < files.size(); i += step) {
      Survive(DoEverything, files[i].bytes, files[i].what);
    }
  }

  const kestan_tests::TempDir folder_;
  const std::string path_ = folder_ / "index";

 private:
  long base_kib_ = 0;  // what a child takes that does nothing
};

// ---- Small files, damaged in every way ----

TEST_F(HostileMaintenanceTest, OfSmallFiles) {
  const std::string good = GoodFile();
  SurviveEach({{"good", good}}, 1);
  SurviveEach(FlippedInTheFirstBlock(good), 16);
  SurviveEach(FlippedAnywhere(good, 40), 1);
  SurviveEach(Cut(good), 10);
  SurviveEach(BlocksOfZeros(good), 7);
  SurviveEach(BlocksOfNoise(good), 7);
  SurviveEach(BlocksSwapped(good), 7);
  SurviveEach(DirectoryEntriesRepeated(good), 9);
  SurviveEach(Strangers(good), 1);
}

// ---- Large ones ----

// An index of two documents, and what `fill` adds.
template <typename Fill>
std::string FileWith(const std::string& path, Fill fill) {
  kestan_tests::Records records{{"g-code", Units({2})},       {"g-opts", Units({0, 0})},
                                {"d-a", Units({7, 0, 1, 0})}, {"c-" + Units({1}), "a"},
                                {"d-b", Units({8, 0, 2, 0})}, {"c-" + Units({2}), "b"}};
  fill(&records);
  kestan_tests::Plant(path, records);
  return ReadFile(path);
}

std::string Repeated(const std::string& bytes, std::size_t times) {
  std::string all;
  for (std::size_t i = 0; i < times; ++i) all += bytes;
  return all;
}

std::string LongRecord(const std::string& path, const std::string& key, const std::string& value,
                       unsigned flags = 0) {
  std::filesystem::remove(path);
  return FileWith(path, [&](auto* records) {
    (*records)["g-opts"] = Units({flags, 0});
    (*records)[key] = value;
  });
}

constexpr std::size_t kLongUnits = 3'000'000;

TEST_F(HostileMaintenanceTest, OfManySmallRecords) {
  std::string bytes = FileWith(path_, [](auto* records) {
    for (int i = 0; i < 60000; ++i) (*records)["w" + std::to_string(i)] = Units({1, 1, 1});
  });
  SurviveEverything(bytes, "good");
  bytes.replace(0, 4 * kBlockBytes, 4 * kBlockBytes, '\0');
  Survive(RepairIt, bytes, "without the header, repaired");
}

TEST_F(HostileMaintenanceTest, OfALongPostingRecord) {
  SurviveEverything(LongRecord(path_, "cat", Repeated(Units({1, 1, 1}), kLongUnits / 3)), "good");
}

// No posting of them is whole, or each is in doubt.
TEST_F(HostileMaintenanceTest, OfDamagedLongPostingRecords) {
  for (const auto& posting : {Units({1, 1, 0}), Units({1}), Units({0}), Units({9, 1, 2, 3})}) {
    const std::string record = Repeated(posting, 2 * kLongUnits / posting.size());
    const std::string what = std::to_string(posting.size()) + " bytes over and over";
    Survive(RepairIt, LongRecord(path_, "cat", record), what);
    Survive(RepairIt, LongRecord(path_, "cat", record, 1), what + ", without positions");
  }
}

TEST_F(HostileMaintenanceTest, OfLongRecordsOfOtherKinds) {
  const std::string value = Repeated("\x82\x01", kLongUnits);
  for (const std::string key : {"g-avail", "d-a", "w-list", "e-mail", "c-section"}) {
    Survive(DoEverything, LongRecord(path_, key, value), key);
  }
}

// ---- Made to do harm ----

// Writes a gdbm file that is valid except for its records, which all lie in the same place.
class OverlappingFile {
 public:
  // Keys begin with `first` and have from 5 to 16000 bytes.
  explicit OverlappingFile(const std::string& first) : bytes_(kText + kTextBytes, 'a') {
    bytes_.replace(0, kText, kText, '\0');
    bytes_.replace(kText, first.size(), first);
    const std::int32_t elements = static_cast<std::int32_t>(gdbm::Shape().elements);
    Put(0, gdbm::Header{gdbm::kMagic, kBlockBytes, kDirectory, kDirectoryBytes, kBits, kBlockBytes,
                        elements, bytes_.size()});
    Put(sizeof(gdbm::Header),
        gdbm::FreeList{(512 - 40 - 16) / static_cast<int>(sizeof(gdbm::FreeSpace)), 0, 0});
    for (std::size_t bucket = 0; bucket < kBuckets; ++bucket) MakeBucket(bucket);
    for (std::size_t length = 5; length < 16000; ++length) Add(length);
  }

  const std::string& bytes() const { return bytes_; }

 private:
  static constexpr int kBits = 11;
  static constexpr std::size_t kBuckets = std::size_t{1} << kBits;
  static constexpr std::size_t kDirectory = kBlockBytes;
  static constexpr std::size_t kDirectoryBytes = kBuckets * sizeof(gdbm::Offset);
  static constexpr std::size_t kBucketsAt = kDirectory + kDirectoryBytes;
  static constexpr std::size_t kText = kBucketsAt + kBuckets * kBlockBytes;
  static constexpr std::size_t kTextBytes = 26000;

  template <typename Structure>
  void Put(std::size_t at, const Structure& structure) {
    std::memcpy(&bytes_.at(at), &structure, sizeof structure);
  }

  template <typename Structure>
  Structure Get(std::size_t at) const {
    Structure structure;
    std::memcpy(&structure, &bytes_.at(at), sizeof structure);
    return structure;
  }

  static std::size_t PlaceOf(std::size_t bucket) { return kBucketsAt + bucket * kBlockBytes; }

  static std::size_t PlaceOf(std::size_t bucket, std::uint32_t element) {
    return static_cast<std::size_t>(gdbm::ElementAt(PlaceOf(bucket), element));
  }

  void MakeBucket(std::size_t bucket) {
    Put(kDirectory + bucket * sizeof(gdbm::Offset), gdbm::Offset{PlaceOf(bucket)});
    Put(PlaceOf(bucket), gdbm::BucketHead{0, {}, kBits, 0});
    for (std::uint32_t i = 0; i < gdbm::Shape().elements; ++i) {
      Put(PlaceOf(bucket, i), gdbm::Element{gdbm::kNoElement, {}, 0, 0, 0});
    }
  }

  // gdbm looks for a key from the place on that its hash names.
  void Add(std::size_t length) {
    const gdbm::Hash hash = gdbm::HashOf(std::string_view(bytes_).substr(kText, length));
    const std::size_t bucket = gdbm::PrefixOf(hash, kBits);
    auto head = Get<gdbm::BucketHead>(PlaceOf(bucket));
    if (static_cast<std::uint32_t>(head.count) + 1 >= gdbm::Shape().elements) return;
    std::uint32_t place = hash % gdbm::Shape().elements;
    while (Get<gdbm::Element>(PlaceOf(bucket, place)).hash != gdbm::kNoElement) {
      place = (place + 1) % gdbm::Shape().elements;
    }
    gdbm::Element element{
        static_cast<std::int32_t>(hash), {}, kText, static_cast<std::int32_t>(length), 10000};
    std::memcpy(element.key_start.data(), &bytes_[kText], element.key_start.size());
    Put(PlaceOf(bucket, place), element);
    ++head.count;
    Put(PlaceOf(bucket), head);
  }

  std::string bytes_;
};

// Thousands of keys in the same place, which are visited as far as the file can hold them.
TEST_F(HostileMaintenanceTest, OfKeysThatShareTheirBytes) {
  for (const char* first : {"aaaa", "t-aa"}) {
    const std::string bytes = OverlappingFile(first).bytes();
    SurviveEverything(bytes, first);
    Database store;
    ASSERT_EQ(store.Open(path_.c_str(), 0), 0);
    EXPECT_EQ(kestan::DumpIndex(store, [](std::string_view) {}), kestan::StoreError::kBadHashTable);
    EXPECT_EQ(kestan::CheckIndex(store, {}).file_error, kestan::StoreError::kBadHashTable);
  }
}

}  // namespace
}  // namespace kestan_hostile
