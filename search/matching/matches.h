// What a query finds in one segment.
#ifndef KESTAN_SEARCH_MATCHING_MATCHES_H_
#define KESTAN_SEARCH_MATCHING_MATCHES_H_

#include <kestan/format/posting.h>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace kestan::search {

// Documents with how often something occurs in each, in ascending order of codes, each once, no
// removed ones. Where it occurs is kept only where an operator above asks for it.
struct Occurrences {
  std::vector<Code> codes;
  std::vector<std::uint32_t> counts;  // as many as codes: how often; at least 1

  // Of the document codes[i]: positions[starts[i]] up to positions[starts[i + 1]]. Both are empty
  // where positions were not asked for.
  std::vector<std::uint32_t> starts;
  std::vector<Position> positions;  // in text order; after 65535 comes 1

  std::size_t size() const { return codes.size(); }
};

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_MATCHING_MATCHES_H_
