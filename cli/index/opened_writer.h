// SPDX-License-Identifier: GPL-3.0-or-later
// A change of an index folder that happens as a whole or not at all.
#ifndef KESTAN_CLI_INDEX_OPENED_WRITER_H_
#define KESTAN_CLI_INDEX_OPENED_WRITER_H_

#include <kestan/search.h>

#include <string>

#include "cli/console/interruption.h"
#include "cli/console/progress.h"

namespace kestan_cli {

// The one writer of an index. Shows how far a commit has come, and ends it when a signal asks the
// process to end: the index is then as it was, and nothing is left over. A signal that comes when
// all is committed ends the process too, and the change stands.
class OpenedWriter {
 public:
  enum class IfMissing { kFail, kCreate };

  // Opens the index folder at `path`.
  //   Throws   CommandError if it is no folder, is damaged, or another process is changing it.
  // `language`: of the words, as IndexWriter takes it.
  OpenedWriter(std::string path, IfMissing if_missing, ProgressStyle style,
               const std::string& language = "");
  OpenedWriter(const OpenedWriter&) = delete;
  OpenedWriter& operator=(const OpenedWriter&) = delete;

  const std::string& path() const { return path_; }

  // Changes are made here, and checked by Check().
  kestan::search::IndexWriter& writer() { return writer_; }

  // Opens what is committed.
  //   Throws   CommandError if it cannot be read.
  kestan::search::IndexReader Read() const;

  // Throws   CommandError if `status` is an error, Interrupted if a signal has come.
  void Check(const kestan::search::Status& status) const;

  // Commits all changes, and merges what is due. Reports what a person should know of the index.
  //   Throws   as Check() does.
  void Commit();

  // Commits, and merges everything.
  //   Throws   as Check() does.
  void Compact();

  // Commits, and drops the positions of all words.
  //   Throws   as Check() does.
  void DropPositions();

 private:
  kestan::search::IndexWriter Open(IfMissing if_missing, const std::string& language);
  bool Show(const kestan::search::WriterProgress& progress);
  void Run(kestan::search::Status (kestan::search::IndexWriter::*step)());

  const std::string path_;
  Progress progress_;
  Interruption interruption_;
  kestan::search::IndexWriter writer_;
};

}  // namespace kestan_cli

#endif  // KESTAN_CLI_INDEX_OPENED_WRITER_H_
