// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/search/search_query.h>

#include <exception>
#include <utility>

#include "search/query/built/built_node.h"

namespace kestan::search {
namespace {

using Kind = BuiltNode::Kind;

// The nodes that this thread is about to destroy.
struct Doomed {
  const BuiltNode* first = nullptr;
  bool are_destroyed = false;  // by a call below this one
};
thread_local Doomed doomed;

// Destroys `node`. Its operands get here while it is destroyed, and wait in a list: a chain of any
// length takes no more of the stack than one node.
void Destroy(const BuiltNode* node) noexcept {
  node->next = doomed.first;
  doomed.first = node;
  if (doomed.are_destroyed) return;
  doomed.are_destroyed = true;
  while (doomed.first != nullptr) {
    const BuiltNode* const next = doomed.first;
    doomed.first = next->next;
    delete next;
  }
  doomed.are_destroyed = false;
}

// Calls `build`, which returns a query.
template <typename Build>
SearchQuery WithoutThrowing(const Build& build) noexcept {
  try {
    return build();
  } catch (const std::exception&) {
    return BuiltNode::NotBuilt();
  }
}

SearchQuery OfText(Kind kind, std::string_view text) noexcept {
  return WithoutThrowing([&] {
    BuiltNode node;
    node.kind = kind;
    node.text = text;
    return BuiltNode::Built(std::move(node));
  });
}

SearchQuery OfOperands(Kind kind, std::vector<SearchQuery> operands) noexcept {
  return WithoutThrowing([&] {
    BuiltNode node;
    node.kind = kind;
    node.operands = std::move(operands);
    return BuiltNode::Built(std::move(node));
  });
}

}  // namespace

SearchQuery BuiltNode::Built(BuiltNode node) {
  auto* const kept = new BuiltNode(std::move(node));
  // Destroys it if there is no memory for the count of its owners.
  return SearchQuery(std::shared_ptr<const BuiltNode>(kept, Destroy));
}

SearchQuery SearchQuery::Word(std::string_view word) noexcept { return OfText(Kind::kWord, word); }

SearchQuery SearchQuery::Prefix(std::string_view prefix) noexcept {
  return OfText(Kind::kPrefix, prefix);
}

SearchQuery SearchQuery::Phrase(std::string_view text) noexcept {
  return OfText(Kind::kPhrase, text);
}

SearchQuery SearchQuery::Near(SearchQuery left, SearchQuery right,
                              unsigned distance_words) noexcept {
  return WithoutThrowing([&] {
    BuiltNode node;
    node.kind = Kind::kNear;
    node.operands = {left, right};
    node.distance_words = distance_words;
    return BuiltNode::Built(std::move(node));
  });
}

SearchQuery SearchQuery::And(std::vector<SearchQuery> operands) noexcept {
  return OfOperands(Kind::kAnd, std::move(operands));
}

SearchQuery SearchQuery::Or(std::vector<SearchQuery> operands) noexcept {
  return OfOperands(Kind::kOr, std::move(operands));
}

SearchQuery SearchQuery::Not(SearchQuery operand) noexcept {
  return WithoutThrowing([&] {
    BuiltNode node;
    node.kind = Kind::kNot;
    node.operands = {operand};
    return BuiltNode::Built(std::move(node));
  });
}

SearchQuery::SearchQuery(std::shared_ptr<const BuiltNode> node) noexcept : node_(std::move(node)) {}
SearchQuery::SearchQuery(const SearchQuery& other) noexcept = default;
SearchQuery& SearchQuery::operator=(const SearchQuery& other) noexcept = default;
SearchQuery::~SearchQuery() = default;

}  // namespace kestan::search
