// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/sync/root_trust.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "cli/console/message.h"
#include "tests/cli/command_test.h"

namespace kestan_cli {
namespace {

namespace fs = std::filesystem;

class RootTrustTest : public kestan_tests::CommandTest {
 protected:
  void SetUp() override {
    Write("my.index/MANIFEST", "text");
    fs::permissions(Path("my.index"), fs::perms(0755));
    fs::permissions(Path("my.index/MANIFEST"), fs::perms(0644));
  }

  std::string Reason() const { return ReasonToDistrust(Path("my.index")); }

  std::string Complaint(const RootOptions& options) const {
    try {
      CheckConverters("/d", options, Path("my.index"));
    } catch (const CommandError& error) {
      return error.what();
    }
    return "";
  }
};

TEST_F(RootTrustTest, IndexThatOnlyItsOwnerMayWriteIsTrusted) { EXPECT_EQ(Reason(), ""); }

TEST_F(RootTrustTest, IndexThatOthersMayWriteIsNot) {
  for (const char* name : {"my.index", "my.index/MANIFEST"}) {
    for (const auto who : {fs::perms::group_write, fs::perms::others_write}) {
      fs::permissions(Path(name), who, fs::perm_options::add);
      EXPECT_EQ(Reason(), "other users may write it");
      fs::permissions(Path(name), who, fs::perm_options::remove);
    }
  }
  EXPECT_EQ(Reason(), "");
}

TEST_F(RootTrustTest, IndexThatIsNotThereIsNot) {
  fs::remove(Path("my.index/MANIFEST"));
  EXPECT_EQ(Reason(), "no such file or folder");
}

TEST_F(RootTrustTest, FoldersDifferThoughOneTookThePlaceOfTheOther) {
  const std::string identity = FolderIdentity(Path("my.index"));
  if (identity.empty()) GTEST_SKIP() << "this file system does not date its folders";
  fs::rename(Path("my.index"), Path("moved"));
  EXPECT_EQ(FolderIdentity(Path("moved")), identity);
  fs::create_directory(Path("my.index"));
  EXPECT_NE(FolderIdentity(Path("my.index")), identity);
  fs::remove_all(Path("moved"));
  fs::remove(Path("my.index"));
  fs::create_directory(Path("my.index"));  // perhaps with the number of the first
  EXPECT_NE(FolderIdentity(Path("my.index")), identity);
  EXPECT_EQ(FolderIdentity(Path("gone")), "");
}

TEST_F(RootTrustTest, ConvertersAreRunWhereTheyWereGiven) {
  RootOptions options;
  EXPECT_EQ(Complaint(options), "") << "there are none";
  options.reading.converters = {"x=cat {}"};
  EXPECT_NE(Complaint(options).find("which is a copy"), std::string::npos) << "given nowhere";
  options.given_in = "1 2.3";
  EXPECT_NE(Complaint(options).find("which is a copy"), std::string::npos);
  options.is_given_now = true;
  EXPECT_EQ(Complaint(options), "");
  Roots roots{{"/d", options}};
  SignConverters(Path("my.index"), &roots);
  options = roots.at("/d");
  EXPECT_EQ(options.given_in, FolderIdentity(Path("my.index")));
  options.is_given_now = false;
  if (options.given_in.empty()) GTEST_SKIP() << "this file system does not date its folders";
  EXPECT_EQ(Complaint(options), "");
  fs::permissions(Path("my.index"), fs::perms::group_write, fs::perm_options::add);
  EXPECT_NE(Complaint(options).find("other users may write it"), std::string::npos);
}

TEST_F(RootTrustTest, OnlyWhatWasGivenNowIsSigned) {
  RootOptions options;
  options.reading.converters = {"x=cat {}"};
  options.given_in = "1 2.3";
  Roots roots{{"/d", options}};
  SignConverters(Path("my.index"), &roots);
  EXPECT_EQ(roots.at("/d").given_in, "1 2.3");
}

}  // namespace
}  // namespace kestan_cli
