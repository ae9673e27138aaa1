/* SPDX-License-Identifier: GPL-3.0-or-later */
#include "tests/c/failing_malloc.h"

#include <errno.h>
#include <execinfo.h>
#include <link.h>
#include <stddef.h>
#include <stdint.h>
#include <string.h>

/* glibc's own. */
extern void* __libc_malloc(size_t bytes);
extern void* __libc_calloc(size_t count, size_t bytes);
extern void* __libc_realloc(void* block, size_t bytes);
extern void* __libc_memalign(size_t alignment, size_t bytes);
extern void __libc_free(void* block);

static long left = 0; /* allocations until the one that fails; 0: none does */
static int has_failed = 0;
static int is_looking = 0;
static uintptr_t gdbm_begin = 0;
static uintptr_t gdbm_end = 0;

static int FindGdbm(struct dl_phdr_info* library, size_t size, void* payload) {
  (void)size;
  (void)payload;
  if (strstr(library->dlpi_name, "libgdbm.") == NULL) return 0;
  for (int i = 0; i < library->dlpi_phnum; ++i) {
    const uintptr_t begin = library->dlpi_addr + library->dlpi_phdr[i].p_vaddr;
    const uintptr_t end = begin + library->dlpi_phdr[i].p_memsz;
    if (library->dlpi_phdr[i].p_type != PT_LOAD) continue;
    if (gdbm_begin == 0 || begin < gdbm_begin) gdbm_begin = begin;
    if (end > gdbm_end) gdbm_end = end;
  }
  return 1;
}

/* gdbm calls no functions of ours, so any of its own on the stack means that the block is for it.
 */
static int IsCalledByGdbm(void) {
  void* frames[64];
  const int count = backtrace(frames, 64);
  for (int i = 0; i < count; ++i) {
    const uintptr_t frame = (uintptr_t)frames[i];
    if (frame >= gdbm_begin && frame < gdbm_end) return 1;
  }
  return 0;
}

void FailAllocation(long nth) {
  void* frames[4];
  backtrace(frames, 4); /* loads what it needs, which allocates */
  if (gdbm_begin == 0) dl_iterate_phdr(FindGdbm, NULL);
  has_failed = 0;
  __atomic_store_n(&left, nth, __ATOMIC_SEQ_CST);
}

int StopFailing(void) {
  __atomic_store_n(&left, 0, __ATOMIC_SEQ_CST);
  return has_failed;
}

int WasNotReached(void) { return __atomic_load_n(&left, __ATOMIC_SEQ_CST) > 0; }

static int MustFail(void) {
  if (__atomic_load_n(&left, __ATOMIC_SEQ_CST) <= 0 || is_looking) return 0;
  if (__atomic_sub_fetch(&left, 1, __ATOMIC_SEQ_CST) != 0) return 0;
  is_looking = 1;
  has_failed = !IsCalledByGdbm();
  is_looking = 0;
  if (has_failed) errno = ENOMEM;
  return has_failed;
}

static long blocks = 0;

long BlocksInUse(void) { return __atomic_load_n(&blocks, __ATOMIC_SEQ_CST); }

static void* Count(void* block) {
  if (block != NULL) __atomic_add_fetch(&blocks, 1, __ATOMIC_SEQ_CST);
  return block;
}

void* malloc(size_t bytes) { return MustFail() ? NULL : Count(__libc_malloc(bytes)); }

void* calloc(size_t count, size_t bytes) {
  return MustFail() ? NULL : Count(__libc_calloc(count, bytes));
}

void* realloc(void* block, size_t bytes) {
  if (block == NULL) return malloc(bytes);
  return MustFail() ? NULL : __libc_realloc(block, bytes);
}

void* memalign(size_t alignment, size_t bytes) {
  return MustFail() ? NULL : Count(__libc_memalign(alignment, bytes));
}

void free(void* block) {
  if (block != NULL) __atomic_sub_fetch(&blocks, 1, __ATOMIC_SEQ_CST);
  __libc_free(block);
}

void* aligned_alloc(size_t alignment, size_t bytes) { return memalign(alignment, bytes); }

int posix_memalign(void** out, size_t alignment, size_t bytes) {
  void* const block = memalign(alignment, bytes);
  if (block == NULL) return ENOMEM;
  *out = block;
  return 0;
}
