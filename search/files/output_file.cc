#include "search/files/output_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <utility>
#include <vector>

namespace kestan::search {
namespace {

constexpr std::size_t kBufferBytes = std::size_t{1} << 20;
constexpr unsigned kMode = 0644;

Status SyncPath(const std::string& path, int flags) {
  const Descriptor file = OpenFile(path, O_RDONLY | flags);
  const int error = file.is_open() ? Sync(file) : errno;
  return error == 0 ? Status() : SystemError(error, path);
}

std::string DirectoryOf(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  if (slash == std::string::npos) return ".";
  return path.substr(0, slash == 0 ? 1 : slash);
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
  file_ = OpenFile(path, O_WRONLY | O_CREAT | O_EXCL, kMode);
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

Result<FileSummary> OutputFile::Finish() {
  Flush();
  if (status_.ok() && memory_ == nullptr) {
    int error = Sync(file_);
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

Status SyncFile(const std::string& path) { return SyncPath(path, 0); }
Status SyncDirectory(const std::string& path) { return SyncPath(path, O_DIRECTORY); }

Status ReplaceFile(const std::string& path, std::string_view bytes) {
  const std::string beside = path + ".new";
  unlink(beside.c_str());  // what a process left that ended within this function
  OutputFile file;
  Status status = file.Create(beside);
  if (!status.ok()) return status;
  file.Write(bytes);
  const Result<FileSummary> summary = file.Finish();
  if (!summary.ok()) return summary.status();
  if (std::rename(beside.c_str(), path.c_str()) != 0) {
    status = SystemError(errno, path);
    unlink(beside.c_str());
    return status;
  }
  return SyncDirectory(DirectoryOf(path));
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
