// SPDX-License-Identifier: GPL-3.0-or-later
// Checks that everything in a gdbm file has bytes of its own.
#ifndef KESTAN_MAINTENANCE_CHECK_SPACE_CHECK_H_
#define KESTAN_MAINTENANCE_CHECK_SPACE_CHECK_H_

#include <kestan/maintenance/report/findings.h>
#include <kestan/maintenance/salvage/gdbm_layout.h>
#include <kestan/storage/memory/memory.h>

#include <cstddef>
#include <cstdint>

namespace kestan {

// Checks header, directory, buckets, records and free space. A record whose length is damaged
// reaches into the next; parts of an older state of the file take space that others have by now, or
// count it as free, so that the next change would overwrite them.
class SpaceCheck {
 public:
  // How many pieces are held at once, 24 bytes each. A file with more is checked in parts, each
  // with a pass over all buckets.
  static constexpr std::size_t kPiecesAtOnce = std::size_t{1} << 19;

  // Borrows both.
  SpaceCheck(const gdbm::Bytes& file, Findings* findings, std::size_t most = kPiecesAtOnce)
      : file_(file), findings_(*findings), most_(most) {}

  // Reports how many pieces share bytes with others, and how many reach past the end of the file.
  // Nothing, if there is no header. Bytes between the pieces are no fault: gdbm leaves some.
  void Run();

 private:
  enum class Kind : std::uint8_t { kRecord, kFree, kOther };
  struct Piece {
    gdbm::Offset begin;
    gdbm::Offset end;
    Kind kind;
  };

  template <typename Take>
  void ForEachPiece(Take take) const;
  template <typename Take>
  void ForEachFree(Take take) const;
  template <typename Take>
  void ForEachOfBucket(gdbm::Offset bucket, Take take) const;
  void CheckPart(gdbm::Offset begin, gdbm::Offset end);
  void Look(const Piece& piece);
  void Report();

  const gdbm::Bytes& file_;
  Findings& findings_;
  const std::size_t most_;
  gdbm::Header header_{};
  gdbm::Shape shape_;
  Vector<Piece> pieces_;
  Piece last_{};  // of those checked, the one that ends last
  std::uint64_t shared_records_ = 0;
  std::uint64_t used_free_ = 0;
  std::uint64_t shared_others_ = 0;
  std::uint64_t outside_ = 0;
};

}  // namespace kestan

#endif  // KESTAN_MAINTENANCE_CHECK_SPACE_CHECK_H_
