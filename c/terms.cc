// SPDX-License-Identifier: GPL-3.0-or-later
#include <string_view>
#include <utility>
#include <vector>

#include "c/input.h"
#include "c/reader_handle.h"

using kestan::c::Invalid;
using kestan::c::Status;
using kestan::search::IndexReader;
using kestan::search::TermInfo;

struct kestan_terms final : kestan::c::Handle {
  explicit kestan_terms(std::vector<TermInfo> found) : terms(std::move(found)) {}

  const std::vector<TermInfo> terms;
  std::size_t next = 0;
  kestan_term view = {};
};

namespace {

using TermList = kestan::search::Result<std::vector<TermInfo>> (IndexReader::*)(std::string_view,
                                                                                std::size_t) const;

// Lists what `list` returns for `text`.
int ListTerms(kestan_terms** out, kestan_reader* reader, const kestan::c::Input& text,
              std::size_t limit, TermList list) {
  return kestan::c::AskForHandle(out, reader, [&](kestan_reader& live, const IndexReader& index) {
    std::string_view view;
    Status status = kestan::c::Read(text, &view);
    if (!status.ok()) return live.Return(std::move(status));
    auto terms = (index.*list)(view, limit);
    if (!terms.ok()) return live.Return(terms.status());
    return HandOver(std::make_unique<kestan_terms>(std::move(*terms)), out);
  });
}

}  // namespace

int kestan_reader_terms(kestan_terms** out, kestan_reader* reader, const char* prefix,
                        size_t prefix_length, size_t limit) {
  return ListTerms(out, reader, {"the prefix", prefix, prefix_length}, limit, &IndexReader::Terms);
}

int kestan_reader_suggest(kestan_terms** out, kestan_reader* reader, const char* word,
                          size_t word_length, size_t limit) {
  return ListTerms(out, reader, {"the word", word, word_length}, limit, &IndexReader::Suggest);
}

int kestan_terms_next(const kestan_term** out, kestan_terms* terms) {
  return kestan::c::Use(terms, [&](kestan_terms& live) -> int {
    if (out == nullptr) return live.Return(Invalid("the output is null"));
    if (live.next == live.terms.size()) return KESTAN_ITEROVER;
    const TermInfo& term = live.terms[live.next++];
    live.view = {term.term.c_str(), term.term.size(), term.documents};
    *out = &live.view;
    return KESTAN_OK;
  });
}

void kestan_terms_free(kestan_terms* terms) { kestan::c::Free(terms); }
