// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/commands/documents/export_command.h"

#include <fstream>
#include <nlohmann/json.hpp>
#include <sstream>

#include "cli/console/message.h"
#include "tests/cli/command_test.h"
#include "tests/cli/export/export_test.h"

namespace kestan_tests {
namespace {

using kestan_cli::ExportForm;
using kestan_cli::ExportOptions;
using namespace std::string_literals;

const ExportOptions kJson = {ExportForm::kJson, "texts"};
const ExportOptions kSql = {ExportForm::kSql, "texts"};

class ExportTest : public IndexTest {
 protected:
  // Sets the time of a document, 1 January 2001.
  void SetTime(const std::string& name) {
    engine_.CloseIndex();
    const std::string record = Dump(path_).at("d-" + name);
    PlantAndReopen({{"d-" + name, "\x80\xc8\x4f\x3a" + record.substr(4)}});
  }

  Exported ExportAs(const ExportOptions& options) {
    engine_.CloseIndex();
    return Export(path_, options);
  }

  // Returns why an export fails.
  std::string Why(const std::string& index, const ExportOptions& options) {
    try {
      Export(index, options);
    } catch (const kestan_cli::CommandError& error) {
      printed_.err = testing::internal::GetCapturedStderr();
      printed_.out = testing::internal::GetCapturedStdout();
      return error.what();
    }
    return "it does not";
  }

