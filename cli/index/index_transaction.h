// A change of an index that happens as a whole or not at all.
#ifndef KESTAN_CLI_INDEX_INDEX_TRANSACTION_H_
#define KESTAN_CLI_INDEX_INDEX_TRANSACTION_H_

#include <kestan/kestan.h>

#include <cstdint>
#include <memory>
#include <string>

#include "cli/files/work_directory.h"
#include "cli/index/index_lock.h"
#include "cli/index/opened_index.h"

namespace kestan_cli {

enum class UpdateMode {
  kOnCopy,
  kInPlace,  // faster, but the index is damaged if the process ends early or the disk is full
};

inline UpdateMode UpdateModeOf(bool in_place) {
  return in_place ? UpdateMode::kInPlace : UpdateMode::kOnCopy;
}

// Works on a copy beside the index, and replaces the index by the copy when all is on the disk.
// Until then the index stays as it was, whatever happens: others may read it, and nobody else can
// change it. The copy gets the owner, group and mode of the index as far as this user may set them.
// If a process ends before its transaction, the next transaction removes the copy.
class IndexTransaction {
 public:
  // Locks the index at `path` and examines it. Borrows `engine`, whose index must be closed.
  // Reports the risk of a change in place.
  //   Throws   what ExamineIndex and CheckStructure throw; CommandError with the status kBusy
  //            if another process is changing the index.
  IndexTransaction(Kestan& engine, const std::string& path, Access access, UpdateMode mode);
  ~IndexTransaction();  // without Commit(), a change on a copy is discarded
  IndexTransaction(const IndexTransaction&) = delete;
  IndexTransaction& operator=(const IndexTransaction&) = delete;

  const kestan::DocumentCounts& counts() const { return counts_; }

  // Makes the copy and opens it in the engine. To be called once; before, the engine may open the
  // index for reading.
  //   Throws   CommandError if no copy can be made.
  OpenedIndex& Begin();

  // Writes everything out and closes the copy. The last call: the index stays as it is.
  //   Returns  how many bytes the copy has.
  std::uintmax_t Measure();

  // Writes everything out, closes the index and replaces it by the copy. The last call.
  //   Throws   CommandError if any record did not reach the file; with a copy, the index is then as
  //            it was. With the status kBusy if another process has replaced the index meanwhile.
  void Commit();

 private:
  const std::string& Copy();
  const std::string& MakeInPlace();
  void Close();
  void KeepAttributes() const;
  void CheckNotReplaced() const;
  void Replace() const;

  Kestan& engine_;
  const std::string path_;
  const std::string file_;  // the index itself
  const Access access_;
  const UpdateMode mode_;
  std::unique_ptr<IndexLock> lock_;
  kestan::DocumentCounts counts_;
  std::unique_ptr<WorkDirectory> folder_;
  std::unique_ptr<OpenedIndex> opened_;
};

}  // namespace kestan_cli

#endif  // KESTAN_CLI_INDEX_INDEX_TRANSACTION_H_
