// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/app/suggestion.h"

#include <gtest/gtest.h>

#include <string>

namespace kestan_cli {
namespace {

const Arguments kCommands = {"index", "search", "stats", "compact", "move", "remove", "get"};

TEST(SuggestionTest, OneEditInAShortWordIsForgiven) {
  EXPECT_EQ(MostAlike("gt", kCommands), "get");
  EXPECT_EQ(MostAlike("gte", kCommands), "get");
  EXPECT_EQ(MostAlike("gett", kCommands), "get");
  EXPECT_EQ(MostAlike("gat", kCommands), "get");
  EXPECT_EQ(MostAlike("gates", kCommands), "");
}

TEST(SuggestionTest, AThirdOfALongerWordIsForgiven) {
  EXPECT_EQ(MostAlike("idnex", kCommands), "index");
  EXPECT_EQ(MostAlike("saerhc", kCommands), "search");
  EXPECT_EQ(MostAlike("saxrxx", kCommands), "");
  EXPECT_EQ(MostAlike("indes", kCommands), "index");
  EXPECT_EQ(MostAlike("xndes", kCommands), "");
}

TEST(SuggestionTest, TheMostAlikeWins) {
  EXPECT_EQ(MostAlike("emove", kCommands), "move");
  EXPECT_EQ(MostAlike("rmove", kCommands), "move");  // as far as remove, and before it
  EXPECT_EQ(MostAlike("remov", kCommands), "remove");
}

TEST(SuggestionTest, BeginningsAreCompleted) {
  EXPECT_EQ(MostAlike("comp", kCommands), "compact");
  EXPECT_EQ(MostAlike("com", kCommands), "compact");
  EXPECT_EQ(MostAlike("co", kCommands), "");
}

TEST(SuggestionTest, CapitalsAndDashesDoNotCount) {
  EXPECT_EQ(MostAlike("INDEX", kCommands), "index");
  EXPECT_EQ(MostAlike("-limt", {"--limit"}), "--limit");
  EXPECT_EQ(MostAlike("--name", {"--null", "--names-only"}), "--names-only");
}

TEST(SuggestionTest, WhatIsNoWordIsLikeNone) {
  for (const std::string& word : {std::string(), std::string("--"), std::string(1000, 'g')}) {
    EXPECT_EQ(MostAlike(word, kCommands), "") << word;
  }
  EXPECT_EQ(MostAlike("index", {}), "");
}

TEST(SuggestionTest, QuestionFollowsAnError) {
  EXPECT_EQ(DidYouMean("idnex", kCommands), "; did you mean 'index'?");
  EXPECT_EQ(DidYouMean("sing", kCommands), "");
}

}  // namespace
}  // namespace kestan_cli
