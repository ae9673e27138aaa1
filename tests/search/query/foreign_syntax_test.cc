// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/query/foreign_syntax.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace kestan::search {
namespace {

using Notes = std::vector<std::string>;

TEST(ForeignSyntaxTest, OurOwnLanguageNeedsNoNotes) {
  for (const char* query : {"",
                            "cat dog",
                            "cat AND dog",
                            "cat OR (dog -fish)",
                            "NOT cat",
                            "cat NEAR/3 dog",
                            "\"big | dog\"",
                            "\"*soft NEAR\"",
                            "bound*",
                            "flwo~2",
                            "C++",
                            "AT&T",
                            "R&D",
                            "+49 30 123",
                            "why is the sky blue?",
                            "what? nothing!",
                            "http://x/?q=1",
                            "**",
                            "-",
                            "a -- b"}) {
    EXPECT_EQ(NotesOnForeignSyntax(query), Notes{}) << query;
  }
}

TEST(ForeignSyntaxTest, NearNeedsANumberAndTwoParts) {
  const std::string rest =
      " is taken for a word: as an operator it stands between two parts, with a number from 1, as "
      "in NEAR/5";
  EXPECT_EQ(NotesOnForeignSyntax("cat NEAR dog"), Notes{"'NEAR'" + rest});
  EXPECT_EQ(NotesOnForeignSyntax("cat NEAR/0 dog"), Notes{"'NEAR/0'" + rest});
  EXPECT_EQ(NotesOnForeignSyntax("cat NEAR/x dog"), Notes{"'NEAR/x'" + rest});
  EXPECT_EQ(NotesOnForeignSyntax("cat NEAR/3"), Notes{"'NEAR/3'" + rest});
  EXPECT_EQ(NotesOnForeignSyntax("cat near dog"), Notes{});
}

TEST(ForeignSyntaxTest, SignsAreNoOperators) {
  EXPECT_EQ(NotesOnForeignSyntax("cat | dog"), Notes{"'|': | is no operator; write OR"});
  EXPECT_EQ(NotesOnForeignSyntax("cat || dog"), Notes{"'||': | is no operator; write OR"});
  EXPECT_EQ(NotesOnForeignSyntax("cat|dog"), Notes{"'cat|dog': | is no operator; write OR"});
  EXPECT_EQ(NotesOnForeignSyntax("cat && dog"),
            Notes{"'&&': & is no operator; write AND, or nothing"});
  EXPECT_EQ(NotesOnForeignSyntax("cat !dog"),
            Notes{"'!dog': ! is no operator; write NOT, or - before the word"});
  EXPECT_EQ(NotesOnForeignSyntax("+cat"),
            Notes{"'+cat': + is no operator; all words are asked for, unless there is OR"});
}

TEST(ForeignSyntaxTest, WildcardsStandOnlyAtTheEnd) {
  EXPECT_EQ(NotesOnForeignSyntax("*soft"), Notes{"'*soft': no * stands for the start of a word"});
  EXPECT_EQ(
      NotesOnForeignSyntax("wind?ws"),
      Notes{"'wind?ws': no ? stands for letters within a word; wind* finds all that begin so"});
  EXPECT_EQ(NotesOnForeignSyntax("m*ller"),
            Notes{"'m*ller': no * stands for letters within a word; m* finds all that begin so"});
  EXPECT_EQ(NotesOnForeignSyntax("m\xc3\xbc?ler").size(), 1u);
}

TEST(ForeignSyntaxTest, AddressesHoldNoWildcards) {
  EXPECT_EQ(NotesOnForeignSyntax("http://example.com/a?b=c"), Notes{});
  EXPECT_EQ(NotesOnForeignSyntax("example.com/a?b"), Notes{});
  EXPECT_EQ(NotesOnForeignSyntax("a?b=c"), Notes{});
}

TEST(ForeignSyntaxTest, EachSignIsNotedOnce) {
  EXPECT_EQ(NotesOnForeignSyntax("a | b | *c").size(), 2u);
}

}  // namespace
}  // namespace kestan::search
