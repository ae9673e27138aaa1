// Opens an index when its first change comes.
#ifndef KESTAN_CLI_SYNC_INDEX_WRITER_H_
#define KESTAN_CLI_SYNC_INDEX_WRITER_H_

#include <optional>

#include "cli/index/index_transaction.h"
#include "cli/sync/index_batch.h"

namespace kestan_cli {

// Begins a change of an index when there is something to change. A run that finds nothing leaves
// the file as it is, and makes none.
class IndexWriter {
 public:
  // Borrows `change`, which has not begun.
  explicit IndexWriter(IndexTransaction& change) : change_(change) {}

  // Returns the index, and opens it first if need be.
  //   Throws   CommandError if it cannot be opened.
  OpenedIndex& index() { return Open().index; }
  IndexBatch& batch() { return Open().batch; }

  // Commits the change, if it has begun.
  //   Throws   CommandError if the file refuses the changes.
  //   Returns  how many words are new to the index.
  unsigned long Finish() {
    if (!opened_.has_value()) return 0;
    const unsigned long new_words = opened_->batch.new_words();
    opened_.reset();
    change_.Commit();
    return new_words;
  }

 private:
  struct Opened {
    explicit Opened(OpenedIndex& opened) : index(opened), batch(opened) {}
    OpenedIndex& index;
    IndexBatch batch;
  };

  Opened& Open() {
    if (opened_.has_value()) return *opened_;
    OpenedIndex& index = change_.Begin();
    index.PrepareCodes();
    return opened_.emplace(index);
  }

  IndexTransaction& change_;
  std::optional<Opened> opened_;
};

}  // namespace kestan_cli

#endif  // KESTAN_CLI_SYNC_INDEX_WRITER_H_
