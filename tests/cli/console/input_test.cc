// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/console/input.h"

#include <gtest/gtest.h>

#include <string>

#include "cli/console/message.h"
#include "cli/files/open_file.h"

namespace kestan_cli {
namespace {

OpenFile FileOf(const std::string& text) {
  OpenFile file(std::tmpfile());
  std::fwrite(text.data(), 1, text.size(), file.get());
  std::rewind(file.get());
  return file;
}

TEST(InputTest, TextIsReadWholeUpToTheLimit) {
  const std::string text(200000, 'x');
  EXPECT_EQ(ReadInput(FileOf(text).get(), text.size()), text);
  EXPECT_THROW(ReadInput(FileOf(text).get(), text.size() - 1), CommandError);
  EXPECT_EQ(ReadInput(FileOf("").get(), 0), "");
}

TEST(InputTest, DirectoryCannotBeRead) {
  const OpenFile directory(std::fopen("/", "rb"));
  EXPECT_THROW(ReadInput(directory.get(), 1), CommandError);
}

}  // namespace
}  // namespace kestan_cli
