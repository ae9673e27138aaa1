#include "cli/index/opened_index.h"

#include <utility>

#include "cli/index/captured_stderr.h"

namespace kestan_cli {

OpenedIndex::OpenedIndex(Kestan& engine, const std::string& path, Access access, std::string shown)
    : engine_(engine),
      file_(RealPath(path)),
      path_(std::move(shown)),
      counts_(ExamineIndex(path, access)) {
  if (engine_.OpenIndex(file_.c_str(), access == Access::kRead ? 0 : 1) == 0) return;
  Database store;
  OpenStore(store, path, access, path_);
  throw Locked(path_, "has it open");  // it opens now: another process has just closed it
}

void OpenedIndex::CheckWritten(int error) const {
  if (error == 0) return;
  const int first = engine_.FileError() != 0 ? engine_.FileError() : error;
  const bool is_copy = file_ != RealPath(path_);
  throw CannotWrite(path_, kestan::StoreError{first}, is_copy);
}

void OpenedIndex::CheckRead() const {
  const kestan::StoreError error{engine_.FileError()};
  if (error != kestan::StoreError::kNone) throw CannotRead(path_, error);
}

void OpenedIndex::PrepareCodes() const {
  int error = 0;
  WriteOut([&] { error = engine_.PurgeShortWords(); });
  CheckRead();
  if (error == 0) return;
  throw CannotChange(path_, "postings of one-letter words are damaged; see kestan check");
}

OpenedIndex::~OpenedIndex() {
  WriteOut([this] { engine_.CloseIndex(); });
}

void OpenedIndex::WriteOut(const std::function<void()>& write) const {
  CapturedStderr lines;
  write();
  if (engine_.FileError() != 0) lines.Drop();
}

void OpenedIndex::Save() {
  WriteOut([this] { engine_.FlushIndex(); });
  CheckWritten(engine_.FileError());
}

void OpenedIndex::Close() {
  WriteOut([this] { engine_.CloseIndex(); });
  CheckWritten(engine_.FileError());
  ExamineIndex(file_, Access::kRead);
}

}  // namespace kestan_cli
