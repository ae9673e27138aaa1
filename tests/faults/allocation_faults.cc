// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/faults/allocation_faults.h"

#include <execinfo.h>
#include <link.h>
#include <malloc.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace kestan_faults {
namespace {

struct Plan {
  AllocationLog* log = nullptr;  // null: no allocation counts
  long nth = 0;
  Failing failing = Failing::kOnce;
};

// Where a shared library lies in memory.
struct Range {
  std::uintptr_t begin = UINTPTR_MAX;
  std::uintptr_t end = 0;
};

Plan plan;
Range gdbm;

int FindGdbm(dl_phdr_info* library, std::size_t, void*) {
  if (std::strstr(library->dlpi_name, "libgdbm.") == nullptr) return 0;
  for (int i = 0; i < library->dlpi_phnum; ++i) {
    const auto& segment = library->dlpi_phdr[i];
    if (segment.p_type != PT_LOAD) continue;
    const std::uintptr_t begin = library->dlpi_addr + segment.p_vaddr;
    gdbm.begin = std::min(gdbm.begin, begin);
    gdbm.end = std::max(gdbm.end, begin + segment.p_memsz);
  }
  return 1;
}

bool IsInGdbm(const void* address) {
  const auto number = reinterpret_cast<std::uintptr_t>(address);
  return number >= gdbm.begin && number < gdbm.end;
}

// The C library allocates for gdbm too, so the nearest caller is not enough. gdbm never calls the
// engine, so any of its functions on the stack means that the allocation is gdbm's.
bool IsCalledByGdbm() {
  std::array<void*, 64> frames;
  const int count = backtrace(frames.data(), static_cast<int>(frames.size()));
  return std::any_of(frames.begin(), frames.begin() + count, IsInGdbm);
}

void NoteFailure(AllocationLog* log, std::size_t bytes) {
  if (IsCalledByGdbm()) {
    ++log->failed_in_gdbm;
    return;
  }
  if (log->failed_elsewhere < AllocationLog::kNotedSizes) {
    log->sizes[static_cast<std::size_t>(log->failed_elsewhere)] = bytes;
  }
  ++log->failed_elsewhere;
}

bool MustFail(std::size_t bytes) {
  if (plan.log == nullptr) return false;
  const long call = ++plan.log->calls;
  const bool is_later = plan.failing == Failing::kFromThenOn && plan.nth > 0 && call > plan.nth;
  if (call != plan.nth && !is_later) return false;
  const Plan current = plan;
  plan.log = nullptr;  // what looks for the caller may allocate
  NoteFailure(current.log, bytes);
  plan = current;
  errno = ENOMEM;
  return true;
}

}  // namespace

bool AllocationLog::HasFailed(std::size_t bytes) const {
  const auto* const end = sizes.begin() + std::min(failed_elsewhere, kNotedSizes);
  return std::find(sizes.begin(), end, bytes) != end;
}

void FailAllocations(long nth, Failing failing, AllocationLog* log) {
  if (dl_iterate_phdr(FindGdbm, nullptr) == 0) std::abort();
  IsCalledByGdbm();          // the first time, it loads what it needs
  std::atexit(StopFailing);  // some builds add work to the end of a process: measuring coverage
  plan = {log, nth, failing};
}

void StopFailing() { plan.log = nullptr; }

}  // namespace kestan_faults

// The C library's own functions. A program may define malloc and the others itself.
// NOLINTBEGIN(bugprone-reserved-identifier,readability-identifier-naming)
extern "C" {

void* __libc_malloc(std::size_t);
void* __libc_calloc(std::size_t, std::size_t);
void* __libc_realloc(void*, std::size_t);
void* __libc_memalign(std::size_t, std::size_t);

void* malloc(std::size_t bytes) noexcept {
  return kestan_faults::MustFail(bytes) ? nullptr : __libc_malloc(bytes);
}

void* calloc(std::size_t count, std::size_t bytes) noexcept {
  return kestan_faults::MustFail(count * bytes) ? nullptr : __libc_calloc(count, bytes);
}

void* realloc(void* block, std::size_t bytes) noexcept {
  return kestan_faults::MustFail(bytes) ? nullptr : __libc_realloc(block, bytes);
}

void* memalign(std::size_t alignment, std::size_t bytes) noexcept {
  return kestan_faults::MustFail(bytes) ? nullptr : __libc_memalign(alignment, bytes);
}

void* aligned_alloc(std::size_t alignment, std::size_t bytes) noexcept {
  return memalign(alignment, bytes);
}

int posix_memalign(void** block, std::size_t alignment, std::size_t bytes) noexcept {
  if (kestan_faults::MustFail(bytes)) return ENOMEM;
  *block = __libc_memalign(alignment, bytes);
  return *block != nullptr ? 0 : ENOMEM;
}

}  // extern "C"
// NOLINTEND(bugprone-reserved-identifier,readability-identifier-naming)
