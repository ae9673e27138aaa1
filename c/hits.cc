// SPDX-License-Identifier: GPL-3.0-or-later
#include <cstdint>
#include <string>
#include <utility>

#include "c/hits_handle.h"

using kestan::c::Invalid;
using kestan::search::Hit;

kestan_hits::kestan_hits(kestan::search::SearchResults found,
                         std::shared_ptr<kestan::c::OpenReader> searched)
    : results(std::move(found)), reader(std::move(searched)) {
  views.reserve(results.hits.size());
  for (const Hit& hit : results.hits) {
    views.push_back({hit.name.c_str(), hit.name.size(), hit.title.c_str(), hit.title.size(),
                     hit.score, hit.percent, hit.index});
  }
}

const Hit* kestan_hits::HitOf(const kestan_hit* view) const {
  // Of an address before the first one, the difference wraps and is larger than all.
  const std::uintptr_t offset =
      reinterpret_cast<std::uintptr_t>(view) - reinterpret_cast<std::uintptr_t>(views.data());
  const std::size_t position = offset / sizeof(kestan_hit);
  if (offset % sizeof(kestan_hit) != 0 || position >= views.size()) return nullptr;
  return &results.hits[position];
}

namespace {

// Runs `call`, which returns a code, with the hits, and with `out` that is not null.
template <typename Out, typename Call>
int Get(Out* out, const kestan_hits* hits, Call call) noexcept {
  return kestan::c::Use(hits, [&](kestan_hits& live) -> int {
    if (out == nullptr) return live.Return(Invalid("the output is null"));
    return call(live);
  });
}

int LendLine(const char** out, size_t* length, const kestan_hits* hits, std::size_t position,
             std::vector<std::string> kestan::search::SearchResults::*lines) noexcept {
  return Get(out, hits, [&](kestan_hits& live) -> int {
    if (length == nullptr) return live.Return(Invalid("the output is null"));
    const std::vector<std::string>& all = live.results.*lines;
    if (position >= all.size()) return KESTAN_ITEROVER;
    *out = all[position].c_str();
    *length = all[position].size();
    return KESTAN_OK;
  });
}

}  // namespace

int kestan_hits_next(const kestan_hit** out, kestan_hits* hits) {
  return Get(out, hits, [&](kestan_hits& live) -> int {
    if (live.next == live.views.size()) return KESTAN_ITEROVER;
    *out = &live.views[live.next++];
    return KESTAN_OK;
  });
}

int kestan_hits_at(const kestan_hit** out, kestan_hits* hits, size_t position) {
  return Get(out, hits, [&](kestan_hits& live) -> int {
    if (position >= live.views.size()) return KESTAN_ITEROVER;
    *out = &live.views[position];
    return KESTAN_OK;
  });
}

int kestan_hits_count(size_t* out, kestan_hits* hits) {
  return Get(out, hits, [&](kestan_hits& live) -> int {
    *out = live.views.size();
    return KESTAN_OK;
  });
}

int kestan_hits_total(uint64_t* out, kestan_hits* hits) {
  return Get(out, hits, [&](kestan_hits& live) -> int {
    *out = live.results.total;
    return KESTAN_OK;
  });
}

int kestan_hits_note(const char** out, size_t* length, kestan_hits* hits, size_t position) {
  return LendLine(out, length, hits, position, &kestan::search::SearchResults::notes);
}

int kestan_hits_suggestion(const char** out, size_t* length, kestan_hits* hits, size_t position) {
  return LendLine(out, length, hits, position, &kestan::search::SearchResults::suggestions);
}

void kestan_hits_free(kestan_hits* hits) { kestan::c::Free(hits); }
