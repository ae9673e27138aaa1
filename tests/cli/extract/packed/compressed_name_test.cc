// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/extract/packed/compressed_name.h"

#include <gtest/gtest.h>

#include "tests/support/packed.h"

namespace kestan_cli {
namespace {

TEST(CompressedNameTest, NameAndFirstBytesTellTogether) {
  const std::pair<const char*, const char*> formats[] = {
      {"gz", "gzip"}, {"bz2", "bzip2"}, {"xz", "xz"}, {"zst", "zstd"}};
  for (const auto& [extension, filter] : formats) {
    const std::string bytes = kestan_tests::Packed("text", filter);
    EXPECT_TRUE(IsCompressed(std::string("a.") + extension, bytes)) << filter;
    EXPECT_TRUE(IsCompressed(std::string("a.txt.") + extension, bytes)) << filter;
    EXPECT_FALSE(IsCompressed(std::string("a.") + extension, "text")) << filter;
    EXPECT_FALSE(IsCompressed(std::string("a.") + extension, "")) << filter;
    EXPECT_FALSE(IsCompressed(extension, bytes)) << filter;
    EXPECT_FALSE(IsCompressed("a.txt", bytes)) << filter;
  }
}

TEST(CompressedNameTest, InnerNameIsWithoutTheExtensions) {
  EXPECT_EQ(UnpackedName("/d.gz/x.html.gz"), "/d.gz/x.html");
  EXPECT_EQ(UnpackedName("changelog.Debian.GZ"), "changelog.Debian");
  EXPECT_EQ(UnpackedName("x.txt.xz.bz2"), "x.txt");
  EXPECT_EQ(UnpackedName("x.gz.gz.gz.gz"), "x.gz") << "no more than " << kMaxLayers;
  EXPECT_EQ(UnpackedName("x.txt"), "x.txt");
  EXPECT_EQ(UnpackedName("d/.gz"), "d/.gz");
}

}  // namespace
}  // namespace kestan_cli
