// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/building/bucket_plan.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>
#include <utility>

namespace kestan::gdbm {
namespace {

// As gdbm's own buckets: with smaller ones, a file that grows would be split without end.
constexpr std::uint32_t kBlockCapacity = (kBlockBytes - sizeof(BucketHead)) / sizeof(Element);
constexpr unsigned kLeastDirectoryBits = 6;  // a directory is not smaller than a block
static_assert(sizeof(Offset) << kLeastDirectoryBits == kBlockBytes);

Hash HashOf(const Element& element) { return static_cast<Hash>(element.hash); }

// Finds where the hashes of a prefix begin, without a search for prefixes that many hashes have.
class HashStarts {
 public:
  explicit HashStarts(const Vector<Element>& elements) : elements_(elements) {
    while (bits_ < kMostBits && (elements.size() >> bits_) > kFewElements) ++bits_;
    starts_.resize((std::size_t{1} << bits_) + 1);
    std::size_t next = 0;
    for (Hash prefix = 0; prefix + 1 < starts_.size(); ++prefix) {
      starts_[prefix] = next;
      while (next < elements.size() && PrefixOf(HashOf(elements[next]), bits_) == prefix) ++next;
    }
    starts_.back() = next;
  }

  std::size_t size() const { return elements_.size(); }

  // Returns the index of the first element whose hash does not begin with a lower prefix.
  std::size_t Find(Hash prefix, unsigned bits) const {
    if (bits <= bits_) return starts_[std::size_t{prefix} << (bits_ - bits)];
    const Hash known = prefix >> (bits - bits_);
    const auto first = elements_.begin() + static_cast<std::ptrdiff_t>(starts_[known]);
    const auto end = elements_.begin() + static_cast<std::ptrdiff_t>(starts_[known + 1]);
    const auto found = std::partition_point(first, end, [&](const Element& element) {
      return PrefixOf(HashOf(element), bits) < prefix;
    });
    return static_cast<std::size_t>(found - elements_.begin());
  }

 private:
  static constexpr unsigned kMostBits = 20;
  static constexpr std::size_t kFewElements = 16;

  const Vector<Element>& elements_;
  unsigned bits_ = 0;
  Vector<std::size_t> starts_;
};

// Splits a bucket until each part fits `capacity`, and calls `visit` with the parts in order of
// their hashes. Those that a split too many would be needed for are visited as they are.
template <typename Visit>
void Split(const HashStarts& starts, std::uint32_t capacity, Hash prefix,
           const PlannedBucket& bucket, const Visit& visit) {
  if (bucket.end - bucket.first <= capacity || bucket.bits > kMostDirectoryBits) {
    return visit(bucket);
  }
  const unsigned bits = bucket.bits + 1;
  const Hash high = prefix << 1 | 1;
  const std::size_t middle = starts.Find(high, bits);
  Split(starts, capacity, prefix << 1, {bits, bucket.first, middle}, visit);
  Split(starts, capacity, high, {bits, middle, bucket.end}, visit);
}

// What a capacity leads to.
struct Outcome {
  // Without splits, the directory is the larger part only where hashes have much in common.
  bool is_sparse() const { return directory_bytes > bucket_bytes; }
  std::uint64_t bytes() const { return directory_bytes + bucket_bytes; }

