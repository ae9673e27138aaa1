// SPDX-License-Identifier: GPL-3.0-or-later
#include <algorithm>
#include <utility>

#include "search/matching/operators/operators.h"

namespace kestan::search {

namespace {

constexpr std::size_t kBits = 64;

}  // namespace

// Where bits are enough, there are 32 times fewer bytes to clear and to go through.
OccurrenceUnion::OccurrenceUnion(std::size_t documents, Need need) : need_(need) {
  if (need == Need::kCodes) {
    is_found_.resize(documents / kBits + 1);
  } else {
    counts_.resize(documents + 1);
  }
}

void OccurrenceUnion::AddCodes(const Occurrences& found) {
  for (const Code code : found.codes) is_found_[code / kBits] |= std::uint64_t{1} << code % kBits;
  added_ += found.size();
}

void OccurrenceUnion::Add(const Occurrences& found) {
  if (need_ == Need::kCodes) return AddCodes(found);
  PositionReader reader;
  for (std::size_t i = 0; i < found.size(); ++i) {
    counts_[found.codes[i]] += found.counts.empty() ? 1 : found.counts[i];
    if (need_ != Need::kPositions) continue;
    const Positions where = reader.Of(found, i);
    gathered_codes_.push_back(found.codes[i]);
    gathered_counts_.push_back(static_cast<std::uint32_t>(where.count));
    gathered_.insert(gathered_.end(), where.begin(), where.end());
  }
}

std::vector<Code> OccurrenceUnion::TakeCodes() const {
  std::vector<Code> codes;
  codes.reserve(std::min(added_, is_found_.size() * kBits));
  for (std::size_t i = 0; i < is_found_.size(); ++i) {
    for (std::uint64_t bits = is_found_[i]; bits != 0; bits &= bits - 1) {
      codes.push_back(static_cast<Code>(i * kBits + static_cast<unsigned>(__builtin_ctzll(bits))));
    }
  }
  return codes;
}

Occurrences OccurrenceUnion::Take() {
  Occurrences found;
  if (need_ == Need::kCodes) {
    found.codes = TakeCodes();
    return found;
  }
  const auto is_found = [](std::uint32_t count) { return count > 0; };
  const auto size =
      static_cast<std::size_t>(std::count_if(counts_.begin(), counts_.end(), is_found));
  found.codes.resize(size + 1);
  // Stored always and counted where it is one: documents come in no order that could be guessed.
  for (std::size_t code = 0, next = 0; code < counts_.size() && next < size; ++code) {
    found.codes[next] = static_cast<Code>(code);
    next += counts_[code] > 0 ? 1 : 0;
  }
  found.codes.resize(size);
  found.counts.reserve(size);
  for (const Code code : found.codes) found.counts.push_back(counts_[code]);
  if (need_ == Need::kPositions) Gather(&found);
  return found;
}

// Brings the gathered positions of each document together.
void OccurrenceUnion::Gather(Occurrences* found) {
  std::vector<std::uint32_t> ends(counts_.size());  // by code: where the next ones go
  for (std::size_t i = 0; i < gathered_codes_.size(); ++i) {
    ends[gathered_codes_[i]] += gathered_counts_[i];
  }
  std::uint32_t start = 0;
  found->starts.push_back(0);
  for (const Code code : found->codes) {
    start += std::exchange(ends[code], start);
    found->starts.push_back(start);
  }
  found->positions.resize(gathered_.size());
  const Position* next = gathered_.data();
  for (std::size_t i = 0; i < gathered_codes_.size(); ++i) {
    std::uint32_t& end = ends[gathered_codes_[i]];
    std::copy(next, next + gathered_counts_[i], found->positions.data() + end);
    next += gathered_counts_[i];
    end += gathered_counts_[i];
  }
  for (std::size_t i = 0; i < found->size(); ++i) {
    Position* const positions = found->positions.data();
    std::sort(positions + found->starts[i], positions + found->starts[i + 1]);
  }
}

}  // namespace kestan::search
