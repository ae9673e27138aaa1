#include <gtest/gtest.h>
#include <kestan/text/escape.h>

namespace kestan {
namespace {

TEST(Escape, PrintableBytesStayAsTheyAre) { EXPECT_EQ(Escaped("a Z~!-:\""), "a Z~!-:\""); }

TEST(Escape, OtherBytesAndTheBackslashAreSpelled) {
  EXPECT_EQ(Escaped(std::string_view("\0\n\x1f\x7f\x80\xff\\", 7)),
            "\\x00\\x0a\\x1f\\x7f\\x80\\xff\\x5c");
}

TEST(Escape, NothingStaysNothing) { EXPECT_EQ(Escaped({}), ""); }

}  // namespace
}  // namespace kestan
