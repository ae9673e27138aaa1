// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/console/json.h"

#include <gtest/gtest.h>

namespace kestan_cli {
namespace {

TEST(JsonTest, ReportBeginsWithTheSchemaAndKeepsTheOrderOfItsFields) {
  EXPECT_EQ(JsonReport({{"b", 1}, {"a", "x"}}), "{\"schema\":1,\"b\":1,\"a\":\"x\"}\n");
  EXPECT_EQ(JsonReport({{"only", 1}}), "{\"schema\":1,\"only\":1}\n");
}

TEST(JsonTest, LineHoldsNeitherControlsNorInvalidBytes) {
  EXPECT_EQ(JsonLine({{"a", "\x1b\x7f\xff\xe2\x80\xae"}}),
            "{\"a\":\"\\u001b\\u007f\xef\xbf\xbd\\u202e\"}\n");
}

}  // namespace
}  // namespace kestan_cli
