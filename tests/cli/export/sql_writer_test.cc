// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/export/sql_writer.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/cli/export/held_document.h"

namespace kestan_cli {
namespace {

using std::string_literals::operator""s;
using kestan_tests::HeldDocument;

std::string Line(const ExportedDocument& document, ExportNotes* notes) {
  return SqlWriter("texts").Add(document, notes);
}

std::string Line(const ExportedDocument& document) {
  ExportNotes notes;
  return Line(document, &notes);
}

TEST(SqlWriterTest, ScriptMakesAndFillsOneTableOrNone) {
  SqlWriter writer("texts");
  const std::string begin = writer.Begin();
  EXPECT_EQ(begin.find("\\set ON_ERROR_STOP on\n"), 0u);
  EXPECT_NE(begin.find("BEGIN;\nCREATE TABLE \"texts\" (\n"), std::string::npos);
  EXPECT_NE(begin.find("COPY \"texts\" (name, title, summary, time, words) FROM stdin;\n"),
            std::string::npos);
  EXPECT_EQ(writer.End(), "\\.\nCREATE INDEX ON \"texts\" USING gin (words);\nCOMMIT;\n");
}

TEST(SqlWriterTest, NameOfTheTableCannotLeaveItsQuotes) {
  EXPECT_NE(SqlWriter("a\"; DROP").Begin().find("COPY \"a\"\"; DROP\" ("), std::string::npos);
}

TEST(SqlWriterTest, DocumentIsOneLine) {
  const std::vector<kestan::search::PlacedWord> words = {{"Cat", 1}, {"cat", 3}};
  HeldDocument document;
  document.info.name = "a";
  document.info.added = 86400;
  document.info.title = "Title";
  document.words = words;
  EXPECT_EQ(Line(document), "a\tTitle\t\\N\t1970-01-02T00:00:00Z\t'cat':1,3\n");
}

TEST(SqlWriterTest, ColumnsAreEscaped) {
  HeldDocument document;
  document.info.name = "a\tb\\c\nd\re";
  EXPECT_EQ(Line(document), "a\\tb\\\\c\\nd\\re\t\\N\t\\N\t1970-01-01T00:00:00Z\t\n");
}

TEST(SqlWriterTest, TextsBecomeUtf8WithoutNul) {
  HeldDocument document;
  document.info.name = "a";
  document.info.title = "caf\xe9\0x"s;
  ExportNotes notes;
  EXPECT_EQ(Line(document, &notes), "a\tcaf\u00e9\ufffdx\t\\N\t1970-01-01T00:00:00Z\t\n");
  EXPECT_TRUE(notes.document_was_latin1);
  EXPECT_TRUE(notes.document_had_nul);
}

TEST(SqlWriterTest, LossesAreSaid) {
  const std::string word(2047, 'x');
  const std::vector<kestan::search::PlacedWord> words = {{word, 1}};
  HeldDocument document;
  document.info.name = "a";
  document.words = words;
  testing::internal::CaptureStderr();
  Line(document);
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "kestan: 'a': 1 word of more than 2046 bytes left out\n");
}

}  // namespace
}  // namespace kestan_cli
