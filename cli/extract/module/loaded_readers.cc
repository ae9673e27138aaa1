// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/extract/module/loaded_readers.h"

#include <kestan/kestan.h>

#include <cstddef>
#include <filesystem>
#include <limits>
#include <system_error>

#include "cli/console/message.h"
#include "cli/extract/module/module_file.h"
#include "cli/files/paths.h"
#include "cli/files/skip.h"

namespace kestan_cli {
namespace {

struct Loading {
  const Readers* readers = nullptr;
  std::string problem;
};

Loading& TheLoading() {
  static Loading loading;
  return loading;
}

void* ResizeForParser(void* block, std::size_t bytes) noexcept {
  if (bytes > std::numeric_limits<unsigned>::max()) return nullptr;  // no page needs so much
  return Kestan::SafeRealloc(block, static_cast<unsigned>(bytes));
}

void Load(Loading* loading) {
  constexpr const char* kProgram = "/proc/self/exe";
  std::error_code error;
  const std::string program = std::filesystem::read_symlink(kProgram, error).string();
  if (error) {
    loading->problem =
        std::string("cannot find the module that reads HTML, packed files and other encodings: ") +
        kProgram + ": " + ReasonOf(error.value());
    return;
  }
  const ModulePlace place{program, KESTAN_READERS_PATH};
  std::string reason;
  const Readers* const readers = OpenModule(place, KESTAN_READERS_VERSION, &reason);
  if (readers == nullptr) {
    loading->problem = "cannot load " + Quoted(place.Path()) +
                       ", which reads HTML, packed files and other encodings: " + reason;
    return;
  }
  UseReaders(*readers);
}

}  // namespace

const Readers& LoadedReaders() {
  Loading& loading = TheLoading();
  if (loading.readers == nullptr && loading.problem.empty()) Load(&loading);
  if (loading.readers != nullptr) return *loading.readers;
  const std::string module(LastPart(KESTAN_READERS_PATH));
  throw SkipFile(SkipKind::kUnreadable, "needs " + module + ", which cannot be loaded",
                 "install " + module + " again: the last line says what is wrong with it");
}

std::string ReadersProblem() { return TheLoading().problem; }

void UseReaders(const Readers& readers) {
  readers.use_memory(ResizeForParser);
  TheLoading().readers = &readers;
}

}  // namespace kestan_cli
