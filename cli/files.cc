#include "files.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <set>
#include <system_error>

#include "message.h"
#include "output.h"

namespace kestan_cli {
namespace {

namespace fs = std::filesystem;

auto CannotRead(const fs::path& path, const std::string& reason) {
  return CommandError("cannot read " + Quoted(path.string()) + ": " + reason);
}

// Paths may overlap, so everything found is kept once, under its name.
struct Found {
  std::set<std::string> files;
  std::set<std::string> specials;
  std::set<std::string> links;
};

std::string NameOf(const fs::path& path) { return path.lexically_normal().string(); }

// Files what stands at `path`; returns true if it is a folder to walk.
bool FileAway(const fs::path& path, fs::file_type type, Found* found) {
  if (type == fs::file_type::directory) return true;
  if (type == fs::file_type::symlink) {
    found->links.insert(NameOf(path));
  } else if (type == fs::file_type::regular) {
    found->files.insert(NameOf(path));
  } else {
    found->specials.insert(NameOf(path));
  }
  return false;
}

// Adds the folders in `folder` to `waiting`.
void WalkFolder(const fs::path& folder, Found* found, std::vector<fs::path>* waiting) {
  std::error_code error;
  fs::directory_iterator entry(folder, error);
  while (!error && entry != fs::directory_iterator()) {
    const fs::file_type type = entry->symlink_status(error).type();
    if (error) throw CannotRead(entry->path(), ReasonOf(error.value()));
    if (FileAway(entry->path(), type, found)) waiting->push_back(entry->path());
    entry.increment(error);
  }
  if (error) throw CannotRead(folder, ReasonOf(error.value()));
}

void Walk(const fs::path& folder, Found* found) {
  std::vector<fs::path> waiting{folder};
  while (!waiting.empty()) {
    const fs::path next = std::move(waiting.back());
    waiting.pop_back();
    WalkFolder(next, found, &waiting);
  }
}

void FindBelow(const std::string& path, Found* found) {
  std::error_code error;
  const fs::file_status status = fs::status(path, error);
  if (status.type() == fs::file_type::not_found) throw CannotRead(path, "no such file or folder");
  if (error) throw CannotRead(path, ReasonOf(error.value()));
  if (fs::is_directory(status)) return Walk(path, found);
  if (!fs::is_regular_file(status)) throw CannotRead(path, "neither a file nor a folder");
  found->files.insert(NameOf(path));
}

OpenFile OpenToRead(const std::string& path) {
  OpenFile file(std::fopen(path.c_str(), "rb"));
  if (file == nullptr) throw CannotRead(path, ReasonOf(errno));
  return file;
}

// Hands the bytes of the file at `path` to `take`, piece by piece, until it returns false.
template <typename Take>
void ReadPieces(const std::string& path, Take take) {
  const OpenFile file = OpenToRead(path);
  std::vector<char> piece(std::size_t{1} << 16);
  std::size_t bytes = 0;
  while ((bytes = std::fread(piece.data(), 1, piece.size(), file.get())) > 0) {
    if (!take(piece.data(), bytes)) return;
  }
  if (std::ferror(file.get()) != 0) throw CannotRead(path, ReasonOf(errno));
}

bool IsText(const std::string& path, std::size_t max_bytes) {
  bool has_nul = false;
  std::size_t total = 0;
  ReadPieces(path, [&](const char* piece, std::size_t bytes) {
    has_nul = std::memchr(piece, 0, bytes) != nullptr;
    total += bytes;
    return !has_nul && total <= max_bytes;
  });
  if (!has_nul && total > max_bytes) throw CannotRead(path, "too large");
  return !has_nul;
}

void CheckName(const std::string& name) {
  if (name.find('\n') == std::string::npos) return;
  throw CommandError("cannot index " + Quoted(name) +
                     ": its name holds a line feed, and documents are listed one a line");
}

bool IsSameFile(const std::string& left, const std::string& right) {
  std::error_code error;
  return fs::equivalent(left, right, error) && !error;
}

}  // namespace

TextFiles FindTextFiles(const std::vector<std::string>& paths, const std::string& index_path,
                        std::size_t max_bytes) {
  Found found;
  for (const std::string& path : paths) FindBelow(path, &found);
  TextFiles result;
  result.links = found.links.size();
  result.binary_files = found.specials.size();
  for (const std::string& name : found.files) {
    if (IsSameFile(name, index_path) || IsSameFile(name, index_path + ".lock")) continue;
    if (!IsText(name, max_bytes)) {
      ++result.binary_files;
      continue;
    }
    CheckName(name);
    result.names.push_back(name);
  }
  return result;
}

std::string ReadFile(const std::string& path) {
  std::string text;
  ReadPieces(path, [&](const char* piece, std::size_t bytes) {
    text.append(piece, bytes);
    return true;
  });
  return text;
}

}  // namespace kestan_cli
