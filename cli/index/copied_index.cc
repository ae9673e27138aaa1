#include "cli/index/copied_index.h"

#include <fcntl.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <system_error>

#include "cli/app/command.h"
#include "cli/console/message.h"
#include "cli/console/output.h"
#include "cli/files/atomic_replace.h"
#include "cli/files/file_attributes.h"
#include "cli/files/work_directory.h"
#include "cli/index/opened_index.h"

namespace kestan_cli {
namespace {

namespace fs = std::filesystem;

constexpr int kRecordsBetweenFlushes = 1000;  // a flush gives back the memory of those read

bool AreEqual(const DBDatum& left, const DBDatum& right) {
  return left.size == right.size &&
         (left.size == 0 || std::memcmp(left.data, right.data, left.size) == 0);
}

// Whether every record of `whole` is in `copy` too.
bool HasAll(Database& copy, Database& whole) {
  DBDatumPtr key;
  DBDatumPtr value;
  DBDatumPtr other;
  int walked = 0;
  for (int end = whole.First(&key, &value); end != -1; end = whole.Next(&key, &value)) {
    if (end != 0 || copy.Get(&other, *key.ptr) != 0 || !AreEqual(*value.ptr, *other.ptr)) {
      return false;
    }
    if (++walked % kRecordsBetweenFlushes == 0) whole.Flush(), copy.Flush();
  }
  return whole.FileError() == 0;
}

// Has the engine copy its index to `part`. What it says of a failure names a file that the user
// does not know.
bool Copies(Kestan& engine, const std::string& part) {
  CapturedStderr lines;
  const bool copied = engine.CopyIndexTo(part.c_str()) == 0;
  if (!copied) lines.Drop();
  return copied;
}

bool AreSame(const std::string& left, const std::string& right) {
  Database a;
  Database b;
  if (a.Open(left.c_str(), 0) != 0 || b.Open(right.c_str(), 0) != 0) return false;
  return HasAll(a, b) && HasAll(b, a);
}

CommandError IsThere(const std::string& path) {
  return CannotMake(path, "there is something already; choose another name");
}

// A copy says to others no more than what it is a copy of.
void MakeLike(const std::string& like, const WorkFolder& folder, const std::string& path) {
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

void MakeWhole(const std::string& path, const std::string& like,
               const std::function<void(const std::string&)>& make) {
  std::error_code error;
  if (fs::symlink_status(path, error).type() != fs::file_type::not_found) throw IsThere(path);
  if (!fs::is_directory(FolderOf(path), error)) throw CannotMake(path, "no such folder");
  RemoveLeftovers(path);
  const WorkFolder folder(path, "cannot make " + Quoted(path));
  make(folder.file());
  if (!like.empty()) MakeLike(like, folder, path);
  if (const int failed = SyncPath(folder.file())) throw CannotMake(path, ReasonOf(failed));
  const int placed = folder.Place();
  if (placed == EEXIST) throw IsThere(path);
  if (placed != 0) throw CannotMake(path, ReasonOf(placed));
  if (const int failed = SyncPath(FolderOf(path))) throw CannotMake(path, ReasonOf(failed));
}

void CopyIndex(Kestan& engine, const std::string& index, const std::string& path) {
  ExamineIndex(index, Access::kRead);
  MakeWhole(path, index, [&](const std::string& part) {
    {
      const OpenedIndex opened(engine, index, Access::kRead);
      if (!Copies(engine, part))
        throw CannotMake(path, "not all was written, perhaps for want of room");
    }
    if (!AreSame(RealPath(index), part)) {
      throw CannotMake(path, "the copy is not complete; see kestan check " + Quoted(index));
    }
  });
}

}  // namespace kestan_cli
