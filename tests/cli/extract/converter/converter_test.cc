// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/extract/converter/converter.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "cli/console/message.h"
#include "cli/files/skip.h"
#include "tests/cli/command_test.h"

namespace kestan_cli {
namespace {

using Texts = std::vector<std::string>;

std::string Complaint(const std::string& given) {
  try {
    const Converters converters({given});
  } catch (const CommandError& error) {
    return error.what();
  }
  return "";
}

TEST(ExtensionTest, IsWhatFollowsTheLastDot) {
  EXPECT_EQ(ExtensionOf("d.x/a.tar.GZ"), "gz");
  EXPECT_EQ(ExtensionOf("d.x/a"), "");
  EXPECT_EQ(ExtensionOf(".pdf"), "");
  EXPECT_EQ(ExtensionOf("d/.pdf"), "");
  EXPECT_EQ(ExtensionOf("a."), "");
}

TEST(ConvertersTest, KnownFormatsAreFoundByNameAndContent) {
  const Converters converters({});
  const Converter* const pdf = converters.Find("d/a.PDF", "%PDF-1.5");
  ASSERT_NE(pdf, nullptr);
  EXPECT_EQ(pdf->command.front(), "pdftotext");
  EXPECT_EQ(converters.Find("a.pdf", "a text about PDF"), nullptr);
  EXPECT_EQ(converters.Find("a.txt", "%PDF-1.5"), nullptr);
}

TEST(ConvertersTest, ContentIsLookedAtNearTheBeginningOnly) {
  const Converters converters({});
  const std::string magic = "%PDF-";
  EXPECT_NE(converters.Find("a.pdf", std::string(kHeadBytes - 5, 'x') + magic), nullptr);
  EXPECT_EQ(converters.Find("a.pdf", std::string(kHeadBytes - 4, 'x') + magic), nullptr);
}

TEST(ConvertersTest, GivenOnesGoBeforeThoseKnownAndTakeAnyContent) {
  const Converters converters({"pdf=first {}", ".Pdf=my  tool\t-x {} -", "a=b {}"});
  const Converter* const found = converters.Find("x.pdf", "text");
  ASSERT_NE(found, nullptr);
  EXPECT_EQ(found->command, (Texts{"my", "tool", "-x", "{}", "-"}));
}

TEST(ConvertersTest, MistakesAreReported) {
  const std::string what = " is not of the form EXT=COMMAND with {} for the file";
  for (const char* given : {"", "pdf", "pdf=", "=tool {}", "pdf=tool", "tar.gz=tool {}", "{}"}) {
    EXPECT_EQ(Complaint(given), "converter " + Quoted(given) + what);
  }
  EXPECT_EQ(Complaint("pdf=tool {}"), "");
}

class ConvertTest : public kestan_tests::CommandTest {
 protected:
  // Converts the file `name` with `command`. Returns its text, or why it was skipped.
  std::string Converted(const std::string& command, const std::string& name) {
    const Converters converters({"x=" + command});
    try {
      return Convert(*converters.Find("a.x", ""), name, {});
    } catch (const SkipFile& skip) {
      return KeyOf(skip.kind()) + ": " + skip.what();
    }
  }
};

TEST_F(ConvertTest, OutputIsTheText) {
  Write("two words", "text\n");
  EXPECT_EQ(Converted("cat {}", Path("two words")), "text\n");
}

TEST_F(ConvertTest, FileMayStandAnywhereInAnArgument) {
  EXPECT_EQ(Converted("echo if={} {}", "a"), "if=a a\n");
}

TEST_F(ConvertTest, NameIsNoOptionAndNoPattern) {
  EXPECT_EQ(Converted("echo {}", "-n"), "./-n\n");
  EXPECT_EQ(Converted("echo {}", "{}$(x)"), "{}$(x)\n");
}

TEST_F(ConvertTest, MissingProgramIsNamed) {
  EXPECT_EQ(Converted("no-such-tool {}", "a"),
            "no_converter: no converter for .x (no-such-tool is missing)");
  EXPECT_EQ(Converted(Path("none") + " {}", "a"),
            "no_converter: no converter for .x (" + Path("none") + " is missing)");
}

TEST_F(ConvertTest, FolderOnThePathIsNoProgram) {
  Write("bin/tool/x", "");
  setenv("PATH", Path("bin").c_str(), 1);
  EXPECT_EQ(Converted("tool {}", "a"), "no_converter: no converter for .x (tool is missing)");
}

TEST_F(ConvertTest, FailureIsReported) {
  EXPECT_EQ(Converted("false {}", "a"), "conversion: false ended with status 1");
}

TEST_F(ConvertTest, FileThatCannotBeRunIsReported) {
  Write("tool",
        "\x7f"
        "ELF nothing");
  ASSERT_EQ(chmod(Path("tool").c_str(), 0755), 0);
  EXPECT_EQ(Converted(Path("tool") + " {}", "a"),
            "conversion: " + Path("tool") + " could not be started");
}

TEST(KnownConvertersTest, ReportNamesThePackageToInstall) {
  const Converter* const converter = Converters::BuiltIn().Find("a.pdf", "%PDF-1.7");
  ASSERT_NE(converter, nullptr);
  setenv("PATH", "/nowhere", 1);
  try {
    Convert(*converter, "a.pdf", {});
    ADD_FAILURE() << "it was converted";
  } catch (const SkipFile& skip) {
    EXPECT_STREQ(skip.what(),
                 "no converter for .pdf (pdftotext is missing; install poppler-utils)");
  }
}

TEST(KnownConvertersTest, FirstProgramThatIsThereIsTaken) {
  const kestan_tests::TempDir folder;
  const std::string head = "\xd0\xcf\x11\xe0";
  setenv("PATH", (folder / "").c_str(), 1);
  EXPECT_EQ(Converters({}).Find("a.doc", head)->command[0], "antiword");
  kestan_tests::WriteFile(folder / "catdoc", "#!/bin/sh\n");
  ASSERT_EQ(chmod((folder / "catdoc").c_str(), 0755), 0);
  EXPECT_EQ(Converters({}).Find("a.doc", head)->command[0], "catdoc");
  EXPECT_EQ(Converters({"doc=mine {}"}).Find("a.doc", head)->command[0], "mine");
}

}  // namespace
}  // namespace kestan_cli
