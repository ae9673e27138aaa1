// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/storage/gdbm_file.h>

#include <kestan/storage/gdbm/gdbm_header.h>
#include <kestan/storage/memory/memory.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <mutex>

namespace kestan {
namespace {

constexpr std::uint64_t kSlackBytes = 64 << 20;

}  // namespace

int LastError() { return gdbm_errno != GDBM_NO_ERROR ? gdbm_errno : GDBM_MALLOC_ERROR; }

std::int64_t BytesOfFile(GDBM_FILE file) {
  struct stat status {};
  fstat(gdbm_fdesc(file), &status);
  return status.st_size;
}

bool HasLostItsName(GDBM_FILE file, const char* name) {
  struct stat open_file {};
  struct stat named {};
  if (fstat(gdbm_fdesc(file), &open_file) != 0) return false;
  if (stat(name, &named) != 0) return errno == ENOENT;
  return open_file.st_dev != named.st_dev || open_file.st_ino != named.st_ino;
}

// gdbm fills the disk up to where its header says that the next block goes. A place somewhat past
// the end is no damage: a process that was killed leaves it. And gdbm aborts on a dangling
// free-list entry.
int CheckFreeSpace(GDBM_FILE file) {
  gdbm::Header header{};  // of no known format where it cannot be read
  [[maybe_unused]] const ssize_t read = pread(gdbm_fdesc(file), &header, sizeof header, 0);
  const auto bytes = static_cast<std::uint64_t>(BytesOfFile(file));
  if (gdbm::HasHeaderFields(header.magic) && header.next_block > 2 * bytes + kSlackBytes)
    return GDBM_NEED_RECOVERY;
  return gdbm_avail_verify(file) == 0 ? 0 : LastError();
}

int DamageOf(GDBM_FILE file) {
  if (gdbm_needs_recovery(file) != 0) return GDBM_NEED_RECOVERY;
  return CheckFreeSpace(file);
}

void CloseFile(GDBM_FILE file) {
  static std::mutex mutex;  // threads may close files of their own at one time
  static auto* const abandoned = New<Vector<GDBM_FILE>>();  // lives as long as the process
  if (gdbm_needs_recovery(file) == 0) {
    gdbm_close(file);
    return;
  }
  int mapped = 0;
  gdbm_setopt(file, GDBM_SETMMAP, &mapped, sizeof mapped);
  flock(gdbm_fdesc(file), LOCK_UN);  // closing would not do where the mapping stays
  close(gdbm_fdesc(file));
  const std::lock_guard<std::mutex> lock(mutex);
  abandoned->push_back(file);
}

}  // namespace kestan
