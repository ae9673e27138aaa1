#include <kestan/maintenance/salvage/bucket_map.h>

#include <algorithm>
#include <tuple>

namespace kestan::gdbm {
namespace {

constexpr Hash kLastHash = 0x7fffffff;
constexpr unsigned kFewestDirectoryBits = 6;  // of a file with blocks of 512 bytes

void SetRange(FoundBucket* found, Hash prefix, unsigned bits) {
  found->bits = static_cast<std::uint8_t>(bits);
  found->first = bits == 0 ? 0 : prefix << (kHashBits - bits);
  found->last = found->first + (kLastHash >> bits);
}

FoundBucket Describe(const Bucket& bucket, Offset at) {
  FoundBucket found;
  found.at = at;
  found.has_head = bucket.has_head;
  found.is_intact = bucket.IsIntact();
  found.is_complete = bucket.IsComplete();
  found.is_empty = bucket.sound.empty() && bucket.damaged.empty();
  return found;
}

// Tells elements that are taken for a head from a head by its free space, in use or not: gdbm
// leaves zeros there, or space of former times, while elements give sizes that are hashes, and
// places that are two of their numbers. The smaller a head is, as it is on 32 bits, the more it
// needs this. A place may lie behind the end of a file that was cut off, but not where no small
// file can have it.
bool HasPossibleSpace(const Bytes& file, Offset bucket) {
  constexpr Offset kSmallFileBytes = Offset{1} << 31;
  BucketHead head;
  if (!file.Read(bucket, &head)) return false;
  return std::all_of(head.free.begin(), head.free.end(), [&](const FreeSpace& space) {
    return static_cast<Offset>(space.bytes) <= file.size() &&
           space.at < std::max(file.size(), kSmallFileBytes);
  });
}

Hash FirstHash(const Bucket& bucket) { return static_cast<Hash>(bucket.sound.front().hash); }

}  // namespace

BucketMap::BucketMap(const Bytes& file) : file_(file) {
  has_header_ = ReadHeader(file, &header_, &shape_);
  if (has_header_) {
    ReadDirectory(header_.directory, static_cast<unsigned>(header_.directory_bits));
  } else {
    header_ = Header{};
  }
  is_whole_ = has_header_ && CoversEverything();
  Scan();
  SortStrays();
  DropSplit();
  if (reached_.empty()) SearchDirectory();
  MarkSplit();
}

// Neighbouring entries of the directory that lead to the same place lead to one bucket.
void BucketMap::ReadDirectory(Offset at, unsigned bits) {
  directory_ = at;
  directory_bytes_ = Offset{sizeof(Offset)} << bits;
  const std::uint32_t entries = std::uint32_t{1} << bits;
  std::uint32_t first = 0;
  Offset run = 0;
  for (std::uint32_t i = 0; i <= entries; ++i) {
    Offset bucket = 0;
    if (i < entries) file_.Read(at + Offset{i} * sizeof(Offset), &bucket);
    if (i > 0 && i < entries && bucket == run) continue;
    if (i > 0) AddReached(run, first, i, bits);
    first = i;
    run = bucket;
  }
  SortReached();
}

void BucketMap::AddReached(Offset at, std::uint32_t first_entry, std::uint32_t end_entry,
                           unsigned bits) {
  if (at < sizeof(Header) || at >= file_.size()) return;
  ReadBucket(file_, shape_, at, &bucket_);
  FoundBucket found = Describe(bucket_, at);
  found.is_reached = true;
  if (PlaceReached(bucket_, first_entry, end_entry, bits, &found)) reached_.push_back(found);
}

// Decides which hashes a bucket answers for that the directory reaches by the given entries.
//   Returns  false if it cannot be a bucket of those entries.
bool BucketMap::PlaceReached(const Bucket& bucket, std::uint32_t first_entry,
                             std::uint32_t end_entry, unsigned bits, FoundBucket* found) const {
  const std::uint32_t last_entry = end_entry - 1;
  if (bucket.has_head && bucket.bits <= bits && !bucket.sound.empty()) {
    SetRange(found, PrefixOf(FirstHash(bucket), bucket.bits), bucket.bits);
    return found->first >> (kHashBits - bits) <= last_entry &&
           found->last >> (kHashBits - bits) >= first_entry;
  }
  if (bucket.has_head && bucket.bits <= bits && bucket.IsComplete()) {
    const unsigned spare_bits = bits - bucket.bits;
    SetRange(found, first_entry >> spare_bits, bucket.bits);
    return last_entry >> spare_bits == first_entry >> spare_bits &&
           end_entry - first_entry == std::uint32_t{1} << spare_bits;
  }
  if (bucket.sound.empty()) return false;
  SetRange(found, first_entry, bits);
  found->last += (last_entry - first_entry) << (kHashBits - bits);
  found->has_head = found->is_intact = found->is_complete = false;
  const Hash hash = FirstHash(bucket);
  return hash >= found->first && hash <= found->last;
}

// Two runs of entries lead to one bucket where an entry between them is damaged. Of two buckets for
// the same hashes, one has its head.
void BucketMap::SortReached() {
  std::sort(reached_.begin(), reached_.end(),
            [](const FoundBucket& left, const FoundBucket& right) {
              return std::make_tuple(left.first, !left.has_head, left.at) <
                     std::make_tuple(right.first, !right.has_head, right.at);
            });
  reached_.erase(std::unique(reached_.begin(), reached_.end(),
                             [](const FoundBucket& left, const FoundBucket& right) {
                               return left.first == right.first;
                             }),
                 reached_.end());
}

bool BucketMap::CoversEverything() const {
  Offset next = 0;
  for (const FoundBucket& bucket : reached_) {
    if (!bucket.is_intact || bucket.first != next) return false;
    next = Offset{bucket.last} + 1;
  }
  return next == Offset{kLastHash} + 1;
}

// Looks at every offset for an element; buckets lie around elements. What the directory reaches is
// known already, if it has its head. An element does not begin within another one.
void BucketMap::Scan() {
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
    if (!BelongsToLastStray(at)) AddAround(at, element);
    at += sizeof(Element);
  }
}

