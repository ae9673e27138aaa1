// SPDX-License-Identifier: GPL-3.0-or-later
#include <string_view>
#include <utility>

#include "c/filter.h"
#include "c/hits_handle.h"
#include "c/input.h"
#include "c/query_handle.h"

using kestan::c::Filter;
using kestan::c::Status;
using kestan::c::StatusCode;
using kestan::search::IndexReader;
using kestan::search::SearchOptions;

namespace {

// Runs `ask`, which takes the index and the options and returns a Result, and `take`s its value.
template <typename Ask, typename Take>
int Answer(kestan_reader& live, const IndexReader& index, const kestan_search_options* options,
           Ask ask, Take take) {
  SearchOptions read;
  Status status = kestan::c::Read(options, &read);
  if (!status.ok()) return live.Return(std::move(status));
  Filter filter(options == nullptr ? nullptr : options->filter,
                options == nullptr ? nullptr : options->filter_payload, live.reader.get());
  read.filter = filter.function();
  auto answer = ask(index, read);
  if (filter.has_stopped()) {
    return live.Return(Status(StatusCode::kInterrupted, "the filter asked to stop"));
  }
  if (!answer.ok()) return live.Return(answer.status());
  return take(std::move(*answer));
}

// Returns what takes results, and hands them over as hits.
auto TakeHits(kestan_hits** out, kestan_reader& live) {
  return [out, &live](kestan::search::SearchResults results) {
    return HandOver(std::make_unique<kestan_hits>(std::move(results), live.reader), out);
  };
}

auto TakeCount(uint64_t* out) {
  return [out](std::uint64_t count) -> int {
    *out = count;
    return KESTAN_OK;
  };
}

// Runs `call` with the text of a query.
template <typename Call>
int WithText(kestan_reader& live, const char* query, std::size_t length, Call call) {
  std::string_view text;
  Status status = kestan::c::Read({"the query", query, length}, &text);
  return status.ok() ? call(text) : live.Return(std::move(status));
}

}  // namespace

int kestan_search_options_init(kestan_search_options* options, unsigned version) {
  return kestan::c::Initialise(options, version, KESTAN_SEARCH_OPTIONS_INIT);
}

int kestan_reader_search(kestan_hits** out, kestan_reader* reader, const char* query,
                         size_t query_length, const kestan_search_options* options) {
  return kestan::c::AskForHandle(out, reader, [&](kestan_reader& live, const IndexReader& index) {
    return WithText(live, query, query_length, [&](std::string_view text) {
      const auto search = [text](const IndexReader& asked, const SearchOptions& read) {
        return asked.Search(text, read);
      };
      return Answer(live, index, options, search, TakeHits(out, live));
    });
  });
}

int kestan_reader_search_query(kestan_hits** out, kestan_reader* reader, const kestan_query* query,
                               const kestan_search_options* options) {
  return kestan::c::AskForHandle(out, reader, [&](kestan_reader& live, const IndexReader& index) {
    return WithQuery(live, query, [&](const kestan::search::SearchQuery& built) {
      const auto search = [&built](const IndexReader& asked, const SearchOptions& read) {
        return asked.Search(built, read);
      };
      return Answer(live, index, options, search, TakeHits(out, live));
    });
  });
}

int kestan_reader_count(uint64_t* out, kestan_reader* reader, const char* query,
                        size_t query_length, const kestan_search_options* options) {
  return kestan::c::Ask(out, reader, [&](kestan_reader& live, const IndexReader& index) {
    return WithText(live, query, query_length, [&](std::string_view text) {
      const auto count = [text](const IndexReader& asked, const SearchOptions& read) {
        return asked.Count(text, read);
      };
      return Answer(live, index, options, count, TakeCount(out));
    });
  });
}

int kestan_reader_count_query(uint64_t* out, kestan_reader* reader, const kestan_query* query,
                              const kestan_search_options* options) {
  return kestan::c::Ask(out, reader, [&](kestan_reader& live, const IndexReader& index) {
    return WithQuery(live, query, [&](const kestan::search::SearchQuery& built) {
      const auto count = [&built](const IndexReader& asked, const SearchOptions& read) {
        return asked.Count(built, read);
      };
      return Answer(live, index, options, count, TakeCount(out));
    });
  });
}
