// SPDX-License-Identifier: GPL-3.0-or-later
#include <limits>
#include <string_view>
#include <vector>

#include "c/input.h"
#include "c/query_handle.h"

using kestan::c::Input;
using kestan::c::Invalid;
using kestan::c::Status;
using kestan::search::IndexReader;
using kestan::search::SearchQuery;

namespace {

// More operands are not taken: a number beyond may be no number at all.
constexpr std::size_t kMaxOperands = 100000;

// Hands `query` over if it can be put to the reader.
int HandOverQuery(const SearchQuery& query, kestan_reader& live, const IndexReader& index,
                  kestan_query** out) {
  Status status = index.CheckQuery(query);
  if (!status.ok()) return live.Return(std::move(status));
  return HandOver(std::make_unique<kestan_query>(query, live.reader), out);
}

// Makes a query of a text.
int MakeQuery(kestan_query** out, kestan_reader* reader, const Input& text,
              SearchQuery (*make)(std::string_view)) {
  return kestan::c::AskForHandle(out, reader, [&](kestan_reader& live, const IndexReader& index) {
    std::string_view view;
    Status status = kestan::c::Read(text, &view);
    if (!status.ok()) return live.Return(std::move(status));
    return HandOverQuery(make(view), live, index, out);
  });
}

// Makes a query of `count` others.
template <typename Join>
int JoinQueries(kestan_query** out, kestan_reader* reader, const kestan_query* const* operands,
                std::size_t count, Join join) {
  return kestan::c::AskForHandle(out, reader, [&](kestan_reader& live, const IndexReader& index) {
    if (operands == nullptr) return live.Return(Invalid("the operands are null"));
    if (count == 0) return live.Return(Invalid("there is no operand"));
    if (count > kMaxOperands) return live.Return(Invalid("there are more than 100,000 operands"));
    std::vector<SearchQuery> queries;
    for (std::size_t i = 0; i < count; ++i) {
      const int code = WithQuery(live, operands[i], [&](const SearchQuery& query) {
        queries.push_back(query);
        return int{KESTAN_OK};
      });
      if (code != KESTAN_OK) return code;
    }
    return HandOverQuery(join(queries), live, index, out);
  });
}

}  // namespace

int kestan_query_word(kestan_query** out, kestan_reader* reader, const char* word,
                      size_t word_length) {
  return MakeQuery(out, reader, {"the word", word, word_length}, SearchQuery::Word);
}

int kestan_query_prefix(kestan_query** out, kestan_reader* reader, const char* prefix,
                        size_t prefix_length) {
  return MakeQuery(out, reader, {"the prefix", prefix, prefix_length}, SearchQuery::Prefix);
}

int kestan_query_phrase(kestan_query** out, kestan_reader* reader, const char* text,
                        size_t text_length) {
  return MakeQuery(out, reader, {"the text", text, text_length}, SearchQuery::Phrase);
}

int kestan_query_near(kestan_query** out, kestan_reader* reader, const kestan_query* left,
                      const kestan_query* right, unsigned distance) {
  if (distance < 1 || distance > unsigned{std::numeric_limits<int>::max()}) {
    return kestan::c::AskForHandle(out, reader, [](kestan_reader& live, const IndexReader&) {
      return live.Return(Invalid("the distance is not between 1 and 2,147,483,647"));
    });
  }
  const kestan_query* const operands[] = {left, right};
  return JoinQueries(out, reader, operands, 2, [distance](const std::vector<SearchQuery>& queries) {
    return SearchQuery::Near(queries[0], queries[1], distance);
  });
}

int kestan_query_and(kestan_query** out, kestan_reader* reader, const kestan_query* const* operands,
                     size_t count) {
  return JoinQueries(out, reader, operands, count, SearchQuery::And);
}

int kestan_query_or(kestan_query** out, kestan_reader* reader, const kestan_query* const* operands,
                    size_t count) {
  return JoinQueries(out, reader, operands, count, SearchQuery::Or);
}

int kestan_query_not(kestan_query** out, kestan_reader* reader, const kestan_query* operand) {
  return JoinQueries(out, reader, &operand, 1, [](const std::vector<SearchQuery>& queries) {
    return SearchQuery::Not(queries[0]);
  });
}

void kestan_query_free(kestan_query* query) { kestan::c::Free(query); }
