// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/storage/memory/memory.h>

#include <kestan/storage/memory/diagnostics.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace kestan {

void EndForLackOfMemory(std::size_t bytes) {
  const int error = errno;
  PrintDiagnostic("could not allocate %zu bytes -- %s\n", bytes, std::strerror(error));
  std::exit(error);
}

void* Allocate(std::size_t bytes) { return Reallocate(nullptr, bytes); }

void* Reallocate(void* block, std::size_t bytes) {
  void* const served = std::realloc(block, std::max<std::size_t>(bytes, 1));
  if (served == nullptr) EndForLackOfMemory(bytes);
  return served;
}

void* ReallocateWithSlack(void* block, std::size_t least, std::size_t* roomy) {
  void* const served = std::realloc(block, std::max<std::size_t>(*roomy, 1));
  if (served != nullptr) return served;
  *roomy = least;
  return Reallocate(block, least);
}

}  // namespace kestan
