// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/upkeep/file_copy.h"

#include <cerrno>
#include <vector>

#include "search/files/descriptor.h"

namespace kestan::search {
namespace {

constexpr std::size_t kPieceBytes = std::size_t{1} << 18;

}  // namespace

Result<FileSummary> CopyFile(const std::string& path, const std::string& target,
                             const std::function<bool(std::uint64_t bytes)>& advance) {
  std::uint64_t size = 0;
  const Result<Descriptor> source = OpenForReading(path, &size);
  if (!source.ok()) return source.status();
  OutputFile copy;
  Status status = copy.Create(target);
  if (!status.ok()) return status;
  std::vector<char> piece(kPieceBytes);
  for (;;) {
    const std::int64_t count = ReadAt(*source, piece.data(), piece.size(), copy.size());
    if (count < 0) return SystemError(errno, path);
    if (count == 0) break;
    copy.Write({piece.data(), static_cast<std::size_t>(count)});
    if (advance && !advance(static_cast<std::uint64_t>(count))) {
      return Status(StatusCode::kInterrupted, "copying was interrupted", path);
    }
  }
  return copy.Finish(Syncing::kLater);
}

Result<FileSummary> WriteNewFile(const std::string& path, std::string_view bytes) {
  OutputFile file;
  Status status = file.Create(path);
  if (!status.ok()) return status;
  file.Write(bytes);
  return file.Finish(Syncing::kLater);
}

}  // namespace kestan::search
