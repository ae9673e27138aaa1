// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/storage/datum_bytes.h>

#include <gtest/gtest.h>

namespace kestan_tests {
namespace {

using namespace std::string_view_literals;

TEST(DatumBytesTest, DatumBorrowsTheBytesOfAView) {
  const std::string_view bytes = "ab\0c"sv;
  const DBDatum datum = kestan::AsDatum(bytes);
  EXPECT_EQ(datum.data, bytes.data());
  EXPECT_EQ(datum.size, 4u);
  EXPECT_LT(datum.refs, 1);
}

TEST(DatumBytesTest, ViewBorrowsTheBytesOfADatum) {
  const std::string_view bytes = "ab\0c"sv;
  const DBDatum datum(bytes.data(), 4);
  EXPECT_EQ(kestan::BytesOf(datum).data(), bytes.data());
  EXPECT_EQ(kestan::BytesOf(datum), bytes);
  EXPECT_EQ(kestan::BytesOf(DBDatum()), "");
}

}  // namespace
}  // namespace kestan_tests
