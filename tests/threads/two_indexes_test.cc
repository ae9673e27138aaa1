// SPDX-License-Identifier: GPL-3.0-or-later
// The parts of the library below class Kestan: each works on the store that it is given, so threads
// of one process may work on different index files at the same time.
#include <kestan/index_file.h>
#include <kestan/query/lookup.h>
#include <kestan/query/operators/intersect.h>
#include <kestan/query/operators/unite.h>
#include <kestan/storage/database.h>
#include <kestan/storage/walk/record_iterator.h>

#include <filesystem>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "tests/support/index_test.h"

namespace kestan_tests {
namespace {

constexpr int kDocuments = 300;
constexpr int kRounds = 5;

std::string NumberedWord(const std::string& start, int number) {
  return start + std::to_string(number);
}

// Writes an index whose documents hold words that begin with `start`.
void MakeIndex(const std::string& path, const std::string& start) {
  Kestan engine;
  ASSERT_EQ(engine.OpenIndex(path.c_str(), 1), 0);
  for (int number = 1; number <= kDocuments; ++number) {
    std::string text;
    for (int divisor = 1; divisor <= 20; ++divisor) {
      if (number % divisor == 0) text += NumberedWord(start, divisor) + " ";
    }
    engine.AddDocumentWords(NumberedWord("document", number).c_str(), text.c_str());
  }
}

std::string ToString(const kestan::ResultSet& set) {
  std::string text;
  for (const auto& document : set.documents()) {
    text += " " + std::to_string(document.code) + ":" + std::to_string(document.score);
    for (unsigned position : set.PositionsOf(document)) text += "," + std::to_string(position);
  }
  return text;
}

// Looks up every word of the store and combines neighbours. Returns the answers.
std::vector<std::string> SearchAll(Database& store, const std::string& start) {
  std::vector<std::string> answers;
  for (int divisor = 1; divisor < 20; ++divisor) {
    const auto first = kestan::FindWord(store, NumberedWord(start, divisor), true);
    const auto second = kestan::FindWord(store, NumberedWord(start, divisor + 1), true);
    if (!first || !second) {
      answers.push_back("no set");
      continue;
    }
    answers.push_back(ToString(*first));
    answers.push_back(ToString(kestan::Intersect(*first, *second, 0)));
    answers.push_back(ToString(kestan::Intersect(*first, *second, 2)));
    answers.push_back(ToString(kestan::Unite(*first, *second)));
  }
  return answers;
}

// Reads the postings of every word as a host does. Returns them as text.
std::string ReadPostings(const std::string& path, const std::string& start) {
  kestan::IndexFile file;
  EXPECT_EQ(file.Open(path.c_str()), kestan::StoreError::kNone);
  std::string text;
  for (int divisor = 1; divisor <= 20; ++divisor) {
    const kestan::WordPostings postings = file.FindWord(NumberedWord(start, divisor));
    for (kestan::WordPostings::Cursor cursor(postings); cursor.Next();) {
      text += " " + std::to_string(cursor.code()) + ":" + std::to_string(cursor.positions().size());
    }
  }
  EXPECT_EQ(file.FileError(), kestan::StoreError::kNone);
  return text;
}

// Walks over the whole store.
Records ReadAll(Database& store) {
  Records records;
  kestan::RecordIterator record(store);
  for (; record.Valid(); record.Next()) records[Bytes(record.key())] = Bytes(*record.value().ptr);
  EXPECT_TRUE(record.all_read());
  return records;
}

// Runs both at the same time, each in a thread of its own.
void RunTogether(const std::function<void()>& first, const std::function<void()>& second) {
  std::thread one(first);
  std::thread other(second);
  one.join();
  other.join();
}

// Two index files whose words differ.
class TwoIndexesTest : public testing::Test {
 protected:
  void SetUp() override {
    MakeIndex(path_a_, "a");
    MakeIndex(path_b_, "b");
  }

