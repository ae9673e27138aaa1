// SPDX-License-Identifier: GPL-3.0-or-later
// A real server takes in what an export prints, and answers as the index does.
#include <algorithm>
#include <functional>
#include <initializer_list>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <random>
#include <set>
#include <sstream>
#include <vector>

#include "tests/cli/export/export_test.h"
#include "tests/cli/export/postgres_server.h"

namespace kestan_tests {
namespace {

using Names = std::set<std::string>;
using Json = nlohmann::json;

const kestan_cli::ExportOptions kSql = {kestan_cli::ExportForm::kSql, "kestan"};

class ExportServerTest : public IndexTest {
 protected:
  void SetUp() override {
    if (PostgresServer::Programs().empty()) GTEST_SKIP() << "postgresql is not installed";
    IndexTest::SetUp();
    server_ = std::make_unique<PostgresServer>();
    ASSERT_TRUE(server_->IsRunning());
  }

  // Exports the index and loads the script.
  //   Returns  what the export had to say.
  std::string Load() {
    engine_.CloseIndex();
    const Exported exported = Export(path_, kSql);
    const Ran loaded = server_->Psql(exported.out);
    EXPECT_EQ(loaded.status, 0) << loaded.err;
    EXPECT_EQ(loaded.err, "");
    return exported.err;
  }

  // Each row of `query`, which gives one column of JSON.
  std::vector<Json> JsonRows(const std::string& query) {
    std::vector<Json> rows;
    for (const std::string& row : server_->Rows(query)) rows.push_back(Json::parse(row));
    return rows;
  }

