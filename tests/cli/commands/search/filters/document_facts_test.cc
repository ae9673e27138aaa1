// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/commands/search/filters/document_facts.h"

#include <gtest/gtest.h>

namespace kestan_cli {
namespace {

const std::string kFile = "size=1 mtime=1700000000.000000001 hash=00112233445566778899aabbccddeeff";

TEST(FactsOfTest, DateOfAFileIsWhenItWasChanged) {
  const DocumentFacts facts = FactsOf("/a", kFile + "\nlines of the user");
  EXPECT_EQ(facts.date, 1'700'000'000);
  EXPECT_FALSE(facts.is_mail);
  EXPECT_EQ(facts.from, "");
  EXPECT_EQ(facts.container, "");
}

TEST(FactsOfTest, DateOfAMessageIsWhenItWasSent) {
  const DocumentFacts facts = FactsOf("/a", kFile + " date=1600000000 from=\"Ann <a@b.c>\"");
  EXPECT_EQ(facts.date, 1'600'000'000);
  EXPECT_TRUE(facts.is_mail);
  EXPECT_EQ(facts.from, "Ann <a@b.c>");
}

TEST(FactsOfTest, MessageWithoutADateHasThatOfItsFile) {
  const DocumentFacts facts = FactsOf("/a", kFile + " to=\"Bob\"");
  EXPECT_EQ(facts.date, 1'700'000'000);
  EXPECT_TRUE(facts.is_mail);
}

TEST(FactsOfTest, PartOfAFileNamesIt) {
  EXPECT_EQ(FactsOf("/box.mbox#2", kFile + " in=9 at=5").container, "/box.mbox");
}

TEST(FactsOfTest, WhateverElseAHostKeepsTellsNothing) {
  for (const char* const host_data : {"", "x", "size=1", "mtime=1 size=2"}) {
    EXPECT_FALSE(FactsOf("a", host_data).date);
    EXPECT_FALSE(FactsOf("a", host_data).is_mail);
  }
}

TEST(FactsOfTest, SizeAndTimeAloneTellTheDate) {
  EXPECT_EQ(FactsOf("a", "size=1 mtime=5.000000000").date, 5);
}

}  // namespace
}  // namespace kestan_cli
