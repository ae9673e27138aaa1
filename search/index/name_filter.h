// SPDX-License-Identifier: GPL-3.0-or-later
// Which names are surely not in a segment.
#ifndef KESTAN_SEARCH_INDEX_NAME_FILTER_H_
#define KESTAN_SEARCH_INDEX_NAME_FILTER_H_

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string_view>
#include <vector>

#include "search/segment/document_table.h"

namespace kestan::search {

// A Bloom filter over the names of a document table. To find that a name is not there takes one or
// two reads of memory, where halving the table takes one of a name for each bit of its size. Many
// documents that are added are asked for in every segment, and are in none.
//
// It is made when it has been asked often enough to be worth reading all names once.
class NameFilter {
 public:
  // Returns false if `table`, the same in each call, has no document `name`. After the damage of a
  // table anything may come back: table.status() tells.
  bool MayHave(const DocumentTable& table, std::string_view name) {
    if (bits_.empty()) {
      if (++questions_ <= table.size() / kDocumentsOfQuestion) return true;
      Fill(table);
    }
    const std::uint64_t hash = std::hash<std::string_view>()(name);
    return Bit(hash) && Bit(SecondHash(hash));
  }

 private:
  static constexpr std::size_t kDocumentsOfQuestion = 16;

  static std::uint64_t SecondHash(std::uint64_t hash) {
    return (hash ^ hash >> 15) * 0x9e3779b97f4a7c15 >> 24;
  }

  bool Bit(std::uint64_t hash) const { return bits_[static_cast<std::size_t>(hash & mask_)]; }
  void Fill(const DocumentTable& table);

  std::size_t questions_ = 0;
  std::uint64_t mask_ = 0;  // one less than the number of bits, a power of two
  std::vector<bool> bits_;
};

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_INDEX_NAME_FILTER_H_
