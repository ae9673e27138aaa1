// SPDX-License-Identifier: GPL-3.0-or-later
// gdbm's file as plain bytes: where its structures lie, and which bytes are a valid one and not
// noise.
//
// gdbm itself stops at the first damage, so a salvage reads the file without it.
// Numbers have this machine's size and byte order, and structures its alignment, as in gdbm.
#ifndef KESTAN_MAINTENANCE_SALVAGE_GDBM_LAYOUT_H_
#define KESTAN_MAINTENANCE_SALVAGE_GDBM_LAYOUT_H_

#include <kestan/storage/gdbm/gdbm_hash.h>
#include <kestan/storage/gdbm/gdbm_header.h>
#include <kestan/storage/memory/memory.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace kestan::gdbm {

// Neighbouring entries of the directory that lead to the same place.
struct DirectoryRun {
  std::uint32_t first;
  std::uint32_t end;  // after the last entry
  Offset bucket;
};

// The bytes of a file. No read goes past the end.
class Bytes {
 public:
  // Borrows `bytes`. All long keys that are hashed for elements together have a limit in proportion
  // to the file, for a malicious file could keep its reader busy for ever.
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

  // Returns whether there is a key at the place that the element names, with the first bytes and
  // the hash that it gives, and a value. Noise does not pass: the hash is 31 bits of evidence, and
  // the first bytes are up to 32 more.
  bool IsValid(const Element& element) const {
    return HasKey(element) && Holds(element.data, static_cast<Offset>(element.key_bytes) +
                                                      static_cast<Offset>(element.value_bytes));
  }

  // Returns the same, but the value may reach past the end, as where the file was cut.
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

// Calls `visit(run)` for each run of the directory at `directory`, of 2 to the power of `bits`
// entries, in the order of their hashes. An entry past the end of the file leads to 0, where no
// bucket is.
template <typename Visit>
void ForEachRun(const Bytes& file, Offset directory, unsigned bits, Visit visit) {
  const std::uint32_t entries = std::uint32_t{1} << bits;
  const auto entry = [&](std::uint32_t index) {
    Offset bucket = 0;
    file.Read(directory + Offset{index} * sizeof bucket, &bucket);
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

// The same, for the directory that the header names.
template <typename Visit>
void ForEachRun(const Bytes& file, const Header& header, Visit visit) {
  ForEachRun(file, header.directory, static_cast<unsigned>(header.directory_bits), visit);
}

// Returns whether the bucket with this head is that of all entries of the run and of no others.
bool BelongsTo(const DirectoryRun& run, const Header& header, const BucketHead& head);

// One bucket, as far as it can be read.
struct Bucket {
  bool has_head = false;    // its numbers can be those of a bucket
  unsigned bits = 0;        // 0 without a head
  std::uint32_t count = 0;  // of its elements, says the head
  Vector<Element> valid;    // those whose keys agree with them; a value may reach past the end
  Vector<Hash> damaged;     // hashes of those whose keys do not
  Vector<FreeSpace> free;   // the space that it keeps for its records

  // Returns whether nothing is missing.
  bool IsIntact() const { return has_head && valid.size() == count && damaged.empty(); }

  // Returns the hash of the first valid element; there must be one.
  Hash FirstHash() const { return static_cast<Hash>(valid.front().hash); }

  // Returns whether every element is accounted for, though the records of some are damaged.
  bool IsComplete() const { return has_head && valid.size() + damaged.size() == count; }
};

// Reads the bucket at `at`, which lies in the file, into `*bucket`, whose memory is used again.
void ReadBucket(const Bytes& file, const Shape& shape, Offset at, Bucket* bucket);

// Returns where element `index` of the bucket at `at` lies.
inline Offset ElementAt(Offset at, std::uint32_t index) {
  return at + sizeof(BucketHead) + Offset{index} * sizeof(Element);
}

}  // namespace kestan::gdbm

#endif  // KESTAN_MAINTENANCE_SALVAGE_GDBM_LAYOUT_H_
