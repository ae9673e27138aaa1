#include "cli/index/index_transaction.h"

#include <fcntl.h>

#include <cerrno>
#include <filesystem>

#include "cli/console/diagnostics.h"
#include "cli/console/message.h"
#include "cli/files/atomic_replace.h"
#include "cli/files/file_attributes.h"

namespace kestan_cli {
namespace {

std::string Complaint(const std::string& path) { return "cannot change index " + Quoted(path); }

void Check(int error, const std::string& path) {
  if (error != 0) throw CannotChange(path, ReasonOf(error) + "; it is as it was");
}

CommandError MadeByAnother(const std::string& path) {
  return CannotChange(path, "another process has made it meanwhile; try again", kBusy);
}

}  // namespace

IndexTransaction::IndexTransaction(Kestan& engine, const std::string& path, Access access,
                                   UpdateMode mode)
    : engine_(engine), path_(path), file_(RealPath(path)), access_(access), mode_(mode) {
  if (mode_ == UpdateMode::kInPlace) {
    ReportProblem("changing index " + Quoted(path_) +
                  " in place: it can be damaged if this is ended early");
  }
  ExamineIndex(path_, access_);  // first: only an index is locked
  lock_ = std::make_unique<IndexLock>(file_, Complaint(path_));
  if (mode_ == UpdateMode::kOnCopy) RemoveLeftovers(file_);
  counts_ = ExamineIndex(path_, access_);  // again: nobody can change it now
  std::error_code error;
  if (std::filesystem::file_size(file_, error) != 0 && !error) CheckStructure(path_);
}

IndexTransaction::~IndexTransaction() {
  opened_.reset();  // before the directory of its file is removed
}

OpenedIndex& IndexTransaction::Begin() {
  const std::string& file = mode_ == UpdateMode::kOnCopy ? Copy() : MakeInPlace();
  opened_ = std::make_unique<OpenedIndex>(engine_, file, access_, path_);
  return *opened_;
}

// Returns the path of the copy.
const std::string& IndexTransaction::Copy() {
  folder_ = std::make_unique<WorkDirectory>(file_, Complaint(path_));
  const int error = lock_->has_file() ? CopyFile(lock_->file(), folder_->file()) : 0;
  if (error == 0) return folder_->file();
  throw CannotChange(path_, "no copy beside it: " + ReasonOf(error) + "; it is as it was");
}

// Makes an empty file if there is none: a file can be locked, a name cannot.
const std::string& IndexTransaction::MakeInPlace() {
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

void IndexTransaction::Close() {
  opened_->Close();
  opened_.reset();
}

std::uintmax_t IndexTransaction::Measure() {
  Close();
  return std::filesystem::file_size(folder_->file());
}

void IndexTransaction::Commit() {
  Close();
  if (mode_ == UpdateMode::kOnCopy) Replace();
}

// Comes last: no other user may open the copy before, and gdbm makes a new file when it shrinks
// one.
void IndexTransaction::KeepAttributes() const {
  if (!lock_->has_file()) return;
  const Descriptor copy = folder_->Open();
  Check(copy.is_open() ? 0 : errno, path_);
  Check(CopyAttributes(lock_->file(), copy.number(), NewOwner::kSame), path_);
}

void IndexTransaction::CheckNotReplaced() const {
  if (lock_->IsInPlace()) return;
  if (!lock_->has_file()) throw MadeByAnother(path_);
  throw CannotChange(path_, "another process has replaced or removed it meanwhile; try again",
                     kBusy);
}

void IndexTransaction::Replace() const {
  KeepAttributes();
  Check(SyncPath(folder_->file()), path_);
  CheckNotReplaced();
  const int failed = lock_->has_file() ? folder_->Replace() : folder_->Place();
  if (failed == EEXIST) throw MadeByAnother(path_);
  Check(failed, path_);
  if (const int error = SyncPath(DirectoryOf(file_))) {
    throw CommandError("index " + Quoted(path_) +
                       " is changed, but may not be on the disk yet: " + ReasonOf(error));
  }
}

}  // namespace kestan_cli
