// SPDX-License-Identifier: GPL-3.0-or-later
// The members of archives, and of archives within them.
#ifndef KESTAN_CLI_EXTRACT_PACKED_ARCHIVE_H_
#define KESTAN_CLI_EXTRACT_PACKED_ARCHIVE_H_

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "cli/extract/packed/unpack.h"
#include "cli/files/skip.h"
#include "cli/files/stable_file.h"

namespace kestan_cli {

// The bytes of an archive, which may be read from any place on. The functions may throw.
struct ArchiveBytes {
  PieceSource next;
  std::function<void(std::uint64_t)> move_to;  // where the next piece begins: at most `size`
  std::uint64_t size = 0;
};

// Returns the bytes of a file, which is borrowed and must be at its start.
ArchiveBytes ArchiveBytesOf(StableFile& file);

// Returns `bytes`, which are borrowed.
ArchiveBytes ArchiveBytesOf(std::string_view bytes);

// An archive within an archive within another one is read, but none within that.
constexpr int kMaxArchiveDepth = 3;

constexpr std::uint64_t kMaxArchiveMembers = 250000;
constexpr std::uint64_t kMaxArchiveBytes = std::uint64_t{1} << 33;

struct ArchiveLimits {
  std::uint64_t max_member_bytes = 0;              // of one member
  std::uint64_t max_bytes = kMaxArchiveBytes;      // of all members, in archives within too
  std::uint64_t max_members = kMaxArchiveMembers;  // likewise
  std::function<bool(const std::string& name, std::string_view head)> is_archive;
};

// Receives members. Their names are those in the archive, after the names of the archives that they
// are in, each with a "#": "inner.zip#folder/file". They may hold anything but a NUL; nothing is
// ever opened by such a name. The functions may throw.
class MemberVisitor {
 public:
  MemberVisitor() = default;
  virtual ~MemberVisitor() = default;
  MemberVisitor(const MemberVisitor&) = delete;
  MemberVisitor& operator=(const MemberVisitor&) = delete;

  // Returns whether the member is to be read.
  virtual bool Wants(const std::string& name) = 0;

  // Returns why a member is not read on, of which `piece` follows `before`; "" if it is.
  virtual std::string ReasonToSkip(const std::string& name, const std::string& before,
                                   std::string_view piece) = 0;

  // Takes a whole member, which was last changed at `seconds` since 1970; 0 if that is unknown.
  //   Returns  false if no more are wanted.
  virtual bool Take(const std::string& name, std::string bytes, std::int64_t seconds) = 0;

  // Hears that a member cannot be taken.
  virtual void Skip(const std::string& name, SkipKind kind, const std::string& reason) = 0;
};

// Reads an archive, and those within it, in memory. Of bytes that unpack to more than kMaxRatio
// times the size of the archive, no more is read, once they are many.
//   Throws   SkipFile if it is broken or exceeds a limit: some members may have been taken. What
//            the visitor and `bytes` throw; bad_alloc.
void ReadMembers(const ArchiveBytes& bytes, const ArchiveLimits& limits, MemberVisitor& visitor);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_EXTRACT_PACKED_ARCHIVE_H_
