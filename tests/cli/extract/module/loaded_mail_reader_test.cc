// SPDX-License-Identifier: GPL-3.0-or-later
// The command as it is built, with the module that reads mail and without.
#include "cli/extract/module/loaded_mail_reader.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "cli/extract/module/module_file.h"
#include "tests/cli/command_test.h"

namespace kestan_tests {
namespace {

namespace fs = std::filesystem;

class LoadedMailReaderTest : public CommandTest {};

TEST_F(LoadedMailReaderTest, CommandLoadsTheModuleForMail) {
  Write("d/a.eml", "Subject: Roses\n\nbody\n");
  EXPECT_EQ(Run({"index", "--quiet", "my.index", "d"}), Success(""));
  EXPECT_EQ(Run({"search", "--names-only", "my.index", "roses"}), Success("d/a.eml\n"));
}

TEST_F(LoadedMailReaderTest, WithoutItMailIsSkippedAndAllElseIsRead) {
  const TempDir prefix{fs::path(KESTAN_COMMAND).parent_path()};
  fs::create_directories(prefix / "a/b/bin");
  fs::create_hard_link(KESTAN_COMMAND, prefix / "a/b/bin/kestan");
  UseCommand(prefix / "a/b/bin/kestan");
  Write("d/a.eml", "Subject: Roses\n\nbody\n");
  Write("d/b.txt", "roses");
  const Outcome outcome = Run({"index", "--quiet", "my.index", "d"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_NE(outcome.err.find("skipped 'd/a.eml': needs kestan-mail.so, which cannot be loaded\n"),
            std::string::npos)
      << outcome;
  EXPECT_NE(outcome.err.find("kestan-mail.so', which reads mail: no such file or folder\n"),
            std::string::npos)
      << outcome;
}

TEST_F(LoadedMailReaderTest, EachModuleIsOneOnly) {
  const auto place_of = [](const std::string& module) {
    return kestan_cli::ModulePlace{module, module.substr(module.rfind('/') + 1)};
  };
  const std::string version = KestanMailReader()->version;
  std::string reason;
  EXPECT_NE(kestan_cli::OpenMailModule(place_of(KESTAN_MAIL_MODULE), version, &reason), nullptr)
      << reason;
  EXPECT_EQ(kestan_cli::OpenMailModule(place_of(KESTAN_MODULE), version, &reason), nullptr);
  EXPECT_NE(reason.find("undefined symbol: KestanMailReader"), std::string::npos) << reason;
  EXPECT_EQ(kestan_cli::OpenMailModule(place_of(KESTAN_MAIL_MODULE), "1.2.3", &reason), nullptr);
  EXPECT_EQ(reason, "it is of version " + version + ", this command of 1.2.3");
}

}  // namespace
}  // namespace kestan_tests
