// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/maintenance/salvage/directory.h>

#include <algorithm>
#include <string_view>
#include <tuple>

namespace kestan::gdbm {
namespace {

constexpr unsigned kFewestDirectoryBits = 6;  // of a file with blocks of 512 bytes

// Decides which hashes the bucket has that the directory reaches by the entries of `run`.
//   Returns  false if it cannot be a bucket of those entries.
bool PlaceReached(const Bucket& bucket, const DirectoryRun& run, unsigned bits,
                  FoundBucket* found) {
  const std::uint32_t last = run.end - 1;
  if (bucket.has_head && bucket.bits <= bits && !bucket.valid.empty()) {
    found->SetHashes(PrefixOf(bucket.FirstHash(), bucket.bits), bucket.bits);
    return found->first >> (kHashBits - bits) <= last &&
           found->last >> (kHashBits - bits) >= run.first;
  }
  if (bucket.has_head && bucket.bits <= bits && bucket.IsComplete()) {
    const unsigned spare_bits = bits - bucket.bits;
    found->SetHashes(run.first >> spare_bits, bucket.bits);
    return last >> spare_bits == run.first >> spare_bits &&
           run.end - run.first == std::uint32_t{1} << spare_bits;
  }
  if (bucket.valid.empty()) return false;
  found->SetHashes(run.first, bits);
  found->last += (last - run.first) << (kHashBits - bits);
  found->has_head = found->is_intact = found->is_complete = false;
  const Hash hash = bucket.FirstHash();
  return hash >= found->first && hash <= found->last;
}

// Two runs of entries lead to one bucket where an entry between them is damaged. Of two buckets for
// the same hashes, the one with its head stays.
void SortByHashes(Vector<FoundBucket>* buckets) {
  std::sort(buckets->begin(), buckets->end(),
            [](const FoundBucket& left, const FoundBucket& right) {
              return std::make_tuple(left.first, !left.has_head, left.at) <
                     std::make_tuple(right.first, !right.has_head, right.at);
            });
  buckets->erase(std::unique(buckets->begin(), buckets->end(),
                             [](const FoundBucket& left, const FoundBucket& right) {
                               return left.first == right.first;
                             }),
                 buckets->end());
}

// Counts the buckets that are listed where they must be in a directory at `directory`.
std::size_t CountListed(const Bytes& file, const Vector<FoundBucket>& buckets, Offset directory,
                        unsigned bits) {
  std::size_t count = 0;
  for (const FoundBucket& bucket : buckets) {
    const Offset index = bucket.first >> (kHashBits - bits);
    Offset entry = 0;
    if (file.Read(directory + index * sizeof entry, &entry) && entry == bucket.at) ++count;
  }
  return count;
}

}  // namespace

Vector<FoundBucket> ReadDirectory(const Bytes& file, const Shape& shape, Offset at, unsigned bits) {
  Vector<FoundBucket> reached;
  Bucket bucket;
  ForEachRun(file, at, bits, [&](const DirectoryRun& run) {
    if (run.bucket < sizeof(Header) || run.bucket >= file.size()) return;
    ReadBucket(file, shape, run.bucket, &bucket);
    FoundBucket found(bucket, run.bucket);
    found.is_reached = true;
    if (PlaceReached(bucket, run, bits, &found)) reached.push_back(found);
  });
  SortByHashes(&reached);
  return reached;
}

// The directory has as many entries as the bucket with most bits needs.
DirectoryPlace FindDirectory(const Bytes& file, const Vector<FoundBucket>& buckets) {
  constexpr std::size_t kMostTries = 64;
  DirectoryPlace best;
  if (buckets.empty()) return best;
  const FoundBucket& known = buckets.back();
  best.bits = std::max<unsigned>(kFewestDirectoryBits, known.bits);
  if (best.bits > kHashBits - 4) return best;
  const std::string_view all = file.View(0, file.size());
  const std::string_view entry(reinterpret_cast<const char*>(&known.at), sizeof known.at);
  const Offset ahead = Offset{known.first >> (kHashBits - best.bits)} * sizeof(Offset);
  std::size_t most = buckets.size() / 2;
  std::size_t found = 0;
  for (std::size_t tries = 0; tries < kMostTries; ++tries) {
    found = all.find(entry, found);
    if (found == std::string_view::npos) break;
    const Offset start = found >= ahead ? found - ahead : 0;
    const std::size_t listed = start != 0 ? CountListed(file, buckets, start, best.bits) : 0;
    if (listed > most) best.at = start;
    most = std::max(most, listed);
    ++found;
  }
  return best;
}

}  // namespace kestan::gdbm
