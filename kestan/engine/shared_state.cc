// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/engine/shared_state.h>

#include <new>
#include <type_traits>

namespace kestan {

ScratchBuffer scratch;

// In memory that needs no allocation, for a process that ends because there is none comes here too;
// and never destroyed.
ResultRegistry& Results() {
  static std::aligned_storage_t<sizeof(ResultRegistry), alignof(ResultRegistry)> memory;
  static auto* const results = new (&memory) ResultRegistry();
  return *results;
}

}  // namespace kestan
