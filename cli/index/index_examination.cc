#include "cli/index/index_examination.h"

#include <kestan/maintenance.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <string_view>
#include <system_error>

#include "cli/files/open_file.h"

namespace kestan_cli {
namespace {

namespace fs = std::filesystem;

using kestan::DocumentCounts;
using kestan::IndexFile;

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

// Returns the counts of an index that is still to be made.
DocumentCounts CountsOfNewIndex() {
  DocumentCounts counts;
  counts.free_codes = kestan::kMaxCode;
  return counts;
}

// Returns whether there is the record of a document. An undamaged index without a counter of
// documents has none, and is small.
bool HasDocuments(IndexFile& file) {
  bool found = false;
  file.ForEachDocument([&](std::string_view name) {
    found = file.CodeOf(name) != 0;
    return !found;
  });
  return found;
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
  if (error != 0) throw StoreNotOpened(shown, kestan::StoreError{error}, errno);
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

DocumentCounts ExamineIndex(const std::string& path, Access access) {
  if (access == Access::kCreate && IsMissing(path)) {
    CheckFolderOfNewIndex(path);
    return CountsOfNewIndex();
  }
  CheckFile(path);
  if (access == Access::kWrite || access == Access::kCreate) CheckWritable(path);
  if (access == Access::kCreate && IsEmpty(path)) return CountsOfNewIndex();
  IndexFile file;
  OpenStore(file.store(), path, Access::kRead);
  const bool has_options = file.OptionFlags().has_value();
  const DocumentCounts counts = file.CountDocuments();
  const bool lacks_counter = !counts.had_documents && HasDocuments(file);
  if (access == Access::kInspect && file.FileError() != kestan::StoreError::kNone) return counts;
  if (file.FileError() != kestan::StoreError::kNone) throw CannotRead(path, file.FileError());
  if (lacks_counter && access != Access::kInspect) {
    throw CannotOpen(path, std::string("its counter of documents is lost; ") + kSeeRepair);
  }
  // Every index has option flags; a gdbm file of another program has not.
  if (!has_options) throw CannotOpen(path, std::string("not an index file") + kIfItWasOne);
  return counts;
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
