// SPDX-License-Identifier: GPL-3.0-or-later
// Every example of the pages for users does what it shows.
#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "tests/support/index_test.h"

namespace {

struct Example {
  std::string command;
  std::string output;
};

// Reads the blocks between "```console" and "```": "$ COMMAND", and then what it prints.
std::vector<Example> ExamplesOf(const std::string& path) {
  std::ifstream page(path);
  EXPECT_TRUE(page) << path;
  std::vector<Example> examples;
  bool inside = false;
  for (std::string line; std::getline(page, line);) {
    if (line.rfind("```", 0) == 0) {
      inside = line == "```console";
    } else if (inside && line.rfind("$ ", 0) == 0) {
      examples.push_back({line.substr(2), ""});
    } else if (inside) {
      examples.back().output += line + "\n";
    }
  }
  return examples;
}

// Runs `command` by the shell in `folder`; both output streams are one.
std::string Shown(const std::string& folder, const std::string& command) {
  std::ofstream(folder + "/../script") << command << "\n";
  const std::string line =
      "cd " + folder + " && PATH=" + folder + "/..:$PATH sh ../script 2>&1 </dev/null";
  FILE* const pipe = popen(line.c_str(), "r");
  EXPECT_NE(pipe, nullptr);
  std::string output;
  std::array<char, 4096> bytes{};
  std::size_t count = 0;
  while ((count = fread(bytes.data(), 1, bytes.size(), pipe)) > 0)
    output.append(bytes.data(), count);
  pclose(pipe);
  return output;
}

// Runs the examples of `page` one after the other, beginning in an empty folder.
void ExpectExamplesToBeTrue(const std::string& page, std::size_t least) {
  const kestan_tests::TempDir top;
  std::filesystem::create_symlink(KESTAN_COMMAND, top / "kestan");
  std::filesystem::create_directory(top / "work");
  const auto examples = ExamplesOf(KESTAN_SOURCE_DIR "/docs/" + page);
  ASSERT_GE(examples.size(), least);
  for (const auto& [command, output] : examples) {
    EXPECT_EQ(Shown(top / "work", command), output) << command;
  }
}

TEST(PagesTest, EveryExampleOfTheLanguageDoesWhatItShows) {
  ExpectExamplesToBeTrue("queries.md", 20);
}

TEST(PagesTest, TheTutorialDoesWhatItShows) { ExpectExamplesToBeTrue("tutorial.md", 25); }

}  // namespace
