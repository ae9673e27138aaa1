// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/faults/search/interrupted_writer.h"

#include <gtest/gtest.h>
#include <kestan/search.h>

#include <array>
#include <filesystem>
#include <functional>
#include <stdexcept>
#include <utility>

#include "tests/faults/call_log.h"
#include "tests/faults/search/asked_index.h"
#include "tests/faults/shared.h"

namespace kestan_faults {
namespace {

using kestan::search::Document;
using kestan::search::IndexWriter;
using kestan::search::Result;
using kestan::search::Status;
using kestan::search::WriterOptions;

// Three segments of a size are merged, so that the commit of a third is followed by that.
Result<IndexWriter> OpenMergingWriter(const std::string& folder) {
  WriterOptions options;
  options.threads = 1;
  options.merge_factor = 3;
  return IndexWriter::Open(folder, options);
}

void AddTo(Transcript* transcript, const char* what, const Status& status) {
  transcript->Add(what, TryTwice([&status] { return status.ToString(); }));
}

Status CommitAndCompact(IndexWriter* writer, Transcript* transcript) {
  Status status = ChangeIndex(writer);
  if (!status.ok()) return status;
  transcript->Add("committed", 1);
  status = writer->Compact();
  if (status.ok()) transcript->Add("compacted", 1);
  return status;
}

Status AddLater(IndexWriter* writer) {
  Document document;
  document.name = "later";
  document.words = "later";
  Status status = writer->Add(document);
  return status.ok() ? writer->Commit() : status;
}

// Takes back what was not committed, and goes on.
Status Recover(IndexWriter* writer) {
  Status status = writer->Rollback();
  return status.ok() ? AddLater(writer) : status;
}

}  // namespace

InterruptedWriter::InterruptedWriter(const std::string& folder)
    : original_(folder + "/original"), work_(folder + "/work") {
  MakeIndex(original_);
  before_ = kestan_tests::ReadIndex(original_);
  const Outcome outcome = Run([](const SystemCall&) { return Ruling(); });
  if (outcome.transcript.find("compacted") == std::string::npos) {
    throw std::runtime_error(Describe(outcome));
  }
  after_ = kestan_tests::ReadIndex(work_);
}

void InterruptedWriter::CopyIndex() const {
  std::filesystem::remove_all(work_);
  std::filesystem::copy(original_, work_);
}

std::vector<Function> InterruptedWriter::Calls() const {
  const Shared<CallLog> shared;
  CallLog* const log = shared.get();
  Run([log](const SystemCall& call) -> Ruling {
    log->functions.at(log->count++) = call.function;
    return {};
  });
  return {log->functions.begin(), log->functions.begin() + static_cast<std::ptrdiff_t>(log->count)};
}

void InterruptedWriter::Work(Transcript* transcript) const {
  auto writer = OpenMergingWriter(work_);
  const Status status = writer.ok() ? CommitAndCompact(&*writer, transcript) : writer.status();
  if (!status.ok()) AddTo(transcript, "refused", status);
}

void InterruptedWriter::WorkAndRecover(bool* is_over, Transcript* transcript) const {
  auto writer = OpenMergingWriter(work_);
  Status status = writer.ok() ? CommitAndCompact(&*writer, transcript) : writer.status();
  if (!status.ok()) AddTo(transcript, "refused", status);
  *is_over = true;
  if (!writer.ok()) {
    writer = OpenMergingWriter(work_);
    status = writer.ok() ? AddLater(&*writer) : writer.status();
  } else {
    if (status.ok()) status = AddLater(&*writer);
    if (!status.ok()) status = Recover(&*writer);  // the fault may have come as late as that
  }
  AddTo(transcript, status.ok() ? "later" : "not later", status);
}

Outcome InterruptedWriter::Run(const CallRule& rule) const {
  CopyIndex();
  return RunInChild([&](Transcript* transcript) {
    WatchCalls(work_, rule);
    Work(transcript);
  });
}

Outcome InterruptedWriter::RunAndRecover(const CallRule& rule,
                                         const std::shared_ptr<bool>& is_over) const {
  CopyIndex();
  return RunInChild([&](Transcript* transcript) {
    WatchCalls(work_, rule);
    WorkAndRecover(is_over.get(), transcript);
  });
}

bool InterruptedWriter::Check(bool is_committed, bool with_later) const {
  kestan_tests::ReadDocuments found;
  try {
    found = kestan_tests::ReadIndex(work_);
  } catch (const std::exception& error) {
    ADD_FAILURE() << error.what();
    return false;
  }
  const auto writer = OpenMergingWriter(work_);
  EXPECT_TRUE(writer.ok()) << writer.status().ToString();
  EXPECT_EQ(kestan_tests::FilesIn(work_), kestan_tests::NamedFiles(work_));
  EXPECT_EQ(found.erase("later"), with_later ? 1u : 0u);
  const bool is_after = found == after_;
  EXPECT_TRUE(is_after || (!is_committed && found == before_));
  return is_after;
}

}  // namespace kestan_faults
