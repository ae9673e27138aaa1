// SPDX-License-Identifier: GPL-3.0-or-later
// What a document may be.
#ifndef KESTAN_SEARCH_INDEX_INVERTING_DOCUMENT_LIMITS_H_
#define KESTAN_SEARCH_INDEX_INVERTING_DOCUMENT_LIMITS_H_

#include <kestan/search/document.h>
#include <kestan/search/status.h>

#include <cstddef>
#include <string_view>

namespace kestan::search {

constexpr std::size_t kMaxDocumentBytes = std::size_t{1} << 30;

// Returns  kInvalidArgument for a name that no document can have.
Status CheckName(std::string_view name);

// Returns  kInvalidArgument for such a name, and for more bytes than kMaxDocumentBytes.
Status CheckDocument(const Document& document);

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_INDEX_INVERTING_DOCUMENT_LIMITS_H_
