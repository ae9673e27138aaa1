// SPDX-License-Identifier: GPL-3.0-or-later
// Index files that could have been exchanged.
#ifndef KESTAN_SEARCH_INDEX_ALIKE_FILES_H_
#define KESTAN_SEARCH_INDEX_ALIKE_FILES_H_

#include <kestan/search/status.h>

#include <functional>
#include <string>

#include "search/index/manifest/manifest.h"

namespace kestan::search {

// Nothing in an index file says which segment it is of. Its size does where it differs from those
// of all others; where it does not, which is rare, the checksums of these files are compared with
// MANIFEST's. Segments that `is_known` is true of are left out.
//   Returns  kDamaged for a file that is not the one that MANIFEST means; kNotFound, kSystem.
Status CheckAlikeFiles(const std::string& folder, const Manifest& manifest,
                       const std::function<bool(const SegmentInfo& info)>& is_known);

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_INDEX_ALIKE_FILES_H_
