// SPDX-License-Identifier: GPL-3.0-or-later
// Writes a whole gdbm file without gdbm.
#ifndef KESTAN_BUILDING_GDBM_WRITER_H_
#define KESTAN_BUILDING_GDBM_WRITER_H_

#include <kestan/building/bucket_plan.h>
#include <kestan/building/prefix_counts.h>
#include <kestan/storage/gdbm/gdbm_header.h>
#include <kestan/storage/gdbm/record_place.h>
#include <kestan/storage/memory/memory.h>
#include <kestan/storage/store_error.h>

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace kestan::gdbm {

// gdbm stores a record by searching a bucket, writing it, and splitting it where it is full, which
// takes several system calls and leaves a hole each time. A file whose records are all at hand
// needs none of that: they are written one after the other, then the directory, then the buckets,
// each as full as its hashes allow, and the header last. Nothing is unused but the rest of what the
// header has to itself, which is as large as a bucket. gdbm reads such a file and changes it like
// one of its own.
class Writer {
 public:
  Writer() = default;
  ~Writer();  // leaves a file without a header behind, which is not a valid one
  Writer(const Writer&) = delete;
  Writer& operator=(const Writer&) = delete;

  // Creates the file at `path`, where there must be none. `expected_records`, 0 if nobody knows,
  // need not be right: memory is reserved for up to 4 million, 24 bytes each, and with about so
  // many the file is the smallest.
  //   Returns  kNone; kNotOpen where a file is open already; kFileOpen, errno says why.
  StoreError Create(const char* path, std::size_t expected_records);

  // Adds a record. Its key must differ from all others, which Finish() checks.
  //   Returns  where it lies; {} after an error, or where a key or a value is too long for gdbm. It
  //            may move where hundreds of keys have one hash: then no key is there any more.
  RecordPlace Add(std::string_view key, std::string_view value);

  // The same, unless there are kMostKeysOfOnePrefix keys whose hashes begin like that of `key`:
  // with too many of these, Finish() fails.
  //   Returns  {} for such a key too.
  RecordPlace AddIfFits(std::string_view key, std::string_view value);

  // Returns whether there is a record of this key among the first `records`. Reads the file.
  bool Contains(std::string_view key, std::size_t records);

  std::size_t records() const { return elements_.size(); }

  // Returns how many keys AddIfFits() has refused in this file.
  std::size_t refused() const { return refused_; }

  // Writes buckets, directory and header, and closes the file.
  //   Returns  kNone, or the first error: kFileWrite, kFileRead, kFileClose (errno says why),
  //            kMalformedData (a key or value too long), kDirectoryOverflow (too many keys of one
  //            hash), kUnknown (a key came twice).
  StoreError Finish();

 private:
  bool is_open() const { return descriptor_ >= 0; }
  void Fail(StoreError error);
  void Append(std::string_view bytes);
  void AppendZeros(std::uint64_t count);
  void Flush();
  void WriteAt(std::uint64_t offset, std::string_view bytes);
  RecordPlace AddOfHash(Hash hash, std::string_view key, std::string_view value);
  void IndexByHash(std::size_t records);
  bool HasKeyAt(const Element& element, std::string_view key);
  String Read(std::uint64_t offset, std::size_t size);
  String KeyOf(const Element& element);
  void CheckKeysDiffer();
  void MoveRecordsOutOf(std::uint64_t bytes);
  void WriteTables(const BucketPlan& plan);
  void WriteDirectory(const BucketPlan& plan);
  void WriteBuckets(const BucketPlan& plan);
  void WriteHeader(const BucketPlan& plan, Offset directory);

  int descriptor_ = -1;
  StoreError error_ = StoreError::kNone;
  int errno_ = 0;  // as it was at the first error
  std::uint32_t largest_capacity_ = 0;
  Offset end_ = 0;  // of the file, what waits in the buffer included
  String buffer_;
  Vector<Element> elements_;
  std::size_t refused_ = 0;
  PrefixCounts prefix_counts_;     // of the elements
  Vector<std::uint32_t> by_hash_;  // for Contains(): the first elements, in order of their hashes
};

}  // namespace kestan::gdbm

#endif  // KESTAN_BUILDING_GDBM_WRITER_H_
