// Memory for hosts, and named word lists.
#include <kestan/engine/kestan.h>
#include <kestan/format/keys.h>
#include <kestan/format/word_list.h>
#include <kestan/storage/memory.h>
#include <kestan/text/scratch_text.h>

#include <cstdint>

namespace {

constexpr std::uint32_t kSlack = 4096;

}  // namespace

void* Kestan::SafeMalloc(unsigned size) { return kestan::Allocate(size); }

void* Kestan::SafeRealloc(void* block, unsigned size) { return kestan::Reallocate(block, size); }

int Kestan::DBPutWords(const char* name, const char* words) {
  const kestan::String key = kestan::ItemKey(kestan::kWordListFamily, name);
  const kestan::String text(words);  // it may lie in the scratch buffer, which is written below
  const auto length = static_cast<std::uint32_t>(text.size());
  if (kestan::scratch.size < length) kestan::scratch.Grow(length + kSlack);
  kestan::scratch.Reserve(text.size() + 1);
  const std::size_t encoded = kestan::EncodeWordList(text, kestan::scratch.bytes);
  return store_.Put(kestan::AsDatum(key), kestan::AsDatum({kestan::scratch.bytes, encoded}));
}

char* Kestan::DBGetWords(const char* name) {
  const DBDatumPtr list = kestan::Fetch(store_, kestan::ItemKey(kestan::kWordListFamily, name));
  if (list.ptr == nullptr) return nullptr;
  const std::uint32_t likely = 3 * list.ptr->size + kSlack;
  if (kestan::scratch.size < likely) kestan::scratch.Grow(likely);
  return kestan::DecodeWordList(*list.ptr, &kestan::scratch);
}
