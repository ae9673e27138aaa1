// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/maintenance/check/space_check.h>

#include <algorithm>

namespace kestan {

using gdbm::Offset;

void SpaceCheck::Run() {
  if (!ReadHeader(file_, &header_, &shape_)) return;
  std::uint64_t count = 0;
  ForEachPiece([&](const Piece&) { ++count; });
  const Offset parts = count / most_ + 1;
  const Offset part_bytes = file_.size() / parts + 1;
  for (Offset begin = 0; begin < file_.size(); begin += part_bytes) {
    CheckPart(begin, begin + part_bytes);
  }
  Report();
}

template <typename Take>
void SpaceCheck::ForEachPiece(Take take) const {
  take({0, static_cast<Offset>(header_.block_bytes), Kind::kOther});
  take({header_.directory, header_.directory + static_cast<Offset>(header_.directory_bytes),
        Kind::kOther});
  ForEachFree(take);
  ForEachRun(file_, header_,
             [&](const gdbm::DirectoryRun& run) { ForEachOfBucket(run.bucket, take); });
}

// Takes the header's list of free space, and those after it, which lie in pieces of their own.
template <typename Take>
void SpaceCheck::ForEachFree(Take take) const {
  const bool is_extended = header_.magic == gdbm::kExtendedMagic;
  Offset list = sizeof(gdbm::Header) + (is_extended ? gdbm::kExtensionBytes : 0);
  Offset read = 0;  // a chain may be a cycle
  for (bool is_first = true; list != 0 && read <= file_.size(); is_first = false) {
    gdbm::FreeList head{};
    if (!file_.Read(list, &head) || head.count < 0) return;
    const Offset bytes = sizeof head + static_cast<Offset>(head.count) * sizeof(gdbm::FreeSpace);
    if (!file_.Holds(list, bytes)) return;
    if (!is_first) take({list, list + bytes, Kind::kOther});
    for (Offset at = list + sizeof head; at < list + bytes; at += sizeof(gdbm::FreeSpace)) {
      gdbm::FreeSpace space{};
      file_.Read(at, &space);
      if (space.bytes > 0)
        take({space.at, space.at + static_cast<Offset>(space.bytes), Kind::kFree});
    }
    read += bytes;
    list = head.next;
  }
}

template <typename Take>
void SpaceCheck::ForEachOfBucket(Offset bucket, Take take) const {
  gdbm::BucketHead head{};
  if (!file_.Holds(bucket, shape_.bucket_bytes) || !file_.Read(bucket, &head)) return;
  if (!IsHead(head, shape_)) return;
  take({bucket, bucket + shape_.bucket_bytes, Kind::kOther});
  for (std::size_t i = 0; i < static_cast<std::size_t>(head.free_count); ++i) {
    const gdbm::FreeSpace& space = head.free[i];
    if (space.bytes > 0) take({space.at, space.at + static_cast<Offset>(space.bytes), Kind::kFree});
  }
  for (std::uint32_t i = 0; i < shape_.elements; ++i) {
    gdbm::Element element{};
    file_.Read(gdbm::ElementAt(bucket, i), &element);
    if (element.hash == gdbm::kNoElement || element.key_bytes < 0 || element.value_bytes < 0)
      continue;
    const Offset bytes =
        static_cast<Offset>(element.key_bytes) + static_cast<Offset>(element.value_bytes);
    if (bytes != 0) take({element.data, element.data + bytes, Kind::kRecord});
  }
}

// Checks the pieces that begin in one part of the file. What lies outside of it, or seems to end
// before it begins, is counted with the first part.
void SpaceCheck::CheckPart(Offset begin, Offset end) {
  pieces_.clear();
  ForEachPiece([&](const Piece& piece) {
    const bool is_outside = piece.end > file_.size() || piece.end < piece.begin;
    if (is_outside && begin == 0) ++outside_;
    if (!is_outside && piece.begin >= begin && piece.begin < end) pieces_.push_back(piece);
  });
  std::sort(pieces_.begin(), pieces_.end(),
            [](const Piece& left, const Piece& right) { return left.begin < right.begin; });
  for (const Piece& piece : pieces_) Look(piece);
}

// Pieces come in the order in which they begin.
void SpaceCheck::Look(const Piece& piece) {
  if (piece.begin < last_.end) {
    const bool is_free = piece.kind == Kind::kFree || last_.kind == Kind::kFree;
    const bool is_record = piece.kind == Kind::kRecord || last_.kind == Kind::kRecord;
    ++(is_free ? used_free_ : is_record ? shared_records_ : shared_others_);
  }
  if (piece.end > last_.end) last_ = piece;
}

void SpaceCheck::Report() {
  const auto report = [&](std::uint64_t count, const char* what) {
    if (count != 0) findings_.Fault(kWholeFile, what, ": ", count);
  };
  report(shared_records_, "records that share bytes with others");
  report(shared_others_, "buckets and lists that share bytes");
  report(used_free_, "free space that is in use");
  report(outside_, "records and free space that reach past the end of the file");
}

}  // namespace kestan
