// SPDX-License-Identifier: GPL-3.0-or-later
// Byte strings as keys and values of the store, and counted handles to them.
#ifndef KESTAN_STORAGE_DBDATUM_H_
#define KESTAN_STORAGE_DBDATUM_H_

#include <kestan/storage/export.h>

#include <cstdint>
#include <functional>

// A byte string with its length: one key or one value of the store.
//
// A datum that a caller builds around its own bytes is not counted (`refs` below 1): it neither
// copies nor owns them. A datum that the store hands out lives on the heap, is counted, and owns
// its bytes, which come from malloc. A holder of a counted value may change the bytes in place, or
// put another malloc buffer in `data`, and then sets `dirty` so that Database::Flush writes it.
// The bytes of a key never change while a store holds it. One thread at a time.
struct KESTAN_EXPORT DBDatum {
  DBDatum() = default;

  // Borrows `length` bytes at `bytes`, which must outlive the datum.
  DBDatum(const void* bytes, std::uint32_t length)
      : data(static_cast<char*>(const_cast<void*>(bytes))), size(length) {}

  // Computes the ordering code: the first four bytes as a big-endian number, padded on the right
  // with zeros, so that comparing codes compares prefixes. Reads no byte beyond `size`.
  //   Returns  the code; it is not stored.
  std::uint32_t CalcCode() const;

  // Orders by unsigned bytes; of two that agree to the end of the shorter, the shorter is first.
  // Fills in the `code` of either operand that has none yet.
  bool operator<(const DBDatum& other) const;

  // True when both hold the same bytes. Fills in missing codes, except where the sizes differ.
  bool operator==(const DBDatum& other) const;

  char* data = nullptr;            // not NUL-terminated in general
  std::uint32_t size = 0;          // in bytes
  mutable std::uint32_t code = 0;  // CalcCode(), or 0 while nobody has asked for it
  std::int32_t refs = -1;          // how many handles hold it; below 1: not counted
  bool dirty = false;              // changed in place since it was read from the file
};

// A handle that shares a datum: copying it counts one holder more, Free() one less. Handles to
// datums that are not counted leave them alone when copied. One thread at a time.
class KESTAN_EXPORT DBDatumPtr {
 public:
  DBDatumPtr() = default;

  // Shares `shared` (may be null). To take over the one hold of a fresh heap datum, assign `ptr`.
  explicit DBDatumPtr(DBDatum* shared) : ptr(shared) { Hold(); }

  DBDatumPtr(const DBDatumPtr& other) : DBDatumPtr(other.ptr) {}
  DBDatumPtr(DBDatumPtr&& other) noexcept : ptr(other.ptr) { other.ptr = nullptr; }
  DBDatumPtr& operator=(const DBDatumPtr& other);
  DBDatumPtr& operator=(DBDatumPtr&& other) noexcept;
  ~DBDatumPtr() { Free(); }

  // Gives up the hold and sets `ptr` to null. The last counted hold releases the bytes and the
  // record; a datum that is not counted only has its `refs` lowered by one, which means nothing.
  void Free();

  DBDatum* ptr = nullptr;

 private:
  void Hold() {
    if (ptr != nullptr && ptr->refs > 0) ++ptr->refs;
  }
};

// Orders handles by the datums that they point at; neither may be null.
template <>
struct std::less<DBDatumPtr> {
  bool operator()(const DBDatumPtr& left, const DBDatumPtr& right) const {
    return *left.ptr < *right.ptr;
  }
};

#endif  // KESTAN_STORAGE_DBDATUM_H_
