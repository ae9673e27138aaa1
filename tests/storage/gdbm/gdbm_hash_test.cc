// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/storage/gdbm/gdbm_hash.h>

#include <gtest/gtest.h>

#include "tests/building/one_hash.h"

namespace kestan_tests {
namespace {

using kestan::gdbm::HashOf;
using kestan::gdbm::PrefixOf;

// Taken from the buckets of a file that gdbm had written.
TEST(GdbmHashTest, IsThatOfGdbm) {
  EXPECT_EQ(HashOf(""), 12345u);
  EXPECT_EQ(HashOf("a"), 0x094a72e9u);
  EXPECT_EQ(HashOf("hello"), 0x67255f4au);
  EXPECT_EQ(HashOf("na\xc3\xafve"), 0x478260dfu);
  EXPECT_EQ(HashOf("a key of more than six bytes"), 0x79466467u);
}

TEST(GdbmHashTest, OfKeysMadeToCollideIsOne) {
  const auto keys = KeysOfOneHash(3000);
  for (const std::string& key : keys) ASSERT_EQ(HashOf(key), HashOf(keys[0])) << key;
}

TEST(GdbmHashTest, PrefixIsTheFirstOf31Bits) {
  EXPECT_EQ(PrefixOf(0x7fffffff, 0), 0u);
  EXPECT_EQ(PrefixOf(0x7fffffff, 1), 1u);
  EXPECT_EQ(PrefixOf(0x3fffffff, 1), 0u);
  EXPECT_EQ(PrefixOf(0x60000001, 3), 6u);
  EXPECT_EQ(PrefixOf(0x60000001, 31), 0x60000001u);
}

}  // namespace
}  // namespace kestan_tests
