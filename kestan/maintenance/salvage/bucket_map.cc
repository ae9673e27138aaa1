// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/maintenance/salvage/bucket_map.h>

#include <kestan/maintenance/salvage/directory.h>
#include <kestan/maintenance/salvage/orphans.h>

#include <algorithm>
#include <tuple>
#include <utility>

namespace kestan::gdbm {

BucketMap::BucketMap(const Bytes& file) : file_(file) {
  has_header_ = ReadHeader(file, &header_, &shape_);
  if (has_header_) {
    UseDirectory(header_.directory, static_cast<unsigned>(header_.directory_bits));
  } else {
    header_ = Header{};
  }
  is_whole_ = has_header_ && CoversEverything();
  Orphans orphans = FindOrphans(file, shape_, reached_);
  orphans_ = std::move(orphans.buckets);
  orphan_elements_ = std::move(orphans.elements);
  SortOrphans();
  DropSplit();
  if (reached_.empty()) UseFoundDirectory();
  MarkSplit();
}

void BucketMap::UseDirectory(Offset at, unsigned bits) {
  directory_ = at;
  directory_bytes_ = Offset{sizeof(Offset)} << bits;
  reached_ = ReadDirectory(file_, shape_, at, bits);
}

void BucketMap::UseFoundDirectory() {
  const DirectoryPlace place = FindDirectory(file_, orphans_);
  if (place.at == 0) return;
  UseDirectory(place.at, place.bits);
  const auto is_reached = [&](const FoundBucket& orphan) {
    const FoundBucket* const reached = FindReached(orphan.first);
    return reached != nullptr && reached->at == orphan.at;
  };
  orphans_.erase(std::remove_if(orphans_.begin(), orphans_.end(), is_reached), orphans_.end());
}

bool BucketMap::CoversEverything() const {
  Offset next = 0;
  for (const FoundBucket& bucket : reached_) {
    if (!bucket.is_intact || bucket.first != next) return false;
    next = Offset{bucket.last} + 1;
  }
  return next == Offset{kLastHash} + 1;
}

// Of two with the same hashes, the one that lacks nothing comes first.
void BucketMap::SortOrphans() {
  std::sort(orphans_.begin(), orphans_.end(),
            [](const FoundBucket& left, const FoundBucket& right) {
              return std::make_tuple(left.bits, left.first, !left.is_intact, left.at) <
                     std::make_tuple(right.bits, right.first, !right.is_intact, right.at);
            });
}

// An old directory may lead to a bucket as it was before it was split, if nothing has overwritten
// that.
void BucketMap::DropSplit() {
  const auto kept =
      std::stable_partition(reached_.begin(), reached_.end(),
                            [this](const FoundBucket& bucket) { return !HasIntactPart(bucket); });
  if (kept == reached_.end()) return;
  is_whole_ = false;
  for (auto bucket = kept; bucket != reached_.end(); ++bucket) {
    if (!bucket->has_head) continue;  // its elements are among the orphan elements already
    orphans_.push_back(*bucket);
    orphans_.back().is_reached = false;
  }
  reached_.erase(kept, reached_.end());
  SortOrphans();
}

// Returns whether an orphan of which nothing is missing has some of the hashes and no others, and
// more bits. Without its head, a bucket proves no bits.
bool BucketMap::HasIntactPart(const FoundBucket& bucket) const {
  const Hash others = bucket.last - bucket.first;
  for (unsigned bits = 0; bits <= kHashBits; ++bits) {
    const Hash others_of_part = kLastHash >> bits;
    if (others_of_part > others || (bucket.has_head && others_of_part == others)) continue;
    std::size_t i = FindOrphan(bits, PrefixOf(bucket.first, bits));
    for (; i < orphans_.size() && orphans_[i].bits == bits && orphans_[i].first <= bucket.last;
         ++i) {
      if (orphans_[i].is_intact) return true;
    }
  }
  return false;
}

void BucketMap::MarkSplit() {
  for (const FoundBucket& bucket : reached_) MarkAncestors(bucket);
  for (const FoundBucket& bucket : orphans_) MarkAncestors(bucket);
}

void BucketMap::MarkAncestors(const FoundBucket& bucket) {
  for (unsigned bits = 0; bits < bucket.bits; ++bits) {
    const Hash prefix = PrefixOf(bucket.first, bits);
    for (std::size_t i = FindOrphan(bits, prefix); i < orphans_.size(); ++i) {
      if (orphans_[i].bits != bits || PrefixOf(orphans_[i].first, bits) != prefix) break;
      if (orphans_[i].is_split) break;  // and so are those after it
      orphans_[i].is_split = true;
    }
  }
}

const FoundBucket* BucketMap::FindReached(Hash hash) const {
  auto next = std::upper_bound(
      reached_.begin(), reached_.end(), hash,
      [](Hash wanted, const FoundBucket& bucket) { return wanted < bucket.first; });
  if (next == reached_.begin()) return nullptr;
  --next;
  return hash <= next->last ? &*next : nullptr;
}

// Returns the index of the first orphan with these bits and hashes; without one, of the orphan that
// would follow it.
std::size_t BucketMap::FindOrphan(unsigned bits, Hash prefix) const {
  const Hash first = bits == 0 ? 0 : prefix << (kHashBits - bits);
  const auto found =
      std::lower_bound(orphans_.begin(), orphans_.end(), std::make_tuple(bits, first),
                       [](const FoundBucket& bucket, const auto& wanted) {
                         return std::make_tuple(unsigned{bucket.bits}, bucket.first) < wanted;
                       });
  return static_cast<std::size_t>(found - orphans_.begin());
}

const FoundBucket* BucketMap::FindNewerOrphan(unsigned bits, Hash hash) const {
  for (unsigned more = kHashBits; more > bits; --more) {
    const std::size_t i = FindOrphan(more, PrefixOf(hash, more));
    if (i == orphans_.size()) continue;
    const FoundBucket& found = orphans_[i];
    if (found.bits == more && found.first <= hash) return &found;
  }
  return nullptr;
}

// Judges an element that counts only if `newer` has lost an element that it may be.
Authority BucketMap::AuthorityBeside(const FoundBucket& newer, Hash hash) const {
  if (newer.is_intact) return Authority::kStale;
  if (!newer.is_complete) return Authority::kFallback;
  ReadBucket(file_, shape_, newer.at, &bucket_);
  const auto& damaged = bucket_.damaged;
  return std::find(damaged.begin(), damaged.end(), hash) != damaged.end() ? Authority::kFallback
                                                                          : Authority::kStale;
}

bool BucketMap::YieldsTo(const FoundBucket& reached, const FoundBucket& orphan) {
  if (reached.is_empty) return orphan.bits >= reached.bits;
  return !reached.has_head && orphan.is_intact && orphan.first == reached.first &&
         orphan.last == reached.last;
}

Authority BucketMap::AuthorityOf(const FoundBucket& orphan, Hash hash) const {
  const FoundBucket* const reached = FindReached(hash);
  if (reached != nullptr && !YieldsTo(*reached, orphan)) return AuthorityBeside(*reached, hash);
  const FoundBucket* const newer = FindNewerOrphan(orphan.bits, hash);
  if (newer != nullptr) return AuthorityBeside(*newer, hash);
  const FoundBucket& best = orphans_[FindOrphan(orphan.bits, PrefixOf(hash, orphan.bits))];
  return orphan.is_split || best.at != orphan.at ? Authority::kFallback : Authority::kCurrent;
}

Authority BucketMap::AuthorityOfElement(Hash hash) const {
  const FoundBucket* const reached = FindReached(hash);
  if (reached != nullptr) return AuthorityBeside(*reached, hash);
  const FoundBucket* const newer = FindNewerOrphan(0, hash);
  return newer != nullptr ? AuthorityBeside(*newer, hash) : Authority::kFallback;
}

}  // namespace kestan::gdbm
