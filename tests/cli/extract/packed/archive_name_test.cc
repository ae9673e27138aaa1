// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/extract/packed/archive_name.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/support/packed.h"

namespace kestan_cli {
namespace {

using kestan_tests::Archive;

TEST(ArchiveNameTest, ZipsGoByExtensionAndFirstBytes) {
  const std::string zip = Archive("zip", "none", {{"1", "one"}});
  for (const char* name : {"x.zip", "X.ZIP", "x.jar", "x.war", "x.ear", "x.whl", "x.xpi"}) {
    EXPECT_TRUE(IsArchive(name, zip)) << name;
    EXPECT_FALSE(IsArchive(name, "text")) << name;
  }
  EXPECT_TRUE(IsArchive("x.zip", Archive("zip", "none", {})));
  for (const char* name : {"x.docx", "x.epub", "zip", ".zip", "x.tar", "x"}) {
    EXPECT_FALSE(IsArchive(name, zip)) << name;
  }
}

TEST(ArchiveNameTest, TarsGoByTheChecksumOfTheirFirstMember) {
  for (const char* format : {"ustar", "pax", "gnutar", "v7tar"}) {
    std::string tar = Archive(format, "none", {{"1", "one"}});
    EXPECT_TRUE(IsArchive("x.tar", tar)) << format;
    EXPECT_FALSE(IsArchive("x.txt", tar)) << format;
    EXPECT_FALSE(IsArchive("x.tar", tar.substr(0, 511))) << format;
    tar[1] ^= 1;
    EXPECT_FALSE(IsArchive("x.tar", tar)) << format;
  }
  EXPECT_FALSE(IsArchive("x.tar", std::string(1024, '\0')));
}

TEST(ArchiveNameTest, TarsMayBeCompressed) {
  struct Case {
    const char* name;
    const char* filter;
  };
  for (const Case& each :
       {Case{"x.tar.gz", "gzip"}, Case{"x.tgz", "gzip"}, Case{"x.tar.bz2", "bzip2"},
        Case{"x.tbz2", "bzip2"}, Case{"x.tar.xz", "xz"}, Case{"x.txz", "xz"},
        Case{"x.tar.zst", "zstd"}, Case{"x.tzst", "zstd"}}) {
    EXPECT_TRUE(IsArchive(each.name, Archive("ustar", each.filter, {{"1", ""}}))) << each.name;
    EXPECT_FALSE(IsArchive(each.name, "text")) << each.name;
  }
  EXPECT_FALSE(IsArchive("x.txt.gz", kestan_tests::Packed("text")));
}

}  // namespace
}  // namespace kestan_cli
