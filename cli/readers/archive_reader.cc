// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/readers/archive_reader.h"

#include <archive.h>
#include <archive_entry.h>

#include <algorithm>
#include <clocale>
#include <cstdint>
#include <cstdio>
#include <limits>

#include "cli/readers/archive_problem.h"
#include "cli/readers/layer.h"

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

// Names that an archive holds in UTF-8 come as they are: in the locale of programs that set none,
// libarchive gives no others than those of ASCII.
class Utf8Names {
 public:
  Utf8Names() : before_(uselocale(Locale())) {}
  ~Utf8Names() { uselocale(before_); }
  Utf8Names(const Utf8Names&) = delete;
  Utf8Names& operator=(const Utf8Names&) = delete;

 private:
  static locale_t Locale() {
    static const locale_t locale = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
    return locale;  // null where there is none: then it changes nothing
  }

  const locale_t before_;
};

// What libarchive reads an archive from: the source itself, or what it decompresses to.
class ArchiveInput {
 public:
  ArchiveInput(const ArchiveSource& source, unsigned long long max_bytes)
      : source_(source), max_bytes_(max_bytes), layers_(source.bytes) {}

  ReadStatus Open(archive* opened, ReadProblem* problem) {
    opened_ = opened;
    if (!layers_.Build(1)) return LayersFailed(problem);
    is_packed_ = layers_.count() > 0;
    bool is_ready = archive_read_support_format_tar(opened) == ARCHIVE_OK &&
                    archive_read_set_callback_data(opened, this) == ARCHIVE_OK &&
                    archive_read_set_read_callback(opened, Read) == ARCHIVE_OK;
    if (!is_packed_) {
      is_ready = is_ready && source_.seek(source_.bytes.context, 0) &&
                 archive_read_support_format_zip(opened) == ARCHIVE_OK &&
                 archive_read_set_seek_callback(opened, Seek) == ARCHIVE_OK &&
                 archive_read_set_skip_callback(opened, Skip) == ARCHIVE_OK;
    }
    const bool is_open = is_ready && archive_read_open1(opened) == ARCHIVE_OK;
    return is_open ? ReadStatus::kRead : StatusOfFailure(problem);
  }

  // Returns what has stopped libarchive, which may have said something else since.
  ReadStatus StatusOfFailure(ReadProblem* problem) const {
    if (layers_.failure().status != ReadStatus::kRead) return LayersFailed(problem);
    if (own_problem_.text[0] != '\0') return Refuse(&own_problem_.text[0], problem);
    return StatusOfError(opened_, problem);
  }

  // The directory of an archive is read before its first member, into memory.
  void LimitDirectory() { directory_bytes_left_ = kMaxDirectoryBytes; }
  void EndDirectory() { directory_bytes_left_ = std::numeric_limits<std::int64_t>::max(); }

  // Reads on to the end of what is decompressed: its checksum is there.
  ReadStatus Finish(ReadProblem* problem) {
    const void* ignored = nullptr;
    while (is_packed_) {
      const la_ssize_t size = Read(opened_, this, &ignored);
      if (size == 0) break;
      if (size < 0) return StatusOfFailure(problem);
    }
    return ReadStatus::kRead;
  }

 private:
  static constexpr std::int64_t kMaxDirectoryBytes = std::int64_t{1} << 26;

  ReadStatus LayersFailed(ReadProblem* problem) const {
    *problem = layers_.failure().problem;
    return layers_.failure().status;
  }

  static la_ssize_t Read(archive* opened, void* context, const void** bytes) {
    auto* const input = static_cast<ArchiveInput*>(context);
    const char* piece = nullptr;
    const long size = input->is_packed_
                          ? input->layers_.Next(&piece)
                          : input->source_.bytes.next(input->source_.bytes.context, &piece);
    *bytes = piece;
    if (size < 0) {
      const char* const reason = &input->layers_.failure().problem.text[0];
      return input->Fail(opened, *reason != '\0' ? reason : "it cannot be read", 0);
    }
    input->at_ += static_cast<unsigned long long>(size);
    if (input->is_packed_ && input->at_ > input->max_bytes_) {
      return input->Fail(opened, "it unpacks to more than", input->max_bytes_);
    }
    input->directory_bytes_left_ -= size;
    if (input->directory_bytes_left_ < 0) {
      return input->Fail(opened, "its directory takes more than", kMaxDirectoryBytes);
    }
    return size;
  }

  la_ssize_t Fail(archive* opened, const char* what, unsigned long long number) {
    std::snprintf(&own_problem_.text[0], sizeof own_problem_.text, "%s", what);
    if (number != 0) {
      std::snprintf(&own_problem_.text[0], sizeof own_problem_.text, "%s %llu bytes", what, number);
    }
    archive_set_error(opened, EIO, "%s", &own_problem_.text[0]);
    return -1;
  }

