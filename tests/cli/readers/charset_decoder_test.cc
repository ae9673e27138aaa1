// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/readers/charset_decoder.h"

#include <gtest/gtest.h>

#include <string>

namespace kestan_cli {
namespace {

struct Decoded {
  ReadStatus status = ReadStatus::kNoMemory;
  std::u16string text;
  bool is_faulty = false;
  int pieces = 0;
};

Decoded Decode(const char* name, const std::string& bytes, bool is_faulty = false) {
  Decoded decoded;
  decoded.is_faulty = is_faulty;
  const Utf16Sink sink{&decoded,
                       [](void* context, const char16_t* units, std::size_t count) noexcept {
                         static_cast<Decoded*>(context)->text.append(units, count);
                         ++static_cast<Decoded*>(context)->pieces;
                       }};
  decoded.status = DecodeCharset(name, bytes.data(), bytes.size(), sink, &decoded.is_faulty);
  return decoded;
}

TEST(CharsetDecoderTest, KindsAreTold) {
  for (const char* name : {"windows-1251", "ibm850", "gb18030", "us-ascii", "iso-8859-1"}) {
    EXPECT_EQ(ExamineCharset(name), CharsetKind::kPlain) << name;
  }
  for (const char* name : {"utf-7", "hz", "iso-2022-kr"}) {
    EXPECT_EQ(ExamineCharset(name), CharsetKind::kShifting) << name;
  }
  for (const char* name : {"utf-16", "utf-32le", "ibm037", "scsu", "nonsense"}) {
    EXPECT_EQ(ExamineCharset(name), CharsetKind::kUnusable) << name;
  }
}

TEST(CharsetDecoderTest, BytesBecomeUtf16) {
  const Decoded decoded = Decode("windows-1251", "\xf0\xee\xe7\xfb");
  EXPECT_EQ(decoded.status, ReadStatus::kRead);
  EXPECT_EQ(decoded.text, u"\u0440\u043e\u0437\u044b");
  EXPECT_FALSE(decoded.is_faulty);
}

TEST(CharsetDecoderTest, LongTextComesInPieces) {
  const Decoded decoded = Decode("koi8-r", std::string(10000, 'x'));
  EXPECT_EQ(decoded.text, std::u16string(10000, u'x'));
  EXPECT_GT(decoded.pieces, 1);
}

TEST(CharsetDecoderTest, NoBytesAreAText) {
  EXPECT_EQ(Decode("koi8-r", "").status, ReadStatus::kRead);
  EXPECT_EQ(Decode("koi8-r", "").text, u"");
}

TEST(CharsetDecoderTest, AsciiAmongInvalidBytesStays) {
  const Decoded decoded = Decode("euc-jp", "a\xa4 b");
  EXPECT_EQ(decoded.text, u"a\ufffd b");
  EXPECT_TRUE(decoded.is_faulty);
}

TEST(CharsetDecoderTest, FaultIsNeverCleared) {
  EXPECT_TRUE(Decode("koi8-r", "text", true).is_faulty);
  EXPECT_FALSE(Decode("koi8-r", "text", false).is_faulty);
}

TEST(CharsetDecoderTest, UnknownNameIsNotRead) {
  const Decoded decoded = Decode("nonsense", "text");
  EXPECT_EQ(decoded.status, ReadStatus::kUnread);
  EXPECT_EQ(decoded.pieces, 0);
}

}  // namespace
}  // namespace kestan_cli
