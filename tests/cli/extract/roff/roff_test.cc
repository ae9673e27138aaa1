// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/extract/roff/roff.h"

#include <gtest/gtest.h>

namespace kestan_cli {
namespace {

TEST(RoffTest, ManualPageHasItsTitleAndText) {
  EXPECT_EQ(TextOfRoff(".\\\" comment\n.TH LS \"1\" \"May 2024\"\n.SH NAME\nls \\- list "
                       "\\fIfolders\\fR\n.PP\n.SH \"SEE ALSO\"\n.PP\n.BR open (2),\n.B one two\n"),
            "ls(1) - list folders\nNAME\nls - list folders\nSEE ALSO\nopen(2),\none two\n");
}

TEST(RoffTest, ManualPageInMdocHasThemToo) {
  EXPECT_EQ(
      TextOfRoff(".Dd May 1\n.Dt CAT 1\n.Os\n.Sh NAME\n.Nm cat\n.Nd join files\n.Sh "
                 "SYNOPSIS\n.Nm\n.Op Fl a\n.Ar file ...\n.Bl -tag -width x\n.It Fl b\nText\n.El\n"),
      "cat(1) - join files\nNAME\ncat\njoin files\nSYNOPSIS\ncat\n-a\nfile ...\n-b\nText\n");
}

TEST(RoffTest, FirstSectionHasTheNameInOtherLanguages) {
  EXPECT_EQ(TextOfRoff(".TH LS 1\n.SH NOMBRE\nls \\- lista\n.SH SINOPSIS\nls \\- no\n"),
            "ls(1) - lista\nNOMBRE\nls - lista\nSINOPSIS\nls - no\n");
  EXPECT_EQ(TextOfRoff(".TH LS 1\n.SH SYNOPSIS\nls\n"), "ls(1)\nSYNOPSIS\nls\n");
  EXPECT_EQ(TextOfRoff(".TH LS 1\n.SH OTHER\na \\- b\n.SH NAME\nls \\- list\n"),
            "ls(1) - list\nOTHER\na - b\nNAME\nls - list\n");
}

TEST(RoffTest, TextWithoutHeadingHasNoTitle) {
  EXPECT_EQ(TextOfRoff(".PP\ntext"), "text\n");
  EXPECT_EQ(TextOfRoff(".SH First\ntext"), "First\ntext\n");
}

TEST(RoffTest, DefinitionsAreNoText) {
  EXPECT_EQ(TextOfRoff(".de XX\nhidden\n..\n.de YY ZZ\nhidden\n..\n.ZZ\n.ig\nhidden\n..\ntext"),
            "text\n");
}

TEST(RoffTest, StringsAreDefined) {
  EXPECT_EQ(TextOfRoff(".ds C+ C\\s-2+\\s0+\n.ds Q \"  x\nin \\*(C+\\*Q"), "in C++  x\n");
}

TEST(RoffTest, ConditionsAreThoseOfATerminal) {
  EXPECT_EQ(TextOfRoff(".if n yes\n.if t no\n.if !t also\n.ie n \\{\\\nfirst\n.\\}\n.el \\{\\\n"
                       "no\n.if n \\{ no\n.\\}\nno\n.\\}\n.ie t no\n.el last\nend"),
            "yes\nalso\nfirst\nlast\nend\n");
}

TEST(RoffTest, ConditionsWithinConditionsEnd) {
  std::string deep;
  for (int i = 0; i < 100000; ++i) deep += ".if n ";
  EXPECT_EQ(TextOfRoff(deep + "x\ntext"), "text\n");
}

TEST(RoffTest, TablesAreTheirCells) {
  EXPECT_EQ(TextOfRoff(".TS\ntab(;) box;\nl l\nl l.\none;two\n_\nT{\nthree\nT}\n.TE\ntext"),
            "one;two\nthree\ntext\n");
}

TEST(RoffTest, BlocksThatNeverEndHideNoMoreThanTheRest) {
  EXPECT_EQ(TextOfRoff("text\n.de XX\nhidden"), "text\n");
  EXPECT_EQ(TextOfRoff("text\n.if t \\{\nhidden"), "text\n");
}

TEST(RoffTest, OnlyPagesOfTheManualAreRoff) {
  for (const char* name : {"ls.1", "open.3p", "x.1ssl", "a.man", "a.n", "d/A.MDOC"}) {
    EXPECT_TRUE(IsRoff(name, "\n.TH X 1\n")) << name;
    EXPECT_TRUE(IsRoff(name, "'\\\" t\n")) << name;
    EXPECT_FALSE(IsRoff(name, "text")) << name;
    EXPECT_FALSE(IsRoff(name, "")) << name;
    EXPECT_FALSE(IsRoff(name, "...")) << name;
  }
  for (const char* name : {"ls", "ls.txt", "libx.so.10", "x.0", "1", "notes.2024", "x.1abcdefgh"}) {
    EXPECT_FALSE(IsRoff(name, ".TH X 1\n")) << name;
  }
}

}  // namespace
}  // namespace kestan_cli
