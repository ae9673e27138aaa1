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

// Works on a copy beside the index, and puts it in the place of the index when all is on the disk.
// Until then the index stays as it was, whatever happens, and others read it; nobody else changes
// it. The copy gets the owner, group and mode of the index as far as this user may give them. What
// a process leaves behind that was ended on the way, the next change removes.
class IndexChange {
 public:
  enum class Way { kOnCopy, kInPlace };

  // Locks the index at `path` and looks at it. Borrows `engine`, whose index must be closed.
  //   Throws   what ExamineIndex and CheckStructure throw; CommandError with the status kBusy
  //            if another process is changing the index.
  IndexChange(Kestan& engine, const std::string& path, Access access, Way way);
  ~IndexChange();  // without Commit(), a change on a copy is forgotten
  IndexChange(const IndexChange&) = delete;
  IndexChange& operator=(const IndexChange&) = delete;

  const IndexFacts& facts() const { return facts_; }

  // Makes the copy and opens it in the engine. Once; before, the index may be read there.
  //   Throws   CommandError if no copy can be made.
  OpenedIndex& Begin();

  // Writes everything out, closes the copy and tells how many bytes it has. The last call: the
  // index stays as it is.
  std::uintmax_t Measure();

  // Writes everything out, closes the index and puts the copy in its place.
  //   Throws   CommandError if any record did not reach the file; then the index is as it was, if
  //            this worked on a copy. With the status kBusy if another process has meanwhile put
  //            another file in the place of the index.
  void Commit();

 private:
  const std::string& Copy();
  const std::string& MakeInPlace();
  void Close();
  void KeepAttributes() const;
  void CheckNobodyCameBetween() const;
  void Replace() const;

  Kestan& engine_;
  const std::string path_;
  const std::string file_;  // the index itself
  const Access access_;
  const Way way_;
  std::unique_ptr<IndexLock> lock_;
  IndexFacts facts_;
  std::unique_ptr<WorkFolder> folder_;
  std::unique_ptr<OpenedIndex> opened_;
};

// Way::kInPlace where `in_place` is set; then says on the standard error stream what that means.
IndexChange::Way WayOf(bool in_place, const std::string& path);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_INDEX_INDEX_TRANSACTION_H_
