// An index that is open in the engine.
#ifndef KESTAN_CLI_INDEX_OPENED_INDEX_H_
#define KESTAN_CLI_INDEX_OPENED_INDEX_H_

#include <kestan/kestan.h>

#include <functional>
#include <string>

#include "cli/index/index_examination.h"

namespace kestan_cli {

// Holds an index open in the engine, and closes it on destruction.
class OpenedIndex {
 public:
  // Opens the index at `path` after ExamineIndex has accepted it. Borrows `engine`, whose index
  // must be closed. A process has only one engine. The index is called `shown` in messages.
  //   Throws   what ExamineIndex throws, and the same if it cannot be opened for `access`.
  OpenedIndex(Kestan& engine, const std::string& path, Access access)
      : OpenedIndex(engine, path, access, path) {}
  OpenedIndex(Kestan& engine, const std::string& path, Access access, std::string shown);
  ~OpenedIndex();
  OpenedIndex(const OpenedIndex&) = delete;
  OpenedIndex& operator=(const OpenedIndex&) = delete;

  Kestan& engine() const { return engine_; }
  const std::string& path() const { return path_; }
  const kestan::DocumentCounts& counts() const { return counts_; }

  // Throws CommandError unless `error`, which the engine returned, is 0: the file refused a record.
  void CheckWritten(int error) const;

  // Throws CommandError if any record could not be read so far.
  void CheckRead() const;

  // Removes the postings of one-letter words that still have the codes that are free now. To be
  // called before documents are added: they take these codes, and would be found by those words.
  //   Throws   CommandError if these postings cannot be read or removed.
  void PrepareCodes() const;

  // Writes out all changes made so far.
  //   Throws   CommandError if any record, now or earlier, did not reach the file.
  void Save();

  // Calls `write`, which writes out changes. If that fails, drops the engine's message on each
  // record.
  void WriteOut(const std::function<void()>& write) const;

  // Saves, closes the index and makes sure that it opens again. The last call.
  void Close();

 private:
  Kestan& engine_;
  const std::string file_;
  const std::string path_;  // as it is called in messages
  const kestan::DocumentCounts counts_;
};

}  // namespace kestan_cli

#endif  // KESTAN_CLI_INDEX_OPENED_INDEX_H_