  std::uint32_t capacity = 0;
  bool fits = false;
  std::uint64_t directory_bytes = 0;
  std::uint64_t bucket_bytes = 0;  // of all buckets
};

bool IsBetter(const Outcome& left, const Outcome& right) {
  return left.fits != right.fits ? left.fits : left.bytes() < right.bytes();
}

Outcome Try(const HashStarts& starts, std::uint32_t capacity) {
  std::uint64_t buckets = 0;
  unsigned bits = kLeastDirectoryBits;
  Split(starts, capacity, 0, {0, 0, starts.size()}, [&](const PlannedBucket& bucket) {
    ++buckets;
    bits = std::max(bits, bucket.bits);
  });
  BucketPlan plan;
  plan.capacity = capacity;
  plan.directory_bits = bits;
  return {capacity, bits <= kMostDirectoryBits, plan.directory_bytes(),
          buckets * plan.bucket_bytes()};
}

Outcome FindBest(const HashStarts& starts, std::uint32_t largest) {
  if (starts.size() <= largest) {
    return Try(starts, std::max(static_cast<std::uint32_t>(starts.size()), kBlockCapacity));
  }
  Outcome best = Try(starts, largest);
  const auto look_at = [&](std::uint32_t capacity) {
    const Outcome outcome = Try(starts, capacity);
    if (IsBetter(outcome, best)) best = outcome;
  };
  const std::uint32_t step = std::max<std::uint32_t>(largest / 128, 1);
  for (std::uint32_t i = std::max(largest / 2, kBlockCapacity); i < largest; i += step) look_at(i);
  for (std::uint32_t i = largest; i < kMostCapacity && (!best.fits || best.is_sparse());) {
    i = std::min(i + i / 4, kMostCapacity);
    look_at(i);
  }
  return best;
}

bool IsBefore(const Element& left, const Element& right) {
  return left.hash != right.hash ? left.hash < right.hash : left.data < right.data;
}

// Sorts elements that agree in all but the last `bits` bits of their hashes: moves each to where
// those with its next bits belong, in place, and goes on with each of these groups.
void SortRange(Element* first, Element* end, unsigned bits) {
  constexpr unsigned kStep = 6;  // so that all groups that are filled at once stay in the cache
  constexpr std::size_t kGroups = std::size_t{1} << kStep;
  constexpr std::ptrdiff_t kFew = 40;
  if (end - first <= kFew || bits < kStep) return std::sort(first, end, IsBefore);
  bits -= kStep;
  const auto group_of = [bits](const Element& element) {
    return HashOf(element) >> bits & (kGroups - 1);
  };
  std::array<std::size_t, kGroups + 1> starts{};
  for (const Element* next = first; next != end; ++next) ++starts[group_of(*next) + 1];
  std::partial_sum(starts.begin(), starts.end(), starts.begin());
  std::array<std::size_t, kGroups> next;
  std::copy_n(starts.begin(), kGroups, next.begin());
  for (std::size_t group = 0; group < kGroups; ++group) {
    for (; next[group] < starts[group + 1]; ++next[group]) {
      Element element = first[next[group]];
      for (std::size_t own = group_of(element); own != group; own = group_of(element)) {
        std::swap(element, first[next[own]++]);
      }
      first[next[group]] = element;
    }
  }
  for (std::size_t group = 0; group < kGroups; ++group) {
    SortRange(first + starts[group], first + starts[group + 1], bits);
  }
}

}  // namespace

// Of so many records, this makes about the smallest file; beyond, buckets get no fuller.
std::uint32_t LargestCapacity(std::size_t expected_records) {
  constexpr double kLeast = 64;
  constexpr double kMost = 512;
  constexpr std::uint32_t kUnknown = 170;  // 4 KiB
  if (expected_records == 0) return kUnknown;
  const double balanced = 6 * std::sqrt(static_cast<double>(expected_records));
  return static_cast<std::uint32_t>(std::clamp(balanced, kLeast, kMost));
}

void SortByHash(Vector<Element>* elements) {
  SortRange(elements->data(), elements->data() + elements->size(), kHashBits);
}

bool PlanBuckets(const Vector<Element>& elements, std::uint32_t largest, BucketPlan* plan) {
  const HashStarts starts(elements);
  const Outcome best = FindBest(starts, largest);
  plan->capacity = best.capacity;
  plan->directory_bits = kLeastDirectoryBits;
  plan->buckets.clear();
  if (!best.fits) return false;
  Split(starts, best.capacity, 0, {0, 0, starts.size()}, [plan](const PlannedBucket& bucket) {
    plan->buckets.push_back(bucket);
    plan->directory_bits = std::max(plan->directory_bits, bucket.bits);
  });
  return true;
}

}  // namespace kestan::gdbm
