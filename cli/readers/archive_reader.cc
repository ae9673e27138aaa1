#include "cli/readers/archive_reader.h"

#include <archive.h>
#include <archive_entry.h>

#include "cli/readers/archive_problem.h"

namespace kestan_cli {
namespace {

enum class Next { kGoOn, kStop, kFailed };

Next ReadMember(archive* opened, const MemberEvents& events) {
  const void* bytes = nullptr;
  std::size_t size = 0;
  la_int64_t offset = 0;
  while (true) {
    const int result = archive_read_data_block(opened, &bytes, &size, &offset);
    if (result == ARCHIVE_EOF) return Next::kGoOn;
    if (result != ARCHIVE_OK) return Next::kFailed;
    if (!events.bytes(events.context, static_cast<const char*>(bytes), size)) return Next::kStop;
  }
}

}  // namespace

ReadStatus ReadZip(const char* bytes, std::size_t size, const MemberEvents& events,
                   ReadProblem* problem) noexcept {
  const OwnedArchive opened(archive_read_new());
  if (opened == nullptr) return ReadStatus::kNoMemory;
  archive* const zip = opened.get();
  if (archive_read_support_format_zip(zip) != ARCHIVE_OK ||
      archive_read_open_memory(zip, bytes, size) != ARCHIVE_OK) {
    return StatusOfError(zip, problem);
  }
  archive_entry* entry = nullptr;
  while (true) {
    const int found = archive_read_next_header(zip, &entry);
    if (found == ARCHIVE_EOF) return ReadStatus::kRead;
    if (found != ARCHIVE_OK && found != ARCHIVE_WARN) return StatusOfError(zip, problem);
    const char* const name = archive_entry_pathname(entry);
    const bool is_wanted = name != nullptr && archive_entry_filetype(entry) == AE_IFREG &&
                           events.member(events.context, name);
    if (!is_wanted) continue;
    const Next next = ReadMember(zip, events);
    if (next == Next::kStop) return ReadStatus::kRead;
    if (next == Next::kFailed) return StatusOfError(zip, problem);
  }
}

}  // namespace kestan_cli
