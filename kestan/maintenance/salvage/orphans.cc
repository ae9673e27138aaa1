// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/maintenance/salvage/orphans.h>

#include <algorithm>
#include <utility>

namespace kestan::gdbm {
namespace {

// Returns whether there can be the head of a bucket, going by its free space. Elements may look
// like a head, the more easily the smaller a head is, as on 32 bits. But in the free space of a
// head, used or not, gdbm leaves zeros or earlier free space, while elements give hashes as sizes,
// and pairs of their numbers as places. A place may be past the end of a file that was cut off, but
// only where a small file can have it.
bool HasPossibleSpace(const Bytes& file, Offset bucket) {
  constexpr Offset kSmallFileBytes = Offset{1} << 31;
  BucketHead head;
  if (!file.Read(bucket, &head)) return false;
  return std::all_of(head.free.begin(), head.free.end(), [&](const FreeSpace& space) {
    return static_cast<Offset>(space.bytes) <= file.size() &&
           space.at < std::max(file.size(), kSmallFileBytes);
  });
}

class OrphanScan {
 public:
  OrphanScan(const Bytes& file, const Shape& shape, const Vector<FoundBucket>& reached)
      : file_(file), shape_(shape), reached_(reached) {}

  // An element does not begin within another one.
  Orphans Run() {
    Vector<Offset> known;
    for (const FoundBucket& bucket : reached_) {
      if (bucket.has_head) known.push_back(bucket.at);
    }
    std::sort(known.begin(), known.end());
    auto next_known = known.begin();
    for (Offset at = 0; file_.Holds(at, sizeof(Element));) {
      while (next_known != known.end() && *next_known + shape_.bucket_bytes <= at) ++next_known;
      if (next_known != known.end() && *next_known <= at) {
        at = *next_known + shape_.bucket_bytes;
        continue;
      }
      Element element;
      file_.Read(at, &element);
      if (element.data >= file_.size() || !file_.HasKey(element)) {
        ++at;
        continue;
      }
      if (!BelongsToLastBucket(at)) AddAround(at, element);
      at += sizeof(Element);
    }
    return std::move(orphans_);
  }

 private:
  bool BelongsToLastBucket(Offset element) const {
    if (orphans_.buckets.empty()) return false;
    const Offset first = ElementAt(orphans_.buckets.back().at, 0);
    return element - first < Offset{shape_.elements} * sizeof(Element) &&
           (element - first) % sizeof(Element) == 0;
  }

  // Tries each place that the element can have in a bucket. The best bucket lacks least.
  void AddAround(Offset place, const Element& element) {
    FoundBucket best;
    std::size_t most_valid = 0;
    for (std::uint32_t i = 0; i < shape_.elements && ElementAt(0, i) <= place; ++i) {
      const Offset at = place - ElementAt(0, i);
      if (!HasPossibleSpace(file_, at)) continue;
      ReadBucket(file_, shape_, at, &bucket_);
      const std::size_t valid = bucket_.valid.size();
      if (!bucket_.has_head || valid > bucket_.count || valid == 0) continue;
      const bool is_better = bucket_.IsIntact() > best.is_intact ||
                             (bucket_.IsIntact() == best.is_intact && valid > most_valid);
      if (!is_better) continue;
      best = FoundBucket(bucket_, at);
      best.SetHashes(PrefixOf(bucket_.FirstHash(), bucket_.bits), bucket_.bits);
      most_valid = valid;
    }
    if (most_valid != 0) {
      orphans_.buckets.push_back(best);
    } else {
      orphans_.elements.push_back(element);
    }
  }

  const Bytes& file_;
  const Shape& shape_;
  const Vector<FoundBucket>& reached_;
  Bucket bucket_;  // memory to read into
  Orphans orphans_;
};

}  // namespace

Orphans FindOrphans(const Bytes& file, const Shape& shape, const Vector<FoundBucket>& reached) {
  return OrphanScan(file, shape, reached).Run();
}

}  // namespace kestan::gdbm
