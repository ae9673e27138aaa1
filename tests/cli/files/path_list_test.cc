#include "cli/files/path_list.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "cli/console/message.h"
#include "cli/console/output.h"

namespace kestan_cli {
namespace {

using std::string_view_literals::operator""sv;
using Names = std::vector<std::string>;

TEST(PathListTest, NulEndsAPath) { EXPECT_EQ(PathsIn("a\0b\nc\0"sv), (Names{"a", "b\nc"})); }

TEST(PathListTest, LastNulMayBeMissing) { EXPECT_EQ(PathsIn("a\0b"sv), (Names{"a", "b"})); }

TEST(PathListTest, EmptyPathsAreLeftOut) { EXPECT_EQ(PathsIn("\0\0a\0\0"sv), Names{"a"}); }

TEST(PathListTest, EmptyListHasNone) { EXPECT_EQ(PathsIn(""), Names{}); }

TEST(PathListTest, StreamThatCannotBeReadIsTold) {
  const OpenFile folder(std::fopen("/", "rb"));
  ASSERT_NE(folder, nullptr);
  try {
    ReadPathList(folder.get());
    FAIL();
  } catch (const CommandError& error) {
    EXPECT_STREQ(error.what(), "cannot read the standard input: is a folder");
  }
}

TEST(PathListTest, StreamThatHoldsTooMuchIsTold) {
  const OpenFile zeros(std::fopen("/dev/zero", "rb"));
  ASSERT_NE(zeros, nullptr);
  try {
    ReadPathList(zeros.get(), 100000);
    FAIL();
  } catch (const CommandError& error) {
    EXPECT_STREQ(error.what(), "the standard input holds more than 100000 bytes");
  }
}

}  // namespace
}  // namespace kestan_cli
