// SPDX-License-Identifier: GPL-3.0-or-later
// Result sets by their ids.
#ifndef KESTAN_QUERY_REGISTRY_H_
#define KESTAN_QUERY_REGISTRY_H_

#include <kestan/query/result_set.h>
#include <kestan/storage/memory/memory.h>

#include <functional>
#include <map>
#include <utility>

namespace kestan {

// Keeps result sets until they are freed. Ids start at 1 and are never used twice.
class ResultRegistry {
 public:
  // Takes `set`.
  //   Returns  its id.
  int Add(ResultSet set) {
    set.Trim();
    sets_.emplace(next_id_, std::move(set));
    return next_id_++;
  }

  // Returns the set of `id`, which stays where it is until Free(id); null if there is none.
  const ResultSet* Find(int id) const {
    const auto found = sets_.find(id);
    return found == sets_.end() ? nullptr : &found->second;
  }

  // Releases the set of `id`. Unknown ids are ignored.
  void Free(int id) { sets_.erase(id); }

 private:
  std::map<int, ResultSet, std::less<>, Allocator<std::pair<const int, ResultSet>>> sets_;
  int next_id_ = 1;
};

}  // namespace kestan

#endif  // KESTAN_QUERY_REGISTRY_H_
