// SPDX-License-Identifier: GPL-3.0-or-later
// Open files that close themselves, and the system's calls as this library wants them.
#ifndef KESTAN_SEARCH_FILES_DESCRIPTOR_H_
#define KESTAN_SEARCH_FILES_DESCRIPTOR_H_

#include <kestan/search/status.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace kestan::search {

// Returns the error `error` (errno) of a call on `file`, in the words of the system: kNotFound for
// ENOENT, kOutOfMemory for ENOMEM, else kSystem.
Status SystemError(int error, const std::string& file);

// Returns the error of a folder or a file `path` that is not there.
Status NoIndexAt(const std::string& path);

// A file descriptor; -1 for none. Closed at the end.
class Descriptor {
 public:
  Descriptor() = default;
  explicit Descriptor(int number) : number_(number) {}
  Descriptor(Descriptor&& other) noexcept : number_(other.Release()) {}
  Descriptor& operator=(Descriptor&& other) noexcept;
  ~Descriptor() { Close(); }

  int number() const { return number_; }
  bool is_open() const { return number_ >= 0; }

  // Gives the descriptor away: the caller closes it.
  int Release();

  // Returns 0 or errno.
  int Close();

 private:
  int number_ = -1;
};

// open(), never interrupted, for files of any size, not for children of the process. Never waits
// for the other end of a pipe.
//   Returns  the descriptor; -1 after an error, errno says why.
Descriptor OpenFile(const std::string& path, int flags, unsigned mode = 0);

// Opens a regular file for reading.
//   Returns  its descriptor and, in `*size`, its size in bytes; kNotFound, kSystem, or kDamaged for
//            what is no regular file.
Result<Descriptor> OpenForReading(const std::string& path, std::uint64_t* size);

// Reads up to `size` bytes at `offset`. Fewer come at the end of the file alone.
//   Returns  how many; -1 after an error, errno says why.
std::int64_t ReadAt(const Descriptor& file, char* bytes, std::size_t size, std::uint64_t offset);

// Writes all of `bytes`.
//   Returns  0 or errno.
int WriteAll(const Descriptor& file, std::string_view bytes);

// fsync(), never interrupted.
//   Returns  0 or errno.
int Sync(const Descriptor& file);

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_FILES_DESCRIPTOR_H_
