// Examines an index file before the engine opens it, so that nothing is written to a file that is
// not an index, or is damaged.
#ifndef KESTAN_CLI_INDEX_INDEX_EXAMINATION_H_
#define KESTAN_CLI_INDEX_INDEX_EXAMINATION_H_

#include <kestan/index_file.h>
#include <kestan/kestan.h>

#include <string>

#include "cli/index/index_errors.h"

namespace kestan_cli {

// What a command is going to do with an index.
enum class Access {
  kRead,
  kInspect,  // read it, however damaged it is
  kWrite,    // change an index that exists
  kCreate,   // change it, or make a new one at a path without a file or with an empty one
};

// Examines the file at `path`. Writes nothing to it.
//   Returns  its counts; those of an index without documents if it is still to be made.
//   Throws   CommandError "cannot open index 'PATH': REASON" if it is missing, cannot be read or
//            (for a change) written, is not an index, or is damaged where the counts are read; with
//            the status kBusy if another process is writing it.
kestan::DocumentCounts ExamineIndex(const std::string& path, Access access);

// Makes sure that it is safe to change the index at `path`. Writes nothing to it. Every record must
// be found by its key, or a change would write the record a second time. No record may lie in space
// that counts as free, or a change would overwrite it.
//   Throws   CommandError "cannot change index 'PATH': REASON" if that is not so, and what
//            ExamineIndex throws.
void CheckStructure(const std::string& path);

// Checks that the file at `path` can be read, whatever is in it.
//   Throws   what ExamineIndex throws.
void CheckFile(const std::string& path);

// Opens `store` on the file at `path`, which is called `shown` in messages.
//   Throws   what ExamineIndex throws.
void OpenStore(Database& store, const std::string& path, Access access, const std::string& shown);
inline void OpenStore(Database& store, const std::string& path, Access access) {
  OpenStore(store, path, access, path);
}

// Returns the path of the file itself if `path` is a link, or a chain of links.
std::string RealPath(const std::string& path);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_INDEX_INDEX_EXAMINATION_H_
