#include "search/index/caught.h"

#include <gtest/gtest.h>
#include <kestan/search/analyzer.h>
#include <kestan/search/check.h>
#include <kestan/search/copy.h>
#include <kestan/search/index_reader.h>
#include <kestan/search/index_writer.h>

#include <cerrno>
#include <functional>
#include <stdexcept>
#include <string>
#include <system_error>
#include <utility>

#include "tests/search/index/read_index.h"
#include "tests/support/temp_dir.h"

namespace kestan::search {
namespace {

struct NoException {};

Status Thrown(const std::function<void()>& work) {
  return Caught("file", [&work] {
    work();
    return Status();
  });
}

TEST(CaughtTest, ExceptionIsAnErrorOfTheFile) {
  const Status status = Thrown([] { throw std::runtime_error("reason"); });
  EXPECT_EQ(status.code(), StatusCode::kSystem);
  EXPECT_EQ(status.ToString(), "file: reason");
  EXPECT_EQ(status.system_error(), 0);
}

TEST(CaughtTest, ErrorOfTheSystemKeepsItsNumber) {
  const Status status =
      Thrown([] { throw std::system_error(EAGAIN, std::generic_category(), "no thread"); });
  EXPECT_EQ(status.code(), StatusCode::kSystem);
  EXPECT_EQ(status.system_error(), EAGAIN);
}

TEST(CaughtTest, WhatIsNoExceptionIsAnErrorToo) {
  EXPECT_EQ(Thrown([] { throw NoException(); }).code(), StatusCode::kSystem);
  EXPECT_EQ(Thrown([] { throw std::bad_alloc(); }).code(), StatusCode::kOutOfMemory);
}

TEST(CaughtTest, ProgressGoesOnUnlessItSaysNoOrThrows) {
  EXPECT_TRUE(GoesOn(std::function<bool(int)>(), 1));
  EXPECT_TRUE(GoesOn(std::function<bool(int)>([](int bytes) { return bytes == 1; }), 1));
  EXPECT_FALSE(GoesOn(std::function<bool(int)>([](int bytes) { return bytes == 1; }), 2));
  EXPECT_FALSE(GoesOn(std::function<bool(int)>([](int) -> bool { throw NoException(); }), 1));
  EXPECT_FALSE(
      GoesOn(std::function<bool(int)>([](int) -> bool { throw std::runtime_error(""); }), 1));
}

TEST(StatusTest, SystemErrorIsTheErrnoOfWhatTheSystemRefused) {
  const kestan_tests::TempDir folder;
  EXPECT_EQ(Status().system_error(), 0);
  const auto missing = IndexReader::Open(folder / "missing");
  EXPECT_EQ(missing.status().code(), StatusCode::kNotFound);
  EXPECT_EQ(missing.status().system_error(), ENOENT);
  WriterOptions options;
  options.create = false;
  const auto unmade = IndexWriter::Open(folder / "missing", options);
  EXPECT_EQ(unmade.status().code(), StatusCode::kNotFound);
  EXPECT_EQ(unmade.status().system_error(), ENOENT);
  const auto nowhere = IndexWriter::Open(folder / "missing/below");
  EXPECT_EQ(nowhere.status().system_error(), ENOENT);
  EXPECT_EQ(CheckIndex(folder / "missing").status().system_error(), ENOENT);
}

// A host whose functions throw, at each of the calls that they get.
class ThrowingHostTest : public testing::Test {
 protected:
  static Document Named(int number) {
    Document document;
    document.name = "n" + std::to_string(number);
    document.text = "cat of number " + std::to_string(number);
    return document;
  }

  // Makes an index of eight segments, which the next commit merges.
  void Make() {
    auto writer = IndexWriter::Open(path_);
    ASSERT_TRUE(writer.ok());
    for (int i = 0; i < 7; ++i) {
      ASSERT_TRUE(writer->Add(Named(i)).ok() && writer->Commit().ok());
    }
  }

  const kestan_tests::TempDir folder_;
  const std::string path_ = folder_ / "a";
};

TEST_F(ThrowingHostTest, ProgressThatThrowsInterruptsACommitAndNothingIsLost) {
  Make();
  int calls = 0;
  int last = 0;  // the call that throws; 0: none
  WriterOptions options;
  options.progress = [&](const WriterProgress&) -> bool {
    if (++calls == last) throw NoException();
    return true;
  };
  auto writer = IndexWriter::Open(path_, options);
  ASSERT_TRUE(writer.ok());
  for (last = 1;; ++last) {
    calls = 0;
    ASSERT_TRUE(writer->Add(Named(7)).ok());
    const Status status = writer->Compact();
    if (status.ok()) break;
    EXPECT_EQ(status.code(), StatusCode::kInterrupted) << status.ToString();
    ASSERT_TRUE(writer->Rollback().ok());
    EXPECT_GE(kestan_tests::ReadIndex(path_).size(), 7U);
    EXPECT_EQ(CheckIndex(path_)->faults, 0U);
  }
  EXPECT_GT(last, 1);
  EXPECT_EQ(kestan_tests::ReadIndex(path_).size(), 8U);
}

TEST_F(ThrowingHostTest, ProgressThatThrowsInterruptsACopy) {
  Make();
  const std::string copy = folder_ / "copy";
  const Status status = CopyIndex(path_, copy, [](auto...) -> bool { throw NoException(); });
  EXPECT_EQ(status.code(), StatusCode::kInterrupted) << status.ToString();
  EXPECT_EQ(IndexReader::Open(copy).status().code(), StatusCode::kNotFound);
}

TEST_F(ThrowingHostTest, VisitorsAndFiltersThatThrowAreErrors) {
  Make();
  const auto reader = IndexReader::Open(path_);
  ASSERT_TRUE(reader.ok());
  const auto throws = [](auto&&...) -> bool { throw NoException(); };
  EXPECT_EQ(reader->ForEachMatch("cat", {}, throws).code(), StatusCode::kSystem);
  EXPECT_EQ(reader->ForEachDocument(throws).code(), StatusCode::kSystem);
  EXPECT_EQ(reader->ForEachDocumentWithWords(throws).code(), StatusCode::kSystem);
  SearchOptions options;
  options.filter = throws;
  EXPECT_EQ(reader->Search("cat", options).status().code(), StatusCode::kSystem);
  EXPECT_EQ(reader->Count("cat", options).status().code(), StatusCode::kSystem);
  EXPECT_EQ(Analyzer().ForEachWord("cat", throws).code(), StatusCode::kSystem);
  EXPECT_EQ(*reader->Count("cat"), 7U);
}

}  // namespace
}  // namespace kestan::search
