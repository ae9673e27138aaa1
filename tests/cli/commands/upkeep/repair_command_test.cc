#include <gtest/gtest.h>

#include <string>

#include "tests/cli/command_test.h"

namespace kestan_tests {
namespace {

class RepairCommandTest : public CommandTest {
 protected:
  void SetUp() override {
    Add("a", "cat dog\n");
    Add("b", "cat\n");
  }
};

TEST_F(RepairCommandTest, SavesWhatADamagedIndexHolds) {
  std::string bytes = IndexBytes();
  bytes.replace(0, 400, 400, '\xff');  // the header
  Write("damaged.index", bytes);
  EXPECT_EQ(Run({"list", "damaged.index"}).status, 2);
  const Outcome outcome = Run({"repair", "damaged.index", "new.index"});
  EXPECT_EQ(outcome.status, 0) << outcome;
  EXPECT_NE(outcome.out.find("saved 2 documents, 0 with words missing, 0 half-written, 0 lost\n"),
            std::string::npos)
      << outcome;
  EXPECT_EQ(Run({"search", "new.index", "dog"}), Success("100 a\n"));
  EXPECT_EQ(Run({"check", "new.index"}).status, 0);
  EXPECT_EQ(BytesOfFile(Path("damaged.index")), bytes);
}

TEST_F(RepairCommandTest, DoesNotOverwrite) {
  EXPECT_EQ(Run({"repair", "my.index", "my.index"}),
            Failure("cannot make 'my.index': there is something already; choose another name"));
}

TEST_F(RepairCommandTest, NamesTheFileThatItCannotReadOrMake) {
  Write("noise", std::string(5000, 'x'));
  EXPECT_EQ(Run({"repair", "missing", "new.index"}),
            Failure("cannot open index 'missing': no such file; kestan index makes one"));
  EXPECT_EQ(Run({"repair", ".", "new.index"}), Failure("cannot open index '.': is a folder"));
  EXPECT_EQ(Run({"repair", "noise", "new.index"}),
            Failure("cannot repair 'noise': no record was found"));
  const Outcome full = Run({"repair", "my.index", "new.index"}, FileSizeLimit(1000));
  EXPECT_EQ(full.err.substr(0, 33), "kestan: cannot make 'new.index': ") << full;
}

TEST_F(RepairCommandTest, LeavesNoFileIfItFails) {
  Write("noise", std::string(5000, 'x'));
  for (const char* damaged : {"noise", "missing", "."}) {
    const Outcome outcome = Run({"repair", damaged, "new.index"});
    EXPECT_EQ(outcome.status, 2) << outcome;
    EXPECT_EQ(CountFiles("new.index"), 0);
  }
}

}  // namespace
}  // namespace kestan_tests
