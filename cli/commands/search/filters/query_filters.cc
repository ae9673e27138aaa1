// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/commands/search/filters/query_filters.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "cli/commands/search/filters/query_pieces.h"
#include "cli/console/message.h"

namespace kestan_cli {
namespace {

using Kind = QueryPiece::Kind;
using Places = std::vector<std::size_t>;  // of filters

bool IsBinary(Kind kind) { return kind == Kind::kAnd || kind == Kind::kOr || kind == Kind::kNear; }

// Puts the pieces of a query together again, without the filters. Where filters were taken out
// there is a hole, until the next piece shows what else goes.
class Rest {
 public:
  void Add(QueryPiece piece) {
    if (piece.kind == Kind::kFilter) return AddFilter(std::move(piece.filter));
    if (piece.kind == Kind::kClose) return Close(std::move(piece));
    if (IsBinary(piece.kind)) return Join(std::move(piece));
    if (piece.kind == Kind::kOpen) groups_.emplace_back();
    if (piece.kind != Kind::kNot) hole_.clear();
    pieces_.push_back(std::move(piece));
  }

  FilteredQuery Finish() {
    DropOperatorBeforeHole();
    if (HoldsParenthesesAlone()) pieces_.clear();
    FilteredQuery query;
    for (const QueryPiece& piece : pieces_) {
      query.words += piece.text;
      if (piece.text != "-") query.words += ' ';
    }
    if (!query.words.empty()) query.words.pop_back();
    for (std::size_t i = 0; i < filters_.size(); ++i) {
      if (!is_partial_[i]) continue;
      query.notes.push_back(Quoted(filters_[i].text) +
                            ": a filter holds for the whole query, not for a part of it");
    }
    query.filters = std::move(filters_);
    return query;
  }

 private:
  bool EndsWith(Kind kind) const { return !pieces_.empty() && pieces_.back().kind == kind; }
  bool EndsWithOperator() const { return !pieces_.empty() && IsBinary(pieces_.back().kind); }

  bool HoldsParenthesesAlone() const {
    return std::all_of(pieces_.begin(), pieces_.end(), [](const QueryPiece& piece) {
      return piece.kind == Kind::kOpen || piece.kind == Kind::kClose;
    });
  }

  void AddFilter(QueryFilter filter) {
    const std::size_t place = filters_.size();
    filters_.push_back(std::move(filter));
    is_partial_.push_back(false);
    Negate({place});
    hole_.push_back(place);
    if (!groups_.empty()) groups_.back().push_back(place);
    if (EndsWith(Kind::kOr) || EndsWith(Kind::kNear)) is_partial_[place] = true;
  }

  // Takes each NOT that stands before `filters`.
  void Negate(const Places& filters) {
    for (; EndsWith(Kind::kNot); pieces_.pop_back()) {
      for (const std::size_t place : filters) {
        if (filters.size() == 1) filters_[place].excludes = !filters_[place].excludes;
        if (filters.size() > 1) is_partial_[place] = true;
      }
    }
  }

  void Join(QueryPiece joining) {
    if (!hole_.empty() && joining.kind != Kind::kAnd) {
      for (const std::size_t place : hole_) is_partial_[place] = true;
    }
    const bool begins = pieces_.empty() || EndsWith(Kind::kOpen);
    if (!hole_.empty() && begins) return;  // the hole stays, for one more operator
    if (!hole_.empty() && EndsWithOperator()) {
      // What the hole stood for belonged to the operator that binds tighter.
      if (joining.kind == Kind::kOr) pieces_.back() = std::move(joining);
    } else {
      pieces_.push_back(std::move(joining));
    }
    hole_.clear();
  }

  void DropOperatorBeforeHole() {
    if (!hole_.empty() && EndsWithOperator()) pieces_.pop_back();
  }

  void Close(QueryPiece close) {
    DropOperatorBeforeHole();
    const bool is_empty = !hole_.empty() && EndsWith(Kind::kOpen);
    Places inside;
    if (!groups_.empty()) {
      inside = std::move(groups_.back());
      groups_.pop_back();
    }
    if (is_empty) return RemoveGroup(std::move(inside));
    for (const std::size_t place : inside) is_partial_[place] = true;
    hole_.clear();
    pieces_.push_back(std::move(close));
  }

  // Of a group that held `filters` and nothing else.
  void RemoveGroup(Places filters) {
    pieces_.pop_back();
    Negate(filters);
    if (EndsWith(Kind::kOr) || EndsWith(Kind::kNear)) {
      for (const std::size_t place : filters) is_partial_[place] = true;
    }
    if (!groups_.empty()) {
      Places& around = groups_.back();
      around.insert(around.end(), filters.begin(), filters.end());
    }
    hole_ = std::move(filters);
  }

  std::vector<QueryPiece> pieces_;
  std::vector<QueryFilter> filters_;
  std::vector<bool> is_partial_;  // of each filter, whether it stands in a part of the query
  Places hole_;                   // the filters that stood after the last piece
  std::vector<Places> groups_;    // those in each group that is open
};

}  // namespace

FilteredQuery TakeFilters(std::string_view query) {
  std::vector<QueryPiece> pieces = PiecesOf(query);
  const bool has_filters = std::any_of(pieces.begin(), pieces.end(), [](const QueryPiece& piece) {
    return piece.kind == Kind::kFilter;
  });
  if (!has_filters) return {std::string(query), {}, {}};
  Rest rest;
  for (QueryPiece& piece : pieces) rest.Add(std::move(piece));
  return rest.Finish();
}

}  // namespace kestan_cli
