// SPDX-License-Identifier: GPL-3.0-or-later
// Keeps gdbm from merging free space with a list of free space that lies right behind it.
#ifndef KESTAN_STORAGE_GDBM_FREE_LIST_GUARD_H_
#define KESTAN_STORAGE_GDBM_FREE_LIST_GUARD_H_

#include <kestan/storage/gdbm/gdbm_header.h>
#include <kestan/storage/memory/memory.h>

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace kestan::gdbm {

// The header of a file has one list of its free space. gdbm writes half of a full list into the
// file, in front of those that it wrote there before, and takes the first of them back when the one
// in the header runs low. While it takes a list back, it merges each of its pieces, and last the
// space of the list itself, with adjacent pieces. Having merged one with the first piece of the
// header, gdbm 1.23 and older look for the next at index -1, where the place of the list that is
// now first in the file passes for a piece: if the merged space ends there, they move the header
// over itself, and what follows is undefined.
//
// So before each store the guard looks at what lies in front of that place, and changes the first
// list in the file where a piece of it could be merged up to there. What is left out stays unused
// until the file is rewritten. It does not see space that the same store frees, nor a list that is
// written and taken back within one store. One thread at a time, like the store above it.
class FreeListGuard {
 public:
  FreeListGuard() = default;
  ~FreeListGuard() { Release(); }
  FreeListGuard(const FreeListGuard&) = delete;
  FreeListGuard& operator=(const FreeListGuard&) = delete;

  // Guards the gdbm file that is open for reading and writing at `descriptor`, which must stay open
  // until Release(). Instead of the one before, if any. A file whose header has sizes that gdbm
  // does not write is not guarded.
  void Watch(int descriptor);

  // Ends the guard.
  void Release();

  // Makes the next store safe. Nothing but gdbm may have written to the file since the last call.
  //   Returns  0, or gdbm's error number if the list cannot be changed: then the store must not be
  //            tried.
  //   Cost     a look into memory; a read of the file after the first list there has changed.
  int BeforeStore() {
    if (header_ == nullptr || (!mapped_ && !ReadHeaderAgain())) return 0;
    return List().next != 0 ? Check() : 0;
  }

 private:
  // A list that lies in the file outside the header.
  struct StoredList {
    Offset at = 0;
    Offset end = 0;
    Offset next = 0;  // where the one after it lies
    Vector<FreeSpace> pieces;
    bool ends_at_a_list = false;  // itself or one of its pieces, at this list or the next
  };

  FreeList List() const {
    FreeList list;
    std::memcpy(&list, header_ + list_at_, sizeof list);
    return list;
  }
  bool ReadHeaderAgain();
  int Check();
  void ReadFirst(const FreeList& list);
  bool EndsAtAList(const char* list, std::int32_t count) const;
  int ForgetPiecesBefore(Offset place);
  bool IsFreeUpTo(Offset place) const;
  int SkipNext();
  int FailToWrite();

  int descriptor_ = -1;
  const char* header_ = nullptr;  // null without a file to guard
  std::size_t header_bytes_ = 0;
  std::size_t list_at_ = 0;  // where the list lies in the header
  bool mapped_ = false;      // else the header is read into `copy_`
  String copy_;
  Vector<FreeSpace> in_header_;
  StoredList first_;
  String copy_of_first_;
};

}  // namespace kestan::gdbm

#endif  // KESTAN_STORAGE_GDBM_FREE_LIST_GUARD_H_
