#include <kestan/engine/shared_state.h>

#include <kestan/storage/memory.h>

namespace kestan {

ScratchBuffer scratch;

ResultRegistry& Results() {
  static auto* const results = New<ResultRegistry>();
  return *results;
}

}  // namespace kestan
