// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/index/merging/merge_policy.h"

#include <algorithm>

namespace kestan::search {
namespace {

using Positions = std::vector<std::size_t>;

std::uint32_t LivingDocuments(const SegmentInfo& segment) {
  return segment.documents - segment.removed;
}

// What a merge has taken so far.
class Load {
 public:
  // Takes the segment, unless that is too much. The first one never is.
  bool Take(const SegmentInfo& segment) {
    const std::uint64_t documents = documents_ + LivingDocuments(segment);
    const std::uint64_t bytes = bytes_ + LivingBytes(segment);
    const bool fits = documents <= kMaxMergedDocuments && bytes <= kMaxMergedBytes;
    if (!fits && !is_empty_) return false;
    is_empty_ = false;
    documents_ = documents;
    bytes_ = bytes;
    return true;
  }

 private:
  bool is_empty_ = true;
  std::uint64_t documents_ = 0;
  std::uint64_t bytes_ = 0;
};

// A segment that may be merged.
struct Candidate {
  std::size_t position;
  unsigned tier;
};

class MergeChooser {
 public:
  MergeChooser(const std::vector<SegmentInfo>& segments, const MergePolicy& policy)
      : segments_(segments), factor_(std::max(policy.factor, 2U)) {
    for (std::size_t i = 0; i < segments.size(); ++i) {
      if (IsFull(segments[i]) || policy.left_out.count(segments[i].number) != 0) continue;
      candidates_.push_back({i, TierOf(segments[i], policy)});
    }
  }

  Positions Choose() const {
    unsigned highest = 0;
    for (const Candidate& candidate : candidates_) highest = std::max(highest, candidate.tier);
    for (unsigned tier = 0; tier <= highest; ++tier) {
      if (CountOf(tier) < factor_) continue;
      Positions chosen = ChooseOfTier(tier);
      if (chosen.empty()) chosen = ChooseAbsorption(tier);
      return chosen;
    }
    return {};
  }

 private:
  std::size_t CountOf(unsigned tier) const {
    return static_cast<std::size_t>(
        std::count_if(candidates_.begin(), candidates_.end(),
                      [tier](const Candidate& candidate) { return candidate.tier == tier; }));
  }

  // Finds as many segments of the tier as are merged, with nothing but smaller ones between them.
  Positions ChooseOfTier(unsigned tier) const {
    std::size_t first = 0;
    std::size_t count = 0;
    for (std::size_t i = 0; i < candidates_.size(); ++i) {
      if (candidates_[i].tier > tier) count = 0;
      if (candidates_[i].tier != tier) continue;
      if (count++ == 0) first = i;
      if (count == factor_) return Fitting(first, i + 1);
    }
    return {};
  }

  // Larger segments lie between those of the tier. The smallest of these takes in what lies to the
  // left of it. It then has nothing smaller to its left any more: this happens to it once.
  Positions ChooseAbsorption(unsigned tier) const {
    Positions chosen;
    std::uint64_t least_bytes = 0;
    for (std::size_t i = 1; i < candidates_.size(); ++i) {
      if (candidates_[i].tier <= tier || candidates_[i - 1].tier > tier) continue;
      std::size_t first = i;
      bool has_tier = false;
      while (first > 0 && candidates_[first - 1].tier < candidates_[i].tier) {
        --first;
        has_tier = has_tier || candidates_[first].tier == tier;
      }
      const std::uint64_t bytes = LivingBytes(segments_[candidates_[i].position]);
      if (!has_tier || (!chosen.empty() && bytes >= least_bytes)) continue;
      chosen = FittingFromRight(first, i + 1);
      least_bytes = bytes;
    }
    return chosen;
  }

  // Returns the candidates from `first` to before `end`, as many as fit into one segment. Two do
  // always, for neither is full. The result of fewer than all is full.
  Positions Fitting(std::size_t first, std::size_t end) const {
    Load load;
    Positions positions;
    for (; first < end && load.Take(segments_[candidates_[first].position]); ++first) {
      positions.push_back(candidates_[first].position);
    }
    return positions;
  }

  Positions FittingFromRight(std::size_t first, std::size_t end) const {
    Load load;
    Positions positions;
    for (; end > first && load.Take(segments_[candidates_[end - 1].position]); --end) {
      positions.push_back(candidates_[end - 1].position);
    }
    std::reverse(positions.begin(), positions.end());
    return positions;
  }

  const std::vector<SegmentInfo>& segments_;
  const std::size_t factor_;
  std::vector<Candidate> candidates_;
};

bool MustBePurged(const SegmentInfo& segment, double removed_share) {
  return segment.removed > removed_share * segment.documents;
}

}  // namespace

std::uint64_t LivingBytes(const SegmentInfo& segment) {
  if (segment.documents == 0) return 0;
  const double share = static_cast<double>(LivingDocuments(segment)) / segment.documents;
  return static_cast<std::uint64_t>(static_cast<double>(segment.segment.bytes) * share);
}

unsigned TierOf(const SegmentInfo& segment, const MergePolicy& policy) {
  unsigned tier = 0;
  const unsigned factor = std::max(policy.factor, 2U);
  std::uint64_t bytes = LivingBytes(segment);
  for (; bytes >= policy.smallest_tier && bytes > 0; bytes /= factor) ++tier;
  return tier;
}

bool IsFull(const SegmentInfo& segment) {
  return LivingDocuments(segment) > kMaxMergedDocuments / 2 ||
         LivingBytes(segment) > kMaxMergedBytes / 2;
}

std::vector<std::size_t> ChooseMerge(const std::vector<SegmentInfo>& segments,
                                     const MergePolicy& policy) {
  for (std::size_t i = 0; i < segments.size(); ++i) {
    const bool is_left_out = policy.left_out.count(segments[i].number) != 0;
    if (!is_left_out && MustBePurged(segments[i], policy.removed_share)) return {i};
  }
  return MergeChooser(segments, policy).Choose();
}

std::vector<std::vector<std::size_t>> GroupNeighbours(const std::vector<SegmentInfo>& segments,
                                                      const std::set<std::uint64_t>& left_out) {
  std::vector<Positions> groups;
  Load load;
  for (std::size_t i = 0; i < segments.size(); ++i) {
    if (left_out.count(segments[i].number) != 0) continue;
    if (groups.empty() || !load.Take(segments[i])) {
      groups.emplace_back();
      load = {};
      load.Take(segments[i]);
    }
    groups.back().push_back(i);
  }
  return groups;
}

std::vector<std::vector<std::size_t>> ChooseCompaction(const std::vector<SegmentInfo>& segments,
                                                       const std::set<std::uint64_t>& left_out) {
  std::vector<Positions> groups = GroupNeighbours(segments, left_out);
  const auto is_compact = [&segments](const Positions& group) {
    const SegmentInfo& first = segments[group.front()];
    return group.size() == 1 && first.removed == 0 && first.edit_number == 0;
  };
  groups.erase(std::remove_if(groups.begin(), groups.end(), is_compact), groups.end());
  return groups;
}

}  // namespace kestan::search
