#include "cli/index/atomic_create.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <fstream>
#include <stdexcept>
#include <string>

#include "tests/cli/command_test.h"

namespace kestan_tests {
namespace {

using kestan_cli::CommandError;
using kestan_cli::CreateAtomically;

class AtomicCreateTest : public CommandTest {
 protected:
  static void WriteTo(const std::string& path) { std::ofstream(path) << "new"; }

  // Returns how many files and directories the test has.
  long Entries() const {
    const std::filesystem::directory_iterator all(Path(""));
    return std::distance(begin(all), end(all));
  }

  std::string Why(const std::string& path) const {
    try {
      CreateAtomically(path, "", WriteTo);
    } catch (const CommandError& error) {
      return error.what();
    }
    return "";
  }
};

TEST_F(AtomicCreateTest, FileAppearsWithItsBytesAndNothingBesideIt) {
  CreateAtomically(Path("new"), "", [this](const std::string& part) {
    EXPECT_FALSE(std::filesystem::exists(Path("new")));
    WriteTo(part);
  });
  EXPECT_EQ(BytesOfFile(Path("new")), "new");
  EXPECT_EQ(Entries(), 1);
}

TEST_F(AtomicCreateTest, FailureLeavesNothing) {
  EXPECT_THROW(CreateAtomically(Path("new"), "",
                                [](const std::string& part) {
                                  WriteTo(part);
                                  throw std::runtime_error("stopped");
                                }),
               std::runtime_error);
  EXPECT_EQ(Entries(), 0);
}

TEST_F(AtomicCreateTest, WhatIsThereStays) {
  Write("old", "old");
  std::filesystem::create_symlink("nowhere", Path("link"));
  const std::string reason = ": there is something already; choose another name";
  for (const char* name : {"old", "link"}) {
    EXPECT_EQ(Why(Path(name)), "cannot make '" + Path(name) + "'" + reason);
  }
  EXPECT_EQ(BytesOfFile(Path("old")), "old");
}

TEST_F(AtomicCreateTest, FileThatAppearsMeanwhileStays) {
  EXPECT_THROW(CreateAtomically(Path("new"), "",
                                [this](const std::string& part) {
                                  WriteTo(part);
                                  Write("new", "of another");
                                }),
               CommandError);
  EXPECT_EQ(BytesOfFile(Path("new")), "of another");
}

TEST_F(AtomicCreateTest, DirectoryMustExist) {
  EXPECT_EQ(Why(Path("none/new")), "cannot make '" + Path("none/new") + "': no such folder");
}

TEST_F(AtomicCreateTest, FileGetsTheModeOfTheOneItIsLike) {
  Write("like", "");
  ASSERT_EQ(chmod(Path("like").c_str(), 0640), 0);
  CreateAtomically(Path("new"), Path("like"), WriteTo);
  struct stat status {};
  ASSERT_EQ(stat(Path("new").c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777, 0640u);
}

}  // namespace
}  // namespace kestan_tests
