#include "cli/adder.h"

#include <gtest/gtest.h>

#include <string>

#include "cli/message.h"
#include "tests/cli/command_test.h"

namespace kestan_cli {
namespace {

class AdderTest : public kestan_tests::CommandTest {
 protected:
  void SetUp() override {
    Write("a", "cat\n");  // 4 bytes of words: a blank follows
    Write("b", "cat dog\n");
  }

  // Whether the index, still open, has the postings of `a` on the disk.
  bool IsSaved() {
    Write("copy", IndexBytes());
    return kestan_tests::Dump(Path("copy"))["cat"] == kestan_tests::Units({1, 1, 1});
  }

  static std::string Complaint(Adder& adder, const std::string& name) {
    try {
      adder.Add(name);
    } catch (const CommandError& error) {
      return error.what();
    }
    return "";
  }

  Kestan engine_;
  OpenedIndex index_{engine_, Path("my.index"), Access::kCreate};
};

TEST_F(AdderTest, CountsNewWords) {
  Adder adder(index_);
  adder.Add(Path("a"));
  EXPECT_EQ(adder.new_words(), 1u);
  adder.Add(Path("b"));
  EXPECT_EQ(adder.new_words(), 2u);
  adder.Add(Path("b"));
  EXPECT_EQ(adder.new_words(), 2u);
}

TEST_F(AdderTest, SavesWhenEnoughTextHasCome) {
  Adder adder(index_, 4);
  adder.Add(Path("a"));
  EXPECT_TRUE(IsSaved());
}

TEST_F(AdderTest, DoesNotSaveBefore) {
  Adder adder(index_, 5);
  adder.Add(Path("a"));
  EXPECT_FALSE(IsSaved());
}

TEST_F(AdderTest, FileThatWentMissingIsNamed) {
  Adder adder(index_);
  EXPECT_EQ(Complaint(adder, Path("gone")),
            "cannot read '" + Path("gone") + "': no such file or directory");
}

TEST_F(AdderTest, DocumentThatAFullIndexRefusesIsNamed) {
  Adder adder(index_);
  adder.Add(Path("a"));
  index_.Save();
  engine_.CloseIndex();
  kestan_tests::Plant(Path("my.index"), {{"g-code", kestan_tests::Units({65535})}});
  ASSERT_EQ(engine_.OpenIndex(Path("my.index").c_str(), 1), 0);
  EXPECT_EQ(Complaint(adder, Path("b")),
            "index '" + Path("my.index") + "' did not take '" + Path("b") + "'");
}

}  // namespace
}  // namespace kestan_cli
