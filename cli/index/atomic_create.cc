#include "cli/index/atomic_create.h"

#include <fcntl.h>

#include <cerrno>
#include <filesystem>
#include <system_error>

#include "cli/files/atomic_replace.h"
#include "cli/files/file_attributes.h"
#include "cli/files/work_directory.h"

namespace kestan_cli {
namespace {

namespace fs = std::filesystem;

CommandError IsThere(const std::string& path) {
  return CannotMake(path, "there is something already; choose another name");
}

// Lets no user read the new file who could not read the one at `like`.
void MakeLike(const std::string& like, const WorkDirectory& folder, const std::string& path) {
  const Descriptor source(open(like.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  const Descriptor made = folder.Open();
  const bool opened = source.is_open() && made.is_open();
  const int failed =
      opened ? CopyAttributes(source.number(), made.number(), NewOwner::kThisUser) : errno;
  if (failed != 0) throw CannotMake(path, ReasonOf(failed));
}

}  // namespace

CommandError CannotMake(const std::string& path, const std::string& reason) {
  return CommandError("cannot make " + Quoted(path) + ": " + reason);
}

void CreateAtomically(const std::string& path, const std::string& like,
                      const std::function<void(const std::string&)>& make) {
  std::error_code error;
  if (fs::symlink_status(path, error).type() != fs::file_type::not_found) throw IsThere(path);
  if (!fs::is_directory(DirectoryOf(path), error)) throw CannotMake(path, "no such folder");
  RemoveLeftovers(path);
  const WorkDirectory folder(path, "cannot make " + Quoted(path));
  make(folder.file());
  if (!like.empty()) MakeLike(like, folder, path);
  if (const int failed = SyncPath(folder.file())) throw CannotMake(path, ReasonOf(failed));
  const int placed = folder.Place();
  if (placed == EEXIST) throw IsThere(path);
  if (placed != 0) throw CannotMake(path, ReasonOf(placed));
  if (const int failed = SyncPath(DirectoryOf(path))) throw CannotMake(path, ReasonOf(failed));
}

}  // namespace kestan_cli
