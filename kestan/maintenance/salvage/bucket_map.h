// Which buckets a damaged gdbm file has, and which of them are the newest.
#ifndef KESTAN_MAINTENANCE_SALVAGE_BUCKET_MAP_H_
#define KESTAN_MAINTENANCE_SALVAGE_BUCKET_MAP_H_

#include <kestan/maintenance/salvage/gdbm_layout.h>
#include <kestan/storage/memory.h>

#include <cstdint>

namespace kestan::gdbm {

// Where a bucket lies and which hashes it answers for.
struct FoundBucket {
  Offset at = 0;
  Hash first = 0;  // the hashes from `first` to `last`
  Hash last = 0;
  std::uint8_t bits = 0;
  bool is_reached = false;   // by the directory
  bool has_head = false;     // see Bucket
  bool is_empty = false;     // no element is used
  bool is_intact = false;    // see Bucket
  bool is_complete = false;  // see Bucket
  bool is_split = false;     // buckets of its hashes with more bits are known
};

// Tells how far an element counts.
enum class Standing : std::uint8_t {
  kCurrent,   // the file says nothing newer about its hash
  kFallback,  // of an older bucket; the newer one lost elements, and this may be one of them
  kStale,     // the newer bucket is whole and does not have it, or has its own
};

// The buckets of one file.
//
// The rule by which one of several buckets that cover the same hashes is believed:
//
// 1. The directory's. Where an entry of it leads to what can be a bucket of just these hashes, no
//    other bucket counts for them, unless one with more bits is found of which nothing is missing:
//    then the directory, or its header, is older than the split.
// 2. Else, the one with more bits. gdbm writes a bucket always to the same place until it splits
//    it, never joins two, and frees the place of the one that it has split, whose bytes often stay.
//    So of two buckets one of which covers the hashes of the other, that with fewer bits is the
//    older, and each bucket with fewer bits than another one within its hashes is a left-over, even
//    for hashes of which no newer bucket can be found.
// 3. A left-over still counts for what is missing in the newer bucket, or where that is missing:
//    as a fallback, which its reader must weigh, for the record may have been changed or removed
//    after the split. An empty bucket that the directory reaches tells nothing of the hashes it
//    holds, and so yields to strays of as many bits or more. Nor does one without a head prove
//    the entry of the directory, which may lead into the middle of a bucket: it yields to a stray
//    that is whole and has just its hashes.
//
// Elements whose bucket's head is lost are fallbacks of fallbacks: nobody knows how old they are.
class BucketMap {
 public:
  // Reads the header and the directory of `file`, which must outlive the map, and looks at every
  // offset for buckets that they do not lead to.
  explicit BucketMap(const Bytes& file);

  // By ascending hashes.
  const Vector<FoundBucket>& reached() const { return reached_; }
  // By ascending bits, then hashes.
  const Vector<FoundBucket>& strays() const { return strays_; }
  // Elements that belong to no bucket.
  const Vector<Element>& loose() const { return loose_; }

  // Judges an element with `hash` in a bucket of `strays()`.
  Standing StandingOf(const FoundBucket& stray, Hash hash) const;
  // Judges one of `loose()`.
  Standing StandingOfLoose(Hash hash) const;

  const Shape& shape() const { return shape_; }
  bool has_header() const { return has_header_; }
  const Header& header() const { return header_; }  // zeros without one
  Offset directory() const { return directory_; }   // 0 where it is not known
  Offset directory_bytes() const { return directory_bytes_; }
  bool is_whole() const { return is_whole_; }  // header, directory and every bucket are intact

 private:
  void ReadDirectory(Offset at, unsigned bits);
  void AddReached(Offset at, std::uint32_t first_entry, std::uint32_t end_entry, unsigned bits);
  bool PlaceReached(const Bucket& bucket, std::uint32_t first_entry, std::uint32_t end_entry,
                    unsigned bits, FoundBucket* found) const;
  void SortReached();
  bool CoversEverything() const;

  void Scan();
  void AddAround(Offset place, const Element& element);
  bool BelongsToLastStray(Offset element) const;
  void SortStrays();
  void DropSplit();
  bool HasIntactPart(const FoundBucket& bucket) const;
  void MarkSplit();
  void MarkAncestors(const FoundBucket& bucket);
  void SearchDirectory();
  std::size_t CountEntries(Offset directory, unsigned bits) const;

  const FoundBucket* FindReached(Hash hash) const;
  static bool YieldsTo(const FoundBucket& reached, const FoundBucket& stray);
  std::size_t FindStray(unsigned bits, Hash prefix) const;
  const FoundBucket* FindNewerStray(unsigned bits, Hash hash) const;
  Standing StandingBehind(const FoundBucket& newer, Hash hash) const;

  const Bytes& file_;
  Shape shape_;
  Header header_{};
  bool has_header_ = false;
  bool is_whole_ = false;
  Offset directory_ = 0;
  Offset directory_bytes_ = 0;
  mutable Bucket bucket_;  // memory to read into
  Vector<FoundBucket> reached_;
  Vector<FoundBucket> strays_;
  Vector<Element> loose_;
};

}  // namespace kestan::gdbm

#endif  // KESTAN_MAINTENANCE_SALVAGE_BUCKET_MAP_H_
