// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/matching/explain.h"

#include <chrono>
#include <cstddef>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "search/matching/matcher.h"
#include "search/query/distinct.h"
#include "search/query/query_printer.h"

namespace kestan::search {
namespace {

using Kind = Query::Kind;
using Clock = std::chrono::steady_clock;

std::uint64_t MicrosecondsSince(Clock::time_point start) {
  const auto time = Clock::now() - start;
  return static_cast<std::uint64_t>(
      std::chrono::duration_cast<std::chrono::microseconds>(time).count());
}

bool StandsForWords(const Query& query) {
  return query.kind == Kind::kPrefix || query.kind == Kind::kFuzzy ||
         query.kind == Kind::kInflections;
}

bool NeedsPositions(const Query& query) {
  return query.kind == Kind::kNear || query.kind == Kind::kPhrase;
}

// What a matcher does not keep is found again with what it is a part of.
bool IsFoundAnew(const Query& query) {
  return query.kind == Kind::kAnd || query.kind == Kind::kOr || query.kind == Kind::kNot;
}

// Returns the operands that are evaluated.
std::vector<const Query*> PartsOf(const Query& query) {
  std::vector<const Query*> parts;
  if (query.kind == Kind::kAnd || query.kind == Kind::kOr) {
    for (const Repeated& operand : Distinct(query.operands)) parts.push_back(operand.query);
  } else {
    for (const Query& operand : query.operands) parts.push_back(&operand);
  }
  return parts;
}

class Explainer {
 public:
  explicit Explainer(const Snapshot& snapshot) : with_positions_(snapshot.with_positions()) {
    for (std::size_t i = 0; i < snapshot.segments.size(); ++i) {
      matchers_.push_back(std::make_unique<Matcher>(*snapshot.segments[i], snapshot.LanguageOf(i)));
    }
  }

  // Explains the parts first, so that what they find is kept when the whole is measured. Adds what
  // the last look took to `*microseconds`.
  Explanation Explain(const Query& query, Need need, std::uint64_t* microseconds) {
    if (query.kind == Kind::kOptional) return ExplainOptional(query, need, microseconds);
    Explanation explanation;
    explanation.part = LabelOf(query);
    const Need need_of_parts = NeedsPositions(query) ? Need::kPositions : need;
    std::uint64_t again = 0;
    for (const Query* part : PartsOf(query)) {
      std::uint64_t time = 0;
      explanation.parts.push_back(Explain(*part, need_of_parts, &time));
      if (IsFoundAnew(*part)) again += time;
    }
    const Clock::time_point start = Clock::now();
    for (const auto& matcher : matchers_) {
      explanation.documents += matcher->Find(query, need)->size();
    }
    *microseconds = MicrosecondsSince(start);
    explanation.microseconds = *microseconds > again ? *microseconds - again : 0;
    explanation.note = NoteOn(query);
    return explanation;
  }

  Status status() const {
    for (const auto& matcher : matchers_) {
      if (!matcher->status().ok()) return matcher->status();
    }
    return {};
  }

 private:
  Explanation ExplainOptional(const Query& query, Need need, std::uint64_t* microseconds) {
    Explanation explanation = Explain(query.operands.front(), need, microseconds);
    explanation.note += explanation.note.empty() ? "not required" : ", not required";
    return explanation;
  }

  std::string NoteOn(const Query& query) const {
    if (NeedsPositions(query) && !with_positions_) return "taken for AND";
    if (!StandsForWords(query)) return "";
    std::set<std::string> terms;
    for (const auto& matcher : matchers_) {
      const std::vector<std::string>& found = matcher->TermsOf(query);
      terms.insert(found.begin(), found.end());
    }
    return std::to_string(terms.size()) + (terms.size() == 1 ? " word" : " words");
  }

  const bool with_positions_;
  std::vector<std::unique_ptr<Matcher>> matchers_;  // one for each segment
};

}  // namespace

Result<Explanation> ExplainQuery(const Query& query, const Snapshot& snapshot) {
  Explainer explainer(snapshot);
  std::uint64_t microseconds = 0;
  Explanation explanation = explainer.Explain(query, Need::kCodes, &microseconds);
  Status status = explainer.status();
  if (!status.ok()) return status;
  return explanation;
}

}  // namespace kestan::search