bool BucketMap::BelongsToLastStray(Offset element) const {
  if (strays_.empty()) return false;
  const Offset first = ElementAt(strays_.back().at, 0);
  return element - first < Offset{shape_.elements} * sizeof(Element) &&
         (element - first) % sizeof(Element) == 0;
}

// Tries the element in each place that it can have in a bucket. The best bucket lacks least.
void BucketMap::AddAround(Offset place, const Element& element) {
  FoundBucket best;
  std::size_t most_sound = 0;
  for (std::uint32_t i = 0; i < shape_.elements && ElementAt(0, i) <= place; ++i) {
    const Offset at = place - ElementAt(0, i);
    if (!HasPossibleSpace(file_, at)) continue;
    ReadBucket(file_, shape_, at, &bucket_);
    const std::size_t sound = bucket_.sound.size();
    if (!bucket_.has_head || sound > bucket_.count || sound == 0) continue;
    const bool is_better = bucket_.IsIntact() > best.is_intact ||
                           (bucket_.IsIntact() == best.is_intact && sound > most_sound);
    if (!is_better) continue;
    best = Describe(bucket_, at);
    SetRange(&best, PrefixOf(FirstHash(bucket_), bucket_.bits), bucket_.bits);
    most_sound = sound;
  }
  if (most_sound != 0) {
    strays_.push_back(best);
  } else {
    loose_.push_back(element);
  }
}

// Of two with the same hashes, the one that lacks nothing comes first.
void BucketMap::SortStrays() {
  std::sort(strays_.begin(), strays_.end(), [](const FoundBucket& left, const FoundBucket& right) {
    return std::make_tuple(left.bits, left.first, !left.is_intact, left.at) <
           std::make_tuple(right.bits, right.first, !right.is_intact, right.at);
  });
}

// A directory of an older state leads to a bucket as it was before it was split, if nothing has
// overwritten that.
void BucketMap::DropSplit() {
  const auto kept =
      std::stable_partition(reached_.begin(), reached_.end(),
                            [this](const FoundBucket& bucket) { return !HasIntactPart(bucket); });
  if (kept == reached_.end()) return;
  is_whole_ = false;
  for (auto bucket = kept; bucket != reached_.end(); ++bucket) {
    if (!bucket->has_head) continue;  // its elements are among the loose ones already
    strays_.push_back(*bucket);
    strays_.back().is_reached = false;
  }
  reached_.erase(kept, reached_.end());
  SortStrays();
}

// Tells whether a stray, of which nothing is missing, has some of the hashes and no others, and
// more bits. What has no head is no bucket, but what is left of one: it proves no bits.
bool BucketMap::HasIntactPart(const FoundBucket& bucket) const {
  const Hash others = bucket.last - bucket.first;
  for (unsigned bits = 0; bits <= kHashBits; ++bits) {
    const Hash others_of_part = kLastHash >> bits;
    if (others_of_part > others || (bucket.has_head && others_of_part == others)) continue;
    std::size_t i = FindStray(bits, PrefixOf(bucket.first, bits));
    for (; i < strays_.size() && strays_[i].bits == bits && strays_[i].first <= bucket.last; ++i) {
      if (strays_[i].is_intact) return true;
    }
  }
  return false;
}

void BucketMap::MarkSplit() {
  for (const FoundBucket& bucket : reached_) MarkAncestors(bucket);
  for (const FoundBucket& bucket : strays_) MarkAncestors(bucket);
}

void BucketMap::MarkAncestors(const FoundBucket& bucket) {
  for (unsigned bits = 0; bits < bucket.bits; ++bits) {
    const Hash prefix = PrefixOf(bucket.first, bits);
    for (std::size_t i = FindStray(bits, prefix); i < strays_.size(); ++i) {
      if (strays_[i].bits != bits || PrefixOf(strays_[i].first, bits) != prefix) break;
      if (strays_[i].is_split) break;  // and so are those behind it
      strays_[i].is_split = true;
    }
  }
}

