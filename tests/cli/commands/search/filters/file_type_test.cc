// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/commands/search/filters/file_type.h"

#include <gtest/gtest.h>

namespace kestan_cli {
namespace {

TEST(IsFileOfTypeTest, TypeIsTheExtensionWhateverItsCapitals) {
  EXPECT_TRUE(IsFileOfType("/a/b.pdf", "pdf"));
  EXPECT_TRUE(IsFileOfType("/a/b.PDF", "pdf"));
  EXPECT_FALSE(IsFileOfType("/a/b.pdf", "pd"));
  EXPECT_FALSE(IsFileOfType("/a.pdf/b", "pdf"));
  EXPECT_FALSE(IsFileOfType("/a/pdf", "pdf"));
}

TEST(IsFileOfTypeTest, ExtensionBeforeThatOfACompressionCountsToo) {
  EXPECT_TRUE(IsFileOfType("a.html.gz", "html"));
  EXPECT_TRUE(IsFileOfType("a.html.gz", "gz"));
  EXPECT_FALSE(IsFileOfType("a.html.gz", "bz2"));
  EXPECT_TRUE(IsFileOfType("a.tar.xz", "tar"));
}

TEST(IsFileOfTypeTest, KindsStandForSeveralExtensions) {
  for (const char* const name : {"a.html", "a.htm", "a.xhtml", "a.htm.gz"}) {
    EXPECT_TRUE(IsFileOfType(name, "html")) << name;
  }
  for (const char* const name : {"a.docx", "a.odt", "a.epub", "a.pptx", "a.xlsx", "a.doc"}) {
    EXPECT_TRUE(IsFileOfType(name, "office")) << name;
  }
  for (const char* const name : {"a.c", "a.cc", "a.H", "a.py", "a.rs", "a.sh"}) {
    EXPECT_TRUE(IsFileOfType(name, "source")) << name;
  }
  EXPECT_FALSE(IsFileOfType("a.txt", "html"));
  EXPECT_FALSE(IsFileOfType("a.txt", "office"));
  EXPECT_FALSE(IsFileOfType("a.txt", "source"));
}

TEST(IsFileOfTypeTest, NamesWithoutAnExtensionAreText) {
  EXPECT_TRUE(IsFileOfType("/a.d/README", "text"));
  EXPECT_TRUE(IsFileOfType("a.txt", "text"));
  EXPECT_TRUE(IsFileOfType("a.md", "text"));
  EXPECT_TRUE(IsFileOfType("changelog.gz", "text"));
  EXPECT_FALSE(IsFileOfType("a.html", "text"));
}

TEST(IsFileOfTypeTest, ManualPagesAreKnownByTheirSections) {
  for (const char* const name : {"ls.1", "ls.1.gz", "printf.3p", "x.3pm.gz", "a.man"}) {
    EXPECT_TRUE(IsFileOfType(name, "man")) << name;
  }
  for (const char* const name : {"ls", "ls.txt", "a.12", "a.0"}) {
    EXPECT_FALSE(IsFileOfType(name, "man")) << name;
  }
}

TEST(IsFileOfTypeTest, UnknownTypesAreExtensions) {
  EXPECT_FALSE(IsFileOfType("a.txt", "nonsense"));
  EXPECT_TRUE(IsFileOfType("a.nonsense", "nonsense"));
  EXPECT_FALSE(IsFileOfType("a", ""));
}

}  // namespace
}  // namespace kestan_cli
