// SPDX-License-Identifier: GPL-3.0-or-later
// Buckets and elements that lie in a damaged gdbm file without an entry of the directory that leads
// to them.
#ifndef KESTAN_MAINTENANCE_SALVAGE_ORPHANS_H_
#define KESTAN_MAINTENANCE_SALVAGE_ORPHANS_H_

#include <kestan/maintenance/salvage/found_bucket.h>
#include <kestan/maintenance/salvage/gdbm_layout.h>
#include <kestan/storage/memory/memory.h>

namespace kestan::gdbm {

struct Orphans {
  Vector<FoundBucket> buckets;  // in the order of the file
  Vector<Element> elements;     // that are in no bucket
};

// Looks at every offset of `file` for elements, and around each for its bucket. Passes over the
// buckets of `reached` that have their heads.
Orphans FindOrphans(const Bytes& file, const Shape& shape, const Vector<FoundBucket>& reached);

}  // namespace kestan::gdbm

#endif  // KESTAN_MAINTENANCE_SALVAGE_ORPHANS_H_
