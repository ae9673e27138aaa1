// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/files/file_header.h"

#include <gtest/gtest.h>

#include <string>

namespace kestan::search {
namespace {

constexpr FileKind kKind = {"KestLamp", 3, "a lamp"};

TEST(FileHeaderTest, HasLettersAndVersion) {
  EXPECT_EQ(FileHeader(kKind), std::string("KestLamp\3\0\0\0\0\0\0\0", 16));
  EXPECT_TRUE(CheckFileHeader(FileHeader(kKind), kKind, "f").ok());
  EXPECT_TRUE(CheckFileHeader(FileHeader(kKind) + "more", kKind, "f").ok());
}

TEST(FileHeaderTest, EveryTruncationIsDamage) {
  for (std::size_t size = 0; size < kFileHeaderBytes; ++size) {
    const Status status = CheckFileHeader(FileHeader(kKind).substr(0, size), kKind, "f");
    EXPECT_EQ(status.code(), StatusCode::kDamaged);
    EXPECT_EQ(status.ToString(), "f: it is not a lamp");
  }
}

TEST(FileHeaderTest, EveryChangedByteIsDamageOrAnotherVersion) {
  for (std::size_t at = 0; at < kFileHeaderBytes; ++at) {
    std::string bytes = FileHeader(kKind);
    bytes[at] = static_cast<char>(bytes[at] ^ 1);
    EXPECT_EQ(CheckFileHeader(bytes, kKind, "f").code(),
              at < 8 ? StatusCode::kDamaged : StatusCode::kVersion);
  }
}

TEST(FileHeaderTest, AnotherVersionIsNamed) {
  EXPECT_EQ(CheckFileHeader(FileHeader({"KestLamp", 4, ""}), kKind, "f").ToString(),
            "f: it is a lamp of version 4, and this program reads version 3");
}

}  // namespace
}  // namespace kestan::search
