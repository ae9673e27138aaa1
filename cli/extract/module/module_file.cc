// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/extract/module/module_file.h"

#include <dlfcn.h>
#include <elf.h>
#include <fcntl.h>
#include <link.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <vector>

#include "cli/console/message.h"
#include "cli/files/descriptor.h"

namespace kestan_cli {
namespace {

namespace fs = std::filesystem;

constexpr const char* kNoModule = "not a module for this system";
constexpr unsigned char kClass = sizeof(void*) == 8 ? ELFCLASS64 : ELFCLASS32;

// Returns whether the `size` bytes at `start` lie in a file of `file_bytes`.
bool IsWithin(std::uint64_t file_bytes, std::uint64_t start, std::uint64_t size) {
  return start <= file_bytes && size <= file_bytes - start;
}

bool ReadAt(const Descriptor& file, std::uint64_t start, std::size_t bytes, void* to) {
  return pread(file.number(), to, bytes, static_cast<off_t>(start)) == static_cast<ssize_t>(bytes);
}

// Reads what the file says of the parts that are mapped into memory.
//   Returns  nothing if it is not of this machine, or ends before.
std::vector<ElfW(Phdr)> ReadParts(const Descriptor& file, std::uint64_t file_bytes) {
  ElfW(Ehdr) header{};
  if (!ReadAt(file, 0, sizeof header, &header)) return {};
  const bool is_ours = std::memcmp(header.e_ident, ELFMAG, SELFMAG) == 0 &&
                       header.e_ident[EI_CLASS] == kClass &&
                       header.e_phentsize == sizeof(ElfW(Phdr));
  const std::size_t bytes = header.e_phnum * sizeof(ElfW(Phdr));
  if (!is_ours || !IsWithin(file_bytes, header.e_phoff, bytes)) return {};
  std::vector<ElfW(Phdr)> parts(header.e_phnum);
  if (!ReadAt(file, header.e_phoff, bytes, parts.data())) return {};
  return parts;
}

// Takes the path, which the reader of the message knows already, away from what the loader says.
std::string LoaderError(const std::string& path) {
  const char* const said = dlerror();
  const std::string error = said != nullptr ? said : "cannot be loaded";
  const std::string start = path + ": ";
  return error.compare(0, start.size(), start) == 0 ? error.substr(start.size()) : error;
}

// Loads the module at `place` and calls its function `entry_name`.
template <typename Functions, typename Entry>
const Functions* Open(const ModulePlace& place, const char* entry_name, const std::string& version,
                      std::string* reason) {
  const std::string path = place.Path();
  *reason = ReasonToDistrustModule(place);
  if (reason->empty()) *reason = ReasonNotToLoad(path);
  if (!reason->empty()) return nullptr;
  // Never closed: the libraries keep state to the end of the process.
  void* const module = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
  void* const entry = module != nullptr ? dlsym(module, entry_name) : nullptr;
  if (entry == nullptr) {
    *reason = OneLine(LoaderError(path));
    return nullptr;
  }
  const Functions* const functions = reinterpret_cast<Entry>(entry)();
  if (functions->version == version) return functions;
  *reason = "it is of version " + OneLine(functions->version) + ", this command of " + version;
  return nullptr;
}

}  // namespace

std::string ModulePlace::Path() const {
  return (fs::path(program).parent_path() / from_its_folder).lexically_normal().string();
}

std::string ReasonToDistrustModule(const ModulePlace& place) {
  struct stat program {};
  if (stat(place.program.c_str(), &program) != 0) return ReasonOf(errno);
  fs::path shared = fs::path(place.program).parent_path();
  for (const fs::path& step : fs::path(place.from_its_folder)) {
    if (step == "..") shared = shared.parent_path();
  }
  for (fs::path at = place.Path(); at != shared && at != at.root_path(); at = at.parent_path()) {
    struct stat status {};
    if (stat(at.c_str(), &status) != 0) return ReasonOf(errno);
    const std::string name = at == place.Path() ? "it" : Quoted(at.string());
    const uid_t owner = status.st_uid;
    if (owner != 0 && owner != geteuid() && owner != program.st_uid) {
      return name + " belongs to another user";
    }
    // A group may: its members were chosen, and /usr/local is often open to one.
    if ((status.st_mode & S_IWOTH) != 0) return "every user may write " + name;
  }
  return "";
}

std::string ReasonNotToLoad(const std::string& path) {
  const Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  struct stat status {};
  if (!file.is_open() || fstat(file.number(), &status) != 0) return ReasonOf(errno);
  const auto file_bytes = static_cast<std::uint64_t>(status.st_size);
  const std::vector<ElfW(Phdr)> parts = ReadParts(file, file_bytes);
  if (parts.empty()) return kNoModule;
  for (const ElfW(Phdr) & part : parts) {
    if (!IsWithin(file_bytes, part.p_offset, part.p_filesz)) return "its end is missing";
  }
  return "";
}

const Readers* OpenModule(const ModulePlace& place, const std::string& version,
                          std::string* reason) {
  return Open<Readers, ReadersEntry>(place, kReadersEntry, version, reason);
}

const MailReader* OpenMailModule(const ModulePlace& place, const std::string& version,
                                 std::string* reason) {
  return Open<MailReader, MailReaderEntry>(place, kMailReaderEntry, version, reason);
}

}  // namespace kestan_cli
