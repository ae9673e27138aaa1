// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/storage/gdbm/free_list_guard.h>

#include <gdbm.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>

namespace kestan::gdbm {
namespace {

constexpr std::int32_t kMostBlockBytes = 1 << 20;

bool ReadAt(int descriptor, Offset at, void* bytes, std::size_t count) {
  return pread64(descriptor, bytes, count, static_cast<off64_t>(at)) == static_cast<ssize_t>(count);
}

bool WriteAt(int descriptor, Offset at, const void* bytes, std::size_t count) {
  return pwrite64(descriptor, bytes, count, static_cast<off64_t>(at)) ==
         static_cast<ssize_t>(count);
}

Offset EndOf(const FreeSpace& piece) { return piece.at + static_cast<Offset>(piece.bytes); }

// How many pieces a list may have that takes `bytes` bytes, without what comes before them.
std::size_t MostPieces(std::size_t bytes) { return (bytes - sizeof(FreeList)) / sizeof(FreeSpace); }

// What gdbm allocates for a list outside a header whose list has room for `size` pieces.
std::size_t StoredBytes(std::int32_t size) {
  return static_cast<std::size_t>(size) * sizeof(FreeSpace) / 2 + sizeof(FreeList) +
         sizeof(FreeSpace);
}

void ReadPieces(const char* list, std::int32_t count, Vector<FreeSpace>* pieces) {
  pieces->resize(static_cast<std::size_t>(count));
  if (pieces->empty()) return;  // no bytes to copy, and nowhere to copy them
  std::memcpy(pieces->data(), list + sizeof(FreeList), pieces->size() * sizeof(FreeSpace));
}

// Finds the piece that ends at `place`. Returns its index, or the number of pieces.
std::size_t FindEnd(const Vector<FreeSpace>& pieces, Offset place) {
  const auto ends_there = [&](const FreeSpace& piece) {
    return EndOf(piece) == place && piece.bytes > 0 && piece.at < place;
  };
  const auto found = std::find_if(pieces.begin(), pieces.end(), ends_there);
  return static_cast<std::size_t>(found - pieces.begin());
}

}  // namespace

void FreeListGuard::Watch(int descriptor) {
  Release();
  Header header{};
  if (!ReadAt(descriptor, 0, &header, sizeof header)) return;
  const std::size_t list_at =
      sizeof header + (header.magic == kExtendedMagic ? kExtensionBytes : 0);
  if (header.block_bytes > kMostBlockBytes) return;
  if (header.block_bytes < static_cast<std::int32_t>(list_at + sizeof(FreeList))) return;
  descriptor_ = descriptor;
  header_bytes_ = static_cast<std::size_t>(header.block_bytes);
  list_at_ = list_at;
  void* const mapped = mmap(nullptr, header_bytes_, PROT_READ, MAP_SHARED, descriptor, 0);
  mapped_ = mapped != MAP_FAILED;
  if (!mapped_) copy_.resize(header_bytes_);
  header_ = mapped_ ? static_cast<const char*>(mapped) : copy_.data();
}

void FreeListGuard::Release() {
  if (mapped_) munmap(const_cast<char*>(header_), header_bytes_);
  header_ = nullptr;
  mapped_ = false;
  first_ = {};
}

bool FreeListGuard::ReadHeaderAgain() {
  return ReadAt(descriptor_, 0, copy_.data(), header_bytes_);
}

int FreeListGuard::Check() {
  const FreeList list = List();
  const std::size_t most = MostPieces(header_bytes_ - list_at_);
  if (list.size <= 0 || static_cast<std::size_t>(list.size) > most) return 0;
  if (list.count < 0 || list.count > list.size) return 0;
  // Where this store surely takes the list back, a store may have put another in its place.
  if (list.next != first_.at || list.count <= list.size / 2) ReadFirst(list);
  if (!first_.ends_at_a_list && !EndsAtAList(header_ + list_at_, list.count)) return 0;
  ReadPieces(header_ + list_at_, list.count, &in_header_);
  if (const int error = ForgetPiecesBefore(first_.at); error != 0) return error;
  // The lists in the file form no cycle: that was checked when it was opened.
  while (IsFreeUpTo(first_.next)) {
    if (const int error = SkipNext(); error != 0) return error;
  }
  return 0;
}

// Reads the first list in the file. Where it cannot be read, or cannot be one, gdbm refuses it too,
// and `first_` stays empty.
void FreeListGuard::ReadFirst(const FreeList& list) {
  const std::size_t bytes = StoredBytes(list.size);
  first_ = {};
  copy_of_first_.resize(bytes);
  if (!ReadAt(descriptor_, list.next, copy_of_first_.data(), bytes)) return;
  FreeList stored{};
  std::memcpy(&stored, copy_of_first_.data(), sizeof stored);
  if (stored.count < 0 || static_cast<std::size_t>(stored.count) > MostPieces(bytes)) return;
  first_.at = list.next;
  first_.end = list.next + bytes;
  first_.next = stored.next;
  ReadPieces(copy_of_first_.data(), stored.count, &first_.pieces);
  first_.ends_at_a_list =
      first_.next == first_.end || EndsAtAList(copy_of_first_.data(), stored.count);
}

// Returns whether one of the `count` pieces of `list` ends where the first list in the file lies,
// or the next. Nearly every store comes here, and few get further.
bool FreeListGuard::EndsAtAList(const char* list, std::int32_t count) const {
  bool ends = false;
  for (std::int32_t i = 0; i < count; ++i) {
    FreeSpace piece{};
    std::memcpy(&piece, list + sizeof(FreeList) + static_cast<std::size_t>(i) * sizeof piece,
                sizeof piece);
    const Offset end = EndOf(piece);
    ends |= end == first_.at || end == first_.next;
  }
  return ends;
}

// Leaves out what the first list could merge with other pieces up to `place`. gdbm takes no notice
// of a piece of no bytes.
int FreeListGuard::ForgetPiecesBefore(Offset place) {
  while (place != 0) {
    const std::size_t own = FindEnd(first_.pieces, place);
    if (own < first_.pieces.size()) {
      FreeSpace& piece = first_.pieces[own];
      piece.bytes = 0;
      const Offset at = first_.at + sizeof(FreeList) + own * sizeof piece;
      if (!WriteAt(descriptor_, at, &piece.bytes, sizeof piece.bytes)) return FailToWrite();
      continue;  // another may end there too, in a damaged file
    }
    const std::size_t other = FindEnd(in_header_, place);
    place = other < in_header_.size() ? in_header_[other].at : 0;
  }
  return 0;
}

// Returns whether only free space lies between the end of the first list and `place`.
bool FreeListGuard::IsFreeUpTo(Offset place) const {
  while (place > first_.end) {
    const std::size_t own = FindEnd(first_.pieces, place);
    const std::size_t other = FindEnd(in_header_, place);
    if (own < first_.pieces.size()) {
      place = first_.pieces[own].at;
    } else if (other < in_header_.size()) {
      place = in_header_[other].at;
    } else {
      return false;
    }
  }
  return place == first_.end && place != 0;
}

// Leaves out the list after the first one.
int FreeListGuard::SkipNext() {
  FreeList skipped{};
  if (!ReadAt(descriptor_, first_.next, &skipped, sizeof skipped)) return FailToWrite();
  first_.next = skipped.next;
  const Offset at = first_.at + offsetof(FreeList, next);
  return WriteAt(descriptor_, at, &first_.next, sizeof first_.next) ? 0 : FailToWrite();
}

// Lets the next call start over.
int FreeListGuard::FailToWrite() {
  first_ = {};
  return GDBM_FILE_WRITE_ERROR;
}

}  // namespace kestan::gdbm
