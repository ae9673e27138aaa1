#include "cli/export/sql_writer.h"

#include <gtest/gtest.h>

#include <string>

namespace kestan_cli {
namespace {

using std::string_view_literals::operator""sv;

std::string Line(const kestan::StoredDocument& document, ExportNotes* notes) {
  return SqlWriter("texts").Add(document, notes);
}

std::string Line(const kestan::StoredDocument& document) {
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
  const kestan::PlacedWord words[] = {{"Cat", 1}, {"cat", 3}};
  kestan::StoredDocument document;
  document.name = "a";
  document.timestamp = 86400;
  document.title = "Title";
  document.words = words;
  document.word_count = 2;
  EXPECT_EQ(Line(document), "a\tTitle\t\\N\t1970-01-02T00:00:00Z\t'cat':1,3\n");
}

TEST(SqlWriterTest, ColumnsAreEscaped) {
  kestan::StoredDocument document;
  document.name = "a\tb\\c\nd\re";
  EXPECT_EQ(Line(document), "a\\tb\\\\c\\nd\\re\t\\N\t\\N\t1970-01-01T00:00:00Z\t\n");
}

TEST(SqlWriterTest, TextsBecomeUtf8WithoutNul) {
  kestan::StoredDocument document;
  document.name = "a";
  document.title = "caf\xe9\0x"sv;
  ExportNotes notes;
  EXPECT_EQ(Line(document, &notes), "a\tcaf\u00e9\ufffdx\t\\N\t1970-01-01T00:00:00Z\t\n");
  EXPECT_TRUE(notes.document_was_latin1);
  EXPECT_TRUE(notes.document_had_nul);
}

TEST(SqlWriterTest, LossesAreSaid) {
  const std::string word(2047, 'x');
  const kestan::PlacedWord words[] = {{word, 1}};
  kestan::StoredDocument document;
  document.name = "a";
  document.words = words;
  document.word_count = 1;
  testing::internal::CaptureStderr();
  Line(document);
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "kestan: 'a': 1 word of more than 2046 bytes left out\n");
}

}  // namespace
}  // namespace kestan_cli
