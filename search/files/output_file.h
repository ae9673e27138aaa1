// SPDX-License-Identifier: GPL-3.0-or-later
// A file that is written from its start to its end.
#ifndef KESTAN_SEARCH_FILES_OUTPUT_FILE_H_
#define KESTAN_SEARCH_FILES_OUTPUT_FILE_H_

#include <kestan/checksum.h>
#include <kestan/search/status.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "search/files/descriptor.h"

namespace kestan::search {

// How large a file is, and the checksum of its bytes (CRC-64).
struct FileSummary {
  std::uint64_t bytes = 0;
  std::uint64_t checksum = 0;
};

bool operator==(const FileSummary& left, const FileSummary& right);

// When what is written is put on the disk, so that it outlives a power cut.
enum class Syncing { kNow, kLater };

// Writes a new file through a buffer, and adds up its checksum. The first error is kept: what is
// written after it goes nowhere.
class OutputFile {
 public:
  OutputFile() = default;
  ~OutputFile() { Discard(); }
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;

  // Creates the file at `path`, where there must be none.
  //   Returns  kSystem for one that exists.
  Status Create(const std::string& path);

  // Has the bytes appended to `*bytes`, which must outlive the object, and not written to a file.
  void CreateInMemory(std::string* bytes) { memory_ = bytes; }

  void Write(std::string_view bytes);

  // Returns how many bytes were written so far.
  std::uint64_t size() const { return size_; }

  // Writes what is left, has the system put all on the disk unless that is left to SyncFiles(), and
  // closes the file.
  //   Returns  the first error; the file is then removed.
  Result<FileSummary> Finish(Syncing syncing = Syncing::kNow);

  // Removes a file that was created and not finished.
  void Discard();

 private:
  void Flush();
  void Put(std::string_view bytes);

  std::string path_;
  Descriptor file_;
  std::string* memory_ = nullptr;  // where the bytes go if not to a file
  std::string buffer_;
  std::uint64_t size_ = 0;
  Crc64 checksum_;
  Status status_;
};

// Reads the whole file at `path`.
//   Returns  its size and checksum; kNotFound or kSystem.
Result<FileSummary> SummaryOf(const std::string& path);

// Compares the summary of the file at `path` with what it should be.
//   Returns  kDamaged if it is another one; kNotFound, kSystem.
Status VerifyFile(const std::string& path, const FileSummary& expected);

// Has the system put the file at `path`, or the entries of a directory, on the disk.
Status SyncFile(const std::string& path);
Status SyncDirectory(const std::string& path);

// The same for several files. All are begun before the first is waited for, so that the system
// writes its journal once and not for each of them.
Status SyncFiles(const std::vector<std::string>& paths);

// Replaces the file at `path` by one with `bytes`, all or nothing: writes a new file beside it
// ("PATH.new"), syncs it, renames it, syncs the directory. With kLater it syncs nothing.
//
// `needed` are files in the same directory that the new one speaks of: they and their entries are
// on the disk before it is there.
Status ReplaceFile(const std::string& path, std::string_view bytes,
                   const std::vector<std::string>& needed = {}, Syncing syncing = Syncing::kNow);

// Reads the whole file at `path`, which must not have more than `max_bytes`.
//   Returns  kNotFound, kSystem, or kDamaged for a larger one.
Result<std::string> ReadWholeFile(const std::string& path, std::uint64_t max_bytes);

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_FILES_OUTPUT_FILE_H_
