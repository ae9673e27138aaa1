#include "opened_index.h"

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <string_view>
#include <system_error>

#include "message.h"
#include "output.h"

namespace kestan_cli {
namespace {

namespace fs = std::filesystem;

auto CannotOpen(const std::string& path, const std::string& reason) {
  return CommandError("cannot open index " + Quoted(path) + ": " + reason);
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

// Looks before opening: a pipe would wait for a writer, and a folder opens like a file.
void CheckFile(const std::string& path) {
  std::error_code error;
  const fs::file_status status = fs::status(path, error);
  if (status.type() == fs::file_type::not_found) throw CannotOpen(path, "no such file");
  if (error) throw CannotOpen(path, ReasonOf(error.value()));
  if (fs::is_directory(status)) throw CannotOpen(path, "is a folder");
  if (!fs::is_regular_file(status)) throw CannotOpen(path, "not an index file");
  const OpenFile file(std::fopen(path.c_str(), "rb"));
  if (file == nullptr) throw CannotOpen(path, ReasonOf(errno));
}

// gdbm's error numbers, which the store hands on.
constexpr int kFileOpenError = 3;
constexpr int kFileReadError = 6;  // those between are about seeking and writing
constexpr int kCantBeReader = 9;
constexpr int kCantBeWriter = 10;

// Says why the store refused to open a file. `system_error` is what errno was right after.
std::string ReasonOfStore(int error, int system_error) {
  if (error == kCantBeReader || error == kCantBeWriter) return "locked by another process";
  const bool from_system = error >= kFileOpenError && error <= kFileReadError;
  if (from_system && system_error != 0) return ReasonOf(system_error);
  return std::string("not an index file (") + Database::ErrorString(error) + ")";
}

// The engine does not tell why it could not open a file; the store below it does.
void OpenStore(Database& store, const std::string& path, Access access) {
  errno = 0;
  const int error = store.Open(path.c_str(), access == Access::kRead ? 0 : 1);
  if (error != 0) throw CannotOpen(path, ReasonOfStore(error, errno));
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

IndexFacts FactsOf(Database& store) {
  IndexFacts facts;
  const DBDatumPtr highest = Record(store, "g-code");
  if (highest.ptr == nullptr) return facts;
  facts.had_documents = true;
  facts.free_codes -= FirstUnit(*highest.ptr);
  const DBDatumPtr reusable = Record(store, "g-avail");
  if (reusable.ptr != nullptr) facts.free_codes += reusable.ptr->size / 2;
  return facts;
}

// Follows links: shrinking puts a new file in place of the one at the path that was opened, and
// would leave the file that a link points at as it was.
std::string RealPath(const std::string& path) {
  std::error_code error;
  const fs::path real = fs::canonical(path, error);
  return error ? path : real.string();
}

}  // namespace

IndexFacts ExamineIndex(const std::string& path, Access access) {
  if (access == Access::kCreate && IsMissing(path)) {
    CheckFolderOfNewIndex(path);
    return {};
  }
  CheckFile(path);
  if (access == Access::kCreate && IsEmpty(path)) return {};
  Database store;
  OpenStore(store, path, Access::kRead);
  // Every index has option flags; another program's file of the same kind has not.
  if (Record(store, "g-opts").ptr == nullptr) throw CannotOpen(path, "not an index file");
  return FactsOf(store);
}

OpenedIndex::OpenedIndex(Kestan& engine, const std::string& path, Access access)
    : engine_(engine), path_(path), facts_(ExamineIndex(path, access)) {
  const std::string real_path = RealPath(path);
  if (engine_.OpenIndex(real_path.c_str(), access == Access::kRead ? 0 : 1) == 0) return;
  Database store;
  OpenStore(store, path, access);
  // It opens now, so whoever held it has let go.
  throw CannotOpen(path, "locked by another process");
}

void OpenedIndex::CheckWritten(int error) const {
  if (error == 0) return;
  throw CommandError("cannot write to index " + Quoted(path_) + ": " +
                     Database::ErrorString(error));
}

void OpenedIndex::Save() {
  // A flush does not tell whether it worked. A file that refused one record refuses the next, so
  // storing the option flags, which are there already, tells.
  engine_.FlushIndex();
  CheckWritten(engine_.PutOptions());
}

}  // namespace kestan_cli
