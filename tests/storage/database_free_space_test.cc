// SPDX-License-Identifier: GPL-3.0-or-later
// How the store uses the space that records leave free in its file.
#include <map>
#include <string>
#include <vector>

#include "tests/storage/database_test.h"

namespace kestan_tests {
namespace {

class DatabaseFreeSpaceTest : public DatabaseTest {
 protected:
  struct Step {
    int key;
    int bytes;  // of the value to put, -1 to delete the record
  };

  // Takes the steps, and checks that the file then holds what they leave.
  void Run(const std::vector<Step>& steps) {
    Records expected;
    for (const Step& step : steps) {
      const std::string key = std::to_string(step.key);
      if (step.bytes < 0) {
        EXPECT_EQ(store_.Del(Datum(key)), 0);
        expected.erase(key);
      } else {
        const std::string value(static_cast<std::size_t>(step.bytes), 'v');
        ASSERT_EQ(Put(key, value), 0);
        expected[key] = value;
      }
    }
    EXPECT_EQ(store_.Verify(), 0);
    EXPECT_EQ(Stored(), expected);
  }
};

// In these histories, on 64 bits, gdbm by itself writes over the header that it has in memory, at
// the last step of each.
TEST_F(DatabaseFreeSpaceTest, SpaceThatEndsAtAListOfFreeSpaceIsNotMergedUpToIt) {
  Run({{0, 1192}, {3, 2922}, {0, -1},   {3, 1884}, {7, 1884}, {6, 2922}, {3, 1192}, {2, 1538},
       {7, 1538}, {6, 2230}, {6, 1192}, {2, 2922}, {4, 2576}, {7, 1884}, {3, 1884}, {3, 2576},
       {3, 2230}, {4, 2230}, {3, 846},  {4, 2576}, {6, 500},  {3, 2922}, {4, 500},  {7, -1},
       {6, 2922}, {4, 1538}, {6, -1},   {4, 2230}, {7, 846},  {5, 1538}});
}

TEST_F(DatabaseFreeSpaceTest, NorIsItWithManyRecordsOfLikeSizes) {
  Run({{1, 4511}, {1, 29},   {3, 2219}, {0, 35},   {3, 1646}, {6, 4511}, {2, 2219}, {1, 2219},
       {6, 3365}, {6, 2792}, {0, 2792}, {7, 27},   {6, 3365}, {7, 3365}, {5, 17},   {4, 30},
       {2, 4511}, {7, 4511}, {1, 4511}, {6, 1073}, {3, 3938}, {4, 17},   {0, 31},   {2, 17},
       {1, -1},   {5, -1},   {4, 500},  {2, -1},   {7, 500},  {3, 2219}, {4, 2792}, {0, 1073}});
}

}  // namespace
}  // namespace kestan_tests
