// gdbm's file as plain bytes: where its structures lie, and what tells a sound one from noise.
//
// gdbm itself stops at the first damage it meets; what salvages records reads the file on its own.
// Numbers have this machine's size and byte order, and structures its alignment, as in gdbm.
#ifndef KESTAN_MAINTENANCE_SALVAGE_GDBM_LAYOUT_H_
#define KESTAN_MAINTENANCE_SALVAGE_GDBM_LAYOUT_H_

#include <kestan/storage/memory.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace kestan::gdbm {

using Offset = std::uint64_t;
using Hash = std::uint32_t;

inline constexpr unsigned kHashBits = 31;
inline constexpr std::int32_t kNoElement = -1;  // in the place of a hash

// At the start of the file. In the extended format, kExtensionBytes follow it; then, in both, a
// FreeList.
struct Header {
  std::uint32_t magic;
  std::int32_t block_bytes;
  Offset directory;
  std::int32_t directory_bytes;
  std::int32_t directory_bits;
  std::int32_t bucket_bytes;
  std::int32_t bucket_elements;
  Offset next_block;
};

inline constexpr std::size_t kExtensionBytes = 32;
inline constexpr std::uint32_t kMagic = 0x13579acf;
inline constexpr std::uint32_t kOldMagic = 0x13579ace;
inline constexpr std::uint32_t kExtendedMagic = 0x13579ad1;

struct FreeSpace {
  std::int32_t bytes;
  Offset at;
};

// Followed by `count` FreeSpaces. `next` is where another list lies, 0 in the last.
struct FreeList {
  std::int32_t size;
  std::int32_t count;
  Offset next;
};

// Where one record lies: its key at `data`, and its value right behind the key.
struct Element {
  std::int32_t hash;
  std::array<char, 4> key_start;
  Offset data;
  std::int32_t key_bytes;
  std::int32_t value_bytes;
};

// Followed by the bucket's elements, used or not. All hashes in a bucket agree in their first
// `bits` bits; a full bucket is split into two, which have a bit more and lie elsewhere.
struct BucketHead {
  std::int32_t free_count;
  std::array<FreeSpace, 6> free;
  std::int32_t bits;
  std::int32_t count;
};

static_assert(sizeof(Header) == 40 && offsetof(Header, next_block) == 32);
static_assert(sizeof(FreeList) == 16 &&
              sizeof(FreeSpace) == sizeof(std::int32_t) + 8 + alignof(FreeSpace) - 4);
static_assert(sizeof(Element) == 24 && offsetof(Element, data) == 8);
static_assert(offsetof(BucketHead, free) == alignof(FreeSpace));
static_assert(sizeof(BucketHead) == alignof(FreeSpace) + 6 * sizeof(FreeSpace) + 8);

// Neighbouring entries of the directory that lead to the same place.
struct DirectoryRun {
  std::uint32_t first;
  std::uint32_t end;  // behind the last entry
  Offset bucket;
};

// What a bucket of this file takes.
struct Shape {
  std::uint32_t bucket_bytes = 512;
  std::uint32_t elements = (512 - sizeof(BucketHead)) / sizeof(Element);
};

// Returns gdbm's hash of a key. Its first bits choose the bucket.
Hash HashOf(std::string_view key);

// Returns the first `bits` bits of `hash`.
inline Hash PrefixOf(Hash hash, unsigned bits) {
  return bits == 0 ? 0 : hash >> (kHashBits - bits);
}

// The bytes of a file, which nobody reads beyond the last.
class Bytes {
 public:
  // Borrows `bytes`. Long keys are hashed for elements only as long as all that is hashed stays in
  // proportion to the file, or a file made to that end would keep its reader busy for ever.
  explicit Bytes(std::string_view bytes)
      : bytes_(bytes), long_keys_budget_(kSpareBudget + 16 * bytes.size()) {}

