// The index that a run changes.
#ifndef KESTAN_CLI_SYNC_INDEX_WRITER_H_
#define KESTAN_CLI_SYNC_INDEX_WRITER_H_

#include <optional>

#include "cli/index/index_transaction.h"
#include "cli/sync/index_batch.h"

namespace kestan_cli {

// Begins the change of an index when there is something to change, so that a run that finds nothing
// leaves the file as it is, and makes none.
class IndexWriter {
 public:
  // Borrows `change`, which has not begun.
  explicit IndexWriter(IndexChange& change) : change_(change) {}

  // The index, opened now if it was not.
  //   Throws   CommandError if it cannot be opened.
  OpenedIndex& index() { return Open().index; }
  Adder& adder() { return Open().adder; }

  // Commits the change, if it has begun.
  //   Throws   CommandError if the file refuses the changes.
  //   Returns  how many words the index had never seen.
  unsigned long Finish() {
    if (!opened_.has_value()) return 0;
    const unsigned long new_words = opened_->adder.new_words();
    opened_.reset();
    change_.Commit();
    return new_words;
  }

 private:
  struct Opened {
    explicit Opened(OpenedIndex& opened) : index(opened), adder(opened) {}
    OpenedIndex& index;
    Adder adder;
  };

  Opened& Open() {
    if (opened_.has_value()) return *opened_;
    OpenedIndex& index = change_.Begin();
    index.PrepareCodes();
    return opened_.emplace(index);
  }

  IndexChange& change_;
  std::optional<Opened> opened_;
};

}  // namespace kestan_cli

#endif  // KESTAN_CLI_SYNC_INDEX_WRITER_H_
