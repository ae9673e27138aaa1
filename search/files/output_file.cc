// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/files/output_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <utility>
#include <vector>

#include "search/files/folder_names.h"
#include "search/files/new_file.h"

namespace kestan::search {
namespace {

// Every thread that writes a segment has several, all within its share of the memory budget.
constexpr std::size_t kBufferBytes = std::size_t{1} << 18;

Status SyncPath(const std::string& path, int flags) {
  const Descriptor file = OpenFile(path, O_RDONLY | flags);
  const int error = file.is_open() ? Sync(file) : errno;
  return error == 0 ? Status() : SystemError(error, path);
}

// Has the system begin to put the file on the disk. Where it does not, SyncFile() does all of it.
void StartWriting(const Descriptor& file) {
  static_cast<void>(sync_file_range(file.number(), 0, 0, SYNC_FILE_RANGE_WRITE));
}

// Has the file at `path` and those of its directory that it speaks of put on the disk.
Status SyncWithDirectory(const std::string& path, std::vector<std::string> needed) {
  const bool are_new = !needed.empty();
  needed.push_back(path);
  Status status = SyncFiles(needed);
  return status.ok() && are_new ? SyncDirectory(FolderOf(path)) : status;
}

}  // namespace

bool operator==(const FileSummary& left, const FileSummary& right) {
  return left.bytes == right.bytes && left.checksum == right.checksum;
}

void OutputFile::Discard() {
  if (!path_.empty()) unlink(path_.c_str());
  path_.clear();
  file_.Close();
}

Status OutputFile::Create(const std::string& path) {
  file_ = CreateFile(path);
  if (!file_.is_open()) return SystemError(errno, path);
  path_ = path;
  buffer_.reserve(kBufferBytes);
  return {};
}

void OutputFile::Write(std::string_view bytes) {
  size_ += bytes.size();
  if (bytes.size() > kBufferBytes - buffer_.size()) Flush();
  if (bytes.size() >= kBufferBytes) {
    Put(bytes);
  } else {
    buffer_.append(bytes);
  }
}

void OutputFile::Flush() {
  Put(buffer_);
  buffer_.clear();
}

void OutputFile::Put(std::string_view bytes) {
  if (!status_.ok()) return;
  checksum_.Add(bytes);
  if (memory_ != nullptr) {
    memory_->append(bytes);
    return;
  }
  const int error = file_.is_open() ? WriteAll(file_, bytes) : EBADF;
  if (error != 0) status_ = SystemError(error, path_);
}

Result<FileSummary> OutputFile::Finish(Syncing syncing) {
  Flush();
  if (status_.ok() && memory_ == nullptr) {
    int error = syncing == Syncing::kNow ? Sync(file_) : 0;
    if (error == 0) error = file_.Close();
    if (error != 0) status_ = SystemError(error, path_);
  }
  buffer_ = {};
  if (status_.ok()) {
    path_.clear();
    return FileSummary{size_, checksum_.Value()};
  }
  Discard();
  return status_;
}

Result<FileSummary> SummaryOf(const std::string& path) {
  std::uint64_t size = 0;
  const Result<Descriptor> file = OpenForReading(path, &size);
  if (!file.ok()) return file.status();
  std::vector<char> buffer(kBufferBytes);
  FileSummary summary;
  Crc64 checksum;
  for (;;) {
    const std::int64_t count = ReadAt(*file, buffer.data(), buffer.size(), summary.bytes);
    if (count < 0) return SystemError(errno, path);
    if (count == 0) break;
    checksum.Add({buffer.data(), static_cast<std::size_t>(count)});
    summary.bytes += static_cast<std::uint64_t>(count);
  }
  summary.checksum = checksum.Value();
  return summary;
}

Status VerifyFile(const std::string& path, const FileSummary& expected) {
  const Result<FileSummary> found = SummaryOf(path);
  if (!found.ok()) return found.status();
  if (*found == expected) return {};
  return {StatusCode::kDamaged, "its bytes have changed since it was written", path};
}

Status SyncFile(const std::string& path) { return SyncPath(path, 0); }
Status SyncDirectory(const std::string& path) { return SyncPath(path, O_DIRECTORY); }

Status SyncFiles(const std::vector<std::string>& paths) {
  for (const std::string& path : paths) {
    const Descriptor file = OpenFile(path, O_RDONLY);
    if (!file.is_open()) return SystemError(errno, path);
    StartWriting(file);
  }
  for (const std::string& path : paths) {
    Status status = SyncFile(path);
    if (!status.ok()) return status;
  }
  return {};
}

Status ReplaceFile(const std::string& path, std::string_view bytes,
                   const std::vector<std::string>& needed, Syncing syncing) {
  const std::string beside = path + ".new";
  unlink(beside.c_str());  // what a process left that ended within this function
  OutputFile file;
  Status status = file.Create(beside);
  if (!status.ok()) return status;
  file.Write(bytes);
  const Result<FileSummary> summary = file.Finish(Syncing::kLater);
  if (!summary.ok()) return summary.status();
  if (syncing == Syncing::kNow) status = SyncWithDirectory(beside, needed);
  if (status.ok() && std::rename(beside.c_str(), path.c_str()) != 0) {
    status = SystemError(errno, path);
  }
  if (!status.ok()) {
    unlink(beside.c_str());
    return status;
  }
  return syncing == Syncing::kNow ? SyncDirectory(FolderOf(path)) : Status();
}

Result<std::string> ReadWholeFile(const std::string& path, std::uint64_t max_bytes) {
  std::uint64_t size = 0;
  const Result<Descriptor> file = OpenForReading(path, &size);
  if (!file.ok()) return file.status();
  if (size > max_bytes) {
    return Status(StatusCode::kDamaged, "it has more than " + std::to_string(max_bytes) + " bytes",
                  path);
  }
  std::string bytes;
  if (size > bytes.max_size()) return SystemError(ENOMEM, path);
  bytes.resize(static_cast<std::size_t>(size));
  const std::int64_t count = ReadAt(*file, bytes.data(), bytes.size(), 0);
  if (count < 0) return SystemError(errno, path);
  bytes.resize(static_cast<std::size_t>(count));
  return bytes;
}

}  // namespace kestan::search
