#include "cli/readers/decompressor.h"

#include <archive.h>
#include <archive_entry.h>

#include "cli/readers/archive_problem.h"

namespace kestan_cli {
namespace {

// Has `opened` read what the four programs write. Where libarchive was built without one of them it
// would start the program.
bool Prepare(archive* opened) {
  return archive_read_support_filter_gzip(opened) == ARCHIVE_OK &&
         archive_read_support_filter_bzip2(opened) == ARCHIVE_OK &&
         archive_read_support_filter_xz(opened) == ARCHIVE_OK &&
         archive_read_support_filter_zstd(opened) == ARCHIVE_OK &&
         archive_read_support_format_raw(opened) == ARCHIVE_OK &&
         archive_read_support_format_empty(opened) == ARCHIVE_OK;
}

la_ssize_t ReadPiece(archive* /*opened*/, void* context, const void** bytes) {
  const auto& source = *static_cast<const ByteSource*>(context);
  const char* piece = nullptr;
  const long size = source.next(source.context, &piece);
  *bytes = piece;
  return size;
}

// Sends the one entry of `opened` to `sink`.
ReadStatus ReadEntry(archive* opened, const ByteSink& sink, ReadProblem* problem) {
  const void* bytes = nullptr;
  std::size_t size = 0;
  la_int64_t offset = 0;
  while (true) {
    const int result = archive_read_data_block(opened, &bytes, &size, &offset);
    if (result == ARCHIVE_EOF) return ReadStatus::kRead;
    if (result != ARCHIVE_OK) return StatusOfError(opened, problem);
    if (!sink.add(sink.context, static_cast<const char*>(bytes), size)) return ReadStatus::kRead;
  }
}

}  // namespace

ReadStatus Decompress(const ByteSource& source, const ByteSink& sink, int max_layers,
                      ReadProblem* problem) noexcept {
  const OwnedArchive opened(archive_read_new());
  if (opened == nullptr) return ReadStatus::kNoMemory;
  if (!Prepare(opened.get())) return Refuse("libarchive lacks a decoder", problem);
  ByteSource given = source;
  const int result = archive_read_open(opened.get(), &given, nullptr, ReadPiece, nullptr);
  // Bytes that are broken from the start look like none.
  if (result != ARCHIVE_OK || archive_errno(opened.get()) != 0) {
    return StatusOfError(opened.get(), problem);
  }
  const int layers = archive_filter_count(opened.get()) - 1;
  if (layers < 1) return Refuse("it ends too early, or is not compressed", problem);
  if (layers > max_layers) return Refuse("compressed too many times", problem);
  archive_entry* entry = nullptr;
  const int found = archive_read_next_header(opened.get(), &entry);
  if (found == ARCHIVE_EOF) return ReadStatus::kRead;
  if (found != ARCHIVE_OK) return StatusOfError(opened.get(), problem);
  return ReadEntry(opened.get(), sink, problem);
}

}  // namespace kestan_cli