  std::unique_ptr<PostgresServer> server_;
};

// ---- The same answers ----

// Words of one letter would be found in documents that are gone.
const std::vector<std::string> kWords = {"ant", "bee", "cat", "dog", "eel", "fox"};

// A query in both languages.
struct Question {
  std::string sql;
  std::function<int(Kestan&)> ask;
};

Question Single(const std::string& word) {
  return {word, [=](Kestan& engine) { return engine.QueryWord(word.c_str()); }};
}

// Returns `result` and frees what it was made of.
int Freeing(Kestan& engine, std::initializer_list<int> used, int result) {
  for (const int id : used) engine.FreeQueryResult(id);
  return result;
}

Question Both(const Question& left, const Question& right) {
  return {"(" + left.sql + " & " + right.sql + ")", [=](Kestan& engine) {
            const int first = left.ask(engine);
            const int second = right.ask(engine);
            return Freeing(engine, {first, second}, engine.QueryAnd(first, second, 0));
          }};
}

Question Either(const Question& left, const Question& right) {
  return {"(" + left.sql + " | " + right.sql + ")", [=](Kestan& engine) {
            const int first = left.ask(engine);
            const int second = right.ask(engine);
            return Freeing(engine, {first, second}, engine.QueryOr(first, second));
          }};
}

Question Without(const Question& operand) {
  return {"!" + operand.sql, [=](Kestan& engine) {
            const int id = operand.ask(engine);
            return Freeing(engine, {id}, engine.QueryNegate(id));
          }};
}

Question Adjacent(const std::string& left, const std::string& right) {
  return {"((" + left + " <-> " + right + ") | (" + right + " <-> " + left + "))",
          [=](Kestan& engine) {
            const int first = engine.QueryWord(left.c_str());
            const int second = engine.QueryWord(right.c_str());
            return Freeing(engine, {first, second}, engine.QueryAnd(first, second, 1));
          }};
}

std::vector<Question> Questions() {
  std::vector<Question> questions;
  for (const std::string& word : kWords) questions.push_back(Single(word));
  for (const std::string& left : kWords) {
    for (const std::string& right : kWords) {
      if (left == right) continue;
      const Question first = Single(left);
      const Question second = Single(right);
      questions.push_back(Both(first, second));
      questions.push_back(Either(first, second));
      questions.push_back(Both(first, Without(second)));
      questions.push_back(Without(Either(first, second)));
      questions.push_back(Adjacent(left, right));
      questions.push_back(Both(Adjacent(left, right), Without(Single("fox"))));
    }
  }
  return questions;
}

Names NamesIn(const std::string& listing) {
  Names names;
  std::istringstream lines(listing);
  for (std::string line; std::getline(lines, line);) names.insert(line.substr(line.find(' ') + 1));
  return names;
}

TEST_F(ExportServerTest, TheServerAnswersAsTheIndexDoes) {
  std::mt19937 random(20);
  for (int number = 0; number < 300; ++number) {
    std::string text;
    for (auto left = random() % 12; left > 0; --left) {
      std::string word = kWords[random() % kWords.size()];
      if (random() % 4 == 0) word[0] = static_cast<char>(word[0] - 'a' + 'A');
      text += word + (random() % 2 == 0 ? " " : "\n");
    }
    engine_.AddDocumentWords(("name" + std::to_string(number)).c_str(), text.c_str());
    if (number % 10 == 9) {
      engine_.RemoveDocumentWords(("name" + std::to_string(number - 5)).c_str());
    }
    if (number == 150) engine_.ShrinkIndex();
  }
  EXPECT_EQ(Load(), "");
  const std::vector<Question> questions = Questions();
  std::string script = "\\set ON_ERROR_STOP on\nSET enable_seqscan = off;\n";
  for (std::size_t i = 0; i < questions.size(); ++i) {
    script += "SELECT " + std::to_string(i) + ", name FROM kestan WHERE words @@ '" +
              questions[i].sql + "'::tsquery;\n";
  }
  const Ran ran = server_->Psql(script);
  ASSERT_EQ(ran.status, 0) << ran.err;
  std::map<std::size_t, Names> answers;
  std::istringstream rows(ran.out);
  for (std::string number, name; std::getline(rows, number, '\t') && std::getline(rows, name);) {
    answers[std::stoul(number)].insert(name);
  }
  ASSERT_EQ(engine_.OpenIndex(path_.c_str(), 0), 0);
  std::size_t hits = 0;
  for (std::size_t i = 0; i < questions.size(); ++i) {
    const Names expected = NamesIn(Listing(questions[i].ask(engine_)));
    hits += expected.size();
    EXPECT_EQ(answers[i], expected) << questions[i].sql;
  }
  std::printf("%zu queries with %zu hits\n", questions.size(), hits);
  EXPECT_GT(hits, 5000u);
}

TEST_F(ExportServerTest, QueriesGoThroughTheIndexOfTheTable) {
  engine_.AddDocumentWords("a", "Hello world");
  Load();
  const auto plan = server_->Rows(
      "SET enable_seqscan = off; EXPLAIN SELECT name FROM kestan WHERE words @@ 'hello'::tsquery");
  EXPECT_NE(plan.at(0).find("Bitmap Heap Scan"), std::string::npos) << plan.at(0);
  EXPECT_EQ(server_->Rows("SELECT name FROM kestan WHERE words @@ phraseto_tsquery('simple', "
                          "'HELLO World')"),
            std::vector<std::string>{"a"});
}

// ---- Hostile bytes ----

// Any bytes but NUL; often those that mean something to psql, to COPY or to tsvector.
std::string HostileText(std::mt19937& random, bool with_white_space) {
  static const std::string signs =
      "'\\:,\"$.;*&|!<>()%N-\xc3\xa9\xe9"
      "A1\n\t\r \v\f";
  std::string text;
  for (auto left = random() % 9 + 1; left > 0; --left) {
    const auto byte = static_cast<char>(random() % 255 + 1);
    const char next = random() % 3 == 0 ? byte : signs[random() % signs.size()];
    const bool is_space = std::string(" \t\n\v\f\r").find(next) != std::string::npos;
    if (with_white_space || !is_space) text += next;
  }
  return text.empty() ? "\\." : text;
}

// What the page says of text that is not UTF-8, said once more.
std::string PlainUtf8(const std::string& text) {
  try {
    Json(text).dump();
    return text;
  } catch (const Json::exception&) {
    std::string converted;
    for (const char each : text) {
      const int byte = static_cast<unsigned char>(each);
      if (byte >= 128) converted += static_cast<char>(byte < 192 ? 0xc2 : 0xc3);
      converted += static_cast<char>(byte < 192 ? byte : byte - 64);
    }
    return converted;
  }
}

std::string Small(std::string text) {
  for (char& byte : text) {
    if (byte >= 'A' && byte <= 'Z') byte = static_cast<char>(byte + 32);
  }
  return text;
}

// Whether the engine has the word under a key that is not that of another kind of record.
bool IsKept(const std::string& word) {
  const bool is_taken = std::string("gdcwust").find(word[0]) != std::string::npos;
  return word.size() < 2 || word[1] != '-' || !is_taken;
}

using Places = std::map<std::string, std::set<unsigned>>;

TEST_F(ExportServerTest, HostileBytesArriveAsTheyAre) {
  std::mt19937 random(7);
  std::map<std::string, std::pair<std::string, Places>> expected;
  for (int number = 0; number < 2000; ++number) {
    const std::string name = HostileText(random, true) + std::to_string(number);
    const std::string title = HostileText(random, true);
    std::string text;
    Places places;
    for (unsigned position = 1; position <= 5; ++position) {
      const std::string word = HostileText(random, false);
      if (!IsKept(word)) continue;
      text += word + " ";
      places[Small(PlainUtf8(word))].insert(
          static_cast<unsigned>(std::count(text.begin(), text.end(), ' ')));
    }
    engine_.AddDocumentWords(name.c_str(), text.c_str());
    engine_.DBPutTitle(name.c_str(), title.c_str());
    expected[PlainUtf8(name)] = {PlainUtf8(title), places};
  }
  Load();
  std::map<std::string, std::pair<std::string, Places>> read;
  const std::string query =
      "SELECT json_build_object('name', name, 'title', title, 'words', (SELECT json_agg("
      "json_build_array(lexeme, positions)) FROM unnest(words)))::text FROM kestan";
  for (const Json& row : JsonRows(query)) {
    auto& [title, places] = read[row["name"]];
    title = row["title"];
    for (const Json& word : row["words"]) places[word[0]] = word[1].get<std::set<unsigned>>();
  }
  EXPECT_EQ(read.size(), expected.size());
  for (const auto& [name, document] : expected) EXPECT_EQ(read[name], document) << name;
}

TEST_F(ExportServerTest, AHostileNameOfTheTableIsItsName) {
  engine_.AddDocumentWords("a", "b");
  engine_.CloseIndex();
  const std::string name = "x\"; DROP TABLE y; --\\:z'";
  const Exported exported = Export(path_, {kestan_cli::ExportForm::kSql, name});
  const Ran loaded = server_->Psql(exported.out);
  EXPECT_EQ(loaded.status, 0) << loaded.err;
  EXPECT_EQ(JsonRows("SELECT to_json(tablename::text)::text FROM pg_tables "
                     "WHERE schemaname = 'public'"),
            std::vector<Json>{name});
}

// ---- Limits ----

TEST_F(ExportServerTest, WhatIsAtTheLimitsOfTheServerIsTakenAndTheRestIsReported) {
  std::string many;
  for (int i = 1; i <= 257; ++i) many += "many ";
  std::string late;
  for (int i = 1; i < 16383; ++i) late += "x" + std::to_string(i) + " ";
  std::string large;
  for (int i = 0; i < 700; ++i) large += std::to_string(1000 + i) + std::string(2042, 'w') + " ";
  engine_.AddDocumentWords("many", many.c_str());
  engine_.AddDocumentWords("late", (late + "last after").c_str());
  engine_.AddDocumentWords("long", (std::string(2046, 'l') + " " + std::string(2047, 'm')).c_str());
  engine_.AddDocumentWords("large", large.c_str());
  EXPECT_EQ(Load(),
            "kestan: 'many': 1 position past the 256th of a word left out\n"
            "kestan: 'late': 1 position past 16383 left out\n"
            "kestan: 'long': 1 word of more than 2046 bytes left out\n"
            "kestan: 'large': 189 words past the 1 MB of a tsvector left out\n");
  const auto rows = server_->Rows(
      "SELECT name, length(words), (SELECT max(positions[cardinality(positions)]) FROM "
      "unnest(words)), (SELECT max(length(lexeme)) FROM unnest(words)) FROM kestan ORDER BY name");
  EXPECT_EQ(rows, (std::vector<std::string>{"large\t511\t511\t2046", "late\t16384\t16383\t6",
                                            "long\t1\t1\t2046", "many\t1\t256\t4"}));
}

TEST_F(ExportServerTest, AnEarlierTableStaysAsItWas) {
  engine_.AddDocumentWords("a", "b");
  Load();
  const Ran again = server_->Psql(Export(path_, kSql).out);
  EXPECT_EQ(again.status, 3);
  EXPECT_NE(again.err.find("already exists"), std::string::npos) << again.err;
  EXPECT_EQ(server_->Rows("SELECT count(*) FROM kestan"), std::vector<std::string>{"1"});
}

TEST_F(ExportServerTest, AScriptThatWasCutOffLeavesNothing) {
  for (int i = 0; i < 100; ++i) {
    engine_.AddDocumentWords(("name" + std::to_string(i)).c_str(), "b");
  }
  engine_.CloseIndex();
  const std::string script = Export(path_, kSql).out;
  server_->Psql(script.substr(0, script.size() - 20));
  server_->Psql(script.substr(0, script.size() / 2));
  EXPECT_EQ(server_->Rows("SELECT count(*) FROM pg_tables WHERE schemaname = 'public'"),
            std::vector<std::string>{"0"});
}

}  // namespace
}  // namespace kestan_tests
