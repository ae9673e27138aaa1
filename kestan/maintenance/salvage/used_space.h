// SPDX-License-Identifier: GPL-3.0-or-later
// The bytes of a damaged file that are known to be in use, or to be free.
#ifndef KESTAN_MAINTENANCE_SALVAGE_USED_SPACE_H_
#define KESTAN_MAINTENANCE_SALVAGE_USED_SPACE_H_

#include <kestan/maintenance/salvage/gdbm_layout.h>
#include <kestan/storage/memory/memory.h>

namespace kestan::gdbm {

// What lies in them, and is in no current bucket, has been removed or moved.
class UsedSpace {
 public:
  // Borrows `file`.
  explicit UsedSpace(const Bytes& file) : file_(file) {}

  // Adds `bytes` at `at`. What reaches past the end of the file does not count.
  void Add(Offset at, Offset bytes);

  // Adds a bucket, of which part may be past the end of the file.
  void AddBucket(Offset at, Offset bytes) { spans_.push_back({at, at + bytes}); }

  // Adds the free space that the bucket keeps.
  void AddFree(const Bucket& bucket);

  // Adds the space in the header's list of free space, and in the lists to which that leads.
  void AddFreeLists(const Header& header);

  // Makes it ready for Overlaps(). The first byte of the file must have been added.
  void Merge();

  // Returns whether the key or the value of the element lies in any of the space.
  bool Overlaps(const Element& element) const;

 private:
  struct Span {
    Offset begin;
    Offset end;
  };

  const Bytes& file_;
  Vector<Span> spans_;
};

}  // namespace kestan::gdbm

#endif  // KESTAN_MAINTENANCE_SALVAGE_USED_SPACE_H_
