// A process forks while it has an index open. What the child does with its copy harms nothing.
#include <gtest/gtest.h>
#include <kestan/kestan.h>
#include <kestan/search/check.h>
#include <kestan/search/index_reader.h>
#include <kestan/search/index_writer.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <utility>

#include "tests/search/index/read_index.h"
#include "tests/support/temp_dir.h"

namespace kestan::search {
namespace {

// Returns what `work` returns in a child process, which ends with that at once: without the
// destructors and the checks for leaks that its parent is to run.
int InChild(const std::function<int()>& work) {
  const pid_t child = fork();
  if (child == 0) _exit(work());
  int status = 0;
  EXPECT_EQ(waitpid(child, &status, 0), child);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

// Counts what does not hold.
class Failures {
 public:
  void Unless(bool holds) {
    ++asked_;
    if (!holds && first_ == 0) first_ = asked_;
  }
  // Which was the first; 0: none.
  int first() const { return first_; }

 private:
  int asked_ = 0;
  int first_ = 0;
};

class ForkTest : public testing::Test {
 protected:
  std::string Path() { return folder_ / "a"; }

  IndexWriter Opened() {
    WriterOptions options;
    options.threads = 2;
    auto writer = IndexWriter::Open(Path(), options);
    EXPECT_TRUE(writer.ok()) << writer.status().ToString();
    return std::move(*writer);
  }

  static Document Named(const std::string& name) {
    Document document;
    document.name = name;
    document.text = "cat " + name;
    return document;
  }

  // Adds documents that are not committed yet, while threads take them apart.
  static void AddSome(IndexWriter* writer, const std::string& start) {
    for (int i = 0; i < 500; ++i) {
      ASSERT_TRUE(writer->Add(Named(start + std::to_string(i))).ok());
    }
  }

  void CheckHolds(std::size_t documents) {
    const auto report = CheckIndex(Path());
    ASSERT_TRUE(report.ok()) << report.status().ToString();
    EXPECT_EQ(report->faults, 0U);
    EXPECT_EQ(kestan_tests::ReadIndex(Path()).size(), documents);
  }

  kestan_tests::TempDir folder_;
};

TEST_F(ForkTest, EachCallOfTheChildIsAnErrorAndTheParentGoesOn) {
  IndexWriter writer = Opened();
  AddSome(&writer, "a");
  const int failed = InChild([&writer] {
    Failures failures;
    const auto is_forked = [&failures](const Status& status) {
      failures.Unless(status.code() == StatusCode::kForked);
      failures.Unless(status.message() ==
                      "the writer was opened by the process that forked this one; open the index "
                      "again here");
    };
    is_forked(writer.Add(Named("child")));
    is_forked(writer.Remove("a1"));
    is_forked(writer.Rename("a1", "child"));
    is_forked(writer.SetField("a1", DocumentField::kTitle, "title"));
    writer.SetProperty("key", "value");
    is_forked(writer.Commit());
    is_forked(writer.Compact());
    is_forked(writer.DropPositions());
    is_forked(writer.Rollback());
    is_forked(writer.Add(Named("child")));
    return failures.first();
  });
  EXPECT_EQ(failed, 0);
  AddSome(&writer, "b");
  ASSERT_TRUE(writer.Commit().ok());
  CheckHolds(1000);
}

TEST_F(ForkTest, ChildThatDestroysItsCopyLeavesAllToTheParent) {
  std::optional<IndexWriter> writer = Opened();
  AddSome(&*writer, "a");
  const std::set<std::string> files = kestan_tests::FilesIn(Path());
  EXPECT_EQ(InChild([&] {
              writer.reset();
              return kestan_tests::FilesIn(Path()) == files ? 0 : 1;
            }),
            0);
  EXPECT_EQ(IndexWriter::Open(Path()).status().code(), StatusCode::kBusy);
  AddSome(&*writer, "b");
  ASSERT_TRUE(writer->Commit().ok());
  CheckHolds(1000);
}

TEST_F(ForkTest, ChildThatMovesAnotherWriterIntoItsCopyUsesThat) {
  IndexWriter writer = Opened();
  AddSome(&writer, "a");
  const std::string other = folder_ / "b";
  EXPECT_EQ(InChild([&] {
              Failures failures;
              auto opened = IndexWriter::Open(other);
              failures.Unless(opened.ok());
              writer = std::move(*opened);
              failures.Unless(writer.Add(Named("child")).ok());
              failures.Unless(writer.Commit().ok());
              return failures.first();
            }),
            0);
  ASSERT_TRUE(writer.Commit().ok());
  CheckHolds(500);
}

TEST_F(ForkTest, ChildCannotOpenTheIndexWhileTheParentHasIt) {
  IndexWriter writer = Opened();
  EXPECT_EQ(InChild([&] {
              return IndexWriter::Open(Path()).status().code() == StatusCode::kBusy ? 0 : 1;
            }),
            0);
}

// A pipe on which each side waits until the other one says a byte.
class Pipe {
 public:
  Pipe() { EXPECT_EQ(pipe(ends_), 0); }
  ~Pipe() {
    close(ends_[0]);
    close(ends_[1]);
  }
  void Say() const { EXPECT_EQ(write(ends_[1], "x", 1), 1); }
  void Wait() const {
    char byte = 0;
    EXPECT_EQ(read(ends_[0], &byte, 1), 1);
  }

 private:
  int ends_[2] = {-1, -1};  // NOLINT(modernize-avoid-c-arrays)
};

TEST_F(ForkTest, ChildThatLivesOnDoesNotKeepTheLock) {
  std::optional<IndexWriter> writer = Opened();
  const Pipe end;
  const pid_t child = fork();
  if (child == 0) {
    end.Wait();
    _exit(0);
  }
  ASSERT_TRUE(writer->Commit().ok());
  writer.reset();
  EXPECT_TRUE(IndexWriter::Open(Path()).ok());
  end.Say();
  EXPECT_EQ(waitpid(child, nullptr, 0), child);
}

TEST_F(ForkTest, ReaderAnswersInTheChildAsInTheParent) {
  IndexWriter writer = Opened();
  AddSome(&writer, "a");
  ASSERT_TRUE(writer.Commit().ok());
  auto reader = IndexReader::Open(Path());
  ASSERT_TRUE(reader.ok());
  std::optional<IndexReader> shared = std::move(*reader);
  EXPECT_EQ(InChild([&] {
              Failures failures;
              for (int i = 0; i < 500; ++i) {
                const auto found = shared->Search("a" + std::to_string(i));
                failures.Unless(found.ok() && found->total == 1);
              }
              shared.reset();
              return failures.first();
            }),
            0);
  EXPECT_EQ(*shared->Count("cat"), 500U);
}

TEST_F(ForkTest, IndexFileIsReadByTheProcessThatOpenedItAlone) {
  const std::string path = folder_ / "file";
  {
    Kestan engine;
    ASSERT_EQ(engine.OpenIndex(path.c_str(), 1), 0);
    engine.AddDocumentWords("1", "cat dog");
    ASSERT_EQ(engine.CloseIndex(), 0);
  }
  auto opened = IndexReader::Open(path);
  ASSERT_TRUE(opened.ok()) << opened.status().ToString();
  std::optional<IndexReader> reader = std::move(*opened);
  EXPECT_EQ(InChild([&] {
              Failures failures;
              failures.Unless(reader->Search("cat").status().code() == StatusCode::kForked);
              failures.Unless(reader->Property("key").status().code() == StatusCode::kForked);
              reader.reset();
              auto own = IndexReader::Open(path);
              failures.Unless(own.ok() && *own->Count("cat") == 1);
              return failures.first();
            }),
            0);
  EXPECT_EQ(*reader->Count("cat"), 1U);
}

}  // namespace
}  // namespace kestan::search
