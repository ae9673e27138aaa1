#include "index_change.h"

#include <fcntl.h>
#include <sys/file.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <utility>

#include "command.h"
#include "message.h"

namespace kestan_cli {
namespace {

auto CannotChange(const std::string& path, const std::string& reason, int status = kFailed) {
  return CommandError("cannot change index " + Quoted(path) + ": " + reason, status);
}

void Check(int error, const std::string& path) {
  if (error != 0) throw CannotChange(path, ReasonOf(error) + "; it is as it was");
}

}  // namespace

IndexChange::IndexChange(Kestan& engine, const std::string& path, Access access, Way way)
    : engine_(engine),
      path_(path),
      file_(RealPath(path)),
      copy_(file_ + ".kestan-new"),
      access_(access),
      way_(way) {
  ExamineIndex(path_, access_);  // first, for a path that holds no index gets no lock
  if (way_ == Way::kOnCopy) {
    lock_ = std::make_unique<FileLock>(file_, "cannot change index " + Quoted(path_));
    RemoveLeftovers(copy_);
    HoldSource();
  }
  facts_ = ExamineIndex(path_, access_);  // nobody changes it any more
}

IndexChange::~IndexChange() {
  opened_.reset();
  if (lock_ != nullptr) RemoveLeftovers(copy_);
}

// Those who write the file in place have it locked for themselves, as gdbm does; readers share it.
void IndexChange::HoldSource() {
  source_ = Descriptor(open(file_.c_str(), O_RDONLY | O_CLOEXEC));
  if (!source_.is_open() && errno == ENOENT && access_ == Access::kCreate) return;
  if (!source_.is_open()) throw CannotChange(path_, ReasonOf(errno));
  if (flock(source_.number(), LOCK_SH | LOCK_NB) == 0) return;
  throw CannotChange(path_, "another process is changing it; try again later", kBusy);
}

OpenedIndex& IndexChange::Begin() {
  if (way_ == Way::kOnCopy) Copy();
  const std::string& file = way_ == Way::kOnCopy ? copy_ : file_;
  opened_ = std::make_unique<OpenedIndex>(engine_, file, access_, path_);
  return *opened_;
}

void IndexChange::Copy() const {
  const int error = source_.is_open() ? CopyFile(source_.number(), copy_) : 0;
  if (error == 0) return;
  throw CannotChange(path_,
                     "no copy " + Quoted(copy_) + ": " + ReasonOf(error) + "; it is as it was");
}

void IndexChange::Close() {
  opened_->Close();
  opened_.reset();
}

std::uintmax_t IndexChange::Measure() {
  Close();
  return std::filesystem::file_size(copy_);
}

void IndexChange::Commit() {
  Close();
  if (way_ == Way::kOnCopy) Replace();
}

void IndexChange::Replace() const {
  Check(SyncPath(copy_), path_);
  Check(std::rename(copy_.c_str(), file_.c_str()) == 0 ? 0 : errno, path_);
  if (const int error = SyncPath(FolderOf(file_))) {
    throw CommandError("index " + Quoted(path_) +
                       " is changed, but may not be on the disk yet: " + ReasonOf(error));
  }
}

IndexChange::Way WayOf(bool in_place, const std::string& path) {
  if (!in_place) return IndexChange::Way::kOnCopy;
  std::fprintf(stderr,
               "kestan: changing index %s in place: it can be damaged if this is ended early\n",
               Quoted(path).c_str());
  return IndexChange::Way::kInPlace;
}

}  // namespace kestan_cli
