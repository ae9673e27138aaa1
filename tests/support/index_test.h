// SPDX-License-Identifier: GPL-3.0-or-later
// An engine with an open index for each test, and what else most tests of the library need.
#ifndef KESTAN_TESTS_SUPPORT_INDEX_TEST_H_
#define KESTAN_TESTS_SUPPORT_INDEX_TEST_H_

#include <gtest/gtest.h>
#include <kestan/kestan.h>

#include <cstdint>
#include <string>
#include <string_view>

#include "tests/support/stored_records.h"
#include "tests/support/temp_dir.h"

namespace kestan_tests {

// The bytes of a datum.
inline std::string Bytes(const DBDatum& datum) { return std::string(datum.data, datum.size); }

// A datum around the bytes of `text`, which must outlive it.
inline DBDatum Datum(std::string_view text) {
  return DBDatum(text.data(), static_cast<std::uint32_t>(text.size()));
}

// Runs `action` and returns what it wrote to the standard error stream.
template <typename Action>
std::string StandardErrorOf(Action action) {
  testing::internal::CaptureStderr();
  action();
  return testing::internal::GetCapturedStderr();
}

// Gives each test an engine with a new index open for writing.
class IndexTest : public testing::Test {
 protected:
  void SetUp() override { ASSERT_EQ(engine_.OpenIndex(path_.c_str(), 1), 0); }

  // Closes the index and reads it with plain gdbm calls.
  Records Stored() {
    engine_.CloseIndex();
    return Dump(path_);
  }

  // Closes the index, replaces `records` in its file, and opens it again.
  void PlantAndReopen(const Records& records) {
    engine_.CloseIndex();
    Plant(path_, records);
    ASSERT_EQ(engine_.OpenIndex(path_.c_str(), 1), 0);
  }

  // Lists the set of `id` and frees it.
  std::string Listing(int id) {
    const std::string lines = engine_.QueryResults(id);
    engine_.FreeQueryResult(id);
    return lines;
  }

  TempDir folder_;
  const std::string path_ = folder_ / "index";
  Kestan engine_;
};

}  // namespace kestan_tests

#endif  // KESTAN_TESTS_SUPPORT_INDEX_TEST_H_
