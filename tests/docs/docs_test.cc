// SPDX-License-Identifier: GPL-3.0-or-later
// The pages for newcomers say what the library does.
#include <sstream>
#include <string>

#include "tests/support/files.h"
#include "tests/support/index_test.h"

namespace {

using kestan_tests::ReadFile;
using kestan_tests::Records;

std::string ReadPage(const std::string& name) {
  return ReadFile(std::string(KESTAN_SOURCE_DIR) + "/" + name);
}

// Returns what stands between the line "```KIND" and the line "```" that follows `after`.
std::string Block(const std::string& page, const std::string& after, const std::string& kind) {
  const std::size_t section = page.find(after);
  EXPECT_NE(section, std::string::npos) << after;
  const std::string fence = "\n```" + kind + "\n";
  const std::size_t start = page.find(fence, section) + fence.size();
  return page.substr(start, page.find("\n```", start) + 1 - start);
}

// Reads pairs of hex digits up to a ':', a '#' or the end; "tt" stands for a byte of the time.
std::string ReadHex(std::istream* words) {
  std::string bytes;
  for (std::string word; *words >> word && word != ":" && word != "#";) {
    bytes += word == "tt" ? 't' : static_cast<char>(std::stoi(word, nullptr, 16));
  }
  return bytes;
}

// Each line is "KEY : VALUE # COMMENT".
Records ParseHex(const std::string& block) {
  Records records;
  std::istringstream lines(block);
  for (std::string line; std::getline(lines, line);) {
    std::istringstream words(line);
    const std::string key = ReadHex(&words);
    records[key] = ReadHex(&words);
  }
  return records;
}

class DocsTest : public kestan_tests::IndexTest {};

TEST_F(DocsTest, TheWorkedExampleHoldsTheRealBytes) {
  engine_.AddDocumentWords("a.txt", "Hello world");
  engine_.AddDocumentWords("b.txt", "hello Hello");
  engine_.RemoveDocumentWords("a.txt");
  engine_.DBPutTitle("b.txt", "Greetings");
  engine_.DBPutWords("colours", "red reddish");
  Records stored = Stored();
  stored["d-b.txt"].replace(0, 4, "tttt");
  EXPECT_EQ(ParseHex(Block(ReadPage("docs/index-file.md"), "## A worked example", "hex")), stored);
}

TEST_F(DocsTest, TheWordListExampleHoldsTheRealBytes) {
  engine_.DBPutWords("list", "alpha alphabet alps");
  const std::string page = ReadPage("docs/index-file.md");
  EXPECT_NE(page.find("| `80 61 6c 70 68 61` |"), std::string::npos);
  EXPECT_NE(page.find("| `85 62 65 74` |"), std::string::npos);
  EXPECT_NE(page.find("| `83 73` |"), std::string::npos);
  EXPECT_EQ(Stored().at("w-list"),
            "\x80"
            "alpha"
            "\x85"
            "bet"
            "\x83"
            "s");
}

TEST(ReadmeTest, TheHostProgramIsTheExample) {
  EXPECT_EQ(Block(ReadPage("README.md"), "## A host program", "cpp"),
            ReadPage("examples/first_host.cc"));
}

TEST(ReadmeTest, TheHostOfTheSearchLibraryIsTheExample) {
  EXPECT_EQ(Block(ReadPage("README.md"), "## A host of the search library", "cpp"),
            ReadPage("examples/search_host.cc"));
}

TEST(ReadmeTest, TheHostProgramPrintsWhatThePageShows) {
  const kestan_tests::TempDir folder;
  const std::string command = "cd " + folder / "" + " && " KESTAN_FIRST_HOST " > output";
  ASSERT_EQ(std::system(command.c_str()), 0);
  EXPECT_EQ(Block(ReadPage("README.md"), "It prints", ""), ReadFile(folder / "output"));
}

}  // namespace