// Without a header, the directory is where most of the buckets found are listed in the order of
// their hashes. It has as many entries as the bucket with most bits asks for.
void BucketMap::SearchDirectory() {
  constexpr std::size_t kMostTries = 64;
  if (strays_.empty()) return;
  const FoundBucket known = strays_.back();
  const unsigned bits = std::max<unsigned>(kFewestDirectoryBits, known.bits);
  if (bits > kHashBits - 4) return;
  const std::string_view all = file_.View(0, file_.size());
  const std::string_view entry(reinterpret_cast<const char*>(&known.at), sizeof known.at);
  const Offset ahead = Offset{known.first >> (kHashBits - bits)} * sizeof(Offset);
  std::size_t most = strays_.size() / 2;
  Offset best = 0;
  std::size_t found = 0;
  for (std::size_t tries = 0; tries < kMostTries; ++tries) {
    found = all.find(entry, found);
    if (found == std::string_view::npos) break;
    const Offset start = found >= ahead ? found - ahead : 0;
    const std::size_t entries = start != 0 ? CountEntries(start, bits) : 0;
    if (entries > most) best = start;
    most = std::max(most, entries);
    ++found;
  }
  if (best == 0) return;
  ReadDirectory(best, bits);
  const auto is_reached = [&](const FoundBucket& stray) {
    const FoundBucket* const reached = FindReached(stray.first);
    return reached != nullptr && reached->at == stray.at;
  };
  strays_.erase(std::remove_if(strays_.begin(), strays_.end(), is_reached), strays_.end());
}

// Counts the strays that stand where they must in a directory at `directory`.
std::size_t BucketMap::CountEntries(Offset directory, unsigned bits) const {
  std::size_t count = 0;
  for (const FoundBucket& stray : strays_) {
    const Offset index = stray.first >> (kHashBits - bits);
    Offset entry = 0;
    if (file_.Read(directory + index * sizeof entry, &entry) && entry == stray.at) ++count;
  }
  return count;
}

const FoundBucket* BucketMap::FindReached(Hash hash) const {
  auto next = std::upper_bound(
      reached_.begin(), reached_.end(), hash,
      [](Hash wanted, const FoundBucket& bucket) { return wanted < bucket.first; });
  if (next == reached_.begin()) return nullptr;
  --next;
  return hash <= next->last ? &*next : nullptr;
}

// Returns the index of the first stray with these bits and hashes, or of the one behind its place.
std::size_t BucketMap::FindStray(unsigned bits, Hash prefix) const {
  const Hash first = bits == 0 ? 0 : prefix << (kHashBits - bits);
  const auto found =
      std::lower_bound(strays_.begin(), strays_.end(), std::make_tuple(bits, first),
                       [](const FoundBucket& bucket, const auto& wanted) {
                         return std::make_tuple(unsigned{bucket.bits}, bucket.first) < wanted;
                       });
  return static_cast<std::size_t>(found - strays_.begin());
}

const FoundBucket* BucketMap::FindNewerStray(unsigned bits, Hash hash) const {
  for (unsigned more = kHashBits; more > bits; --more) {
    const std::size_t i = FindStray(more, PrefixOf(hash, more));
    if (i == strays_.size()) continue;
    const FoundBucket& found = strays_[i];
    if (found.bits == more && found.first <= hash) return &found;
  }
  return nullptr;
}

// An element that counts beside `newer`, if that lost one that it may be.
Standing BucketMap::StandingBehind(const FoundBucket& newer, Hash hash) const {
  if (newer.is_intact) return Standing::kStale;
  if (!newer.is_complete) return Standing::kFallback;
  ReadBucket(file_, shape_, newer.at, &bucket_);
  const auto& damaged = bucket_.damaged;
  return std::find(damaged.begin(), damaged.end(), hash) != damaged.end() ? Standing::kFallback
                                                                          : Standing::kStale;
}

bool BucketMap::YieldsTo(const FoundBucket& reached, const FoundBucket& stray) {
  if (reached.is_empty) return stray.bits >= reached.bits;
  return !reached.has_head && stray.is_intact && stray.first == reached.first &&
         stray.last == reached.last;
}

Standing BucketMap::StandingOf(const FoundBucket& stray, Hash hash) const {
  const FoundBucket* const reached = FindReached(hash);
  if (reached != nullptr && !YieldsTo(*reached, stray)) return StandingBehind(*reached, hash);
  const FoundBucket* const newer = FindNewerStray(stray.bits, hash);
  if (newer != nullptr) return StandingBehind(*newer, hash);
  const FoundBucket& best = strays_[FindStray(stray.bits, PrefixOf(hash, stray.bits))];
  return stray.is_split || best.at != stray.at ? Standing::kFallback : Standing::kCurrent;
}

Standing BucketMap::StandingOfLoose(Hash hash) const {
  const FoundBucket* const reached = FindReached(hash);
  if (reached != nullptr) return StandingBehind(*reached, hash);
  const FoundBucket* const newer = FindNewerStray(0, hash);
  return newer != nullptr ? StandingBehind(*newer, hash) : Standing::kFallback;
}

}  // namespace kestan::gdbm
