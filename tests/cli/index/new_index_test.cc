// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/index/new_index.h"

#include <gtest/gtest.h>
#include <signal.h>

#include <string>

namespace kestan_cli {
namespace {

using kestan::search::Status;
using kestan::search::StatusCode;

std::string Why(const Status& status) {
  NewIndex made("old", "dir/new/", "copying", ProgressStyle::kNone);
  try {
    made.Check(status);
  } catch (const CommandError& error) {
    return error.what();
  }
  return "";
}

TEST(NewIndexTest, ErrorsAreAboutTheOneIndexOrTheOther) {
  EXPECT_EQ(Why({}), "");
  EXPECT_EQ(Why({StatusCode::kAlreadyExists, "x", "dir/new"}),
            "cannot make 'dir/new': there is something already; choose another name");
  EXPECT_EQ(Why({StatusCode::kNotFound, "x", "dir/new.new"}),
            "cannot make 'dir/new': no such folder");
  EXPECT_EQ(Why({StatusCode::kSystem, "disk full", "dir/new.new/1.terms"}),
            "cannot make 'dir/new': disk full");
  EXPECT_EQ(Why({StatusCode::kSystem, "unreadable", "old"}), "index 'old': unreadable");
  EXPECT_EQ(Why({StatusCode::kSystem, "unreadable", "old/1.terms"}),
            "index 'old': unreadable (1.terms)");
}

TEST(NewIndexTest, GoesOnUntilASignalComes) {
  NewIndex made("old", "new", "copying", ProgressStyle::kNone);
  EXPECT_TRUE(made.progress()(1, 2));
  raise(SIGTERM);
  EXPECT_FALSE(made.progress()(1, 2));
  EXPECT_THROW(made.Check({StatusCode::kInterrupted, "copying was interrupted"}), Interrupted);
}

}  // namespace
}  // namespace kestan_cli
