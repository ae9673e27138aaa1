// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/commands/search/filters/query_filters.h"

#include <gtest/gtest.h>

namespace kestan_cli {
namespace {

using Lines = std::vector<std::string>;

std::string WordsOf(const std::string& query) { return TakeFilters(query).words; }

// The filters of `query`, each with a blank after it and "-" before those that exclude.
std::string FiltersOf(const std::string& query) {
  std::string filters;
  for (const QueryFilter& filter : TakeFilters(query).filters) {
    filters += (filter.excludes ? "-" : "") + filter.text + " ";
  }
  return filters;
}

Lines NotesOf(const std::string& query) { return TakeFilters(query).notes; }

TEST(TakeFiltersTest, QueryWithoutFiltersStaysAsItIs) {
  for (const char* const query : {"", " a  ( b",
                                  "\xe2\x80\x9c"
                                  "a",
                                  "a OR", "()"}) {
    EXPECT_EQ(WordsOf(query), query);
    EXPECT_EQ(FiltersOf(query), "");
  }
}

TEST(TakeFiltersTest, FiltersAreTakenOutWhereverTheyStand) {
  EXPECT_EQ(WordsOf("type:pdf a path:x \"b c\" title:\"d e\" -f"), "a \"b c\" -f");
  EXPECT_EQ(FiltersOf("type:pdf a path:x \"b c\" title:\"d e\" -f"),
            "type:pdf path:x title:\"d e\" ");
  EXPECT_EQ(WordsOf("type:pdf"), "");
}

TEST(TakeFiltersTest, MinusAndNotExclude) {
  EXPECT_EQ(FiltersOf("a -type:pdf NOT path:x from:y"), "-type:pdf -path:x from:y ");
  EXPECT_EQ(WordsOf("a -type:pdf NOT path:x from:y"), "a");
  EXPECT_EQ(FiltersOf("NOT -type:pdf NOT NOT path:x"), "type:pdf path:x ");
}

TEST(TakeFiltersTest, NotOfAWordStays) {
  EXPECT_EQ(WordsOf("type:pdf NOT a"), "NOT a");
  EXPECT_EQ(WordsOf("NOT a type:pdf"), "NOT a");
  EXPECT_EQ(WordsOf("type:pdf -(a b)"), "-( a b )");
}

TEST(TakeFiltersTest, OperatorLeavesWithItsOnlyOperand) {
  EXPECT_EQ(WordsOf("a AND type:pdf"), "a");
  EXPECT_EQ(WordsOf("type:pdf AND a"), "a");
  EXPECT_EQ(WordsOf("type:pdf AND path:x AND a"), "a");
  EXPECT_EQ(WordsOf("a OR type:pdf"), "a");
  EXPECT_EQ(WordsOf("a AND NOT type:pdf AND b"), "a AND b");
  EXPECT_EQ(WordsOf("(a OR type:pdf) b"), "( a ) b");
}

TEST(TakeFiltersTest, OperatorBetweenTwoOthersStays) {
  EXPECT_EQ(WordsOf("a OR type:pdf b"), "a OR b");
  EXPECT_EQ(WordsOf("a type:pdf OR b"), "a OR b");
  EXPECT_EQ(WordsOf("a AND type:pdf OR b"), "a OR b");
  EXPECT_EQ(WordsOf("a OR type:pdf AND b"), "a OR b");
  EXPECT_EQ(WordsOf("a AND type:pdf AND b"), "a AND b");
}

TEST(TakeFiltersTest, ParenthesesThatHoldNothingElseLeave) {
  EXPECT_EQ(WordsOf("a (type:pdf)"), "a");
  EXPECT_EQ(WordsOf("((type:pdf path:x)) a"), "a");
  EXPECT_EQ(WordsOf("a OR (type:pdf)"), "a");
  EXPECT_EQ(WordsOf("(type:pdf) AND a"), "a");
  EXPECT_EQ(WordsOf("(type:pdf"), "");
  EXPECT_EQ(WordsOf("type:pdf ) ("), "");
}

TEST(TakeFiltersTest, NotOfAGroupOfOneFilterIsItsOwn) {
  EXPECT_EQ(FiltersOf("a -(type:pdf)"), "-type:pdf ");
  EXPECT_EQ(FiltersOf("a NOT ((-type:pdf))"), "type:pdf ");
  EXPECT_EQ(WordsOf("a -(type:pdf)"), "a");
  EXPECT_EQ(NotesOf("a -(type:pdf)"), Lines());
}

TEST(TakeFiltersTest, NoteTellsOfFiltersInGroups) {
  EXPECT_EQ(NotesOf("(a type:pdf) path:x"),
            Lines{"'type:pdf': a filter holds for the whole query, not for a part of it"});
  EXPECT_EQ(NotesOf("NOT (type:pdf path:x)").size(), 2u);
  EXPECT_EQ(NotesOf("(a (b type:pdf))").size(), 1u);
  EXPECT_EQ(NotesOf("(a (type:pdf))").size(), 1u);
}

TEST(TakeFiltersTest, NoteTellsOfFiltersBesideOr) {
  for (const char* const query :
       {"a OR type:pdf", "type:pdf OR a", "a OR -type:pdf", "a NEAR/2 type:pdf",
        "type:pdf NEAR/2 a", "type:pdf OR path:x OR a", "a OR (type:pdf)"}) {
    EXPECT_FALSE(NotesOf(query).empty()) << query;
  }
}

TEST(TakeFiltersTest, FiltersOfTheWholeQueryHaveNoNote) {
  for (const char* const query :
       {"a type:pdf", "a AND type:pdf", "(a OR b) type:pdf", "NOT type:pdf a", "(type:pdf) a"}) {
    EXPECT_EQ(NotesOf(query), Lines()) << query;
  }
}

TEST(TakeFiltersTest, HeapsOfParenthesesTakeNoTime) {
  const std::string open(20'000, '(');
  const std::string close(20'000, ')');
  EXPECT_EQ(WordsOf(open + "type:pdf" + close + " a"), "a");
  EXPECT_EQ(TakeFilters(open + "a type:pdf" + close).filters.size(), 1u);
}

}  // namespace
}  // namespace kestan_cli
