// SPDX-License-Identifier: GPL-3.0-or-later
// Documents as the filter of a search sees them: kestan::search::FilteredDocument.
#ifndef KESTAN_SEARCH_FILTERED_DOCUMENT_H_
#define KESTAN_SEARCH_FILTERED_DOCUMENT_H_

#include <kestan/search/export.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace kestan::search {

// A document that matches a query. It is lent for the call of the filter, and so is its name.
// Each text is read when it is asked for, and again each time. One that is damaged is empty, and
// the search returns the error whatever the filter says.
class KESTAN_SEARCH_EXPORT FilteredDocument {
 public:
  struct Source;  // only searches have one
  explicit FilteredDocument(Source* source) : source_(source) {}

  std::string_view name() const;
  std::size_t index() const;    // which of the opened indexes has it
  std::uint32_t added() const;  // when it was added or last renamed, in seconds since 1970
  std::string title() const;
  std::string summary() const;
  std::string host_data() const;

 private:
  Source* source_;
};

// Returns whether a document is to be found.
using DocumentFilter = std::function<bool(const FilteredDocument&)>;

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_FILTERED_DOCUMENT_H_
