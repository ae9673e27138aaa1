// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/index/merging/merge_policy.h"

#include <gtest/gtest.h>
#include <rapidcheck.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace kestan::search {
namespace {

using Segments = std::vector<SegmentInfo>;
using Positions = std::vector<std::size_t>;

constexpr std::uint64_t kSmall = 10'000;     // bytes of a segment of tier 0
constexpr std::uint64_t kMiddle = 100'000;   // of tier 1
constexpr std::uint64_t kLarge = 1'000'000;  // of tier 2

SegmentInfo OfSize(std::uint64_t bytes, std::uint32_t documents = 10, std::uint32_t removed = 0) {
  SegmentInfo info;
  info.documents = documents;
  info.removed = removed;
  info.segment.bytes = bytes;
  return info;
}

Positions Chosen(const std::vector<std::uint64_t>& sizes) {
  Segments segments;
  for (const std::uint64_t bytes : sizes) segments.push_back(OfSize(bytes));
  return ChooseMerge(segments, {});
}

TEST(MergePolicyTest, TiersAreEightTimesAsLargeAsTheOnesBefore) {
  const MergePolicy policy;
  EXPECT_EQ(TierOf(OfSize(0), policy), 0u);
  EXPECT_EQ(TierOf(OfSize(32 * 1024 - 1), policy), 0u);
  EXPECT_EQ(TierOf(OfSize(32 * 1024), policy), 1u);
  EXPECT_EQ(TierOf(OfSize(8 * 32 * 1024 - 1), policy), 1u);
  EXPECT_EQ(TierOf(OfSize(8 * 32 * 1024), policy), 2u);
}

TEST(MergePolicyTest, RemovedDocumentsDoNotCountForATier) {
  EXPECT_EQ(LivingBytes(OfSize(1000, 10, 4)), 600u);
  EXPECT_EQ(TierOf(OfSize(64 * 1024, 10, 6), {}), 0u);
}

TEST(MergePolicyTest, SevenSegmentsOfATierStay) {
  EXPECT_EQ(Chosen(std::vector<std::uint64_t>(7, kSmall)), Positions());
}

TEST(MergePolicyTest, EightSegmentsOfATierBecomeOne) {
  EXPECT_EQ(Chosen(std::vector<std::uint64_t>(8, kSmall)), (Positions{0, 1, 2, 3, 4, 5, 6, 7}));
}

TEST(MergePolicyTest, SmallerSegmentsBetweenThemGoWithThem) {
  EXPECT_EQ(Chosen({kLarge, kMiddle, kMiddle, kMiddle, kSmall, kMiddle, kMiddle, kMiddle, kMiddle,
                    kMiddle, kSmall}),
            (Positions{1, 2, 3, 4, 5, 6, 7, 8, 9}));
}

TEST(MergePolicyTest, ALargerSegmentBetweenThemTakesInThoseBeforeIt) {
  EXPECT_EQ(Chosen({kSmall, kSmall, kSmall, kSmall, kLarge, kSmall, kSmall, kSmall, kSmall}),
            (Positions{0, 1, 2, 3, 4}));
}

TEST(MergePolicyTest, FewSegmentsBeforeALargerOneStay) {
  EXPECT_EQ(Chosen({kSmall, kSmall, kLarge, kSmall}), Positions());
}

TEST(MergePolicyTest, FullSegmentsAreLeftOut) {
  Segments segments(8, OfSize(kSmall));
  segments.insert(segments.begin() + 4, OfSize(kSmall, 30'001));
  EXPECT_EQ(ChooseMerge(segments, {}), (Positions{0, 1, 2, 3, 5, 6, 7, 8}));
}

TEST(MergePolicyTest, SegmentsThatCannotBeReadAreLeftOut) {
  Segments segments(9, OfSize(kSmall));
  for (std::size_t i = 0; i < segments.size(); ++i) segments[i].number = i + 1;
  MergePolicy policy;
  policy.left_out = {4};
  EXPECT_EQ(ChooseMerge(segments, policy), (Positions{0, 1, 2, 4, 5, 6, 7, 8}));
  policy.left_out = {4, 9};
  EXPECT_EQ(ChooseMerge(segments, policy), Positions());
  segments[3].removed = 10;
  EXPECT_EQ(ChooseMerge(segments, policy), Positions());
  EXPECT_EQ(ChooseCompaction(segments, policy.left_out),
            std::vector<Positions>({{0, 1, 2, 4, 5, 6, 7}}));
}

TEST(MergePolicyTest, AFullSegmentHasMoreThanHalfOfWhatIsAllowed) {
  EXPECT_FALSE(IsFull(OfSize(0, 30'000)));
  EXPECT_TRUE(IsFull(OfSize(0, 30'001)));
  EXPECT_FALSE(IsFull(OfSize(kMaxMergedBytes / 2)));
  EXPECT_TRUE(IsFull(OfSize(kMaxMergedBytes / 2 + 1)));
}

TEST(MergePolicyTest, AMergeEndsAtTheLimitOfDocuments) {
  EXPECT_EQ(ChooseMerge(Segments(8, OfSize(kSmall, 20'000)), {}), (Positions{0, 1, 2}));
  EXPECT_EQ(ChooseMerge(Segments(8, OfSize(kSmall, 20'001)), {}), (Positions{0, 1}));
}

TEST(MergePolicyTest, AMergeEndsAtTheLimitOfBytes) {
  EXPECT_EQ(ChooseMerge(Segments(8, OfSize(kMaxMergedBytes / 4)), {}), (Positions{0, 1, 2, 3}));
}

TEST(MergePolicyTest, ASegmentWithManyRemovedDocumentsIsWrittenAgain) {
  EXPECT_EQ(ChooseMerge({OfSize(kLarge), OfSize(kSmall, 100, 26)}, {}), Positions{1});
  EXPECT_EQ(ChooseMerge({OfSize(kLarge), OfSize(kSmall, 100, 25)}, {}), Positions());
  EXPECT_EQ(ChooseMerge({OfSize(kLarge, 60'000, 60'000)}, {}), Positions{0});
}

TEST(MergePolicyTest, ACompactionMakesAsFewSegmentsAsFit) {
  const Segments segments(7, OfSize(kLarge, 20'000));
  EXPECT_EQ(ChooseCompaction(segments), (std::vector<Positions>{{0, 1, 2}, {3, 4, 5}}));
}

TEST(MergePolicyTest, ACompactionLeavesCompactSegmentsAlone) {
  EXPECT_TRUE(ChooseCompaction({}).empty());
  EXPECT_TRUE(ChooseCompaction({OfSize(kLarge)}).empty());
  EXPECT_EQ(ChooseCompaction({OfSize(kLarge, 10, 1)}), std::vector<Positions>{{0}});
  SegmentInfo renamed = OfSize(kLarge);
  renamed.edit_number = 1;
  EXPECT_EQ(ChooseCompaction({renamed}), std::vector<Positions>{{0}});
}

TEST(MergePolicyTest, ACompactionPutsNothingToASegmentThatIsTooLarge) {
  const Segments segments = {OfSize(kLarge, 65'535, 1), OfSize(kSmall), OfSize(kSmall)};
  EXPECT_EQ(ChooseCompaction(segments), (std::vector<Positions>{{0}, {1, 2}}));
}

// An index whose segments are nothing but sizes.
class SimulatedIndex {
 public:
  explicit SimulatedIndex(MergePolicy policy) : policy_(policy) {}

  void Commit(std::uint32_t documents, std::uint64_t bytes_of_document) {
    const std::uint64_t bytes = kLeastBytes + documents * bytes_of_document;
    segments_.push_back(OfSize(bytes, documents));
    added_ += bytes;
    written_ += bytes;
    largest_ = std::max(largest_, bytes);
    Merge();
  }

  // Removes some of the documents of each segment.
  void Remove(unsigned percent) {
    for (SegmentInfo& segment : segments_) {
      const std::uint32_t living = segment.documents - segment.removed;
      const std::uint32_t removed = living * percent / 100;
      removed_ += segment.segment.bytes * removed / segment.documents;
      segment.removed += removed;
    }
    Merge();
  }

  void Check() const {
    std::vector<std::size_t> in_tier;
    std::size_t full = 0;
    std::uint64_t documents = 0;
    std::uint64_t bytes = 0;
    std::uint64_t living_bytes = 0;
    for (const SegmentInfo& segment : segments_) {
      documents += segment.documents - segment.removed;
      bytes += segment.segment.bytes;
      living_bytes += LivingBytes(segment);
      if (IsFull(segment)) {
        ++full;
        continue;
      }
      in_tier.resize(std::max<std::size_t>(in_tier.size(), TierOf(segment, policy_) + 1));
      ++in_tier[TierOf(segment, policy_)];
    }
    for (const std::size_t count : in_tier) RC_ASSERT(count < policy_.factor);
    // Each full segment has more than half of the documents or bytes of the largest one.
    RC_ASSERT(full <= documents / (kMaxMergedDocuments / 2) + living_bytes / (kMaxMergedBytes / 2));
    RC_ASSERT(bytes * 10 <= living_bytes * 14 + 10 * segments_.size());
    const std::uint64_t tiers = TierOf(OfSize(largest_), policy_) + 1;
    // A segment is written again when a quarter of it was removed: three bytes for each of these.
    RC_ASSERT(written_ <= (1 + tiers) * added_ + 3 * removed_);
  }

 private:
  static constexpr std::uint64_t kLeastBytes = 4096;  // header, directory, bucket

  void Merge() {
    for (;;) {
      const Positions chosen = ChooseMerge(segments_, policy_);
      if (chosen.empty()) return;
      RC_ASSERT(std::is_sorted(chosen.begin(), chosen.end()));
      RC_ASSERT(chosen.back() < segments_.size());
      SegmentInfo merged = OfSize(0, 0);
      for (const std::size_t position : chosen) {
        const SegmentInfo& segment = segments_[position];
        merged.documents += segment.documents - segment.removed;
        merged.segment.bytes += LivingBytes(segment);
      }
      RC_ASSERT(chosen.size() == 1 || merged.documents <= kMaxMergedDocuments);
      RC_ASSERT(chosen.size() == 1 || merged.segment.bytes <= kMaxMergedBytes);
      for (std::size_t i = chosen.front(); i <= chosen.back(); ++i) {
        const bool is_chosen = std::find(chosen.begin(), chosen.end(), i) != chosen.end();
        RC_ASSERT(is_chosen || IsFull(segments_[i]));
      }
      for (std::size_t i = chosen.size(); i-- > 0;) {
        segments_.erase(segments_.begin() + static_cast<std::ptrdiff_t>(chosen[i]));
      }
      written_ += merged.segment.bytes;
      largest_ = std::max(largest_, merged.segment.bytes);
      if (merged.documents == 0) continue;
      segments_.insert(segments_.begin() + static_cast<std::ptrdiff_t>(chosen.front()), merged);
    }
  }

  const MergePolicy policy_;
  Segments segments_;
  std::uint64_t added_ = 0;
  std::uint64_t removed_ = 0;
  std::uint64_t written_ = 0;
  std::uint64_t largest_ = 0;
};

TEST(MergePolicyTest, BoundsHoldForRandomHistories) {
  EXPECT_TRUE(rc::check([] {
    SimulatedIndex index({});
    const int commits = *rc::gen::inRange(1, 1500);
    const unsigned most_bits = *rc::gen::inRange(1u, 16u);
    const auto bytes = *rc::gen::inRange<std::uint64_t>(10, 20'000);
    const bool removes = *rc::gen::arbitrary<bool>();
    std::uint32_t state = *rc::gen::arbitrary<std::uint32_t>();
    for (int i = 0; i < commits; ++i) {
      state = state * 1664525u + 1013904223u;
      const std::uint32_t bits = (state >> 8) % most_bits;
      index.Commit(std::min(1 + ((state >> 12) & ((1u << bits) - 1)), kMaxMergedDocuments), bytes);
      if (removes && (state >> 28) == 0) index.Remove((state >> 20) % 40);
      index.Check();
    }
  }));
}

TEST(MergePolicyTest, BoundsHoldForAMillionCommitsOfOneDocument) {
  SimulatedIndex index({});
  for (int i = 0; i < 1'000'000; ++i) index.Commit(1, 1000);
  index.Check();
}

}  // namespace
}  // namespace kestan::search
