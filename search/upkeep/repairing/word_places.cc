// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/upkeep/repairing/word_places.h"

#include <algorithm>
#include <tuple>

#include "search/segment/plain_index.h"

namespace kestan::search {
namespace {

// Sorts the positions of each posting, each once.
Positions InOrder(const Positions& positions, std::vector<Position>* sorted) {
  sorted->assign(positions.begin(), positions.end());
  std::sort(sorted->begin(), sorted->end());
  sorted->erase(std::unique(sorted->begin(), sorted->end()), sorted->end());
  return {sorted->data(), sorted->size()};
}

}  // namespace

WordPlaces::WordPlaces(SalvagedTerms* terms, std::vector<std::optional<std::uint32_t>> words)
    : terms_(*terms), words_(std::move(words)), is_long_(words_.size()), taken_(words_.size()) {}

Status WordPlaces::Resolve() {
  Status status;
  if (terms_.with_positions()) {
    status = FindLongDocuments();
    if (status.ok()) status = FindContested();
    if (status.ok() && !contested_.empty()) status = Decide();
  }
  return status.ok() ? CompareForms() : status;
}

// ---- One word at a position ----

// Calls `visit` with each word without capitals and its postings.
template <typename Visit>
Status WordPlaces::ForEachFolded(Visit visit) {
  SalvagedPostings postings;
  for (std::size_t i = 0; i < terms_.size(); ++i) {
    if (!IsFolded(terms_.TermAt(i))) continue;
    Status status = terms_.Read(i, &postings);
    if (!status.ok()) return status;
    visit(i, postings);
  }
  return {};
}

// Only a text that goes on after the last position has a word at it, or else ends there.
Status WordPlaces::FindLongDocuments() {
  return ForEachFolded([this](std::size_t, const SalvagedPostings& postings) {
    for (const SalvagedPosting& posting : postings) {
      if (words_[posting.code].value_or(UINT32_MAX) <= kMaxPosition) continue;
      const Positions positions = postings.PositionsOf(posting);
      const bool has_last =
          std::find(positions.begin(), positions.end(), kMaxPosition) != positions.end();
      if (has_last) is_long_[posting.code] = true;
    }
  });
}

bool WordPlaces::IsBehind(Code code, Position position) const {
  return position > words_[code].value_or(UINT32_MAX);
}

// Returns whether nobody has taken the position before.
bool WordPlaces::Take(Code code, Position position) {
  std::vector<bool>& taken = taken_[code];
  if (position >= taken.size()) taken.resize(std::size_t{position} + 1);
  if (taken[position]) return false;
  taken[position] = true;
  return true;
}

Status WordPlaces::FindContested() {
  std::vector<Position> sorted;
  Status status = ForEachFolded([&](std::size_t, const SalvagedPostings& postings) {
    for (const SalvagedPosting& posting : postings) {
      if (is_long_[posting.code]) continue;
      for (const Position position : InOrder(postings.PositionsOf(posting), &sorted)) {
        if (IsBehind(posting.code, position)) {
          ++counts_.behind;
        } else if (!Take(posting.code, position)) {
          contested_.push_back(PlaceOf(posting.code, position));
        }
      }
    }
  });
  std::sort(contested_.begin(), contested_.end());
  contested_.erase(std::unique(contested_.begin(), contested_.end()), contested_.end());
  return status;
}

bool WordPlaces::IsContested(Place place) const {
  return std::binary_search(contested_.begin(), contested_.end(), place);
}

bool WordPlaces::IsStronger(const Claim& left, const Claim& right) {
  // a / b < c / d, with no number above 65535
  const std::uint64_t left_share = std::uint64_t{left.contested} * right.positions;
  const std::uint64_t right_share = std::uint64_t{right.contested} * left.positions;
  return std::tie(left.place, left.is_doubted, left_share, left.word) <
         std::tie(right.place, right.is_doubted, right_share, right.word);
}

Status WordPlaces::Decide() {
  std::vector<Claim> claims;
  Status status = ForEachFolded([&](std::size_t word, const SalvagedPostings& postings) {
    AddClaims(word, postings, &claims);
  });
  if (!status.ok()) return status;
  std::sort(claims.begin(), claims.end(), IsStronger);
  owners_.reserve(contested_.size());
  const Claim* last = nullptr;
  for (const Claim& claim : claims) {
    const bool is_first = last == nullptr || last->place != claim.place;
    if (is_first) owners_.push_back(claim.word);
    if (!is_first && claim.word != owners_.back()) ++counts_.shared;
    last = &claim;
  }
  return {};
}

void WordPlaces::AddClaims(std::size_t word, const SalvagedPostings& postings,
                           std::vector<Claim>* claims) {
  std::vector<Position> sorted;
  for (const SalvagedPosting& posting : postings) {
    if (is_long_[posting.code]) continue;
    const std::size_t first = claims->size();
    const Positions positions = InOrder(postings.PositionsOf(posting), &sorted);
    for (const Position position : positions) {
      const Place place = PlaceOf(posting.code, position);
      if (!IsContested(place)) continue;
      claims->push_back({place, posting.is_doubted, 0, positions.count, word});
    }
    const std::size_t contested = claims->size() - first;
    for (std::size_t i = first; i < claims->size(); ++i) (*claims)[i].contested = contested;
  }
}

// ---- Forms of words ----

Status WordPlaces::CompareForms() {
  SalvagedPostings found;
  SalvagedPostings forms;
  SalvagedPostings kept;
  for (std::size_t i = 0; i < terms_.size(); ++i) {
    const std::size_t folded = terms_.FoldedForm(i);
    if (folded == terms_.size()) continue;
    Status status = ReadPlaced(i, &found);
    if (status.ok()) status = ReadPlaced(folded, &forms);
    if (!status.ok()) return status;
    KeepForms(found, forms, &kept,
              [&](Code code, Position position) { RestoreOrCount(folded, code, position); });
  }
  return {};
}

// Keeps of `found`, the postings of a word with capitals, what is in `forms` too, the postings of
// its form without them. Calls `lack` with what is not.
template <typename Lack>
void WordPlaces::KeepForms(const SalvagedPostings& found, const SalvagedPostings& forms,
                           SalvagedPostings* kept, Lack lack) const {
  kept->Clear();
  auto form = forms.begin();
  for (const SalvagedPosting& posting : found) {
    while (form != forms.end() && form->code < posting.code) ++form;
    const bool has_code = form != forms.end() && form->code == posting.code;
    if (!terms_.with_positions()) {
      if (has_code) kept->Add(posting.code, false);
      if (!has_code) lack(posting.code, 0);
      continue;
    }
    const Positions there = has_code ? forms.PositionsOf(*form) : Positions{nullptr, 0};
    KeepPositions(posting.code, found.PositionsOf(posting), there, kept, lack);
  }
}

// Of a long text, where positions need not ascend, all that follows the first lack is lacking.
template <typename Lack>
void WordPlaces::KeepPositions(Code code, const Positions& found, const Positions& there,
                               SalvagedPostings* kept, Lack lack) const {
  const bool ascends = !is_long_[code];
  const Position* next = there.begin();
  bool is_added = false;
  for (const Position position : found) {
    const auto is_passed = [&](Position other) {
      return ascends ? other < position : other != position;
    };
    while (next != there.end() && is_passed(*next)) ++next;
    if (next == there.end() || *next != position) {
      lack(code, position);
      continue;
    }
    if (!is_added) kept->Add(code, false);
    is_added = true;
    kept->AddPosition(position);
    ++next;
  }
}

void WordPlaces::RestoreOrCount(std::size_t folded, Code code, Position position) {
  const bool is_free = position == 0 || (!is_long_[code] && Take(code, position));
  if (is_free) restored_[folded].push_back(PlaceOf(code, position));
  ++(is_free ? counts_.restored : counts_.forms);
}

// ---- What stays ----

Status WordPlaces::Read(std::size_t index, SalvagedPostings* kept) {
  const std::size_t folded = terms_.FoldedForm(index);
  if (folded == terms_.size()) return ReadPlaced(index, kept);
  SalvagedPostings found;
  SalvagedPostings forms;
  Status status = ReadPlaced(index, &found);
  if (status.ok()) status = ReadPlaced(folded, &forms);
  if (status.ok()) KeepForms(found, forms, kept, [](Code, Position) {});
  return status;
}

// Reads the postings of a word whatever those of its other form are.
Status WordPlaces::ReadPlaced(std::size_t index, SalvagedPostings* kept) {
  SalvagedPostings found;
  Status status = terms_.Read(index, &found);
  if (!status.ok()) return status;
  std::vector<Place> more;
  const auto restored = restored_.find(index);
  if (restored != restored_.end()) {
    more = restored->second;
    std::sort(more.begin(), more.end());
  }
  kept->Clear();
  auto next = more.begin();
  std::vector<Position> positions;
  for (auto posting = found.begin(); posting != found.end() || next != more.end();) {
    const Code code = posting == found.end() ? CodeOf(*next)
                      : next == more.end()   ? posting->code
                                             : std::min(posting->code, CodeOf(*next));
    positions.clear();
    for (; posting != found.end() && posting->code == code; ++posting) {
      AppendPlaced(index, code, found.PositionsOf(*posting), &positions);
    }
    for (; next != more.end() && CodeOf(*next) == code; ++next) {
      positions.push_back(static_cast<Position>(*next));
    }
    AddPosting(code, &positions, kept);
  }
  return {};
}

void WordPlaces::AppendPlaced(std::size_t word, Code code, const Positions& found,
                              std::vector<Position>* positions) const {
  const bool is_folded = IsFolded(terms_.TermAt(word));
  for (const Position position : found) {
    if (is_long_[code] ||
        (!IsBehind(code, position) && (!is_folded || IsOwner(word, PlaceOf(code, position))))) {
      positions->push_back(position);
    }
  }
}

// Returns whether no other word has the position.
bool WordPlaces::IsOwner(std::size_t word, Place place) const {
  const auto found = std::lower_bound(contested_.begin(), contested_.end(), place);
  const bool is_contested = found != contested_.end() && *found == place;
  return !is_contested || owners_[static_cast<std::size_t>(found - contested_.begin())] == word;
}

void WordPlaces::AddPosting(Code code, std::vector<Position>* positions,
                            SalvagedPostings* kept) const {
  if (!terms_.with_positions()) return kept->Add(code, false);
  if (positions->empty()) return;
  kept->Add(code, false);
  if (is_long_[code]) {
    for (const Position position : *positions) kept->AddPosition(position);
    return;
  }
  std::vector<Position> sorted;
  for (const Position position : InOrder({positions->data(), positions->size()}, &sorted)) {
    kept->AddPosition(position);
  }
}

}  // namespace kestan::search
