// SPDX-License-Identifier: GPL-3.0-or-later
// What the tests of the store share.
#ifndef KESTAN_TESTS_STORAGE_DATABASE_TEST_H_
#define KESTAN_TESTS_STORAGE_DATABASE_TEST_H_

#include <gdbm.h>
#include <gtest/gtest.h>
#include <kestan/storage/database.h>

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/counted.h"
#include "tests/support/gdbm_calls.h"
#include "tests/support/index_test.h"

namespace kestan_tests {

using Lines = std::vector<std::string>;

// Gives each test a store with a new file open for writing.
class DatabaseTest : public testing::Test {
 protected:
  void SetUp() override { ASSERT_EQ(store_.Open(path_.c_str(), 1), 0); }

  int Put(std::string_view key, std::string_view value) {
    return store_.Put(Datum(key), Datum(value));
  }

  // Returns a handle to the value of `key`, null if there is none.
  DBDatumPtr Held(std::string_view key) {
    DBDatumPtr value;
    store_.Get(&value, Datum(key));
    return value;
  }

  // Returns the value of `key`, or "none".
  std::string Get(std::string_view key) {
    const DBDatumPtr value = Held(key);
    return value.ptr == nullptr ? "none" : Bytes(*value.ptr);
  }

  // Writes `text` over the first bytes of a value, in place, and says so.
  static void Change(const DBDatumPtr& value, std::string_view text) {
    text.copy(value.ptr->data, text.size());
    value.ptr->dirty = true;
  }

  // Reads the file as it is now, while the store has it open.
  Records InFile() const {
    const std::string copy = folder_ / "copy";
    std::filesystem::copy_file(path_, copy, std::filesystem::copy_options::overwrite_existing);
    return Dump(copy);
  }

  // Closes the store and reads the file.
  Records Stored() {
    store_.Close();
    return Dump(path_);
  }

  // Closes the store, replaces `records` in its file, and opens it again.
  void PlantAndReopen(const Records& records, int writer = 1) {
    store_.Close();
    Plant(path_, records);
    ASSERT_EQ(store_.Open(path_.c_str(), writer), 0);
  }

  TempDir folder_;
  const std::string path_ = folder_ / "file";
  Database store_;
};

}  // namespace kestan_tests

#endif  // KESTAN_TESTS_STORAGE_DATABASE_TEST_H_