  Offset size() const { return bytes_.size(); }
  bool Holds(Offset at, Offset bytes) const { return at <= size() && bytes <= size() - at; }

  // Returns what lies at `at`, which must be held.
  std::string_view View(Offset at, Offset bytes) const {
    return bytes_.substr(static_cast<std::size_t>(at), static_cast<std::size_t>(bytes));
  }

  // Copies the structure at `at`.
  //   Returns  false, with `*structure` as it was, where the file does not hold it whole.
  template <typename Structure>
  bool Read(Offset at, Structure* structure) const {
    if (!Holds(at, sizeof(Structure))) return false;
    std::memcpy(structure, bytes_.data() + at, sizeof(Structure));
    return true;
  }

  // Tells whether the element names a place in the file where a key lies that begins with the bytes
  // it gives and has the hash it gives: 31 bits of evidence and as many more as the key has, up to
  // 32, so that noise does not pass.
  bool IsSound(const Element& element) const {
    return HasKey(element) && Holds(element.data, static_cast<Offset>(element.key_bytes) +
                                                      static_cast<Offset>(element.value_bytes));
  }

  // Tells the same of an element whose value may reach past the end, as where the file was cut.
  bool HasKey(const Element& element) const;

 private:
  static constexpr Offset kSpareBudget = 1 << 24;

  std::string_view bytes_;
  mutable Offset long_keys_budget_;
};

// Reads the header.
//   Returns  whether it can be one: a known magic number, sizes that agree with each other, and a
//            directory inside the file, or cut off where the file was.
bool ReadHeader(const Bytes& file, Header* header, Shape* shape);

// Returns whether the numbers of a bucket's head can be those of one.
bool IsHead(const BucketHead& head, const Shape& shape);

// Calls `visit(run)` for each run of the directory, in the order of their hashes. An entry behind
// the end of the file leads to 0, where no bucket is.
template <typename Visit>
void ForEachRun(const Bytes& file, const Header& header, Visit visit) {
  const std::uint32_t entries = std::uint32_t{1} << header.directory_bits;
  const auto entry = [&](std::uint32_t index) {
    Offset bucket = 0;
    file.Read(header.directory + Offset{index} * sizeof bucket, &bucket);
    return bucket;
  };
  for (std::uint32_t first = 0; first < entries;) {
    const Offset bucket = entry(first);
    std::uint32_t end = first + 1;
    while (end < entries && entry(end) == bucket) ++end;
    visit(DirectoryRun{first, end, bucket});
    first = end;
  }
}

// Returns whether the bucket with this head is that of all entries of the run and of no others.
bool BelongsTo(const DirectoryRun& run, const Header& header, const BucketHead& head);

// One bucket, as far as it can be read.
struct Bucket {
  bool has_head = false;    // its numbers can be those of a bucket
  unsigned bits = 0;        // 0 without a head
  std::uint32_t count = 0;  // of its elements, says the head
  Vector<Element> sound;    // those whose keys bear them out; a value may reach past the end
  Vector<Hash> damaged;     // hashes of those whose keys do not
  Vector<FreeSpace> free;   // the space that it keeps for its records

  // Nothing is missing.
  bool IsIntact() const { return has_head && sound.size() == count && damaged.empty(); }

  // Every element is accounted for, though the records of some are damaged.
  bool IsComplete() const { return has_head && sound.size() + damaged.size() == count; }
};

// Reads the bucket at `at`, which lies in the file, into `*bucket`, whose memory is used again.
void ReadBucket(const Bytes& file, const Shape& shape, Offset at, Bucket* bucket);

// Returns where element `index` of the bucket at `at` lies.
inline Offset ElementAt(Offset at, std::uint32_t index) {
  return at + sizeof(BucketHead) + Offset{index} * sizeof(Element);
}

}  // namespace kestan::gdbm

#endif  // KESTAN_MAINTENANCE_SALVAGE_GDBM_LAYOUT_H_
