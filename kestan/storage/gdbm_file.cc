#include <kestan/storage/gdbm_file.h>
#include <kestan/storage/memory.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>

namespace kestan {
namespace {

constexpr std::uint64_t kSlackBytes = 64 << 20;

// The place where gdbm will add the next block: a field of its header that it tells nobody.
struct Header {
  std::uint32_t magic;
  std::uint32_t block_bytes;
  std::uint64_t directory;
  std::uint32_t directory_bytes;
  std::array<std::uint32_t, 3> others;
  std::uint64_t next_block;
};

// Formats with these fields, as written by hosts whose file offsets have 64 bits.
bool IsKnown(std::uint32_t magic) { return magic == 0x13579acf || magic == 0x13579ad1; }

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

// A next block far behind the end would make gdbm fill the disk up to there. Some blocks are no
// damage: a process that was killed leaves them. A list of free space that leads nowhere would make
// gdbm end the process.
int CheckFreeSpace(GDBM_FILE file) {
  Header header{};  // of no known format where it cannot be read
  [[maybe_unused]] const ssize_t read = pread(gdbm_fdesc(file), &header, sizeof header, 0);
  const auto bytes = static_cast<std::uint64_t>(BytesOfFile(file));
  if (IsKnown(header.magic) && header.next_block > 2 * bytes + kSlackBytes)
    return GDBM_NEED_RECOVERY;
  return gdbm_avail_verify(file) == 0 ? 0 : LastError();
}

int DamageOf(GDBM_FILE file) {
  if (gdbm_needs_recovery(file) != 0) return GDBM_NEED_RECOVERY;
  return CheckFreeSpace(file);
}

void CloseFile(GDBM_FILE file) {
  static auto* const abandoned = New<Vector<GDBM_FILE>>();  // lives as long as the process
  if (gdbm_needs_recovery(file) == 0) {
    gdbm_close(file);
    return;
  }
  int mapped = 0;
  gdbm_setopt(file, GDBM_SETMMAP, &mapped, sizeof mapped);
  flock(gdbm_fdesc(file), LOCK_UN);  // closing would not do where the mapping stays
  close(gdbm_fdesc(file));
  abandoned->push_back(file);
}

}  // namespace kestan