  bool MoveTo(la_int64_t at) {
    if (at < 0 || static_cast<unsigned long long>(at) > source_.size) return false;
    if (!source_.seek(source_.bytes.context, static_cast<unsigned long long>(at))) return false;
    at_ = static_cast<unsigned long long>(at);
    return true;
  }

  static la_int64_t Seek(archive* opened, void* context, la_int64_t offset, int whence) {
    auto* const input = static_cast<ArchiveInput*>(context);
    const auto size = static_cast<la_int64_t>(input->source_.size);
    const la_int64_t from = whence == SEEK_SET   ? 0
                            : whence == SEEK_CUR ? static_cast<la_int64_t>(input->at_)
                                                 : size;
    la_int64_t at = 0;
    if (__builtin_add_overflow(from, offset, &at) || !input->MoveTo(std::min(at, size))) {
      input->Fail(opened, "it ends too early", 0);
      return ARCHIVE_FATAL;
    }
    return static_cast<la_int64_t>(input->at_);
  }

  // Returns how many bytes were passed over; libarchive reads the others.
  static la_int64_t Skip(archive* /*opened*/, void* context, la_int64_t bytes) {
    auto* const input = static_cast<ArchiveInput*>(context);
    const auto left = static_cast<la_int64_t>(input->source_.size - input->at_);
    const la_int64_t skipped = std::max<la_int64_t>(std::min(bytes, left), 0);
    return input->MoveTo(static_cast<la_int64_t>(input->at_) + skipped) ? skipped : 0;
  }

  const ArchiveSource& source_;
  const unsigned long long max_bytes_;
  LayerStack layers_;
  archive* opened_ = nullptr;
  ReadProblem own_problem_{};
  bool is_packed_ = false;
  unsigned long long at_ = 0;  // of the next piece
  std::int64_t directory_bytes_left_ = std::numeric_limits<std::int64_t>::max();
};

// Returns the choice for the member of `entry`.
MemberChoice ChoiceOf(archive_entry* entry, const ArchiveEvents& events) {
  if (archive_entry_filetype(entry) != AE_IFREG || archive_entry_hardlink(entry) != nullptr) {
    return MemberChoice::kPass;
  }
  const char* const name = archive_entry_pathname(entry);
  return events.member(events.context, name != nullptr ? name : "", archive_entry_mtime(entry));
}

// Sends the bytes of a member that is wanted.
//   Returns  whether to go on.
Next SendMember(archive* opened, const ArchiveEvents& events) {
  const void* bytes = nullptr;
  std::size_t size = 0;
  la_int64_t offset = 0;
  while (true) {
    const int result = archive_read_data_block(opened, &bytes, &size, &offset);
    if (result == ARCHIVE_EOF) {
      return events.end(events.context, nullptr) ? Next::kGoOn : Next::kStop;
    }
    if (result != ARCHIVE_OK) {  // a warning too: of a wrong size or checksum
      if (archive_errno(opened) == ENOMEM) return Next::kFailed;
      const char* const reason = archive_error_string(opened);
      const bool goes_on = events.end(events.context, reason != nullptr ? reason : "broken");
      return !goes_on ? Next::kStop : result == ARCHIVE_FATAL ? Next::kFailed : Next::kGoOn;
    }
    if (!events.bytes(events.context, static_cast<const char*>(bytes), size)) return Next::kGoOn;
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

ReadStatus ReadArchive(const ArchiveSource& source, unsigned long long max_bytes,
                       const ArchiveEvents& events, ReadProblem* problem) noexcept {
  const OwnedArchive owned(archive_read_new());
  if (owned == nullptr) return ReadStatus::kNoMemory;
  archive* const opened = owned.get();
  ArchiveInput input(source, max_bytes);
  input.LimitDirectory();
  const ReadStatus status = input.Open(opened, problem);
  if (status != ReadStatus::kRead) return status;
  archive_entry* entry = nullptr;
  while (true) {
    int found = ARCHIVE_OK;
    MemberChoice choice = MemberChoice::kPass;
    {
      const Utf8Names utf8_names;
      found = archive_read_next_header(opened, &entry);
      input.EndDirectory();
      if (found == ARCHIVE_EOF) return input.Finish(problem);
      if (found != ARCHIVE_OK && found != ARCHIVE_WARN) return input.StatusOfFailure(problem);
      choice = ChoiceOf(entry, events);
    }
    if (choice == MemberChoice::kPass) continue;
    const Next next = choice == MemberChoice::kRead ? SendMember(opened, events) : Next::kStop;
    if (next == Next::kStop) return ReadStatus::kRead;
    if (next == Next::kFailed) return input.StatusOfFailure(problem);
  }
}

}  // namespace kestan_cli
