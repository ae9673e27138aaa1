#include "cli/index/index_examination.h"

#include <kestan/maintenance.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <string_view>
#include <system_error>

#include "cli/files/open_file.h"

namespace kestan_cli {
namespace {

namespace fs = std::filesystem;

constexpr int kMaxLinks = 40;  // in a chain; as many as the system follows

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

void CheckWritable(const std::string& path) {
  if (::access(path.c_str(), W_OK) != 0) throw CannotChange(path, ReasonOf(errno));
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

// Returns whether there is the record of a document, which no index has without a counter.
bool ShowsDocuments(Database& store) {
  constexpr std::uint32_t kDocumentBytes = 8;
  constexpr int kRecordsBetweenFlushes = 1000;  // a flush frees the memory of those read
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
    *lacks_counter = ShowsDocuments(store);  // an undamaged index without a counter is small
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

// Examines the file before opening it: a pipe would wait for a writer, and a directory opens like a
// file.
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

void OpenStore(Database& store, const std::string& path, Access access, const std::string& shown) {
  errno = 0;
  const int error = store.Open(path.c_str(), access == Access::kRead ? 0 : 1);
  if (error != 0) throw StoreNotOpened(shown, error, errno);
}

// Not fs::canonical, which requires a file: a new index may be made through a link.
std::string RealPath(const std::string& path) {
  fs::path real = path;
  std::error_code error;
  for (int i = 0; i < kMaxLinks && fs::is_symlink(real, error); ++i) {
    const fs::path target = fs::read_symlink(real, error);
    real = real.parent_path() / target;  // the target alone if it is absolute
  }
  return real.string();
}

IndexFacts ExamineIndex(const std::string& path, Access access) {
  if (access == Access::kCreate && IsMissing(path)) {
    CheckFolderOfNewIndex(path);
    return {};
  }
  CheckFile(path);
  if (access == Access::kWrite || access == Access::kCreate) CheckWritable(path);
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
  // Every index has option flags; a gdbm file of another program has not.
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
  throw CannotChange(path, "damaged (" + first + "); " + kSeeRepair);
}

}  // namespace kestan_cli
