// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/search/fragment.h>

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "c/hits_handle.h"
#include "c/input.h"

using kestan::c::Invalid;
using kestan::c::Status;
using kestan::search::Fragment;
using kestan::search::IndexReader;

struct kestan_snippet final : kestan::c::Handle {
  explicit kestan_snippet(std::vector<Fragment> cut) : fragments(std::move(cut)) {
    for (const Fragment& fragment : fragments) {
      views.push_back({fragment.text.c_str(), fragment.text.size(), fragment.matches ? 1 : 0});
      text += fragment.text;
    }
  }

  const std::vector<Fragment> fragments;
  std::vector<kestan_fragment> views;  // of `fragments`
  std::string text;                    // of all of them
  std::size_t next = 0;
};

namespace {

int CutSnippet(kestan_snippet** out, kestan_hits& live, std::string_view text) {
  auto fragments = IndexReader::Snippet(live.results, text);
  if (!fragments.ok()) return live.Return(fragments.status());
  return HandOver(std::make_unique<kestan_snippet>(std::move(*fragments)), out);
}

int CutSnippetOfSummary(kestan_snippet** out, kestan_hits& live, const kestan::search::Hit& hit) {
  std::string summary;
  const auto read_summary = [&](const IndexReader& index) {
    auto document = index.FindDocument(hit);
    if (document.ok()) summary = std::move(document->summary);
    return live.Return(document.status());
  };
  const int code = UseSnapshot(&live, live.reader.get(), read_summary);
  return code == KESTAN_OK ? CutSnippet(out, live, summary) : code;
}

}  // namespace

int kestan_hits_snippet(kestan_snippet** out, kestan_hits* hits, const kestan_hit* hit,
                        const char* text, size_t text_length) {
  if (out != nullptr) *out = nullptr;
  return kestan::c::Use(hits, [&](kestan_hits& live) {
    if (out == nullptr) return live.Return(Invalid("the output is null"));
    const kestan::search::Hit* const found = live.HitOf(hit);
    if (found == nullptr) return live.Return(Invalid("the hit is none of these hits"));
    if (text == nullptr && text_length == 0) return CutSnippetOfSummary(out, live, *found);
    std::string_view view;
    Status status = kestan::c::Read({"the text", text, text_length}, &view);
    return status.ok() ? CutSnippet(out, live, view) : live.Return(std::move(status));
  });
}

int kestan_snippet_next(const kestan_fragment** out, kestan_snippet* snippet) {
  return kestan::c::Use(snippet, [&](kestan_snippet& live) -> int {
    if (out == nullptr) return live.Return(Invalid("the output is null"));
    if (live.next == live.views.size()) return KESTAN_ITEROVER;
    *out = &live.views[live.next++];
    return KESTAN_OK;
  });
}

int kestan_snippet_text(const char** out, size_t* length, kestan_snippet* snippet) {
  return kestan::c::Use(snippet, [&](kestan_snippet& live) -> int {
    if (out == nullptr || length == nullptr) return live.Return(Invalid("the output is null"));
    *out = live.text.c_str();
    *length = live.text.size();
    return KESTAN_OK;
  });
}

void kestan_snippet_free(kestan_snippet* snippet) { kestan::c::Free(snippet); }
