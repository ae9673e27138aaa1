// SPDX-License-Identifier: GPL-3.0-or-later
// The directory of a damaged gdbm file, and the buckets that it leads to.
#ifndef KESTAN_MAINTENANCE_SALVAGE_DIRECTORY_H_
#define KESTAN_MAINTENANCE_SALVAGE_DIRECTORY_H_

#include <kestan/maintenance/salvage/found_bucket.h>
#include <kestan/maintenance/salvage/gdbm_layout.h>
#include <kestan/storage/memory/memory.h>

namespace kestan::gdbm {

// Reads the directory at `at`, of 2 to the power of `bits` entries.
//   Returns  what can be buckets of the hashes of their entries, by ascending hashes.
Vector<FoundBucket> ReadDirectory(const Bytes& file, const Shape& shape, Offset at, unsigned bits);

// Where a directory lies; `at` is 0 if none was found.
struct DirectoryPlace {
  Offset at = 0;
  unsigned bits = 0;
};

// Searches the directory of a file without a header: the place where most of `buckets`, which are
// sorted by bits, are listed in the order of their hashes.
DirectoryPlace FindDirectory(const Bytes& file, const Vector<FoundBucket>& buckets);

}  // namespace kestan::gdbm

#endif  // KESTAN_MAINTENANCE_SALVAGE_DIRECTORY_H_
