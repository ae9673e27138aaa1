// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/format/units.h>

#include <array>
#include <string>

#include "tests/format/plain_records.h"
#include "tests/support/counted.h"
#include "tests/support/index_test.h"

namespace kestan_tests {
namespace {

TEST(EncodedBytesTest, AreBorrowed) {
  const auto bytes = std::array<char, 2>{1, 2};
  const DBDatum datum = kestan::AsDatum(bytes);
  EXPECT_EQ(datum.data, bytes.data());
  EXPECT_EQ(datum.size, 2u);
}

}  // namespace
}  // namespace kestan_tests