  Exported printed_;  // by what failed
};

TEST_F(ExportTest, JsonIsAPairOfLinesForEachDocument) {
  engine_.AddDocumentWords("a.txt", "Hello world");
  engine_.DBPutTitle("a.txt", "A \"title\"");
  engine_.DBPutSummary("a.txt", "line\nline");
  engine_.DBPutUser("a.txt", "mine");
  engine_.AddDocumentWords("b", "");
  SetTime("a.txt");
  SetTime("b");
  const Exported exported = ExportAs(kJson);
  EXPECT_EQ(exported.out,
            "{\"index\":{\"_index\":\"texts\",\"_id\":\"a.txt\"}}\n"
            "{\"name\":\"a.txt\",\"title\":\"A \\\"title\\\"\",\"summary\":\"line\\nline\","
            "\"user\":\"mine\",\"time\":\"2001-01-01T00:00:00Z\",\"text\":\"Hello world\","
            "\"in_order\":true}\n"
            "{\"index\":{\"_index\":\"texts\",\"_id\":\"b\"}}\n"
            "{\"name\":\"b\",\"time\":\"2001-01-01T00:00:00Z\",\"text\":\"\",\"in_order\":true}\n");
  EXPECT_EQ(exported.err, "");
}

TEST_F(ExportTest, SqlIsAScriptThatFillsATable) {
  engine_.AddDocumentWords("a.txt", "Hello world hello");
  engine_.DBPutTitle("a.txt", "It's a\ttab\\");
  engine_.AddDocumentWords("b", "O'Neill \\N");
  engine_.DBPutSummary("b", "\\N");
  SetTime("a.txt");
  SetTime("b");
  const Exported exported = ExportAs(kSql);
  EXPECT_EQ(exported.out,
            "\\set ON_ERROR_STOP on\n"
            "SET client_encoding = 'UTF8';\n"
            "BEGIN;\n"
            "CREATE TABLE \"texts\" (\n"
            "  name text NOT NULL,\n"
            "  title text,\n"
            "  summary text,\n"
            "  time timestamptz NOT NULL,\n"
            "  words tsvector NOT NULL\n"
            ");\n"
            "COPY \"texts\" (name, title, summary, time, words) FROM stdin;\n"
            "a.txt\tIt's a\\ttab\\\\\t\\N\t2001-01-01T00:00:00Z\t'hello':1,3 'world':2\n"
            "b\t\\N\t\\\\N\t2001-01-01T00:00:00Z\t'o''neill':1 '\\\\\\\\n':2\n"
            "\\.\n"
            "CREATE INDEX ON \"texts\" USING gin (words);\n"
            "COMMIT;\n");
  EXPECT_EQ(exported.err, "");
}

TEST_F(ExportTest, IndexWithoutDocumentsMakesNoJsonAndAnEmptyTable) {
  EXPECT_EQ(ExportAs(kJson).out, "");
  EXPECT_NE(ExportAs(kSql).out.find("FROM stdin;\n\\.\n"), std::string::npos);
}

TEST_F(ExportTest, TargetMayHaveAnyName) {
  engine_.AddDocumentWords("a", "");
  EXPECT_EQ(ExportAs({ExportForm::kJson, "a\"b"}).out.substr(0, 27),
            "{\"index\":{\"_index\":\"a\\\"b\",\"");
  EXPECT_NE(ExportAs({ExportForm::kSql, "a\"b"}).out.find("COPY \"a\"\"b\" ("), std::string::npos);
}

TEST_F(ExportTest, TextThatIsNotUtf8IsReadAsLatin1AndReported) {
  engine_.AddDocumentWords("caf\xe9", "na\xefve");
  engine_.AddDocumentWords("caf\xc3\xa9.txt", "fine");
  engine_.AddDocumentWords("c", "fine");
  engine_.DBPutTitle("c", "\xff");
  const std::string message =
      "kestan: in 2 documents, the first of them 'caf\\xe9', text that is not "
      "UTF-8 was read as Latin-1\n";
  const Exported json = ExportAs(kJson);
  EXPECT_NE(json.out.find("\"_id\":\"caf\xc3\xa9\""), std::string::npos) << json.out;
  EXPECT_NE(json.out.find("\"text\":\"na\xc3\xafve\""), std::string::npos) << json.out;
  EXPECT_EQ(json.err, message);
  const Exported sql = ExportAs(kSql);
  EXPECT_NE(sql.out.find("\ncaf\xc3\xa9\t"), std::string::npos) << sql.out;
  EXPECT_NE(sql.out.find("\t'na\xc3\xafve':1\n"), std::string::npos) << sql.out;
  EXPECT_EQ(sql.err, message);
}

TEST_F(ExportTest, EveryLineOfJsonCanBeReadWhateverTheNamesHold) {
  std::string name = "all";
  for (int byte = 1; byte < 256; ++byte) name += static_cast<char>(byte);
  engine_.AddDocumentWords(name.c_str(), name.c_str());
  engine_.DBPutTitle(name.c_str(), name.c_str());
  std::istringstream lines(ExportAs(kJson).out);
  int count = 0;
  for (std::string line; std::getline(lines, line); ++count) {
    EXPECT_TRUE(nlohmann::json::parse(line).is_object());
  }
  EXPECT_EQ(count, 2);
}

TEST_F(ExportTest, NamesThatCannotBeIdsAreReported) {
  const std::string longest(512, 'n');
  for (const std::string& name : {longest, longest + "n", ""s, "\xe9"s, "\xc3\xa9"s}) {
    engine_.AddDocumentWords(name.c_str(), "");
  }
  const Exported exported = ExportAs(kJson);
  EXPECT_EQ(
      exported.err,
      "kestan: '" + longest +
          "n': no _id, for it would be longer than 512 bytes\n"
          "kestan: '': no _id, for it would be empty\n"
          "kestan: '\xc3\xa9': no _id, for it would be that of an earlier document\n"
          "kestan: in 1 document, the first of them '\\xe9', text that is not UTF-8 was read as "
          "Latin-1\n");
  EXPECT_NE(exported.out.find("{\"index\":{\"_index\":\"texts\"}}\n{\"name\":\"\","),
            std::string::npos);
}

TEST_F(ExportTest, LossesOfATsVectorAreReported) {
  engine_.AddDocumentWords("a\n", (std::string(2047, 'w') + " b").c_str());
  EXPECT_EQ(ExportAs(kSql).err, "kestan: 'a\\n': 1 word of more than 2046 bytes left out\n");
}

TEST_F(ExportTest, WordsWithoutPositionsAreReported) {
  engine_.SetOptionFlag(1);
  engine_.AddDocumentWords("a", "b a");
  const Exported exported = ExportAs(kJson);
  EXPECT_NE(exported.out.find("\"text\":\"a b\",\"in_order\":false}"), std::string::npos);
  EXPECT_EQ(exported.err,
            "kestan: in 1 document, the first of them 'a', the words are without "
            "order, for the index keeps no positions\n");
}

TEST_F(ExportTest, NulsOfDamagedIndexesAreReplacedAndReported) {
  engine_.AddDocumentWords("a", "b");
  PlantAndReopen({{"t-a", "x\0y"s}});
  const Exported sql = ExportAs(kSql);
  EXPECT_NE(sql.out.find("\na\tx\xef\xbf\xbdy\t"), std::string::npos) << sql.out;
  EXPECT_EQ(sql.err,
            "kestan: in 1 document, the first of them 'a', NUL bytes were replaced by U+FFFD\n");
  EXPECT_NE(ExportAs(kJson).out.find("\"title\":\"x\\u0000y\""), std::string::npos);
}

TEST_F(ExportTest, LongExportsAreWhole) {
  const std::string text(100000, 'w');
  for (int i = 0; i < 30; ++i) {
    engine_.AddDocumentWords(("name" + std::to_string(i)).c_str(), text.c_str());
  }
  std::istringstream lines(ExportAs(kJson).out);
  int count = 0;
  for (std::string line; std::getline(lines, line); ++count) {
    EXPECT_TRUE(nlohmann::json::accept(line));
  }
  EXPECT_EQ(count, 60);
}

TEST_F(ExportTest, MissingIndexIsAnError) {
  const std::string path = folder_ / "none";
  EXPECT_EQ(Why(path, kJson),
            "cannot open index '" + path + "': no such file or folder; kestan index makes one");
  EXPECT_EQ(printed_.out, "");
}

TEST_F(ExportTest, TargetNeedsAName) {
  engine_.CloseIndex();
  EXPECT_EQ(Why(path_, {ExportForm::kSql, ""}), "the name of the target is empty or not UTF-8");
  EXPECT_EQ(Why(path_, {ExportForm::kJson, "\xff"}),
            "the name of the target is empty or not UTF-8");
}

TEST_F(ExportTest, EngineMayHaveTheIndexOpenForReading) {
  engine_.AddDocumentWords("a", "b");
  engine_.CloseIndex();
  ASSERT_EQ(engine_.OpenIndex(path_.c_str(), 0), 0);
  EXPECT_NE(Export(path_, kJson).out, "");
}

TEST_F(ExportTest, IndexIsNotChanged) {
  engine_.AddDocumentWords("a", "b");
  engine_.CloseIndex();
  const Records before = Dump(path_);
  ExportAs(kSql);
  EXPECT_EQ(Dump(path_), before);
}

using ExportCommandTest = CommandTest;

TEST_F(ExportCommandTest, PrintsEitherForm) {
  Add("a", "cat dog\n");
  EXPECT_EQ(Run({"export", "my.index", "json"}).out.rfind("{\"index\":{\"_index\":\"kestan\"", 0),
            0u);
  EXPECT_NE(Run({"export", "my.index", "sql", "texts"}).out.find("tsvector"), std::string::npos);
  EXPECT_EQ(Run({"export", "my.index", "xml"}), Failure("no form 'xml'; there are json and sql"));
}

}  // namespace
}  // namespace kestan_tests
