#include "cli/index/copied_index.h"

#include <gtest/gtest.h>

#include <string>

#include "cli/console/message.h"
#include "tests/cli/command_test.h"

namespace kestan_tests {
namespace {

using kestan_cli::CommandError;
using kestan_cli::CopyIndex;

class CopiedIndexTest : public CommandTest {
 protected:
  void SetUp() override {
    for (int i = 0; i < 30; ++i)
      Write("docs/" + std::to_string(i), "words of " + std::to_string(i));
    ASSERT_EQ(Run({"index", "my.index", "docs"}).status, 0);
  }

  Kestan engine_;
};

TEST_F(CopiedIndexTest, CopyHasTheSameRecords) {
  CopyIndex(engine_, Path("my.index"), Path("copy"));
  EXPECT_EQ(Dump(Path("copy")), Dump(Path("my.index")));
}

TEST_F(CopiedIndexTest, IndexIsClosedAfterwards) {
  CopyIndex(engine_, Path("my.index"), Path("copy"));
  EXPECT_EQ(engine_.OpenIndex(Path("copy").c_str(), 1), 0);
}

TEST_F(CopiedIndexTest, FileThatIsNoIndexIsNotCopied) {
  EXPECT_THROW(CopyIndex(engine_, Path("docs/1"), Path("copy")), CommandError);
  EXPECT_THROW(CopyIndex(engine_, Path("nowhere"), Path("copy")), CommandError);
  EXPECT_FALSE(std::filesystem::exists(Path("copy")));
}

TEST_F(CopiedIndexTest, FullDiskLeavesNoCopy) {
  const Outcome outcome = Run({"copy", "my.index", "copy"}, FileSizeLimit(IndexBytes().size() / 4));
  EXPECT_EQ(outcome,
            Failure("cannot make 'copy': the copy is not complete; see kestan check 'my.index'"));
  EXPECT_FALSE(std::filesystem::exists(Path("copy")));
}

}  // namespace
}  // namespace kestan_tests
