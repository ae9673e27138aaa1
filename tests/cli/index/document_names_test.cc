// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/index/document_names.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <functional>
#include <string>
#include <utility>

#include "cli/console/message.h"
#include "tests/cli/index_folder_test.h"

namespace kestan_cli {
namespace {

namespace fs = std::filesystem;

// Each test stands in a folder of its own.
class DocumentNamesTest : public testing::Test {
 protected:
  DocumentNamesTest() : before_(fs::current_path()), here_(fs::canonical(folder_ / "").string()) {
    fs::current_path(here_);
  }
  ~DocumentNamesTest() override { fs::current_path(before_); }

  // Makes an index of documents with these names.
  kestan::search::IndexReader IndexOf(std::initializer_list<std::string> names) const {
    kestan::search::IndexWriter writer = kestan_tests::WriterOf(here_ + "/index");
    for (const std::string& name : names) {
      kestan::search::Document document;
      document.name = name;
      EXPECT_TRUE(writer.Add(std::move(document)).ok());
    }
    EXPECT_TRUE(writer.Commit().ok());
    return kestan_tests::ReaderOfFolder(here_ + "/index");
  }

  // Returns why there is no document that `argument` could mean; "" if there is one.
  static std::string Refusal(const kestan::search::IndexReader& reader,
                             const std::string& argument) {
    try {
      StoredName(reader, argument, "my.index");
    } catch (const CommandError& error) {
      return error.what();
    }
    return "";
  }

 private:
  const kestan_tests::TempDir folder_;
  const fs::path before_;

 protected:
  const std::string here_;
};

TEST_F(DocumentNamesTest, CanonicalPathIsAbsoluteWithoutDotsAndSlashes) {
  fs::create_directories("a/b");
  kestan_tests::WriteFile("a/file", "");
  EXPECT_EQ(CanonicalPath("a/file"), here_ + "/a/file");
  EXPECT_EQ(CanonicalPath("./a//b/../file"), here_ + "/a/file");
  EXPECT_EQ(CanonicalPath(here_ + "/a/./b/"), here_ + "/a/b");
  EXPECT_EQ(CanonicalPath("."), here_);
  EXPECT_EQ(CanonicalPath("/"), "/");
  EXPECT_EQ(CanonicalPath("//"), "/");
  EXPECT_EQ(CanonicalPath("/.."), "/");
}

TEST_F(DocumentNamesTest, CanonicalPathFollowsLinks) {
  fs::create_directories("a/b");
  kestan_tests::WriteFile("a/b/file", "");
  fs::create_symlink("a/b", "link");
  fs::create_symlink("link/file", "other");
  EXPECT_EQ(CanonicalPath("link/file"), here_ + "/a/b/file");
  EXPECT_EQ(CanonicalPath("other"), here_ + "/a/b/file");
  EXPECT_EQ(CanonicalPath("link/.."), here_ + "/a");
}

TEST_F(DocumentNamesTest, WhatIsGoneIsTakenAsItStandsBelowWhatIsThere) {
  fs::create_directory("a");
  fs::create_symlink("a", "link");
  EXPECT_EQ(CanonicalPath("gone"), here_ + "/gone");
  EXPECT_EQ(CanonicalPath("gone/"), here_ + "/gone");
  EXPECT_EQ(CanonicalPath("link/gone/../x"), here_ + "/a/x");
  EXPECT_EQ(CanonicalPath("/gone//before/./x/../y"), "/gone/before/y");
}

TEST_F(DocumentNamesTest, BytesThatAreNoTextStay) {
  EXPECT_EQ(CanonicalPath("\xff\x1b\n"), here_ + "/\xff\x1b\n");
}

TEST_F(DocumentNamesTest, PathThatCannotBeFollowedIsAnError) {
  fs::create_symlink("loop", "loop");
  EXPECT_THROW(CanonicalPath("loop/x"), CommandError);
}

TEST_F(DocumentNamesTest, ShownNamesOpenFromTheWorkingDirectory) {
  const ShownNames shown;
  EXPECT_EQ(shown(here_ + "/a/file"), "a/file");
  EXPECT_EQ(shown(here_), here_);
  EXPECT_EQ(shown(here_ + "x/file"), here_ + "x/file");
  EXPECT_EQ(shown("/else/where"), "/else/where");
  EXPECT_EQ(shown(here_ + "/-0"), "./-0");
  EXPECT_EQ(shown(here_ + "/a/-0"), "a/-0");
}

TEST_F(DocumentNamesTest, NamesThatAreNoPathsAreShownAsTheyAre) {
  const ShownNames shown;
  for (const char* name : {"", "a", "./a", "../b", "-x", "http://x/y"})
    EXPECT_EQ(shown(name), name);
}

TEST_F(DocumentNamesTest, BelowTheRootAllPathsAreRelative) {
  fs::current_path("/");
  EXPECT_EQ(ShownNames()("/a/file"), "a/file");
  EXPECT_EQ(ShownNames()("/"), "/");
}

TEST_F(DocumentNamesTest, WithoutAWorkingDirectoryNamesAreShownAsTheyAreStored) {
  fs::create_directory("gone");
  fs::current_path("gone");
  fs::remove(here_ + "/gone");
  EXPECT_EQ(ShownNames()(here_ + "/gone/file"), here_ + "/gone/file");
  EXPECT_EQ(ShownNames()("/file"), "/file");
  EXPECT_THROW(CanonicalPath("file"), CommandError);
  EXPECT_EQ(CanonicalPath("/"), "/");
}

TEST_F(DocumentNamesTest, ShownNamesAreFoundAgain) {
  const std::string files[] = {here_ + "/a/file", here_ + "/-0", "/else/where", "a", "-x"};
  const auto reader = IndexOf({files[0], files[1], files[2], files[3], files[4]});
  for (const std::string& name : files) {
    EXPECT_EQ(StoredName(reader, ShownNames()(name), "my.index"), name);
  }
}

TEST_F(DocumentNamesTest, NameAsItIsStoredComesBeforeAPath) {
  const auto reader = IndexOf({"file", here_ + "/file", here_ + "/other"});
  EXPECT_EQ(StoredName(reader, "file", "my.index"), "file");
  EXPECT_EQ(StoredName(reader, "./file", "my.index"), here_ + "/file");
  EXPECT_EQ(StoredName(reader, "other", "my.index"), here_ + "/other");
  EXPECT_EQ(StoredName(reader, here_ + "//other/", "my.index"), here_ + "/other");
}

TEST_F(DocumentNamesTest, UnknownNameIsAnError) {
  const auto reader = IndexOf({"file"});
  EXPECT_EQ(Refusal(reader, "fil"), "no document 'fil' in index 'my.index'; see kestan list");
  EXPECT_EQ(Refusal(reader, ""), "no document '' in index 'my.index'; see kestan list");
  EXPECT_EQ(Refusal(reader, std::string(5000, 'x')).substr(0, 16), "no document 'xxx");
}

TEST_F(DocumentNamesTest, UnknownNameIsAnErrorWithoutAWorkingDirectoryToo) {
  const auto reader = IndexOf({"file"});
  fs::create_directory("gone");
  fs::current_path("gone");
  fs::remove(here_ + "/gone");
  EXPECT_EQ(StoredName(reader, "file", "my.index"), "file");
  EXPECT_NE(Refusal(reader, "fil"), "");
}

}  // namespace
}  // namespace kestan_cli
