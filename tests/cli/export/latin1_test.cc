#include "cli/export/latin1.h"

#include <gtest/gtest.h>

namespace kestan_tests {
namespace {

using kestan_cli::IsUtf8;
using kestan_cli::ToUtf8;
using namespace std::string_literals;

TEST(Utf8Test, CharactersOfEveryLengthAreIn) {
  EXPECT_TRUE(IsUtf8(""));
  EXPECT_TRUE(IsUtf8("plain\n\x7f\0"s));
  EXPECT_TRUE(IsUtf8("\xc2\x80\xdf\xbf"));
  EXPECT_TRUE(IsUtf8("\xe0\xa0\x80\xed\x9f\xbf\xee\x80\x80\xef\xbf\xbf"));
  EXPECT_TRUE(IsUtf8("\xf0\x90\x80\x80\xf4\x8f\xbf\xbf"));
}

TEST(Utf8Test, OverlongFormsSurrogatesAndWhatIsTooHighAreNot) {
  for (const char* text :
       {"\xc0\x80", "\xc1\xbf", "\xe0\x9f\xbf", "\xf0\x8f\xbf\xbf", "\xed\xa0\x80", "\xed\xbf\xbf",
        "\xf4\x90\x80\x80", "\xf5\x80\x80\x80"}) {
    EXPECT_FALSE(IsUtf8(text)) << text;
  }
}

TEST(Utf8Test, BrokenCharactersAreNot) {
  for (const char* text : {"\x80", "\xbf", "\xc3", "\xc3x", "\xe2\x82", "\xe2\x82x", "\xe2(\xa1",
                           "\xf0\x9f\x98", "\xf0\x9f\x98x", "ok\xff"}) {
    EXPECT_FALSE(IsUtf8(text)) << text;
  }
}

TEST(Utf8Test, OtherTextIsReadAsLatin1) {
  bool was_latin1 = false;
  EXPECT_EQ(ToUtf8("caf\xc3\xa9", &was_latin1), "caf\xc3\xa9");
  EXPECT_FALSE(was_latin1);
  EXPECT_EQ(ToUtf8("caf\xe9 \x80\xbf\xc0\xff", &was_latin1),
            "caf\xc3\xa9 \xc2\x80\xc2\xbf\xc3\x80\xc3\xbf");
  EXPECT_TRUE(was_latin1);
  ToUtf8("plain", &was_latin1);
  EXPECT_TRUE(was_latin1);
}

}  // namespace
}  // namespace kestan_tests
