// SPDX-License-Identifier: GPL-3.0-or-later
// Memory that is there or ends the process: nothing in the library has a path for "no memory".
#ifndef KESTAN_STORAGE_MEMORY_MEMORY_H_
#define KESTAN_STORAGE_MEMORY_MEMORY_H_

#include <cstddef>
#include <cstdlib>
#include <new>
#include <string>
#include <utility>
#include <vector>

namespace kestan {

// Prints "Kestan: could not allocate BYTES bytes -- REASON" on the standard error stream, the
// reason taken from errno, and ends the process with errno as its exit status.
[[noreturn]] void EndForLackOfMemory(std::size_t bytes);

// Allocate with malloc and realloc; `block` may be null. 0 bytes are served like 1, because
// realloc(block, 0) would free the block and return null.
//   Returns  the memory, never null. The caller owns it and releases it with free.
void* Allocate(std::size_t bytes);
void* Reallocate(void* block, std::size_t bytes);

// The same for a block that will grow again: asks for `*roomy` bytes and, where there is no memory
// for them, for `least`, which must not be more. Leaves in `*roomy` how many there are.
void* ReallocateWithSlack(void* block, std::size_t least, std::size_t* roomy);

// Makes an object that the caller releases with delete.
template <typename T, typename... Arguments>
T* New(Arguments&&... arguments) {
  T* const made = new (std::nothrow) T(std::forward<Arguments>(arguments)...);
  if (made == nullptr) EndForLackOfMemory(sizeof(T));
  return made;
}

// Lets the standard containers allocate as above, so that none of them throws bad_alloc at a host.
template <typename T>
struct Allocator {
  using value_type = T;

  Allocator() = default;
  template <typename U>
  Allocator(const Allocator<U>&) {}  // NOLINT(google-explicit-constructor): containers rebind it

  T* allocate(std::size_t count) {
    return static_cast<T*>(Allocate(count * sizeof(T)));  // NOLINT(bugprone-sizeof-expression)
  }
  void deallocate(T* block, std::size_t) { std::free(block); }
};

template <typename T, typename U>
bool operator==(const Allocator<T>&, const Allocator<U>&) {
  return true;
}

template <typename T, typename U>
bool operator!=(const Allocator<T>&, const Allocator<U>&) {
  return false;
}

using String = std::basic_string<char, std::char_traits<char>, Allocator<char>>;

template <typename T>
using Vector = std::vector<T, Allocator<T>>;

// Leaves new numbers as the memory came: for what is written over at once.
template <typename T>
struct UnfilledAllocator : Allocator<T> {
  template <typename U>
  struct rebind {
    using other = UnfilledAllocator<U>;
  };

  template <typename U>
  void construct(U* at) {
    ::new (static_cast<void*>(at)) U;
  }
  template <typename U, typename... Arguments>
  void construct(U* at, Arguments&&... arguments) {
    ::new (static_cast<void*>(at)) U(std::forward<Arguments>(arguments)...);
  }
};

template <typename T>
using UnfilledVector = std::vector<T, UnfilledAllocator<T>>;

}  // namespace kestan

#endif  // KESTAN_STORAGE_MEMORY_MEMORY_H_
