#include "cli/files/work_directory.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <random>
#include <vector>

#include "cli/console/message.h"
#include "cli/files/atomic_replace.h"

namespace kestan_cli {
namespace {

constexpr std::string_view kMark = ".kestan-new.";
constexpr const char* kFile = "file";
constexpr std::string_view kRewrittenFile = "file.";  // and six letters: where gdbm rewrites it
constexpr std::size_t kLettersOfGdbm = 6;
constexpr std::size_t kRandomDigits = 16;
constexpr std::size_t kCheckDigits = 8;
constexpr std::size_t kMaxStartBytes = 180;  // leaves room for the rest of a name of 255 bytes
constexpr int kTries = 100;

// ---- Names ----

std::string Digits(std::uint32_t number) {
  std::array<char, 9> digits{};
  std::snprintf(digits.data(), digits.size(), "%08x", static_cast<unsigned>(number));
  return digits.data();
}

// FNV-1a of the name so far. Names that others choose do not end in it by chance.
std::string CheckDigitsOf(std::string_view name) {
  std::uint32_t hash = 2166136261U;
  for (const char byte : name) hash = (hash ^ static_cast<unsigned char>(byte)) * 16777619U;
  return Digits(hash);
}

// Returns how the names of the work directories for `file` begin.
std::string StartFor(const std::string& file) {
  return file.substr(0, kMaxStartBytes).append(kMark);
}

std::string NewName(const std::string& file) {
  std::random_device random;
  const std::string name = StartFor(file) + Digits(random()) + Digits(random());
  return name + CheckDigitsOf(name);
}

// ---- Directories ----

struct CloseFolder {
  void operator()(DIR* folder) const { closedir(folder); }
};
using OpenFolder = std::unique_ptr<DIR, CloseFolder>;

// Returns the names in the open directory `folder`; none if it cannot be read.
std::vector<std::string> NamesIn(int folder) {
  std::vector<std::string> names;
  const int own = openat(folder, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  const OpenFolder open(own >= 0 ? fdopendir(own) : nullptr);
  if (open == nullptr) return names;
  while (const dirent* entry = readdir(open.get())) {  // NOLINT(concurrency-mt-unsafe)
    names.emplace_back(static_cast<const char*>(entry->d_name));
  }
  names.erase(std::remove_if(names.begin(), names.end(),
                             [](const std::string& name) { return name == "." || name == ".."; }),
              names.end());
  return names;
}

Descriptor OpenAt(int around, const std::string& name) {
  return Descriptor(openat(around, name.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
}

bool AreSame(const struct stat& left, const struct stat& right) {
  return left.st_dev == right.st_dev && left.st_ino == right.st_ino;
}

bool IsStillAt(int folder, int around, const std::string& name) {
  struct stat open {};
  struct stat named {};
  return fstat(folder, &open) == 0 &&
         fstatat(around, name.c_str(), &named, AT_SYMLINK_NOFOLLOW) == 0 && AreSame(open, named);
}

bool BelongsToThisUser(int folder) {
  struct stat status {};
  return fstat(folder, &status) == 0 && status.st_uid == geteuid();
}

bool IsFileOfOurs(int folder, const std::string& name) {
  const bool rewritten = name.size() == kRewrittenFile.size() + kLettersOfGdbm &&
                         name.compare(0, kRewrittenFile.size(), kRewrittenFile) == 0;
  struct stat status {};
  return (rewritten || name == kFile) &&
         fstatat(folder, name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0 &&
         S_ISREG(status.st_mode);
}

// Removes the work directory `name` with its contents, unless it holds anything that does not
// belong there.
void Remove(int folder, int around, const std::string& name) {
  const std::vector<std::string> files = NamesIn(folder);
  for (const std::string& file : files) {
    if (!IsFileOfOurs(folder, file)) return;
  }
  for (const std::string& file : files) unlinkat(folder, file.c_str(), 0);
  if (IsStillAt(folder, around, name)) unlinkat(around, name.c_str(), AT_REMOVEDIR);
}

// Removes the work directory `name` if no process works in it.
void RemoveIfLeft(int around, const std::string& name) {
  const Descriptor folder = OpenAt(around, name);
  if (!folder.is_open() || !BelongsToThisUser(folder.number())) return;
  if (flock(folder.number(), LOCK_EX | LOCK_NB) == 0) Remove(folder.number(), around, name);
}

}  // namespace

WorkDirectory::WorkDirectory(const std::string& path, const std::string& complaint)
    : target_(std::filesystem::path(path).filename().string()),
      around_(open(DirectoryOf(path).c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC)) {
  int error = around_.is_open() ? EEXIST : errno;
  for (int i = 0; i < kTries && error == EEXIST; ++i) error = Make(path);
  if (error == 0) return;
  throw CommandError(complaint + ": cannot make a folder beside it: " + ReasonOf(error));
}

// Makes the directory under a new name.
//   Returns  0 or the system's error number: EEXIST if another try may succeed.
int WorkDirectory::Make(const std::string& path) {
  name_ = NewName(target_);
  if (mkdirat(around_.number(), name_.c_str(), 0700) != 0) return errno;
  folder_ = OpenAt(around_.number(), name_);
  if (!folder_.is_open()) return errno == ENOENT ? EEXIST : errno;
  if (!BelongsToThisUser(folder_.number())) return EPERM;
  // A process that removes leftovers may have taken it. Without locks, none removes any.
  const bool is_taken = flock(folder_.number(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK;
  if (is_taken || !IsStillAt(folder_.number(), around_.number(), name_)) return EEXIST;
  file_ = PathOfFile();
  if (file_.empty()) file_ = DirectoryOf(path) + "/" + name_ + "/" + kFile;
  return 0;
}

// Returns a path that begins at the open directory; an empty one if the system has no such paths.
std::string WorkDirectory::PathOfFile() const {
  const std::string folder = "/proc/self/fd/" + std::to_string(folder_.number());
  struct stat open {};
  struct stat named {};
  const bool leads_there = fstat(folder_.number(), &open) == 0 &&
                           stat(folder.c_str(), &named) == 0 && AreSame(open, named);
  return leads_there ? folder + "/" + kFile : "";
}

WorkDirectory::~WorkDirectory() { Remove(folder_.number(), around_.number(), name_); }

Descriptor WorkDirectory::Open() const {
  return Descriptor(openat(folder_.number(), kFile, O_RDWR | O_NOFOLLOW | O_CLOEXEC));
}

int WorkDirectory::Replace() const {
  const int result = renameat(folder_.number(), kFile, around_.number(), target_.c_str());
  return result == 0 ? 0 : errno;
}

// A file system that cannot rename without replacing has links.
int WorkDirectory::Place() const {
  const int from = folder_.number();
  const int to = around_.number();
  if (renameat2(from, kFile, to, target_.c_str(), RENAME_NOREPLACE) == 0) return 0;
  if (errno != EINVAL && errno != ENOSYS) return errno;
  if (linkat(from, kFile, to, target_.c_str(), 0) != 0) return errno;
  return unlinkat(from, kFile, 0) == 0 ? 0 : errno;
}

void RemoveLeftovers(const std::string& path) {
  const Descriptor around(open(DirectoryOf(path).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (!around.is_open()) return;
  const std::string start = StartFor(std::filesystem::path(path).filename().string());
  for (const std::string& name : NamesIn(around.number())) {
    const bool is_of_file = name.compare(0, start.size(), start) == 0;
    if (is_of_file && IsWorkDirectoryName(name)) RemoveIfLeft(around.number(), name);
  }
}

bool IsWorkDirectoryName(std::string_view name) {
  constexpr std::size_t kEndBytes = kRandomDigits + kCheckDigits;
  if (name.size() <= kMark.size() + kEndBytes) return false;
  const std::size_t start_bytes = name.size() - kMark.size() - kEndBytes;
  const std::string_view checked = name.substr(0, name.size() - kCheckDigits);
  const std::string_view random = checked.substr(checked.size() - kRandomDigits);
  return name.substr(start_bytes, kMark.size()) == kMark &&
         random.find_first_not_of("0123456789abcdef") == std::string_view::npos &&
         name.substr(checked.size()) == CheckDigitsOf(checked);
}

}  // namespace kestan_cli
