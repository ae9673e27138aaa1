#include "cli/index/index_transaction.h"

#include <fcntl.h>

#include <cerrno>
#include <filesystem>

#include "cli/app/command.h"
#include "cli/console/message.h"
#include "cli/console/output.h"
#include "cli/files/atomic_replace.h"
#include "cli/files/file_attributes.h"

namespace kestan_cli {
namespace {

std::string Complaint(const std::string& path) { return "cannot change index " + Quoted(path); }

auto CannotChange(const std::string& path, const std::string& reason, int status = kFailed) {
  return CommandError(Complaint(path) + ": " + reason, status);
}

void Check(int error, const std::string& path) {
  if (error != 0) throw CannotChange(path, ReasonOf(error) + "; it is as it was");
}

CommandError MadeByAnother(const std::string& path) {
  return CannotChange(path, "another process has made it meanwhile; try again", kBusy);
}

}  // namespace

IndexChange::IndexChange(Kestan& engine, const std::string& path, Access access, Way way)
    : engine_(engine), path_(path), file_(RealPath(path)), access_(access), way_(way) {
  ExamineIndex(path_, access_);  // first, for a path that holds no index gets no lock
  lock_ = std::make_unique<IndexLock>(file_, Complaint(path_));
  if (way_ == Way::kOnCopy) RemoveLeftovers(file_);
  facts_ = ExamineIndex(path_, access_);  // nobody changes it any more
  std::error_code error;
  if (std::filesystem::file_size(file_, error) != 0 && !error) CheckStructure(path_);
}

IndexChange::~IndexChange() {
  opened_.reset();  // before the folder goes in which the file is
}

OpenedIndex& IndexChange::Begin() {
  const std::string& file = way_ == Way::kOnCopy ? Copy() : MakeInPlace();
  opened_ = std::make_unique<OpenedIndex>(engine_, file, access_, path_);
  return *opened_;
}

// Returns where the copy is.
const std::string& IndexChange::Copy() {
  folder_ = std::make_unique<WorkFolder>(file_, Complaint(path_));
  const int error = lock_->has_file() ? CopyFile(lock_->file(), folder_->file()) : 0;
  if (error == 0) return folder_->file();
  throw CannotChange(path_, "no copy beside it: " + ReasonOf(error) + "; it is as it was");
}

// Makes an empty file where there is none, for a file can be locked and a name cannot.
const std::string& IndexChange::MakeInPlace() {
  if (!lock_->has_file()) {
    constexpr int kMode = 0644;
    const Descriptor made(open(file_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, kMode));
    if (!made.is_open() && errno == EEXIST) throw MadeByAnother(path_);
    if (!made.is_open()) throw CannotChange(path_, ReasonOf(errno));
    lock_ = std::make_unique<IndexLock>(file_, Complaint(path_));
  }
  lock_->LetWriteInPlace();
  return file_;
}

void IndexChange::Close() {
  opened_->Close();
  opened_.reset();
}

std::uintmax_t IndexChange::Measure() {
  Close();
  return std::filesystem::file_size(folder_->file());
}

void IndexChange::Commit() {
  Close();
  if (way_ == Way::kOnCopy) Replace();
}

// The copy is nobody else's until here, and may be another file than it was at first: gdbm rewrites
// one that shrinks.
void IndexChange::KeepAttributes() const {
  if (!lock_->has_file()) return;
  const Descriptor copy = folder_->Open();
  Check(copy.is_open() ? 0 : errno, path_);
  Check(CopyAttributes(lock_->file(), copy.number(), NewOwner::kSame), path_);
}

void IndexChange::CheckNobodyCameBetween() const {
  if (lock_->IsInPlace()) return;
  if (!lock_->has_file()) throw MadeByAnother(path_);
  throw CannotChange(path_, "another process has replaced or removed it meanwhile; try again",
                     kBusy);
}

void IndexChange::Replace() const {
  KeepAttributes();
  Check(SyncPath(folder_->file()), path_);
  CheckNobodyCameBetween();
  const int failed = lock_->has_file() ? folder_->Replace() : folder_->Place();
  if (failed == EEXIST) throw MadeByAnother(path_);
  Check(failed, path_);
  if (const int error = SyncPath(FolderOf(file_))) {
    throw CommandError("index " + Quoted(path_) +
                       " is changed, but may not be on the disk yet: " + ReasonOf(error));
  }
}

IndexChange::Way WayOf(bool in_place, const std::string& path) {
  if (!in_place) return IndexChange::Way::kOnCopy;
  Say("kestan: changing index " + Quoted(path) +
      " in place: it can be damaged if this is ended early");
  return IndexChange::Way::kInPlace;
}

}  // namespace kestan_cli
