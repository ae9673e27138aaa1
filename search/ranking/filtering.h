// SPDX-License-Identifier: GPL-3.0-or-later
// Which of the documents that match a query the host wants to have.
#ifndef KESTAN_SEARCH_RANKING_FILTERING_H_
#define KESTAN_SEARCH_RANKING_FILTERING_H_

#include <kestan/postings.h>
#include <kestan/search/filtered_document.h>
#include <kestan/search/status.h>

#include <cstddef>
#include <vector>

#include "search/segment/segment.h"

namespace kestan::search {

// Takes those documents of `segment`, which belongs to the opened index `index`, out of `codes` for
// which `filter` returns false. Calls it once for each, in their order.
//   Returns  kDamaged if a document cannot be read that `filter` has looked at.
Status Filter(const DocumentFilter& filter, const Segment& segment, std::size_t index,
              std::vector<Code>* codes);

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_RANKING_FILTERING_H_
