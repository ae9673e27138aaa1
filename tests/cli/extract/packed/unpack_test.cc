// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/extract/packed/unpack.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

#include "cli/files/skip.h"
#include "tests/support/packed.h"

namespace kestan_cli {
namespace {

using kestan_tests::Packed;

PieceSource SourceOf(const std::string& packed) {
  return [rest = packed, piece = std::string()]() mutable {
    piece = std::move(rest);
    rest.clear();
    return std::string_view(piece);
  };
}

Unpacked UnpackText(const std::string& packed, std::uint64_t max_bytes, bool cuts = false) {
  return Unpack(SourceOf(packed), {max_bytes, cuts, nullptr});
}

// Returns the reason why nothing is unpacked.
std::string Refusal(const std::string& packed, std::uint64_t max_bytes) {
  try {
    UnpackText(packed, max_bytes);
  } catch (const SkipFile& skip) {
    return KeyOf(skip.kind()) + ": " + skip.what();
  }
  return "";
}

TEST(UnpackTest, TextMayBeAsLargeAsTheRulesSay) {
  const std::string packed = Packed("12345");
  EXPECT_EQ(UnpackText(packed, 5).bytes, "12345");
  EXPECT_EQ(Refusal(packed, 4), "too_large: unpacks to more than 4 bytes");
}

TEST(UnpackTest, TextIsCutWhereThatIsAllowed) {
  const Unpacked cut = UnpackText(Packed("12345"), 3, true);
  EXPECT_EQ(cut.bytes, "123");
  EXPECT_TRUE(cut.is_cut);
  EXPECT_FALSE(UnpackText(Packed("12345"), 5, true).is_cut);
}

TEST(UnpackTest, BombIsRefusedForItsRatio) {
  const std::string bomb = Packed(std::string(kRatioFrom + (1 << 20), ' '));
  ASSERT_LT(bomb.size(), kRatioFrom / kMaxRatio);
  EXPECT_EQ(Refusal(bomb, std::uint64_t{1} << 28),
            "too_large: unpacks to more than 250 times its size");
}

TEST(UnpackTest, SmallTextMayHaveAnyRatio) {
  EXPECT_EQ(UnpackText(Packed(std::string(kRatioFrom, ' ')), kRatioFrom).bytes.size(), kRatioFrom);
}

TEST(UnpackTest, BrokenBytesAreUnreadable) {
  const std::string packed = Packed("some text to be cut");
  EXPECT_EQ(Refusal(packed.substr(0, packed.size() - 12), 100).rfind("unreadable: cannot be ", 0),
            0u);
}

TEST(UnpackTest, FourLayersAreTooMany) {
  const std::string three = Packed(Packed(Packed("text")));
  EXPECT_EQ(UnpackText(three, 100).bytes, "text");
  EXPECT_EQ(Refusal(Packed(three), 100),
            "unreadable: cannot be unpacked: compressed too many times");
}

TEST(UnpackTest, WhatTheCallerThrowsPasses) {
  const PieceSource source = []() -> std::string_view { throw std::logic_error("source"); };
  EXPECT_THROW(Unpack(source, {100, false, nullptr}), std::logic_error);
  UnpackRules rules{100, false, nullptr};
  rules.check = [](const std::string&, std::string_view) { throw std::logic_error("check"); };
  EXPECT_THROW(Unpack(SourceOf(Packed("text")), rules), std::logic_error);
}

}  // namespace
}  // namespace kestan_cli
