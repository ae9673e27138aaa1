// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/index/opened_writer.h"

#include <utility>

#include "cli/console/diagnostics.h"
#include "cli/index/index_errors.h"
#include "cli/index/index_kind.h"

namespace kestan_cli {

using kestan::search::IndexReader;
using kestan::search::IndexWriter;
using kestan::search::Status;
using kestan::search::StatusCode;
using kestan::search::WriterOptions;
using kestan::search::WriterProgress;

OpenedWriter::OpenedWriter(std::string path, IfMissing if_missing, ProgressStyle style,
                           const std::string& language)
    : path_(std::move(path)), progress_(style), writer_(Open(if_missing, language)) {}

IndexWriter OpenedWriter::Open(IfMissing if_missing, const std::string& language) {
  if (if_missing == IfMissing::kFail || KindOfIndex(path_) == IndexKind::kFile) {
    CheckIsFolder(path_);
  }
  WriterOptions options;
  options.language = language;
  options.create = if_missing == IfMissing::kCreate;
  options.progress = [this](const WriterProgress& progress) { return Show(progress); };
  return ValueOf(IndexWriter::Open(path_, options), path_);
}

bool OpenedWriter::Show(const WriterProgress& progress) {
  const bool is_merging = progress.phase == WriterProgress::Phase::kMerging;
  progress_.Reach(is_merging ? "merging" : "writing", progress.done_bytes, progress.all_bytes);
  return !Interruption::HasCome();
}

IndexReader OpenedWriter::Read() const { return ValueOf(IndexReader::Open(path_), path_); }

void OpenedWriter::Check(const Status& status) const {
  if (status.code() != StatusCode::kInterrupted) CheckStatus(status, path_);
  Interruption::Check();
}

void OpenedWriter::Run(Status (IndexWriter::*step)()) {
  Interruption::Check();  // a small commit reports no progress
  const Status status = (writer_.*step)();
  progress_.Clear();
  for (const Status& warning : writer_.TakeWarnings()) {
    ReportProblem(ErrorOf(warning, path_).what());
  }
  Check(status);
}

void OpenedWriter::Commit() { Run(&IndexWriter::Commit); }

void OpenedWriter::Compact() { Run(&IndexWriter::Compact); }

void OpenedWriter::DropPositions() { Run(&IndexWriter::DropPositions); }

}  // namespace kestan_cli
