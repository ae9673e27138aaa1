// gdbm's file as plain bytes: where its structures lie, and what tells a sound one from noise.
//
// gdbm itself stops at the first damage it meets; what salvages records reads the file on its own.
// Numbers have this machine's size and byte order, and structures its alignment, as in gdbm.
#ifndef KESTAN_MAINTENANCE_SALVAGE_GDBM_LAYOUT_H_
#define KESTAN_MAINTENANCE_SALVAGE_GDBM_LAYOUT_H_

#include <kestan/storage/gdbm_header.h>
#include <kestan/storage/memory.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace kestan::gdbm {

using Hash = std::uint32_t;

inline constexpr unsigned kHashBits = 31;

// Neighbouring entries of the directory that lead to the same place.
struct DirectoryRun {
  std::uint32_t first;
  std::uint32_t end;  // behind the last entry
  Offset bucket;
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

// Reads the header, as ReadHeader() of the file's bytes does.
inline bool ReadHeader(const Bytes& file, Header* header, Shape* shape) {
  return ReadHeader(file.View(0, file.size()), header, shape);
}

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
