// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/maintenance/repair/kept_postings.h>

namespace kestan {

KeptRecord KeptPostings::Read(const DBDatum& key, const DBDatum& value) {
  const bool is_never_purged = IsNeverPurged(key);
  const bool is_valid = postings_.Read(value, is_never_purged);
  const std::size_t found = postings_.postings().size();
  seen_.StartRecord();
  postings_.Drop([&](const WholePosting& posting) {
    return is_never_purged ? !known_[posting.code] : !seen_.Add(posting.code);
  });
  return {postings_.postings(), is_valid, is_valid && postings_.postings().size() == found};
}

}  // namespace kestan
