#include <kestan/engine/shared_state.h>

#include <kestan/storage/memory.h>

namespace kestan {

ScratchBuffer scratch;

// In memory that needs no allocation, for a process that ends because there is none comes here too;
// and never destroyed.
ResultRegistry& Results() {
  alignas(ResultRegistry) static char memory[sizeof(ResultRegistry)];
  static auto* const results = new (memory) ResultRegistry();
  return *results;
}

}  // namespace kestan
