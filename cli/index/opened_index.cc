#include "cli/index/opened_index.h"

#include <kestan/maintenance.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <string_view>
#include <system_error>
#include <utility>

#include "cli/app/command.h"
#include "cli/console/message.h"
#include "cli/console/output.h"

namespace kestan_cli {
namespace {

namespace fs = std::filesystem;

constexpr int kMaxLinks = 40;  // in a chain; as many as the system follows

auto CannotOpen(const std::string& path, const std::string& reason, int status = kFailed) {
  return CommandError("cannot open index " + Quoted(path) + ": " + reason, status);
}

auto Locked(const std::string& path, const std::string& what_holds_it) {
  return CannotOpen(path, "another process " + what_holds_it + "; try again later", kBusy);
}

bool IsMissing(const std::string& path) {
  std::error_code error;
  return fs::status(path, error).type() == fs::file_type::not_found;
}

bool IsEmpty(const std::string& path) {
  std::error_code error;
  return fs::file_size(path, error) == 0 && !error;
}

void CheckFolderOfNewIndex(const std::string& path) {
  fs::path folder = fs::path(path).parent_path();
  if (folder.empty()) folder = ".";
  std::error_code error;
  if (path.empty() || !fs::is_directory(folder, error)) throw CannotOpen(path, "no such folder");
}

void CheckLeaveToWrite(const std::string& path) {
  if (::access(path.c_str(), W_OK) == 0) return;
  throw CommandError("cannot change index " + Quoted(path) + ": " + ReasonOf(errno));
}

// gdbm's error numbers, which the store hands on.
constexpr int kFileOpenError = 3;
constexpr int kFileWriteError = 4;
constexpr int kFileReadError = 6;  // those between are about seeking and writing
constexpr int kCantBeReader = 9;
constexpr int kCantBeWriter = 10;
constexpr int kNeedsRecovery = 29;

constexpr const char* kSeeRepair = "kestan repair saves what it still holds";
constexpr const char* kIfItWasOne = "; if it was one, see kestan repair";

// Says why the store refused to open a file. `system_error` is what errno was right after.
std::string ReasonOfStore(int error, int system_error) {
  if (error == kNeedsRecovery) return std::string("damaged; ") + kSeeRepair;
  const bool from_system = error >= kFileOpenError && error <= kFileReadError;
  if (from_system && system_error != 0) return ReasonOf(system_error);
  return std::string("not an index file (") + Database::ErrorString(error) + ")" + kIfItWasOne;
}

// Says why a record did not reach the file. gdbm calls for recovery after the first failure.
std::string ReasonOfWrite(int error, bool on_copy) {
  const std::string reason = Database::ErrorString(error);
  if (error != kFileWriteError && error != kNeedsRecovery) return reason + "; see kestan check";
  return "a write failed, perhaps for want of room (" + reason + ")" +
         (on_copy ? "; it is as it was" : "");
}

DBDatumPtr Record(Database& store, std::string_view key) {
  DBDatumPtr value;
  store.Get(&value, DBDatum(key.data(), static_cast<std::uint32_t>(key.size())));
  return value;
}

// Reads a 16-bit number, low byte first; bytes that a damaged record lacks are 0.
unsigned long FirstUnit(const DBDatum& value) {
  unsigned long unit = 0;
  for (std::uint32_t i = 0; i < 2 && i < value.size; ++i) {
    unit |= static_cast<unsigned long>(static_cast<unsigned char>(value.data[i])) << 8 * i;
  }
  return unit;
}

// Whether a walk comes to the record of a document, which is there only if there is a counter too.
bool ShowsDocuments(Database& store) {
  constexpr std::uint32_t kDocumentBytes = 8;
  constexpr int kRecordsBetweenFlushes = 1000;  // a flush gives back the memory of those read
  DBDatumPtr key;
  DBDatumPtr value;
  int walked = 0;
  for (int end = store.First(&key, &value); key.ptr != nullptr; end = store.Next(&key, &value)) {
    const std::string_view bytes(key.ptr->data, key.ptr->size);
    if (bytes.substr(0, 2) == "d-" && end == 0 && value.ptr->size == kDocumentBytes) return true;
    if (++walked % kRecordsBetweenFlushes == 0) store.Flush();
  }
  return false;
}

unsigned long CountUnits(const DBDatumPtr& value) {
  return value.ptr != nullptr ? value.ptr->size / 2 : 0;
}

IndexFacts FactsOf(Database& store, bool* lacks_counter) {
  IndexFacts facts;
  const DBDatumPtr highest = Record(store, "g-code");
  if (highest.ptr == nullptr) {
    *lacks_counter = ShowsDocuments(store);  // an index without a counter is small, if it is whole
    return facts;
  }
  facts.had_documents = true;
  facts.free_codes -= FirstUnit(*highest.ptr);
  const unsigned long reusable = CountUnits(Record(store, "g-avail"));
  const unsigned long gone = reusable + CountUnits(Record(store, "g-deleted"));
  const unsigned long codes = FirstUnit(*highest.ptr);
  facts.free_codes += reusable;
  facts.documents = codes - std::min(codes, gone);
  return facts;
}

}  // namespace

// Looks before opening: a pipe would wait for a writer, and a folder opens like a file.
void CheckFile(const std::string& path) {
  std::error_code error;
  const fs::file_status status = fs::status(path, error);
  if (status.type() == fs::file_type::not_found) {
    throw CannotOpen(path, "no such file; kestan index makes one");
  }
  if (error) throw CannotOpen(path, ReasonOf(error.value()));
  if (fs::is_directory(status)) throw CannotOpen(path, "is a folder");
  if (!fs::is_regular_file(status)) throw CannotOpen(path, "not an index file");
  const OpenFile file(std::fopen(path.c_str(), "rb"));
  if (file == nullptr) throw CannotOpen(path, ReasonOf(errno));
}

CommandError CannotRead(const std::string& path, int error) {
  return CommandError("cannot read index " + Quoted(path) + ": " + Database::ErrorString(error) +
                      "; see kestan check");
}

void OpenStore(Database& store, const std::string& path, Access access, const std::string& shown) {
  errno = 0;
  const int error = store.Open(path.c_str(), access == Access::kRead ? 0 : 1);
  const int system_error = errno;
  if (error == kCantBeReader) throw Locked(shown, "is changing it");
  if (error == kCantBeWriter) throw Locked(shown, "has it open");
  if (error != 0) throw CannotOpen(shown, ReasonOfStore(error, system_error));
}

// Not fs::canonical, which wants a file at the end: a new index may be made through a link.
std::string RealPath(const std::string& path) {
  fs::path real = path;
  std::error_code error;
  for (int i = 0; i < kMaxLinks && fs::is_symlink(real, error); ++i) {
    const fs::path target = fs::read_symlink(real, error);
    real = real.parent_path() / target;  // an absolute target stands for itself
  }
  return real.string();
}

IndexFacts ExamineIndex(const std::string& path, Access access) {
  if (access == Access::kCreate && IsMissing(path)) {
    CheckFolderOfNewIndex(path);
    return {};
  }
  CheckFile(path);
  if (access == Access::kWrite || access == Access::kCreate) CheckLeaveToWrite(path);
  if (access == Access::kCreate && IsEmpty(path)) return {};
  Database store;
  OpenStore(store, path, Access::kRead);
  const bool has_options = Record(store, "g-opts").ptr != nullptr;
  bool lacks_counter = false;
  const IndexFacts facts = FactsOf(store, &lacks_counter);
  if (store.FileError() != 0) {
    if (access == Access::kInspect) return facts;
    throw CannotRead(path, store.FileError());
  }
  if (lacks_counter && access != Access::kInspect) {
    throw CannotOpen(path, std::string("its counter of documents is lost; ") + kSeeRepair);
  }
  // Every index has option flags; another program's file of the same kind has not.
  if (!has_options) throw CannotOpen(path, std::string("not an index file") + kIfItWasOne);
  return facts;
}

void CheckStructure(const std::string& path) {
  Database store;
  OpenStore(store, path, Access::kRead);
  std::string first;
  const auto take = [&](std::string_view line) {
    if (first.empty()) first = line;
  };
  if (kestan::CheckStructure(store, take) == 0) return;
  throw CommandError("cannot change index " + Quoted(path) + ": damaged (" + first + "); " +
                     kSeeRepair);
}

OpenedIndex::OpenedIndex(Kestan& engine, const std::string& path, Access access, std::string shown)
    : engine_(engine),
      file_(RealPath(path)),
      path_(std::move(shown)),
      facts_(ExamineIndex(path, access)) {
  if (engine_.OpenIndex(file_.c_str(), access == Access::kRead ? 0 : 1) == 0) return;
  Database store;
  OpenStore(store, path, access, path_);
  throw Locked(path_, "has it open");  // it opens now, so whoever held it has let go
}

void OpenedIndex::CheckWritten(int error) const {
  if (error == 0) return;
  const int first = engine_.FileError() != 0 ? engine_.FileError() : error;
  const bool is_copy = file_ != RealPath(path_);
  throw CommandError("cannot write to index " + Quoted(path_) + ": " +
                     ReasonOfWrite(first, is_copy));
}

void OpenedIndex::CheckRead() const {
  if (engine_.FileError() != 0) throw CannotRead(path_, engine_.FileError());
}

void OpenedIndex::PrepareCodes() const {
  int error = 0;
  WriteOut([&] { error = engine_.PurgeShortWords(); });
  CheckRead();
  if (error == 0) return;
  throw CommandError("cannot change index " + Quoted(path_) +
                     ": postings of one-letter words are damaged; see kestan check");
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
