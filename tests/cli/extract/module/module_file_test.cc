// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/extract/module/module_file.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <string>

#include "tests/support/files.h"
#include "tests/support/temp_dir.h"

namespace kestan_cli {
namespace {

namespace fs = std::filesystem;

constexpr const char* kNoModule = "not a module for this system";

// The tests have the readers of the module linked in.
std::string ThisVersion() { return KestanReaders()->version; }

class ModuleFileTest : public testing::Test {
 protected:
  ModuleFileTest() {
    fs::create_directories(folder_ / "bin");
    fs::create_directories(folder_ / "lib/kestan");
    kestan_tests::WriteFile(place_.program, "");
    chmod(place_.program.c_str(), 0755);
    for (const char* name : {"lib", "lib/kestan"}) chmod((folder_ / name).c_str(), 0755);
  }

  void Install(const std::string& module) const {
    fs::copy_file(module, place_.Path(), fs::copy_options::overwrite_existing);
    chmod(place_.Path().c_str(), 0644);
  }

  void Install(const char* bytes, std::size_t size) const {
    kestan_tests::WriteFile(place_.Path(), std::string(bytes, size));
  }

  // Returns why the module cannot be used.
  std::string Refusal(const std::string& version = ThisVersion()) const {
    std::string reason;
    const Readers* const readers = OpenModule(place_, version, &reason);
    EXPECT_EQ(readers == nullptr, !reason.empty()) << reason;
    return reason;
  }

  const kestan_tests::TempDir folder_;
  const ModulePlace place_{folder_ / "bin/kestan", "../lib/kestan/kestan-readers.so"};
};

TEST(ModulePlaceTest, WayStartsAtTheFolderOfTheProgram) {
  EXPECT_EQ((ModulePlace{"/usr/bin/kestan", "../lib/kestan/a.so"}.Path()), "/usr/lib/kestan/a.so");
  EXPECT_EQ((ModulePlace{"/usr/bin/kestan (deleted)", "../lib/a.so"}.Path()), "/usr/lib/a.so");
  EXPECT_EQ((ModulePlace{"/kestan", "lib/a.so"}.Path()), "/lib/a.so");
}

TEST_F(ModuleFileTest, ModuleOfThisBuildIsOpened) {
  Install(KESTAN_MODULE);
  std::string reason;
  const Readers* const readers = OpenModule(place_, ThisVersion(), &reason);
  ASSERT_NE(readers, nullptr) << reason;
  EXPECT_EQ(readers->version, ThisVersion());
  EXPECT_NE(readers, KestanReaders());
  EXPECT_EQ(readers->examine_charset("windows-1251"), CharsetKind::kPlain);
}

TEST_F(ModuleFileTest, ModuleOfAnotherVersionIsRefused) {
  Install(KESTAN_OTHER_MODULE);
  EXPECT_EQ(Refusal("1.2.3"), "it is of version 0.0.0-other, this command of 1.2.3");
}

TEST_F(ModuleFileTest, LibraryThatIsNoModuleIsRefused) {
  Install(KESTAN_FOREIGN_MODULE);
  EXPECT_NE(Refusal().find("undefined symbol: KestanReaders"), std::string::npos);
}

TEST_F(ModuleFileTest, MissingModuleIsReported) {
  EXPECT_EQ(Refusal(), "no such file or folder");
  fs::remove_all(folder_ / "lib");
  EXPECT_EQ(Refusal(), "no such file or folder");
}

TEST_F(ModuleFileTest, OtherFilesAreNoModules) {
  for (const std::string& bytes : {std::string(),
                                   std::string("\x7f"
                                               "ELF"),
                                   std::string(5000, '\0'), std::string("#!/bin/sh\n"),
                                   std::string("\x7f"
                                               "ELF") +
                                       std::string(5000, '\xff')}) {
    Install(bytes.data(), bytes.size());
    EXPECT_EQ(Refusal(), kNoModule) << bytes.size();
  }
  fs::remove(place_.Path());
  fs::create_directory(place_.Path());
  EXPECT_EQ(Refusal(), kNoModule);
  fs::remove(place_.Path());
  ASSERT_EQ(mkfifo(place_.Path().c_str(), 0600), 0);
  EXPECT_EQ(Refusal(), kNoModule);
}

// The class of the file is its fifth byte.
TEST_F(ModuleFileTest, ModuleOfAnotherWordSizeIsRefused) {
  std::string bytes = kestan_tests::ReadFile(KESTAN_MODULE);
  bytes[4] = static_cast<char>(bytes[4] ^ 3);
  Install(bytes.data(), bytes.size());
  EXPECT_EQ(Refusal(), kNoModule);
}

// Where only what the loader does not need is missing, the module may be whole.
TEST_F(ModuleFileTest, ModuleThatEndsEarlyIsRefusedOrWhole) {
  const std::string bytes = kestan_tests::ReadFile(KESTAN_MODULE);
  const std::size_t step = bytes.size() / 200 + 1;
  int refused = 0;
  for (std::size_t size = 0; size < bytes.size(); size += step) {
    fs::remove(place_.Path());  // an open module keeps its file
    Install(bytes.data(), size);
    const std::string reason = ReasonNotToLoad(place_.Path());
    if (reason.empty()) continue;
    EXPECT_TRUE(reason == kNoModule || reason == "its end is missing") << reason;
    EXPECT_EQ(Refusal(), reason);
    ++refused;
  }
  EXPECT_GT(refused, 5);
  EXPECT_EQ(ReasonNotToLoad(KESTAN_MODULE), "");
}

TEST_F(ModuleFileTest, ModuleThatEverybodyMayWriteIsNotTrusted) {
  Install(KESTAN_MODULE);
  const std::string lib = folder_ / "lib";
  chmod(place_.Path().c_str(), 0666);
  EXPECT_EQ(Refusal(), "every user may write it");
  chmod(place_.Path().c_str(), 0664);
  EXPECT_EQ(Refusal(), "");
  chmod(lib.c_str(), 0777);
  EXPECT_EQ(Refusal(), "every user may write '" + lib + "'");
  chmod(lib.c_str(), 0775);
  EXPECT_EQ(Refusal(), "");
}

TEST_F(ModuleFileTest, FolderThatHoldsTheProgramTooIsNotLookedAt) {
  Install(KESTAN_MODULE);
  chmod((folder_ / "").c_str(), 0777);
  EXPECT_EQ(Refusal(), "");
}

TEST_F(ModuleFileTest, ModuleOfAnotherUserIsNotTrusted) {
  if (geteuid() != 0) GTEST_SKIP() << "only a superuser can give files away";
  constexpr uid_t kStranger = 54321;
  Install(KESTAN_MODULE);
  const std::string lib = folder_ / "lib";
  ASSERT_EQ(chown(place_.Path().c_str(), kStranger, 0), 0);
  EXPECT_EQ(Refusal(), "it belongs to another user");
  ASSERT_EQ(chown(place_.Path().c_str(), 0, 0), 0);
  ASSERT_EQ(chown(lib.c_str(), kStranger, 0), 0);
  EXPECT_EQ(Refusal(), "'" + lib + "' belongs to another user");
  ASSERT_EQ(chown(place_.program.c_str(), kStranger, 0), 0);  // whoever runs it trusts its owner
  EXPECT_EQ(Refusal(), "");
}

}  // namespace
}  // namespace kestan_cli
