// SPDX-License-Identifier: GPL-3.0-or-later
// An index that was brought up to date step by step answers as one that was made at once.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

#include "tests/cli/sync/run_index_test.h"

namespace kestan_cli {
namespace {

namespace fs = std::filesystem;

const std::vector<std::string> kNames{"a.html", "a.txt", "b.md", "b.htm", "c", "c.x", "e/f.html"};
const std::vector<std::string> kTexts{"<title>cat</title>dog <b class=fish>bird</b>\n",
                                      "# cat\n\ndog &amp; bird\n", "the cat the dog\n",
                                      "caf\xe9 <p>dog\n", ""};
const std::vector<std::string> kWords{"cat", "bird", "title", "class", "cafe", "tac"};

class FreshIndexTest : public RunIndexTest {
 protected:
  void SetUp() override {
    RunIndexTest::SetUp();
    fs::create_directories("d/e");
    options_.prune = true;
    options_.reading.converters = {"x=sed s/cat/tac/g {}"};
  }

  template <typename Element>
  const Element& OneOf(const std::vector<Element>& all) {
    return all[random_() % all.size()];
  }

  // Writes, renames or removes a file, or compacts the index.
  void ChangeSomething() {
    const std::string name = "d/" + OneOf(kNames);
    const auto kind = random_() % 8;
    if (kind < 3) return Write(name, OneOf(kTexts));
    if (kind == 7) {
      return kestan_tests::ChangeIndex("my.index", [](kestan::search::IndexWriter& writer) {
        EXPECT_TRUE(writer.Compact().ok());
      });
    }
    if (!fs::exists(name)) return;
    const std::string other = "d/" + OneOf(kNames);
    if (kind < 6) {
      fs::rename(name, other);
    } else {
      fs::remove(name);
    }
  }

  // Returns all that `index` answers.
  std::string Answers(const std::string& index) {
    std::string answers;
    for (const auto& [name, info] : kestan_tests::DocumentsOfIndex(index)) {
      answers += name + "\n" + info.title + "\n" + info.summary + "\n";
    }
    for (const std::string& word : kWords) {
      answers += word + ": " + kestan_tests::AnswersOfIndex(index, word, Path(""));
    }
    return answers;
  }

  std::mt19937 random_{12};
};

TEST_F(FreshIndexTest, AnswersAfterAnyChangesAreThoseOfAFreshIndex) {
  const int rounds = std::getenv("KESTAN_BYTES_ALL") != nullptr ? 500 : 12;
  for (int round = 0; round < rounds; ++round) {
    const auto changes = 1 + random_() % 4;
    for (unsigned long i = 0; i < changes; ++i) ChangeSomething();
    Write("d/z", "always here\n");
    Index();
    fs::remove_all("fresh.index");
    ASSERT_LE(Run({"index", "fresh.index", "d", "--converter", "x=sed s/cat/tac/g {}"}).status, 1);
    ASSERT_EQ(Answers("my.index"), Answers("fresh.index")) << round;
  }
}

}  // namespace
}  // namespace kestan_cli
