// SPDX-License-Identifier: GPL-3.0-or-later
// Which buckets a damaged gdbm file has, and which of them are the newest.
#ifndef KESTAN_MAINTENANCE_SALVAGE_BUCKET_MAP_H_
#define KESTAN_MAINTENANCE_SALVAGE_BUCKET_MAP_H_

#include <kestan/maintenance/salvage/found_bucket.h>
#include <kestan/maintenance/salvage/gdbm_layout.h>
#include <kestan/storage/memory/memory.h>

#include <cstdint>

namespace kestan::gdbm {

// How far an element counts.
enum class Authority : std::uint8_t {
  kCurrent,   // the file says nothing newer about its hash
  kFallback,  // of an older bucket; the newer one lost elements, and this may be one of them
  kStale,     // the newer bucket is whole and does not have it, or has its own
};

// The buckets of one file.
//
// Of several buckets that cover the same hashes, one is believed:
//
// 1. The directory's. If an entry of it leads to what can be a bucket of just these hashes, no
//    other bucket counts for them, unless one with more bits is found of which nothing is missing:
//    then the directory, or its header, is older than the split.
// 2. Else, the one with more bits. gdbm always writes a bucket to the same place until it splits
//    it, never joins two, and frees the place of the one that it has split, whose bytes often stay.
//    So of two buckets one of which covers the hashes of the other, the one with fewer bits is
//    older. Each bucket with fewer bits than another one within its hashes is left over from a
//    split, even for hashes of which no newer bucket can be found.
// 3. A bucket left over from a split still counts for elements that the newer bucket has lost, or
//    if that is lost: as a fallback, which its reader must weigh, for the record may have been
//    changed or removed after the split. An empty bucket that the directory reaches says nothing
//    about its hashes, so it yields to orphans of as many bits or more. A bucket without a head
//    does not prove the entry of the directory, which may lead into the middle of a bucket: it
//    yields to an orphan that is whole and has just its hashes.
//
// Elements whose bucket has lost its head count last: nobody knows how old they are.
class BucketMap {
 public:
  // Reads the header and the directory of `file`, which must outlive the map, and looks at every
  // offset for buckets to which they do not lead.
  explicit BucketMap(const Bytes& file);

  // Returns the buckets that the directory reaches, by ascending hashes.
  const Vector<FoundBucket>& reached() const { return reached_; }
  // Returns the others, by ascending bits, then hashes.
  const Vector<FoundBucket>& orphans() const { return orphans_; }
  // Returns the elements that belong to no bucket.
  const Vector<Element>& orphan_elements() const { return orphan_elements_; }

  // Judges an element with `hash` in a bucket of `orphans()`.
  Authority AuthorityOf(const FoundBucket& orphan, Hash hash) const;
  // Judges one of `orphan_elements()`.
  Authority AuthorityOfElement(Hash hash) const;

  const Shape& shape() const { return shape_; }
  bool has_header() const { return has_header_; }
  const Header& header() const { return header_; }  // zeros without one
  Offset directory() const { return directory_; }   // 0 where it is not known
  Offset directory_bytes() const { return directory_bytes_; }
  bool is_whole() const { return is_whole_; }  // header, directory and every bucket are intact

 private:
  void UseDirectory(Offset at, unsigned bits);
  void UseFoundDirectory();
  bool CoversEverything() const;

  void SortOrphans();
  void DropSplit();
  bool HasIntactPart(const FoundBucket& bucket) const;
  void MarkSplit();
  void MarkAncestors(const FoundBucket& bucket);

  const FoundBucket* FindReached(Hash hash) const;
  static bool YieldsTo(const FoundBucket& reached, const FoundBucket& orphan);
  std::size_t FindOrphan(unsigned bits, Hash prefix) const;
  const FoundBucket* FindNewerOrphan(unsigned bits, Hash hash) const;
  Authority AuthorityBeside(const FoundBucket& newer, Hash hash) const;

  const Bytes& file_;
  Shape shape_;
  Header header_{};
  bool has_header_ = false;
  bool is_whole_ = false;
  Offset directory_ = 0;
  Offset directory_bytes_ = 0;
  mutable Bucket bucket_;  // memory to read into
  Vector<FoundBucket> reached_;
  Vector<FoundBucket> orphans_;
  Vector<Element> orphan_elements_;
};

}  // namespace kestan::gdbm

#endif  // KESTAN_MAINTENANCE_SALVAGE_BUCKET_MAP_H_
