// SPDX-License-Identifier: GPL-3.0-or-later
// Queries built by calls.
#ifndef KESTAN_C_QUERY_HANDLE_H_
#define KESTAN_C_QUERY_HANDLE_H_

#include <kestan/search/search_query.h>

#include <memory>

#include "c/reader_handle.h"

struct kestan_query final : kestan::c::Handle {
  kestan_query(const kestan::search::SearchQuery& built,
               const std::shared_ptr<kestan::c::OpenReader>& made_for)
      : query(built), reader(made_for) {}

  // Returns whether it was made for `other`.
  bool IsFor(const std::shared_ptr<kestan::c::OpenReader>& other) const {
    return !reader.owner_before(other) && !other.owner_before(reader);
  }

  const kestan::search::SearchQuery query;
  const std::weak_ptr<kestan::c::OpenReader> reader;
};

namespace kestan::c {

// Runs `call`, which returns a code, with the query of `handle` if it was made for the reader of
// `live`. What `call` throws is thrown: errors are those of the reader, not of the query.
template <typename Call>
int WithQuery(kestan_reader& live, const kestan_query* handle, Call call) {
  const std::shared_ptr<const kestan_query> query = Find(handle);
  if (query == nullptr) return KESTAN_EHANDLE;
  if (query->is_of_parent()) return KESTAN_EFORKED;
  if (!query->IsFor(live.reader)) {
    return live.Return(Invalid("the query was made for another reader"));
  }
  return call(query->query);
}

}  // namespace kestan::c

#endif  // KESTAN_C_QUERY_HANDLE_H_
