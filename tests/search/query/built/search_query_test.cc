// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/search/search_query.h>

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <type_traits>
#include <vector>

#include "search/query/built/built_node.h"

namespace kestan::search {
namespace {

static_assert(std::is_nothrow_copy_constructible_v<SearchQuery>);
static_assert(std::is_nothrow_copy_assignable_v<SearchQuery>);

TEST(SearchQueryTest, TextsAreKeptAsTheyAreGiven) {
  const std::string text("a\0\n*", 4);
  EXPECT_EQ(BuiltNode::Of(SearchQuery::Word(text))->text, text);
  EXPECT_EQ(BuiltNode::Of(SearchQuery::Prefix(""))->text, "");
  EXPECT_EQ(BuiltNode::Of(SearchQuery::Phrase("\xff"))->text, "\xff");
}

TEST(SearchQueryTest, CopyIsTheSameQuery) {
  const SearchQuery word = SearchQuery::Word("cat");
  SearchQuery copy = SearchQuery::Word("dog");
  copy = word;
  EXPECT_EQ(BuiltNode::Of(copy), BuiltNode::Of(word));
  EXPECT_EQ(BuiltNode::Of(SearchQuery(copy)), BuiltNode::Of(word));
}

TEST(SearchQueryTest, WhatWasMovedFromIsStillTheSameQuery) {
  SearchQuery word = SearchQuery::Word("cat");
  const SearchQuery moved = std::move(word);
  EXPECT_EQ(BuiltNode::Of(word), BuiltNode::Of(moved));  // NOLINT(bugprone-use-after-move)
}

// A thread has 8 MB of stack at most.
TEST(SearchQueryTest, ChainsOfAMillionAreBuiltCopiedAndDestroyed) {
  SearchQuery chain = SearchQuery::Word("cat");
  for (int i = 0; i < 250'000; ++i) {
    chain = SearchQuery::Not(SearchQuery::Near(chain, SearchQuery::Word("dog"), 1));
    chain = SearchQuery::And({SearchQuery::Word("dog"), SearchQuery::Or({chain})});
  }
  const SearchQuery copy = chain;
  chain = SearchQuery::Word("cat");
  EXPECT_EQ(BuiltNode::Of(copy)->kind, BuiltNode::Kind::kAnd);
}

TEST(SearchQueryTest, ThreadsThatShareAQueryDestroyItOnce) {
  SearchQuery chain = SearchQuery::Word("cat");
  for (int i = 0; i < 1000; ++i) chain = SearchQuery::Or({chain, chain});
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([copy = chain] {
      SearchQuery query = copy;
      for (int j = 0; j < 100; ++j) query = SearchQuery::Not(query);
    });
  }
  chain = SearchQuery::Word("cat");
  for (std::thread& thread : threads) thread.join();
}

}  // namespace
}  // namespace kestan::search