  TempDir folder_;
  const std::string path_a_ = folder_ / "a";
  const std::string path_b_ = folder_ / "b";
};

TEST_F(TwoIndexesTest, GiveTheSameAnswersInTwoThreads) {
  const auto search = [](const std::string& path, const std::string& start) {
    Database store;
    EXPECT_EQ(store.Open(path.c_str(), 0), 0);
    return SearchAll(store, start);
  };
  const auto answers_a = search(path_a_, "a");
  const auto answers_b = search(path_b_, "b");
  ASSERT_NE(answers_a[0], "no set");
  std::vector<std::string> found_a;
  std::vector<std::string> found_b;
  for (int round = 0; round < kRounds; ++round) {
    RunTogether([&] { found_a = search(path_a_, "a"); }, [&] { found_b = search(path_b_, "b"); });
    EXPECT_EQ(found_a, answers_a);
    EXPECT_EQ(found_b, answers_b);
  }
}

TEST_F(TwoIndexesTest, AreReadAsIndexFilesInTwoThreads) {
  const std::string postings_a = ReadPostings(path_a_, "a");
  const std::string postings_b = ReadPostings(path_b_, "b");
  ASSERT_NE(postings_a, "");
  std::string found_a;
  std::string found_b;
  for (int round = 0; round < kRounds; ++round) {
    RunTogether([&] { found_a = ReadPostings(path_a_, "a"); },
                [&] { found_b = ReadPostings(path_b_, "b"); });
    EXPECT_EQ(found_a, postings_a);
    EXPECT_EQ(found_b, postings_b);
  }
}

TEST_F(TwoIndexesTest, AreWalkedInTwoThreads) {
  const Records records_a = Dump(path_a_);
  const Records records_b = Dump(path_b_);
  const auto walk = [](const std::string& path, const Records& expected) {
    Database store;
    EXPECT_EQ(store.Open(path.c_str(), 0), 0);
    for (int round = 0; round < kRounds; ++round) EXPECT_EQ(ReadAll(store), expected);
  };
  RunTogether([&] { walk(path_a_, records_a); }, [&] { walk(path_b_, records_b); });
}

TEST_F(TwoIndexesTest, AreChangedInTwoThreads) {
  const auto change = [](const std::string& path) {
    Database store;
    EXPECT_EQ(store.Open(path.c_str(), 1), 0);
    for (int number = 0; number < kDocuments; ++number) {
      const std::string key = NumberedWord("u-", number);
      EXPECT_GE(store.Put(Datum(key), Datum(path)), 0);
      if (number % 50 == 0) store.Flush();
    }
  };
  RunTogether([&] { change(path_a_); }, [&] { change(path_b_); });
  EXPECT_EQ(Dump(path_a_).at("u-299"), path_a_);
  EXPECT_EQ(Dump(path_b_).at("u-299"), path_b_);
}

// The store keeps what it must not close, for the process has one list of it.
TEST_F(TwoIndexesTest, AreClosedInTwoThreadsWhenDamaged) {
  const auto read_and_close = [](const std::string& path) {
    std::filesystem::resize_file(path, std::filesystem::file_size(path) / 2);
    for (int round = 0; round < 20; ++round) {
      Database store;
      EXPECT_EQ(store.Open(path.c_str(), 0), 0);
      kestan::RecordIterator record(store);
      while (record.Valid()) record.Next();
      EXPECT_FALSE(record.all_read());
      EXPECT_NE(store.Verify(), 0);
    }
  };
  RunTogether([&] { read_and_close(path_a_); }, [&] { read_and_close(path_b_); });
}

// gdbm's error number belongs to the thread: a file that cannot be opened fails in its own thread
// alone.
TEST_F(TwoIndexesTest, KeepTheirErrorsApart) {
  int error_of_missing = 0;
  int error_of_good = -1;
  RunTogether(
      [&] {
        Database store;
        for (int round = 0; round < 100; ++round) {
          error_of_missing = store.Open((folder_ / "missing/index").c_str(), 0);
        }
      },
      [&] {
        Database store;
        EXPECT_EQ(store.Open(path_b_.c_str(), 0), 0);
        for (int round = 0; round < 100; ++round) {
          DBDatumPtr value;
          error_of_good = store.Get(&value, Datum("b1"));
        }
      });
  EXPECT_NE(error_of_missing, 0);
  EXPECT_EQ(error_of_good, 0);
}

}  // namespace
}  // namespace kestan_tests
