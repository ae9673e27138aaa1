// SPDX-License-Identifier: GPL-3.0-or-later
// The page on JSON names the fields that the commands print, and no others.
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <map>
#include <nlohmann/json.hpp>
#include <set>
#include <string>
#include <vector>

#include "tests/support/index_test.h"

namespace {

using Json = nlohmann::json;
using Fields = std::set<std::string>;

// Returns the texts between backquotes in `line`.
std::vector<std::string> Quoted(const std::string& line) {
  std::vector<std::string> texts;
  for (std::size_t at = 0; (at = line.find('`', at)) != std::string::npos;) {
    const std::size_t end = line.find('`', at + 1);
    texts.push_back(line.substr(at + 1, end - at - 1));
    at = end + 1;
  }
  return texts;
}

// Returns the fields that the page names, by the commands in the headings.
std::map<std::string, Fields> FieldsOfPage() {
  std::ifstream page(KESTAN_SOURCE_DIR "/docs/json.md");
  EXPECT_TRUE(page);
  std::map<std::string, Fields> sections;
  std::string heading;
  for (std::string line; std::getline(page, line);) {
    if (line.rfind("## ", 0) == 0) heading = line.substr(3);
    if (line.rfind("| `", 0) != 0) continue;
    for (const std::string& field : Quoted(line.substr(0, line.find(" | ", 2)))) {
      sections[heading].insert(field);
    }
  }
  return sections;
}

// Adds the paths to all that `value`, at `path`, holds. Kinds of files that were left out go by one
// name, and parts of an explanation are like the whole.
void AddFields(const Json& value, const std::string& path, Fields* fields) {
  const bool is_list_of_objects = value.is_array() && !value.empty() && value[0].is_object();
  if (path == "explanation.parts" || (value.is_array() && !is_list_of_objects)) {
    fields->insert(path + "[]");
  } else if (value.is_array()) {
    for (const Json& element : value) AddFields(element, path + "[]", fields);
  } else if (value.is_object()) {
    for (const auto& [name, field] : value.items()) {
      const bool is_kind = path == "skipped" && name != "total";
      AddFields(field, (path.empty() ? "" : path + ".") + (is_kind ? "KIND" : name), fields);
    }
  } else {
    fields->insert(path);
  }
}

class JsonPageTest : public testing::Test {
 protected:
  void SetUp() override {
    Shell("mkdir d && echo 'A cat and a dog.\n\nMore cats.' > d/a && echo cat > d/b");
    Shell("printf '\\377\\376a\\0b' > half");
    Shell("printf 'From: Ann <ann@example.org>\\nSubject: cat\\n\\nA cat.\\n' > d/m.eml");
    Shell("printf 'a\\0b' > d/c && " KESTAN_COMMAND " index my.index d");
  }

  std::string Shell(const std::string& command) {
    const std::string line = "cd '" + folder_ / "" + "' && { " + command + "; } > printed";
    EXPECT_EQ(std::system(line.c_str()), 0) << command;
    std::ifstream printed(folder_ / "printed", std::ios::binary);
    return {std::istreambuf_iterator<char>(printed), std::istreambuf_iterator<char>()};
  }

  // Runs the commands, whose reports have no other fields than `heading` names and together all.
  void ExpectFields(const std::string& heading, const std::vector<std::string>& commands) {
    Fields printed;
    for (const std::string& command : commands) {
      // A file that is half indexed makes the status 1.
      const std::string report = Shell(KESTAN_COMMAND " " + command + " --json || [ $? = 1 ]");
      EXPECT_EQ(report.find('\n'), report.size() - 1) << command;
      Json json = Json::parse(report);
      EXPECT_EQ(json["schema"], 1) << command;
      json.erase("schema");
      AddFields(json, "", &printed);
    }
    EXPECT_EQ(FieldsOfPage()[heading], printed) << heading;
    checked_.insert(heading);
  }

  const kestan_tests::TempDir folder_;
  Fields checked_;
};

TEST_F(JsonPageTest, NamesTheFieldsOfEveryReport) {
  ExpectFields("`kestan index`", {"index my.index d --why", "index my.index d",
                                  "index half.index half", "index other.index d --exclude b"});
  ExpectFields("`kestan search`",
               {"search my.index cat --snippets", "search my.index --explain 'ca*'",
                "search my.index --explain 'cat OR dog'", "search -i my.index -i my.index cat"});
  ExpectFields("`kestan list`", {"list my.index"});
  ExpectFields("`kestan words`", {"words my.index"});
  {
    Kestan engine;
    ASSERT_EQ(engine.OpenIndex((folder_ / "one.file").c_str(), 1), 0);
    engine.AddDocumentWords("a", "cat");
  }
  ExpectFields("`kestan stats`", {"stats my.index", "stats one.file"});
  ExpectFields("`kestan title get`, `kestan summary get`, `kestan user get`",
               {"title get my.index d/a", "summary get my.index d/a", "user get my.index d/a"});
  Shell(KESTAN_COMMAND " wordlist put my.index colours red");
  ExpectFields("`kestan wordlist get`", {"wordlist get my.index colours"});
  ExpectFields("`kestan option get`", {"option get my.index"});
  ExpectFields("`kestan check`", {"check my.index"});
  ExpectFields("`kestan repair`", {"repair my.index new.index"});
  ExpectFields("`kestan remove`", {"remove my.index d/b"});
  const std::string kestan = KESTAN_COMMAND;
  Shell("{ " + kestan + " compact -q --one-file one.index my.index || cp my.index one.index; }");
  ExpectFields("`kestan convert`", {"convert one.index folder.index"});
  ExpectFields("`kestan compact`",
               {"compact folder.index", "compact folder.index --one-file small.index"});
  EXPECT_EQ(checked_.size(), FieldsOfPage().size());
}

TEST_F(JsonPageTest, HasEveryCommandThatReports) {
  std::size_t named = 0;
  for (const auto& [heading, fields] : FieldsOfPage()) named += Quoted(heading).size();
  EXPECT_EQ(Shell(KESTAN_COMMAND " completion bash | grep -c -e --json"),
            std::to_string(named) + "\n");
}

}  // namespace
