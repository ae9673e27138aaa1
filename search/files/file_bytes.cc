// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/files/file_bytes.h"

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <limits>

namespace kestan::search {
namespace {

// A process of 32 bits has too few addresses for an index of many files.
constexpr bool kMapsFiles = sizeof(void*) >= sizeof(std::uint64_t);

// That a string can hold, and so the most that can be read at once.
constexpr std::uint64_t kMostBytes = std::numeric_limits<std::ptrdiff_t>::max() / 2;

// Reads that follow each other with gaps of no more than this are a row.
constexpr std::uint64_t kMostGap = 16 << 10;

// How much of a row is fetched at once. It takes about as long as two or three reads of a page.
constexpr std::uint64_t kRowBytes = 256 << 10;

std::uint64_t PageBytes() {
  static const auto bytes = static_cast<std::uint64_t>(sysconf(_SC_PAGESIZE));
  return bytes;
}

}  // namespace

Result<std::shared_ptr<const FileBytes>> FileBytes::Open(const std::string& path,
                                                         std::uint64_t size) {
  std::uint64_t found = 0;
  Result<Descriptor> file = OpenForReading(path, &found);
  if (!file.ok()) return file.status();
  if (found != size) {
    return Status(StatusCode::kDamaged,
                  "it has " + std::to_string(found) + " bytes instead of " + std::to_string(size),
                  path);
  }
  std::shared_ptr<FileBytes> bytes(new FileBytes(path, std::move(*file), size));
  if (kMapsFiles && size > 0) bytes->Map();
  return std::shared_ptr<const FileBytes>(std::move(bytes));
}

Result<std::shared_ptr<const FileBytes>> FileBytes::OpenUnmapped(const std::string& path) {
  std::uint64_t size = 0;
  Result<Descriptor> file = OpenForReading(path, &size);
  if (!file.ok()) return file.status();
  return std::shared_ptr<const FileBytes>(new FileBytes(path, std::move(*file), size));
}

std::shared_ptr<const FileBytes> FileBytes::InMemory(std::string bytes, std::string path) {
  const std::uint64_t size = bytes.size();
  std::shared_ptr<FileBytes> file(new FileBytes(std::move(path), Descriptor(), size));
  file->memory_ = std::move(bytes);
  return file;
}

void FileBytes::Map() {
  void* const mapping =
      mmap(nullptr, static_cast<std::size_t>(size_), PROT_READ, MAP_SHARED, file_.number(), 0);
  if (mapping == MAP_FAILED) return;  // where addresses are limited, for one
  mapping_ = static_cast<char*>(mapping);
  madvise(mapping_, static_cast<std::size_t>(size_), MADV_RANDOM);
  file_.Close();
}

FileBytes::~FileBytes() {
  if (mapping_ != nullptr) munmap(mapping_, static_cast<std::size_t>(size_));
}

Bytes FileBytes::Read(std::uint64_t offset, std::uint64_t size) const {
  if (offset >= size_) return {};
  size = std::min(size, size_ - offset);
  if (size > kMostBytes) return {};
  const auto count = static_cast<std::size_t>(size);
  if (!memory_.empty()) return Bytes({memory_.data() + static_cast<std::size_t>(offset), count});
  if (mapping_ != nullptr) {
    BeginRead(offset, size);
    return Bytes(std::string_view(mapping_ + offset, count));
  }
  auto copy = std::make_shared<std::string>(count, '\0');
  const std::int64_t done = ReadAt(file_, copy->data(), count, offset);
  if (done <= 0) return {};
  copy->resize(static_cast<std::size_t>(done));
  return Bytes(std::shared_ptr<const std::string>(std::move(copy)));
}

void FileBytes::WillRead(std::uint64_t offset, std::uint64_t size) const {
  if (mapping_ == nullptr || offset >= size_) return;
  size = std::min(size, size_ - offset);
  const std::uint64_t before = offset % PageBytes();
  madvise(mapping_ + (offset - before), static_cast<std::size_t>(before + size), MADV_WILLNEED);
}

// A page by itself comes when it is touched.
void FileBytes::BeginRead(std::uint64_t offset, std::uint64_t size) const {
  if (mapping_ == nullptr || offset >= size_ || size == 0) return;
  const std::uint64_t end = offset + std::min(size, size_ - offset);
  for (Row& row : rows_) {
    const std::uint64_t row_end = row.end;
    if (row_end == 0 || offset < row_end || offset - row_end > kMostGap) continue;
    row.end = end;
    if (end <= row.fetched_end) return;
    row.fetched_end = end + kRowBytes;
    return WillRead(offset, end - offset + kRowBytes);
  }
  Row& row = rows_[next_row_++ % rows_.size()];
  row.end = end;
  row.fetched_end = end;
  if (offset / PageBytes() != (end - 1) / PageBytes()) WillRead(offset, end - offset);
}

Bytes FileBytes::ReadSparsely() const {
  if (mapping_ == nullptr) return Read(0, size_);
  return Bytes(std::string_view(mapping_, static_cast<std::size_t>(size_)));
}

}  // namespace kestan::search
