// SPDX-License-Identifier: GPL-3.0-or-later
// The bytes of a file that nobody changes any more.
#ifndef KESTAN_SEARCH_FILES_FILE_BYTES_H_
#define KESTAN_SEARCH_FILES_FILE_BYTES_H_

#include <kestan/search/status.h>

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "search/files/descriptor.h"

namespace kestan::search {

// Bytes of a file: a view of its mapping, or a copy where there is none.
class Bytes {
 public:
  Bytes() = default;

  // Borrows `view`.
  explicit Bytes(std::string_view view) : view_(view) {}

  // Owns `copy`.
  explicit Bytes(std::shared_ptr<const std::string> copy) : copy_(std::move(copy)), view_(*copy_) {}

  std::string_view view() const { return view_; }

  // Leaves out the first `count` bytes, which must be there.
  void RemovePrefix(std::size_t count) { view_.remove_prefix(count); }

 private:
  std::shared_ptr<const std::string> copy_;
  std::string_view view_;
};

// A file that is open for reading, mapped as a whole where addresses are 64 bits wide, read piece
// by piece elsewhere. Any number of threads may read it at once.
//
// What is not in memory, the disk fetches page by page, but for what is announced to the system
// before: each read of more than a page, what follows a row of reads, and what WillRead() names.
// Left to itself, the system fetches as much around a page as the disk is set up for, which may be
// megabytes.
class FileBytes {
 public:
  // Opens the file at `path`.
  //   Returns  kNotFound or kSystem; kDamaged if it does not have `size` bytes, or is
  //            no regular file.
  static Result<std::shared_ptr<const FileBytes>> Open(const std::string& path, std::uint64_t size);

  // Opens a file of any size, and reads it piece by piece: where the disk fails, its bytes are not
  // there, and a mapping would end the process.
  //   Returns  kNotFound or kSystem; kDamaged if it is no regular file.
  static Result<std::shared_ptr<const FileBytes>> OpenUnmapped(const std::string& path);

  // Takes `bytes`, which stand for a file called `path`.
  static std::shared_ptr<const FileBytes> InMemory(std::string bytes, std::string path);

  ~FileBytes();
  FileBytes(const FileBytes&) = delete;
  FileBytes& operator=(const FileBytes&) = delete;

  std::uint64_t size() const { return size_; }
  const std::string& path() const { return path_; }

  // Returns the bytes from `offset` on. What reaches past the end of the file is not there: the
  // view is then shorter, or empty. So it is where the system cannot read them.
  //   Lifetime  a view ends with this object, unless it is a copy.
  Bytes Read(std::uint64_t offset, std::uint64_t size) const;

  // The same for all bytes of the file, of which nothing is announced to the system: for a caller
  // who looks at few of them, and announces these himself.
  Bytes ReadSparsely() const;

  // What Read() does first: announces a read of bytes of the file that begins now.
  void BeginRead(std::uint64_t offset, std::uint64_t size) const;

  // Announces a read of these bytes, of which some may lie past the end of the file. What is
  // announced together is fetched at once, and not one after the other.
  void WillRead(std::uint64_t offset, std::uint64_t size) const;

 private:
  FileBytes(std::string path, Descriptor file, std::uint64_t size)
      : path_(std::move(path)), file_(std::move(file)), size_(size) {}

  void Map();

  std::string path_;
  Descriptor file_;  // closed where the file is mapped
  std::uint64_t size_;
  std::string memory_;       // the bytes of InMemory()
  char* mapping_ = nullptr;  // null where the file is read piece by piece, or empty

  // Reads that follow each other. Two rows are told apart, such as those of an index and of what it
  // leads to. Threads that read at once may take each other's for their own, which costs time
  // alone.
  struct Row {
    std::atomic<std::uint64_t> end = 0;          // of the last read; 0 before there is one
    std::atomic<std::uint64_t> fetched_end = 0;  // of what was announced
  };
  mutable std::array<Row, 2> rows_;
  mutable std::atomic<std::size_t> next_row_ = 0;  // is given up for a new one
};

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_FILES_FILE_BYTES_H_
